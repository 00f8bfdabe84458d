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

  Json createObject(const Json& request);
  Json releaseObject(const Json& request);
  Json callMember(const Json& request);
  Json runFixture(const Json& request);
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
