#pragma once

// The MariaDB engine's session cache: columns as the server describes them, statements as the client
// library's prepared statements. Only the engine's .cpp files include this header.

#include "engine/SessionCache.h"
#include "mariadb/MariaDbApi.h"

namespace tovrand::mariadb {

// A class rather than an alias so that MariaDbConnection.h can name it without including the client
// library's headers.
class SessionCache final : public engine::SessionCache<ColumnInfo, Statement> {};

using LentStatement = SessionCache::Lent;

}  // namespace tovrand::mariadb
