#pragma once

#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "engine/Lock.h"

namespace tovrand::engine {

// One connection per connection key per process: every holder of the same settings gets the same
// object, and the physical connection ends when the last reference goes (the holders' and the
// recordsets' that still run on it).
template <class Connection>
class SharedSessions {
 public:
  // The shared connection for the key, made by `open` on first use. Thread-safe; a failing `open`
  // leaves nothing behind.
  template <class Open>
  std::shared_ptr<Connection> acquire(const std::string& key, Open&& open) {
    Guard lock(mutex_);
    for (auto it = connections_.begin(); it != connections_.end();) {
      it = it->second.expired() ? connections_.erase(it) : std::next(it);
    }
    if (auto it = connections_.find(key); it != connections_.end()) {
      if (auto existing = it->second.lock()) return existing;
    }
    std::shared_ptr<Connection> created = open();
    connections_[key] = created;
    return created;
  }

  // How many shared connections are open.
  std::size_t count() {
    Guard lock(mutex_);
    std::size_t n = 0;
    for (auto& [key, weak] : connections_) n += weak.expired() ? 0 : 1;
    return n;
  }

 private:
  Mutex mutex_;
  std::map<std::string, std::weak_ptr<Connection>> connections_;
};

}  // namespace tovrand::engine
