#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace tovrand::tooling {

// scripts/sandbox: beside the program's build or install tree, in the source tree the program was
// built from, or `tovrand-sandbox` on PATH. nullopt when none is found.
std::optional<std::string> findSandboxScript();

// A throwaway MariaDB server of this process, started by scripts/sandbox (watched, so that it stops
// when the process ends however it ends) and stopped when the object goes. The sandbox's account
// tovrand/tovrand administers it; SQL text is loaded as the server's root through the mariadb client.
// Raises std::runtime_error when it cannot be started.
class PrivateServer {
 public:
  struct Options {
    bool tls = false;        // the server also speaks TLS, with a certificate of its own (ca())
    std::string serverArgs;  // more mariadbd options ("--lower-case-table-names=0")
  };
  PrivateServer() : PrivateServer(Options{}) {}
  explicit PrivateServer(const Options& options);
  ~PrivateServer();
  PrivateServer(const PrivateServer&) = delete;
  PrivateServer& operator=(const PrivateServer&) = delete;

  const std::string& directory() const { return dir_; }
  // The database the sandbox created, and its DSN over the socket as tovrand.
  const std::string& database() const { return database_; }
  const std::string& dsn() const { return dsn_; }
  // The TCP port on 127.0.0.1, the socket, and (with tls) the certificate the server presents.
  int port() const { return port_; }
  std::string socketPath() const { return dir_ + "/mysqld.sock"; }
  const std::string& ca() const { return ca_; }

  // DSNs of `database` as tovrand: over the socket, and over TCP on `port` of 127.0.0.1 (the server's
  // own, or a relay's in front of it).
  std::string socketDsn(const std::string& database) const;
  std::string tcpDsn(const std::string& database, int port) const;

  // Runs SQL text (several statements allowed) on `database` through the mariadb client as root.
  void runSql(const std::string& database, const std::string& sql) const;
  // A new database of the given name (utf8mb4) loaded with the SQL texts, in order.
  void createDatabase(const std::string& name, const std::vector<std::string>& sqlTexts = {}) const;

  // The server process stops answering (SIGSTOP, waited for until it has stopped) until thaw().
  void freeze();
  void thaw();

 private:
  std::string script_, dir_, database_, dsn_, ca_;
  int port_ = 0;
  pid_t pid_ = 0;
  bool frozen_ = false;
};

}  // namespace tovrand::tooling
