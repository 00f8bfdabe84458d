#include "engine/SessionState.h"

#include "vb/Text.h"

namespace tovrand::engine {

std::string PrimaryKeys::keyOf(const std::string& catalog, const std::string& table) {
  return toLowerAscii(catalog) + "." + toLowerAscii(table);
}

bool PrimaryKeys::find(const std::string& key, std::vector<std::string>& columns) {
  Guard lock(mutex_);
  auto it = keys_.find(key);
  if (it == keys_.end()) return false;
  columns = it->second;
  return true;
}

void PrimaryKeys::remember(const std::string& key, const std::vector<std::string>& columns) {
  Guard lock(mutex_);
  keys_[key] = columns;
}

void PrimaryKeys::clear() {
  Guard lock(mutex_);
  keys_.clear();
}

}  // namespace tovrand::engine
