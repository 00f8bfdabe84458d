#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace tovrand::bench {

// A relay between clients and the server that counts what crosses it: a TCP port on 127.0.0.1 whose
// connections are each joined to the server's socket.
//
// A round trip is a wait of the client for the server: every time the server answers after the
// client has sent something. Requests sent together before any answer (a prepare and its execute
// sent in one go) are one round trip; a request the server never answers (closing a prepared
// statement) joins the next one. The commands are read from the client's packets (the first byte of
// every packet that starts a command), so that they can be held against the server's own counters.
class Relay {
 public:
  struct Counts {
    long roundTrips = 0;
    std::map<int, long> commands;  // by command byte: 0x03 query, 0x16 prepare, 0x17 execute, 0x19 close
    long command(int code) const {
      auto it = commands.find(code);
      return it == commands.end() ? 0 : it->second;
    }
  };

  explicit Relay(std::string serverSocket);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  int port() const { return port_; }
  // Totals over every connection so far.
  Counts counts() const;

 private:
  struct Link;
  void loop();
  void countClientBytes(Link& link, const char* data, std::size_t size);

  std::string serverSocket_;
  int listener_ = -1;
  int port_ = 0;
  int wake_[2] = {-1, -1};
  std::atomic<bool> stop_{false};
  mutable std::mutex mutex_;
  Counts counts_;
  std::thread thread_;
};

}  // namespace tovrand::bench
