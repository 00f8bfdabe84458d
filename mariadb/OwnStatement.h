#pragma once

#include <string_view>

#include "frame/OwnStatement.h"

struct st_mysql;

namespace tovrand::mariadb {

// Runs `sql` on the session `session`, outside the statement trace, and reads every row of its result
// in the forms the ODBC engine gives for the same columns. A lost session raises SessionLost, for the
// connection to note. The caller holds the session's exchange.
OwnStatementResult runOwnStatement(st_mysql* session, std::string_view sql);

}  // namespace tovrand::mariadb
