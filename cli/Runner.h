#pragma once

// `tovrand run`: JSON lines in, one JSON line out per request (cli/PROTOCOL.md).

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/Json.h"
#include "frame/DbConnection.h"
#include "frame/Host.h"
#include "frame/Members.h"
#include "frame/MessageSink.h"
#include "frame/OwnStatement.h"
#include "frame/Trace.h"

namespace tovrand::cli {

struct RunOptions {
  // The connection setting (mysql://... or odbc:...), as ConnectionSettings reads it.
  std::string dsn;
  // Answers to calls carry the statements the call sent.
  bool trace = false;
  // "YYYY-MM-DD": replaces the setting's server_date option; "" keeps it.
  std::string serverDate;
};

// Builds the host that serves the objects, with the sink that gathers their messages. The default
// is the native host on the connection setting.
using HostFactory = std::function<std::shared_ptr<Host>(std::shared_ptr<MessageSink>)>;

// Carries out requests one at a time. Objects and the fixture connection live until it goes; while
// it lives it sees every statement the process sends (and passes each on to the trace sink that was
// installed before it).
class ScriptRunner {
 public:
  explicit ScriptRunner(RunOptions options, HostFactory hostFactory = {});
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;
  ~ScriptRunner();

  // One request line (not blank, not a comment) answered; never throws.
  Json answer(std::string_view line);
  // The same answer written as compact JSON text at the end of `out` (no line end), rows written as
  // they are read rather than built as a tree first; never throws. With `tree`, the answer is also
  // built there as answer() builds it, from the same single run of the request, so that the two forms
  // can be held side by side.
  void answerTo(std::string_view line, std::string& out, Json* tree = nullptr);
  // Every line of `in`, answered on `out`. Returns the exit status: 0 once every line was answered.
  int run(std::istream& in, std::ostream& out);
  // The recordset engine the objects' sessions run on ("mariadb" or "odbc"), "" for a host that is not
  // the native one. Makes the host when there is none yet (raises on a malformed setting).
  std::string engine();

 private:
  class CallTrace final : public TraceSink {
   public:
    void statement(std::string_view sql, StatementOrigin origin) override;
    TraceSink* next = nullptr;
    bool recording = false;
    bool suspended = false;
    std::vector<TracedStatement> recorded;
  };

  // A member call carried out, waiting to be written as its answer.
  struct CallOutcome {
    const MemberInfo* member = nullptr;
    std::vector<Argument> args;
    Value result;
    std::vector<Message> messages;
    std::vector<TracedStatement> statements;
    bool traced = false;
    std::string engine;  // "" unless this answer names the engine
  };

  void respond(std::string_view line, Json* tree, std::string* text);
  Json createObject(const Json& request);
  Json releaseObject(const Json& request);
  CallOutcome callMember(const Json& request);
  OwnStatementResult runFixture(const Json& request);
  static Json callAnswer(const CallOutcome& outcome);
  static void writeCallAnswer(std::string& out, const CallOutcome& outcome);
  Host& host();
  Json takeMessages();

  RunOptions options_;
  HostFactory hostFactory_;
  std::shared_ptr<RecordingMessageSink> messages_ = std::make_shared<RecordingMessageSink>();
  CallTrace trace_;
  TraceSink* previousTrace_ = nullptr;
  std::shared_ptr<Host> host_;
  std::shared_ptr<DbConnection> fixtureConnection_;
  bool engineTraced_ = false;  // a traced answer has named the engine
  std::vector<std::pair<std::string, std::unique_ptr<DispatchObject>>> objects_;
};

// Runs a whole script with `options` (the in-process form of `tovrand run`).
int runScript(std::istream& in, std::ostream& out, const RunOptions& options, HostFactory hostFactory = {});

}  // namespace tovrand::cli
