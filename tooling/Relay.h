#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace tovrand::tooling {

// A TCP port on 127.0.0.1 whose connections are each joined to the server (its unix socket, or its TCP
// port on 127.0.0.1), counting what crosses and able to cut the line.
//
// Counting: a round trip is a wait of the client for the server, every time the server answers after
// the client has sent something. Requests sent together before any answer (a prepare and its execute
// sent in one go) are one round trip; a request the server never answers (closing a prepared
// statement) joins the next one. The commands are read from the client's packets (the first byte of
// every packet that starts a command), so that they can be held against the server's own counters.
//
// Blackholed, it stops relaying: open connections stay open and carry nothing either way, new ones are
// not taken up (the system completes their handshake, and then nothing answers). Restored, it relays
// again for new connections; the ones the blackhole held are dropped, as a router that lost its state
// would, so that nothing held back arrives late.
class Relay {
 public:
  struct Upstream {
    std::string socket;  // the server's unix socket, or
    int port = 0;        // its TCP port on 127.0.0.1
    static Upstream unixSocket(std::string path) { return {std::move(path), 0}; }
    static Upstream tcpPort(int port) { return {std::string(), port}; }
  };
  struct Counts {
    long roundTrips = 0;
    std::map<int, long> commands;  // by command byte: 0x03 query, 0x16 prepare, 0x17 execute, 0x19 close
    long command(int code) const {
      auto it = commands.find(code);
      return it == commands.end() ? 0 : it->second;
    }
  };

  // Raises std::runtime_error when it cannot listen.
  explicit Relay(Upstream upstream);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  int port() const { return port_; }
  // Totals over every connection so far.
  Counts counts() const;

  void blackhole();
  void restore();

 private:
  struct Link;
  void loop();
  void wake();
  int connectUpstream() const;
  void countClientBytes(Link& link, const char* data, std::size_t size);

  Upstream upstream_;
  int listener_ = -1;
  int port_ = 0;
  int wake_[2] = {-1, -1};
  std::atomic<bool> stop_{false};
  std::atomic<bool> blackholed_{false};
  std::atomic<bool> dropHeld_{false};
  mutable std::mutex mutex_;
  Counts counts_;
  std::thread thread_;
};

}  // namespace tovrand::tooling
