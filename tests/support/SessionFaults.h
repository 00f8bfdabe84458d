#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "frame/Trace.h"
#include "odbc/OdbcConnection.h"

namespace tovrand::test {

// A trace sink for fault tests: it records every statement, as RecordingTraceSink does, and runs a
// callback just before each one goes out, with its position in the run (1 for the first). The engine
// reports a statement before it sends it, so the callback can look at the database as the statements
// before it left it, or take the session away from under it.
class StatementHook final : public TraceSink {
 public:
  using Callback = std::function<void(std::size_t position, const TracedStatement& statement)>;

  explicit StatementHook(Callback before = {}) : before_(std::move(before)) {}
  void statement(std::string_view sql, StatementOrigin origin) override;

  const RecordingTraceSink& recorded() const { return recorded_; }
  std::size_t count() const { return recorded_.statements().size(); }

 private:
  Callback before_;
  RecordingTraceSink recorded_;
};

// Makes `sink` the process's trace sink for the life of this object, then puts the previous one back.
class ScopedTraceSink {
 public:
  explicit ScopedTraceSink(TraceSink* sink) : previous_(traceSink()) { setTraceSink(sink); }
  ~ScopedTraceSink() { setTraceSink(previous_); }
  ScopedTraceSink(const ScopedTraceSink&) = delete;
  ScopedTraceSink& operator=(const ScopedTraceSink&) = delete;

 private:
  TraceSink* previous_;
};

// The server's id of the session that every object on `settings` shares, opening it when no object
// holds it (a session lost earlier is replaced first).
std::string sharedSessionId(const ConnectionSettings& settings);

// The ids of the other sessions on `via`'s database (the component's, in a test of its own database).
std::vector<std::string> otherSessions(OdbcConnection& via);

// Kills session `id` from another connection (`via`, KILL CONNECTION) and waits until the server has
// let it go, so that the session's next statement meets a lost connection whatever the timing.
void killSession(OdbcConnection& via, const std::string& id);

}  // namespace tovrand::test
