#pragma once

// Where the command meets the recordset engine's port.

#include <string>

#include "cli/Json.h"
#include "frame/DbConnection.h"

namespace tovrand::cli {

// Runs one fixture statement on the session an open connection holder uses, outside the statement
// trace. Answers {"ok":true}, plus "columns" (labels) and "rows" (arrays of values) when the statement
// gives a result set. Raises VbError with the server's message.
Json runFixtureStatement(DbConnection& connection, const std::string& sql);

}  // namespace tovrand::cli
