#pragma once

// The ODBC engine's session cache: columns as the driver describes them, statements as driver handles.
// Only the engine's .cpp files include this header.

#include <vector>

#include "engine/SessionCache.h"
#include "odbc/OdbcApi.h"

namespace tovrand::odbc {

using Columns = std::vector<ColumnInfo>;

// A class rather than an alias so that OdbcConnection.h can name it without including the driver's
// headers.
class SessionCache final : public engine::SessionCache<ColumnInfo, Handle> {};

using LentStatement = SessionCache::Lent;

}  // namespace tovrand::odbc
