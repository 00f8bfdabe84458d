#pragma once

// The recordset engine a suite runs on (TOVRAND_TEST_ENGINE: mariadb or odbc; unset, the engine a
// setting without engine= gets), and its objects, so that one test source holds both engines to the
// same behaviour.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "engine/ConnectionSettings.h"
#include "frame/DbConnection.h"
#include "frame/Recordset.h"
#include "mariadb/MariaDbDbConnection.h"
#include "mariadb/MariaDbRecordset.h"
#include "odbc/OdbcDbConnection.h"
#include "odbc/OdbcRecordset.h"

namespace tovrand::test {

inline std::string testEngine() {
  const char* engine = std::getenv("TOVRAND_TEST_ENGINE");
  return engine && *engine ? engine : ConnectionSettings::kDefaultEngine;
}

inline bool onMariaDbEngine() {
  return testEngine() == "mariadb";
}

// A connection setting written out in a test, for the suite's engine (named even when it is the
// default, so that the suite's engine does not hang on what the default is).
inline std::string onTestEngine(const std::string& settings) {
  return settings + (settings.find('?') == std::string::npos ? "?" : "&") + "engine=" + testEngine();
}

// A clsDbConnection holder on the engine the settings name, not yet open.
inline std::shared_ptr<DbConnection> newHolder(const ConnectionSettings& settings) {
  if (settings.engine == "mariadb") return std::make_shared<MariaDbDbConnection>(settings);
  return std::make_shared<OdbcDbConnection>(settings);
}

// A recordset of the suite's engine.
inline std::shared_ptr<Recordset> newEngineRecordset() {
  if (onMariaDbEngine()) return std::make_shared<MariaDbRecordset>();
  return std::make_shared<OdbcRecordset>();
}

inline bool isOpen(const DbConnection& holder) {
  if (auto* maria = dynamic_cast<const MariaDbDbConnection*>(&holder)) return maria->isOpen();
  return dynamic_cast<const OdbcDbConnection&>(holder).isOpen();
}

// A TCP port on the loopback with nothing listening on it.
inline int closedPort() {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
  socklen_t len = sizeof a;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len);
  ::close(fd);
  return ntohs(a.sin_port);
}

// A loopback socket that takes connections and never answers them, open while this lives.
class SilentListener {
 public:
  SilentListener() {
    fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ok_ = ::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 && ::listen(fd_, 4) == 0;
    socklen_t len = sizeof a;
    ::getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &len);
    port_ = ntohs(a.sin_port);
  }
  ~SilentListener() { ::close(fd_); }
  SilentListener(const SilentListener&) = delete;
  SilentListener& operator=(const SilentListener&) = delete;
  bool listening() const { return ok_; }
  int port() const { return port_; }

 private:
  int fd_ = -1;
  int port_ = 0;
  bool ok_ = false;
};

}  // namespace tovrand::test
