#pragma once

#include <string>

#include "engine/ConnectionSettings.h"
#include "engine/Lock.h"
#include "engine/SessionSetup.h"
#include "engine/SessionState.h"
#include "frame/Recordset.h"
#include "vb/VbError.h"

namespace tovrand::engine {

// What a connection of either recordset engine holds alike: its settings, the text its messages hide,
// whether its session is lost (see engine/SessionState.h) and the primary keys the session has read.
class SessionConnection : public Connection {
 public:
  SessionConnection(const SessionConnection&) = delete;
  SessionConnection& operator=(const SessionConnection&) = delete;

  const ConnectionSettings& settings() const { return settings_; }
  // The serialize_allocation option of the settings.
  bool serializesAllocation() const override { return settings_.serializeAllocation; }
  // The session is gone (the engine saw `cause`, a lost-session error): the next statement
  // reconnects, or, during a held call, fails with `cause` until the call ends.
  void markLost(const VbError& cause) { state_.noteLost(cause); }
  bool isLost() const override { return state_.isLost(); }
  void beginTransactionHold() override { transactions_.lock(); }
  void endTransactionHold() override { transactions_.unlock(); }
  void beginCall() override { state_.beginCall(); }
  void endCall() override { state_.endCall(); }
  // The text no message may show (the password).
  const std::string& secret() const { return secret_; }

 protected:
  explicit SessionConnection(const ConnectionSettings& settings)
      : settings_(settings), secret_(secretOf(settings)) {}

  // What the engine's own part of the connection (its Impl) works with.
  struct Parts {
    const ConnectionSettings& settings;
    const std::string& secret;
    SessionState& state;
    PrimaryKeys& primaryKeys;
  };
  Parts parts() { return {settings_, secret_, state_, primaryKeys_}; }

  const ConnectionSettings settings_;
  const std::string secret_;
  SessionState state_;
  PrimaryKeys primaryKeys_;
  Mutex transactions_;  // held around a member's transaction
};

}  // namespace tovrand::engine
