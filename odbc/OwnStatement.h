#pragma once

#include <string_view>

#include "frame/OwnStatement.h"

namespace tovrand::odbc {

// Runs `sql` on a statement of its own allocated on the SQLHDBC `dbc`, outside the statement trace, and
// reads every row of its result. A lost session raises ConnectionLost, for the connection to note.
OwnStatementResult runOwnStatement(void* dbc, std::string_view sql);

}  // namespace tovrand::odbc
