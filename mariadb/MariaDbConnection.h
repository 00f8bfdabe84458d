#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "engine/Lock.h"
#include "engine/SessionConnection.h"
#include "frame/OwnStatement.h"
#include "frame/Recordset.h"
#include "vb/Value.h"
#include "vb/VbError.h"

struct st_mysql;

namespace tovrand {

namespace mariadb {
class SessionCache;
}

// One MariaDB session through Connector/C (autocommit, utf8mb4, client multi-statements off), set up
// as OdbcConnection sets up its own: a server with lower_case_table_names=0 is refused, server_date
// pins the session's clock, ssl=required refuses a session the server would not encrypt.
//
// A lost session (killed, timed out, the server restarted) fails the statement that met it with the
// client's error. Within a call held on the connection (beginCall/endCall) every later statement of
// that call fails with the same error without reaching the server; the next statement after the call,
// or the next statement at all outside such a call, opens a new session first. Nothing is ever
// re-sent. What the engine remembered of the old session (tables' columns, prepared statements, primary
// keys) goes with it.
//
// acquire() shares one session per connection key per process, as OdbcConnection::acquire does.
class MariaDbConnection final : public engine::SessionConnection {
 public:
  // The process's shared connection for the settings, opened on first use. Thread-safe.
  static std::shared_ptr<MariaDbConnection> acquire(const ConnectionSettings& settings);
  // A connection of its own, never shared (fixtures, tools).
  static std::shared_ptr<MariaDbConnection> openPrivate(const ConnectionSettings& settings);
  // How many shared connections are open in this process.
  static std::size_t sharedCount();

  ~MariaDbConnection() override;

  // Runs a statement outside the trace (the engine's own housekeeping, fixtures).
  void execute(std::string_view sql);
  // The first column of the first row of a query run outside the trace; nullopt when there is no row.
  // `asText`: the value as the server's text (String), else as a recordset reads it.
  std::optional<Value> scalar(std::string_view sql, bool asText = false);
  OwnStatementResult runOwnStatement(std::string_view sql) override;

  // For the engine: the live session, opened anew first when the last one was lost (raises when the
  // server cannot be reached, or, during a held call that lost its session, the loss).
  st_mysql* session();
  // The primary-key columns of a base table, in key order (cached per table and session).
  std::vector<std::string> primaryKey(const std::string& catalog, const std::string& table);
  mariadb::SessionCache& sessionCache();
  // Held around each exchange with the server (a query and the storing of its rows, a prepare, an
  // execute): the client library serves one caller at a time per session, where the ODBC driver takes
  // a lock of its own. Take it after session(), never around it.
  engine::Mutex& exchangeMutex();

 private:
  struct Impl;
  explicit MariaDbConnection(const ConnectionSettings& settings);
  static std::shared_ptr<MariaDbConnection> connect(const ConnectionSettings& settings);
  std::unique_ptr<Impl> impl_;
};

}  // namespace tovrand
