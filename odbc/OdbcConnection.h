#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "engine/SessionConnection.h"
#include "frame/Recordset.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand {

namespace odbc {
class SessionCache;
}

// One physical ODBC connection (wide functions only, autocommit, utf8mb4). On connect it refuses a
// server that runs with lower_case_table_names=0 and, when the settings carry server_date, pins the
// session's timestamp to noon of that date so that curdate() answers it. Character data crosses the
// driver as the session's UTF-8 when the driver is MariaDB Connector/ODBC on a utf8 session (it then
// hands the bytes over unchanged), else as UTF-16.
//
// A lost session (killed, timed out, the server restarted) fails the statement that met it with the
// driver's error, which the method's handler reports. Within a call held on the connection
// (beginCall/endCall: a member that goes on after one of its routines has handled an error) every
// later statement of that call fails with the same error, without reaching the server; the next
// statement after the call, or the next statement at all outside such a call, opens a new session
// first. Nothing is ever re-sent: a statement that failed may have run. What the engine remembered of
// the old session (tables' columns, prepared statements) goes with it.
//
// acquire() shares one connection per connection string per process: every holder of the same
// settings gets the same object, and the physical connection ends when the last reference goes (the
// holders' and the recordsets' that still run on it).
class OdbcConnection final : public engine::SessionConnection {
 public:
  // The process's shared connection for the settings, opened on first use. Thread-safe.
  static std::shared_ptr<OdbcConnection> acquire(const ConnectionSettings& settings);
  // A connection of its own, never shared (fixtures, tools).
  static std::shared_ptr<OdbcConnection> openPrivate(const ConnectionSettings& settings);

  ~OdbcConnection() override;

  // Runs a statement outside the trace (the engine's own housekeeping, fixtures). On a connection
  // whose settings turn client multi-statements on, every result of the text is consumed and the first
  // failing statement raises.
  void execute(std::string_view sql);
  // The first column of the first row of a query run outside the trace; nullopt when there is no row.
  // `asText`: the value as the server's text (String), else as a recordset reads it.
  std::optional<Value> scalar(std::string_view sql, bool asText = false);
  OwnStatementResult runOwnStatement(std::string_view sql) override;

  // For the engine: the SQLHDBC to allocate statements on, and the primary-key columns of a base table
  // (cached per table). After a lost session (markLost) the next nativeHandle() connects anew and sets
  // the session up again; it raises when the server cannot be reached.
  void* nativeHandle();
  std::vector<std::string> primaryKey(const std::string& catalog, const std::string& table);
  // What the engine remembers of this session (tables' columns, result names, prepared statements);
  // forgotten whenever a new session begins.
  odbc::SessionCache& sessionCache();
  // Whether text crosses the driver as the session's UTF-8 (MariaDB Connector/ODBC on a utf8mb4
  // session) rather than as UTF-16.
  bool textAsUtf8() const;

 private:
  struct Impl;
  explicit OdbcConnection(const ConnectionSettings& settings);
  static std::shared_ptr<OdbcConnection> connect(const ConnectionSettings& settings);
  std::unique_ptr<Impl> impl_;
};

}  // namespace tovrand
