#include "bench/Relay.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "bench/Baseline.h"

namespace tovrand::bench {

// One client joined to the server, and what is known of the client's packet stream.
struct Relay::Link {
  int client = -1;
  int server = -1;
  bool awaitingAnswer = false;
  // The client's stream is read as packets: 3 bytes of length, 1 of sequence, the payload.
  unsigned char header[4] = {};
  std::size_t headerBytes = 0;
  std::size_t payloadLeft = 0;
  bool firstPayloadByte = false;
  bool startsCommand = false;
};

namespace {

bool sendAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    ssize_t n = ::send(fd, data, size, MSG_NOSIGNAL);
    if (n <= 0) return false;
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

}  // namespace

Relay::Relay(std::string serverSocket) : serverSocket_(std::move(serverSocket)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
  if (listener_ < 0) fatal("relay: no socket");
  int yes = 1;
  ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_, 16) != 0) {
    fatal("relay: cannot listen on 127.0.0.1");
  }
  socklen_t length = sizeof address;
  ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  if (::pipe(wake_) != 0) fatal("relay: no pipe");
  thread_ = std::thread([this] { loop(); });
}

Relay::~Relay() {
  stop_ = true;
  char c = 0;
  if (::write(wake_[1], &c, 1) != 1) {
    // The loop also ends when the process does.
  }
  if (thread_.joinable()) thread_.join();
  ::close(listener_);
  ::close(wake_[0]);
  ::close(wake_[1]);
}

Relay::Counts Relay::counts() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return counts_;
}

void Relay::countClientBytes(Link& l, const char* data, std::size_t size) {
  std::lock_guard<std::mutex> lock(mutex_);
  l.awaitingAnswer = true;
  for (std::size_t k = 0; k < size; ++k) {
    auto byte = static_cast<unsigned char>(data[k]);
    if (l.payloadLeft == 0) {
      l.header[l.headerBytes++] = byte;
      if (l.headerBytes == 4) {
        l.payloadLeft = l.header[0] | (l.header[1] << 8) | (l.header[2] << 16);
        l.startsCommand = l.header[3] == 0;
        l.firstPayloadByte = true;
        l.headerBytes = 0;
      }
      continue;
    }
    if (l.firstPayloadByte && l.startsCommand) ++counts_.commands[byte];
    l.firstPayloadByte = false;
    --l.payloadLeft;
  }
}

void Relay::loop() {
  std::vector<Link> links;
  std::vector<char> buffer(1 << 16);
  while (!stop_) {
    std::vector<pollfd> fds;
    fds.push_back({wake_[0], POLLIN, 0});
    fds.push_back({listener_, POLLIN, 0});
    for (const Link& l : links) {
      fds.push_back({l.client, POLLIN, 0});
      fds.push_back({l.server, POLLIN, 0});
    }
    if (::poll(fds.data(), fds.size(), -1) < 0) continue;
    if (fds[0].revents != 0) break;
    if (fds[1].revents & POLLIN) {
      int client = ::accept(listener_, nullptr, nullptr);
      if (client >= 0) {
        int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, serverSocket_.c_str(), sizeof address.sun_path - 1);
        if (server >= 0 && ::connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
          links.push_back({client, server});
        } else {
          ::close(client);
          if (server >= 0) ::close(server);
        }
      }
    }
    std::vector<std::size_t> closed;
    for (std::size_t i = 0; i < links.size(); ++i) {
      Link& l = links[i];
      const pollfd& fromClient = fds[2 + 2 * i];
      const pollfd& fromServer = fds[3 + 2 * i];
      bool alive = true;
      if (fromClient.revents & (POLLIN | POLLHUP | POLLERR)) {
        ssize_t n = ::recv(l.client, buffer.data(), buffer.size(), 0);
        if (n <= 0) {
          alive = false;
        } else {
          // Counted before it is passed on: whoever reads the counts after the answer has it counted.
          countClientBytes(l, buffer.data(), static_cast<std::size_t>(n));
          alive = sendAll(l.server, buffer.data(), static_cast<std::size_t>(n));
        }
      }
      if (alive && (fromServer.revents & (POLLIN | POLLHUP | POLLERR))) {
        ssize_t n = ::recv(l.server, buffer.data(), buffer.size(), 0);
        if (n <= 0) {
          alive = false;
        } else {
          {
            std::lock_guard<std::mutex> lock(mutex_);
            if (l.awaitingAnswer) ++counts_.roundTrips;
            l.awaitingAnswer = false;
          }
          alive = sendAll(l.client, buffer.data(), static_cast<std::size_t>(n));
        }
      }
      if (!alive) closed.push_back(i);
    }
    for (auto it = closed.rbegin(); it != closed.rend(); ++it) {
      ::close(links[*it].client);
      ::close(links[*it].server);
      links.erase(links.begin() + static_cast<std::ptrdiff_t>(*it));
    }
  }
  for (Link& l : links) {
    ::close(l.client);
    ::close(l.server);
  }
}

}  // namespace tovrand::bench
