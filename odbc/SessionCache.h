#pragma once

// What one connection's engine remembers so that it need not ask the server again: the columns of the
// tables opened whole, the columns of results already described, and the engine's prepared INSERT and
// UPDATE statements. Only the engine's .cpp files include this header.

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/Lock.h"
#include "odbc/OdbcApi.h"

namespace tovrand::odbc {

using Columns = std::vector<ColumnInfo>;

// A prepared statement lent to one user at a time: two recordsets storing rows into the same table at
// the same moment each get their own.
struct LentStatement {
  Handle handle;
  std::uint64_t session = 0;  // the session it was prepared on
};

class SessionCache {
 public:
  SessionCache() = default;
  SessionCache(const SessionCache&) = delete;
  SessionCache& operator=(const SessionCache&) = delete;

  // The columns (base names included) of a table opened whole; null when not known yet.
  std::shared_ptr<const Columns> tableColumns(const std::string& table);
  void rememberTableColumns(const std::string& table, std::shared_ptr<const Columns> columns);

  // The columns (labels and types) of a result of the shape (see engine::resultShapeOf); null when not known
  // yet.
  std::shared_ptr<const Columns> resultColumns(const std::string& shape);
  void rememberResultColumns(const std::string& shape, std::shared_ptr<const Columns> columns);

  // A statement prepared earlier on this session for exactly this text, taken out of the cache until
  // it is given back; an empty handle when there is none.
  LentStatement takeStatement(const std::string& sql);
  // Back into the cache for the next user, unless the session has changed since it was prepared.
  void giveBack(const std::string& sql, LentStatement statement);
  std::uint64_t session() const;

  // A new session begins: its statements are gone with the old one, and what the old session learned
  // of the tables is forgotten too (the server may have changed).
  void newSession();
  // Frees every prepared statement (before the connection that owns them is closed).
  void dropStatements();

 private:
  // Bounds on what is kept: enough for every table and statement the component uses, small enough
  // that a client sending ever new texts keeps little.
  static constexpr std::size_t kMaxShapes = 1024;
  static constexpr std::size_t kMaxStatements = 64;

  mutable engine::Mutex mutex_;
  std::uint64_t session_ = 1;
  std::unordered_map<std::string, std::shared_ptr<const Columns>> tables_;
  std::unordered_map<std::string, std::shared_ptr<const Columns>> results_;
  std::unordered_map<std::string, std::vector<Handle>> statements_;
  std::size_t idleStatements_ = 0;
};

}  // namespace tovrand::odbc
