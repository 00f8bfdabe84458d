#pragma once

// Where the command meets the recordset engine's port.

#include <string>

#include "cli/Json.h"
#include "frame/DbConnection.h"
#include "frame/OwnStatement.h"

namespace tovrand::cli {

// Runs one fixture statement on the session an open connection holder uses, outside the statement
// trace. Raises VbError with the server's message.
OwnStatementResult runFixtureStatementRaw(DbConnection& connection, const std::string& sql);

// A fixture statement's answer: {"ok":true}, plus "columns" (labels) and "rows" (arrays of values)
// when the statement gave a result set.
Json fixtureAnswer(const OwnStatementResult& result);
// The same answer written as text straight into `out`, row by row.
void writeFixtureAnswer(std::string& out, const OwnStatementResult& result);

// runFixtureStatementRaw and its answer in one.
Json runFixtureStatement(DbConnection& connection, const std::string& sql);

}  // namespace tovrand::cli
