#pragma once

#include <exception>
#include <utility>

#include "vb/VbError.h"

namespace tovrand {

// A statement the server refused, raised by either recordset engine in place of a plain VbError with
// the same number and text: callers see nothing different, while a member that must tell a conflict
// between concurrent transactions (which it may run again) from a real failure reads the server's own
// error number.
class ServerError : public VbError {
 public:
  ServerError(VbError error, unsigned int serverCode) : VbError(std::move(error)), serverCode_(serverCode) {}

  unsigned int serverCode() const { return serverCode_; }

 private:
  unsigned int serverCode_;
};

// The server's error numbers the component reacts to.
namespace servererr {
inline constexpr unsigned int kLockWaitTimeout = 1205;
inline constexpr unsigned int kDeadlock = 1213;  // also a cluster's certification failure
inline constexpr unsigned int kNoSuchTable = 1146;
inline constexpr unsigned int kDuplicateKey = 1062;
inline constexpr unsigned int kUnknownStatement = 1243;  // a prepared statement the server dropped
}  // namespace servererr

// The server's error number of an exception, 0 when it is not a statement the server refused.
inline unsigned int serverCodeOf(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const ServerError& e) {
    return e.serverCode();
  } catch (...) {
    return 0;
  }
}

}  // namespace tovrand
