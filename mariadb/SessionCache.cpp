#include "mariadb/SessionCache.h"

namespace tovrand::mariadb {

std::shared_ptr<const Columns> SessionCache::tableColumns(const std::string& table) {
  engine::Guard lock(mutex_);
  auto it = tables_.find(table);
  return it == tables_.end() ? nullptr : it->second;
}

void SessionCache::rememberTableColumns(const std::string& table, std::shared_ptr<const Columns> columns) {
  engine::Guard lock(mutex_);
  if (tables_.size() >= kMaxShapes) tables_.clear();
  tables_[table] = std::move(columns);
}

std::shared_ptr<const Columns> SessionCache::resultColumns(const std::string& shape) {
  engine::Guard lock(mutex_);
  auto it = results_.find(shape);
  return it == results_.end() ? nullptr : it->second;
}

void SessionCache::rememberResultColumns(const std::string& shape, std::shared_ptr<const Columns> columns) {
  engine::Guard lock(mutex_);
  if (results_.size() >= kMaxShapes) results_.clear();
  results_[shape] = std::move(columns);
}

LentStatement SessionCache::takeStatement(const std::string& sql) {
  engine::Guard lock(mutex_);
  LentStatement lent;
  lent.session = session_;
  auto it = statements_.find(sql);
  if (it != statements_.end() && !it->second.empty()) {
    lent.statement = std::move(it->second.back());
    it->second.pop_back();
    --idleStatements_;
  }
  return lent;
}

void SessionCache::giveBack(const std::string& sql, LentStatement lent) {
  if (!lent.statement) return;
  Statement dropped;  // closed outside the lock
  engine::Guard lock(mutex_);
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

void SessionCache::newSession() {
  std::unordered_map<std::string, std::vector<Statement>> gone;
  engine::Guard lock(mutex_);
  ++session_;
  gone.swap(statements_);
  idleStatements_ = 0;
  tables_.clear();
  results_.clear();
}

void SessionCache::dropStatements() {
  std::unordered_map<std::string, std::vector<Statement>> gone;
  engine::Guard lock(mutex_);
  gone.swap(statements_);
  idleStatements_ = 0;
}

}  // namespace tovrand::mariadb
