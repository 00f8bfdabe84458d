#include "bench/Server.h"

#include <cstdlib>

#include "tooling/SqlClient.h"

namespace tovrand::bench {

namespace {

// The date the data sets are built around (bench/DataSet.h).
constexpr const char* kServerDate = "2026-11-22";

}  // namespace

Server::Server() {
  const char* given = std::getenv("TOVRAND_TEST_DSN");
  if (given != nullptr && *given != '\0') {
    settings_ = ConnectionSettings::parse(given, "TOVRAND_TEST_DSN");
  } else {
    tooling::PrivateServer::Options options;
    // A buffer pool that holds every table, so that reads measure the clients and not the disk.
    const char* args = std::getenv("TOVRAND_SANDBOX_ARGS");
    options.serverArgs = args != nullptr ? args : "--innodb-buffer-pool-size=3G";
    sandbox_ = std::make_unique<tooling::PrivateServer>(options);
    settings_ = ConnectionSettings::parse(sandbox_->dsn(), "the sandbox DSN");
  }
  admin_ = OdbcConnection::openPrivate(settings_);
}

Server::~Server() {
  admin_.reset();
  sandbox_.reset();
}

void Server::admin(const std::string& sql) {
  admin_->execute(sql);
}

void Server::runSql(const std::string& database, const std::string& sql) const {
  tooling::SqlClient(settings_.user, settings_.password, settings_.socket, settings_.host, settings_.port)
      .run(database, sql);
}

ConnectionSettings Server::settingsFor(const std::string& database) const {
  ConnectionSettings s = settings_;
  s.database = database;
  s.serverDate = kServerDate;
  return s;
}

}  // namespace tovrand::bench
