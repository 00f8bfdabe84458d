#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tovrand::test {

// A server of its own for tests that stop it or cut its port, so that nothing else freezes with it:
// started with scripts/sandbox (watched, so it goes when the test program goes), stopped when this
// object goes. Its databases are created with the schema of schema/tovrand.sql.
class PrivateServer {
 public:
  PrivateServer();
  ~PrivateServer();
  PrivateServer(const PrivateServer&) = delete;
  PrivateServer& operator=(const PrivateServer&) = delete;

  // A new database with the schema loaded; its name.
  std::string newDatabase();
  // Runs SQL text (several statements allowed) on `database` through the mariadb client.
  void runSql(const std::string& database, const std::string& sql) const;

  // DSNs of `database` on the server's socket and, for a relay in front of it, on a TCP port.
  std::string socketDsn(const std::string& database) const;
  std::string tcpDsn(const std::string& database, int port) const;
  int port() const { return port_; }

  // The server process stops answering (SIGSTOP, and waited for until it has stopped) until thaw().
  void freeze();
  void thaw();

 private:
  std::string sandbox_, dir_;
  int port_ = 0;
  pid_t pid_ = 0;
  bool frozen_ = false;
  int databases_ = 0;
};

// A TCP relay in front of a server port. Blackholed, it stops relaying: open connections stay open and
// carry nothing either way, new ones are not taken up (the system completes their handshake, and then
// nothing answers). Restored, it relays again for new connections; the ones the blackhole held are
// dropped, as a router that lost its state would, so that nothing held back arrives late.
class BlackholeProxy {
 public:
  explicit BlackholeProxy(int upstreamPort);
  ~BlackholeProxy();
  BlackholeProxy(const BlackholeProxy&) = delete;
  BlackholeProxy& operator=(const BlackholeProxy&) = delete;

  int port() const { return port_; }
  void blackhole();
  void restore();

 private:
  void relay(std::stop_token stop);

  int upstreamPort_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> blackholed_{false};
  std::atomic<bool> dropHeld_{false};
  std::vector<std::pair<int, int>> pairs_;  // client, upstream; the relay thread's own
  std::jthread thread_;
};

}  // namespace tovrand::test
