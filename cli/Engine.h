#pragma once

// Where the command meets the recordset engine.

#include <memory>
#include <string>

#include "cli/Json.h"
#include "frame/DbConnection.h"
#include "frame/Host.h"
#include "frame/MessageSink.h"

namespace tovrand::cli {

// The native host on a connection setting; `serverDate` ("YYYY-MM-DD", or "" to keep the
// setting's) replaces its server_date option. A bad setting raises the VbError the engine gives.
std::shared_ptr<Host> makeNativeHost(const std::string& dsn, const std::string& serverDate,
                                     std::shared_ptr<MessageSink> sink);

// Runs one fixture statement on the physical connection an open native connection holder uses,
// outside the statement trace. Answers {"ok":true}, plus "columns" (labels) and "rows" (arrays of
// values) when the statement gives a result set. Raises VbError with the server's message.
Json runFixtureStatement(DbConnection& connection, const std::string& sql);

}  // namespace tovrand::cli
