#pragma once

// What one connection's engine remembers so that it need not ask the server again: the columns of the
// tables opened whole, the columns of results already described, and the engine's prepared INSERT and
// UPDATE statements. Both recordset engines keep the same rules; only what a column description and a
// prepared statement are differs (`Column`, and `Statement`: movable, false when empty).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/Lock.h"

namespace tovrand::engine {

template <class Column, class Statement>
class SessionCache {
 public:
  using Columns = std::vector<Column>;

  // A prepared statement lent to one user at a time: two recordsets storing rows into the same table
  // at the same moment each get their own.
  struct Lent {
    Statement statement;
    std::uint64_t session = 0;  // the session it was prepared on
  };

  SessionCache() = default;
  SessionCache(const SessionCache&) = delete;
  SessionCache& operator=(const SessionCache&) = delete;

  // The columns (base names included) of a table opened whole; null when not known yet.
  std::shared_ptr<const Columns> tableColumns(const std::string& table) {
    Guard lock(mutex_);
    auto it = tables_.find(table);
    return it == tables_.end() ? nullptr : it->second;
  }
  void rememberTableColumns(const std::string& table, std::shared_ptr<const Columns> columns) {
    Guard lock(mutex_);
    if (tables_.size() >= kMaxShapes) tables_.clear();
    tables_[table] = std::move(columns);
  }

  // The columns (labels and types) of a result of the shape (see engine::resultShapeOf); null when not
  // known yet.
  std::shared_ptr<const Columns> resultColumns(const std::string& shape) {
    Guard lock(mutex_);
    auto it = results_.find(shape);
    return it == results_.end() ? nullptr : it->second;
  }
  void rememberResultColumns(const std::string& shape, std::shared_ptr<const Columns> columns) {
    Guard lock(mutex_);
    if (results_.size() >= kMaxShapes) results_.clear();
    results_[shape] = std::move(columns);
  }

  // The columns of a result the client library described with this signature (a hash of the
  // description itself, so that no text need be read to find it); null when not known yet. The caller
  // checks that the description matches: different descriptions may share a signature.
  std::shared_ptr<const Columns> describedColumns(std::uint64_t signature) {
    Guard lock(mutex_);
    auto it = described_.find(signature);
    return it == described_.end() ? nullptr : it->second;
  }
  void rememberDescribedColumns(std::uint64_t signature, std::shared_ptr<const Columns> columns) {
    Guard lock(mutex_);
    if (described_.size() >= kMaxShapes) described_.clear();
    described_[signature] = std::move(columns);
  }

  // A statement prepared earlier on this session for exactly this text, taken out of the cache until
  // it is given back; an empty one when there is none.
  Lent takeStatement(const std::string& sql) {
    Guard lock(mutex_);
    Lent lent;
    lent.session = session_;
    auto it = statements_.find(sql);
    if (it != statements_.end() && !it->second.empty()) {
      lent.statement = std::move(it->second.back());
      it->second.pop_back();
      --idleStatements_;
    }
    return lent;
  }

  // Back into the cache for the next user, unless the session has changed since it was prepared.
  void giveBack(const std::string& sql, Lent lent) {
    if (!lent.statement) return;
    Statement dropped;  // declared before the lock: freed outside it
    Guard lock(mutex_);
    if (lent.session != session_) return;
    if (idleStatements_ >= kMaxStatements) {
      // Full: make room by dropping another text's statement.
      for (auto it = statements_.begin(); it != statements_.end(); ++it) {
        if (it->first != sql && !it->second.empty()) {
          dropped = std::move(it->second.back());
          it->second.pop_back();
          --idleStatements_;
          break;
        }
      }
      if (idleStatements_ >= kMaxStatements) return;
    }
    statements_[sql].push_back(std::move(lent.statement));
    ++idleStatements_;
  }

  std::uint64_t session() const {
    Guard lock(mutex_);
    return session_;
  }

  // A new session begins: its statements are gone with the old one, and what the old session learned
  // of the tables is forgotten too (the server may have changed).
  void newSession() {
    Statements gone;  // declared before the lock: freed outside it
    Guard lock(mutex_);
    ++session_;
    gone.swap(statements_);
    idleStatements_ = 0;
    tables_.clear();
    results_.clear();
    described_.clear();
  }

  // Frees every prepared statement (before the connection that owns them is closed).
  void dropStatements() {
    Statements gone;
    Guard lock(mutex_);
    gone.swap(statements_);
    idleStatements_ = 0;
  }

 private:
  using Statements = std::unordered_map<std::string, std::vector<Statement>>;

  // Bounds on what is kept: enough for every table and statement the component uses, small enough
  // that a client sending ever new texts keeps little.
  static constexpr std::size_t kMaxShapes = 1024;
  static constexpr std::size_t kMaxStatements = 64;

  mutable Mutex mutex_;
  std::uint64_t session_ = 1;
  std::unordered_map<std::string, std::shared_ptr<const Columns>> tables_;
  std::unordered_map<std::string, std::shared_ptr<const Columns>> results_;
  std::unordered_map<std::uint64_t, std::shared_ptr<const Columns>> described_;
  Statements statements_;
  std::size_t idleStatements_ = 0;
};

}  // namespace tovrand::engine
