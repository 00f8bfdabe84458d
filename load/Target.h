#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tooling/PrivateServer.h"

namespace tovrand::load {

// Where the clients run: one private server, or a private cluster whose nodes the clients share
// out. Either is stopped when the object goes (and, being watched, when the process ends however it
// ends). The administrator works as root over node 1's socket, outside the component.
class Target {
 public:
  virtual ~Target() = default;
  virtual const std::string& name() const = 0;
  virtual const std::string& database() const = 0;
  // The TCP port on 127.0.0.1 that client `index` connects to.
  virtual int portFor(int index) const = 0;
  virtual int nodes() const = 0;
  // SQL text of several statements, as root.
  virtual void run(const std::string& sql) const = 0;
  // The rows a query answers, tab-separated columns, as root; on a cluster the read waits until the
  // node has applied everything the others committed before it.
  virtual std::vector<std::vector<std::string>> query(const std::string& sql) const = 0;
  // Returns once every node has applied what was committed before (the accounts and fixtures that
  // clients on other nodes than the first are about to use).
  virtual void settle() const {}
};

// `maxConnections` goes to the server's start options.
std::unique_ptr<Target> startSingle(int maxConnections);
std::unique_ptr<Target> startCluster(int nodes, int maxConnections);

}  // namespace tovrand::load
