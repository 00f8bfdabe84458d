#pragma once

#include <string>
#include <vector>

#include "vb/Value.h"

namespace tovrand {

class OdbcConnection;

// Runs one of the engine's own statements (an INSERT or UPDATE with a `?` for each value) with the
// values bound, on a statement the session prepared for the same text before when there is one: a
// recordset that adds row after row to a table sends each row in one round trip. Text goes as the
// session's UTF-8 where the connection takes it so. A lost session is noted on the connection, which
// reconnects before its next statement. Nothing is traced here: the caller reports the statement.
void runBoundStatement(OdbcConnection& connection, const std::string& sql, const std::vector<Value>& values);

}  // namespace tovrand
