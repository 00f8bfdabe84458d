#include "tooling/Relay.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tovrand::tooling {

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
    const ssize_t n = ::send(fd, data, size, MSG_NOSIGNAL);
    if (n <= 0) return false;
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

sockaddr_in loopback(int port) {
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(static_cast<std::uint16_t>(port));
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return a;
}

}  // namespace

Relay::Relay(Upstream upstream) : upstream_(std::move(upstream)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener_ < 0) throw std::runtime_error("the relay has no socket");
  int yes = 1;
  ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address = loopback(0);
  if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_, 16) != 0) {
    ::close(listener_);
    throw std::runtime_error("the relay cannot listen on 127.0.0.1");
  }
  socklen_t length = sizeof address;
  ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  if (::pipe2(wake_, O_CLOEXEC | O_NONBLOCK) != 0) {
    ::close(listener_);
    throw std::runtime_error("the relay has no pipe");
  }
  thread_ = std::thread([this] { loop(); });
}

Relay::~Relay() {
  stop_ = true;
  wake();
  if (thread_.joinable()) thread_.join();
  ::close(listener_);
  ::close(wake_[0]);
  ::close(wake_[1]);
}

void Relay::wake() {
  const char c = 0;
  if (::write(wake_[1], &c, 1) != 1) {
    // A full pipe wakes the loop as well.
  }
}

Relay::Counts Relay::counts() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return counts_;
}

void Relay::blackhole() {
  blackholed_ = true;
  wake();
}

void Relay::restore() {
  dropHeld_ = true;
  blackholed_ = false;
  wake();
}

int Relay::connectUpstream() const {
  if (!upstream_.socket.empty()) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, upstream_.socket.c_str(), sizeof address.sun_path - 1);
    if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
    if (fd >= 0) ::close(fd);
    return -1;
  }
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(upstream_.port);
  if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
  if (fd >= 0) ::close(fd);
  return -1;
}

void Relay::countClientBytes(Link& l, const char* data, std::size_t size) {
  std::lock_guard<std::mutex> lock(mutex_);
  l.awaitingAnswer = true;
  for (std::size_t k = 0; k < size; ++k) {
    const auto byte = static_cast<unsigned char>(data[k]);
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
  auto closeAll = [&links] {
    for (Link& l : links) {
      ::close(l.client);
      ::close(l.server);
    }
    links.clear();
  };
  while (!stop_) {
    if (dropHeld_.exchange(false)) closeAll();
    const bool held = blackholed_;
    std::vector<pollfd> fds;
    fds.push_back({wake_[0], POLLIN, 0});
    if (!held) {
      fds.push_back({listener_, POLLIN, 0});
      for (const Link& l : links) {
        fds.push_back({l.client, POLLIN, 0});
        fds.push_back({l.server, POLLIN, 0});
      }
    }
    if (::poll(fds.data(), fds.size(), -1) <= 0) continue;
    if (fds[0].revents != 0) {
      char drained[64];
      while (::read(wake_[0], drained, sizeof drained) > 0) {
      }
    }
    if (held || blackholed_ || stop_) continue;
    const std::size_t polled = links.size();
    if (fds[1].revents & POLLIN) {
      const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (client >= 0) {
        const int server = connectUpstream();
        if (server >= 0) {
          links.push_back({client, server});
        } else {
          ::close(client);
        }
      }
    }
    std::vector<std::size_t> closed;
    for (std::size_t i = 0; i < polled; ++i) {
      Link& l = links[i];
      const pollfd& fromClient = fds[2 + 2 * i];
      const pollfd& fromServer = fds[3 + 2 * i];
      bool alive = true;
      if (fromClient.revents & (POLLIN | POLLHUP | POLLERR)) {
        const ssize_t n = ::recv(l.client, buffer.data(), buffer.size(), 0);
        if (n <= 0) {
          alive = false;
        } else {
          // Counted before it is passed on: whoever reads the counts after the answer has it counted.
          countClientBytes(l, buffer.data(), static_cast<std::size_t>(n));
          alive = sendAll(l.server, buffer.data(), static_cast<std::size_t>(n));
        }
      }
      if (alive && (fromServer.revents & (POLLIN | POLLHUP | POLLERR))) {
        const ssize_t n = ::recv(l.server, buffer.data(), buffer.size(), 0);
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
  closeAll();
}

}  // namespace tovrand::tooling
