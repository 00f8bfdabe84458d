#pragma once

#include <memory>
#include <string>

#include "engine/ConnectionSettings.h"
#include "odbc/OdbcConnection.h"
#include "tooling/PrivateServer.h"

namespace tovrand::bench {

// The server the data sets live on: a private one of this process (its buffer pool large enough to
// hold every table, unless TOVRAND_SANDBOX_ARGS says otherwise), or the one TOVRAND_TEST_DSN names.
class Server {
 public:
  Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  // Statements on the server outside any data set (CREATE/DROP DATABASE), outside the trace.
  void admin(const std::string& sql);
  // SQL text of several statements on `database`, through the mariadb client.
  void runSql(const std::string& database, const std::string& sql) const;
  // The settings of a connection to `database`, curdate() pinned to the data's date.
  ConnectionSettings settingsFor(const std::string& database) const;

 private:
  std::unique_ptr<tooling::PrivateServer> sandbox_;  // none when TOVRAND_TEST_DSN names the server
  ConnectionSettings settings_;
  std::shared_ptr<OdbcConnection> admin_;
};

}  // namespace tovrand::bench
