#pragma once

#include <map>
#include <string>
#include <vector>

#include "engine/Lock.h"
#include "vb/VbError.h"

namespace tovrand::engine {

// Whether a connection's session is lost and whether a held call met the loss, the same rules for
// both recordset engines.
//
// A lost session (killed, timed out, the server restarted) fails the statement that met it. Within a
// call held on the connection (beginCall/endCall: a member that goes on after one of its routines has
// handled an error) every later statement of that call fails with the same error without reaching the
// server; the next statement after the call, or the next statement at all outside such a call, opens a
// new session first. Nothing is ever re-sent: a statement that failed may have run.
class SessionState {
 public:
  SessionState() = default;
  SessionState(const SessionState&) = delete;
  SessionState& operator=(const SessionState&) = delete;

  // Before each statement: a held call that lost its session raises the loss as `Lost`; after any
  // other loss `renew` opens a new session (raising when the server cannot be reached, which a held
  // call then meets as its loss). Returns what `live` answers once the session is there; no other
  // statement renews the session meanwhile.
  template <class Lost, class Renew, class Live>
  auto liveSession(Renew&& renew, Live&& live) -> decltype(live()) {
    Guard lock(renewing_);
    bool reconnect = false;
    {
      Guard state(mutex_);
      // The rest of a held call must not reach a database its earlier statements may have left half
      // written: it fails as the statement that lost the session did.
      if (lost_ && held_) throw Lost(cause_);
      reconnect = lost_;
    }
    if (reconnect) {
      try {
        renew();
      } catch (const VbError& e) {
        // A server still out of reach: a held call does not wait for it once more per statement.
        noteLost(e);
        throw;
      }
      Guard state(mutex_);
      lost_ = false;
    }
    return live();
  }

  // The session is gone (a statement met `cause`, a lost-session error).
  void noteLost(const VbError& cause) {
    Guard state(mutex_);
    if (!held_) cause_ = cause;
    lost_ = true;
    held_ = calls_ > 0;
  }

  // Runs `f`, noting a lost session (`Lost` raised) on the way out.
  template <class Lost, class F>
  auto guarded(F&& f) -> decltype(f()) {
    try {
      return f();
    } catch (const Lost& e) {
      noteLost(e);
      throw;
    }
  }

  void beginCall() {
    Guard state(mutex_);
    if (calls_++ == 0) held_ = false;
  }
  void endCall() {
    Guard state(mutex_);
    if (calls_ > 0 && --calls_ == 0) held_ = false;
  }
  bool isLost() const {
    Guard state(mutex_);
    return lost_;
  }

 private:
  Mutex renewing_;       // around opening a new session
  mutable Mutex mutex_;  // around the rest
  bool lost_ = false;
  bool held_ = false;
  int calls_ = 0;  // held calls running
  VbError cause_{vberr::kProviderError, ""};
};

// The primary-key columns of the base tables a session has asked about, by lower-cased catalog and
// table; forgotten with the session.
class PrimaryKeys {
 public:
  static std::string keyOf(const std::string& catalog, const std::string& table);
  // False when the table has not been asked about on this session.
  bool find(const std::string& key, std::vector<std::string>& columns);
  void remember(const std::string& key, const std::vector<std::string>& columns);
  void clear();

 private:
  Mutex mutex_;
  std::map<std::string, std::vector<std::string>> keys_;
};

}  // namespace tovrand::engine
