#include "cli/Runner.h"

#include <istream>
#include <ostream>

#include "cli/Engine.h"
#include "cli/JsonWriter.h"
#include "component/Component.h"
#include "frame/Recordset.h"
#include "host/NativeHost.h"
#include "tooling/NativeHostWiring.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand::cli {

namespace {

// The text is made whole UTF-8 first: a parse error quotes the bytes the parser stopped at, which
// may be any bytes of the line, and an answer is written as JSON text.
Json errorLine(const std::string& text) {
  return Json{{"error", toUtf8(toUtf16(text))}};
}

Json errorLine(const VbError& e) {
  Json j{{"error", e.description()}};
  j["number"] = e.number();
  return j;
}

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
    s.remove_suffix(1);
  return s;
}

const std::string& requiredString(const Json& request, const char* key) {
  const Json& v = request.at(key);
  if (!v.is_string() || v.get_ref<const std::string&>().empty())
    throw ProtocolError(std::string("\"") + key + "\" must be a non-empty string");
  return v.get_ref<const std::string&>();
}

// Every request names its kind by one key; any other key is a mistake worth telling about.
void checkKeys(const Json& request, std::initializer_list<std::string_view> allowed) {
  for (auto it = request.begin(); it != request.end(); ++it) {
    bool known = false;
    for (std::string_view a : allowed) known = known || it.key() == a;
    if (!known) throw ProtocolError("unknown key \"" + it.key() + "\" in this request");
  }
}

Json messagesToJson(const std::vector<Message>& messages) {
  Json list = Json::array();
  for (const Message& m : messages)
    list.push_back(Json{{"text", m.text}, {"style", m.style}, {"title", m.title}});
  return list;
}

}  // namespace

void ScriptRunner::CallTrace::statement(std::string_view sql, StatementOrigin origin) {
  if (suspended) return;
  if (recording) recorded.push_back({std::string(sql), origin});
  if (next) next->statement(sql, origin);
}

ScriptRunner::ScriptRunner(RunOptions options, HostFactory hostFactory)
    : options_(std::move(options)), hostFactory_(std::move(hostFactory)) {
  if (!hostFactory_) {
    hostFactory_ = [dsn = options_.dsn, serverDate = options_.serverDate](std::shared_ptr<MessageSink> sink) {
      return tooling::makeNativeHost(dsn, serverDate, std::move(sink));
    };
  }
  previousTrace_ = traceSink();
  trace_.next = previousTrace_;
  setTraceSink(&trace_);
}

ScriptRunner::~ScriptRunner() {
  // Objects go in the reverse order of their creation, as a caller's variables go out of scope.
  while (!objects_.empty()) objects_.pop_back();
  try {
    if (fixtureConnection_) {
      trace_.suspended = true;
      fixtureConnection_->CloseConnection();
    }
  } catch (...) {
    // Nothing is left to report to: the run has ended.
  }
  fixtureConnection_.reset();
  host_.reset();
  setTraceSink(previousTrace_);
}

Host& ScriptRunner::host() {
  if (!host_) host_ = hostFactory_(messages_);
  return *host_;
}

std::string ScriptRunner::engine() {
  if (auto* native = dynamic_cast<NativeHost*>(&host())) return native->settings().engine;
  return "";
}

Json ScriptRunner::takeMessages() {
  return messagesToJson(messages_->take());
}

Json ScriptRunner::answer(std::string_view line) {
  Json tree;
  respond(line, &tree, nullptr);
  return tree;
}

void ScriptRunner::answerTo(std::string_view line, std::string& out, Json* tree) {
  respond(line, tree, &out);
}

void ScriptRunner::respond(std::string_view line, Json* tree, std::string* text) {
  const std::size_t start = text ? text->size() : 0;
  auto give = [&](const Json& j) {
    if (text) {
      text->resize(start);
      writeJson(*text, j);
    }
    if (tree) *tree = j;
  };
  Json request;
  try {
    request = Json::parse(line);
  } catch (const Json::exception& e) {
    // Not only syntax errors: a number beyond every double (1e999) is an out-of-range error.
    give(errorLine(std::string("malformed JSON: ") + e.what()));
    return;
  }
  messages_->take();
  try {
    if (!request.is_object()) throw ProtocolError("a request must be a JSON object");
    if (request.contains("new")) {
      give(createObject(request));
    } else if (request.contains("call")) {
      const CallOutcome outcome = callMember(request);
      if (tree) *tree = callAnswer(outcome);
      if (text) writeCallAnswer(*text, outcome);
    } else if (request.contains("release")) {
      give(releaseObject(request));
    } else if (request.contains("sql")) {
      const OwnStatementResult result = runFixture(request);
      if (tree) *tree = fixtureAnswer(result);
      if (text) writeFixtureAnswer(*text, result);
    } else {
      throw ProtocolError("unknown request: expected one of \"new\", \"call\", \"release\", \"sql\"");
    }
  } catch (const ProtocolError& e) {
    give(errorLine(e.what()));
  } catch (const VbError& e) {
    give(errorLine(e));
  } catch (const std::exception& e) {
    give(errorLine(e.what()));
  }
}

Json ScriptRunner::createObject(const Json& request) {
  checkKeys(request, {"new", "class"});
  const std::string& name = requiredString(request, "new");
  if (name.find('.') != std::string::npos) throw ProtocolError("an object name cannot contain '.': " + name);
  if (!request.contains("class")) throw ProtocolError("\"new\" needs a \"class\"");
  const std::string& className = requiredString(request, "class");
  const ClassInfo* cls = nullptr;
  for (const ClassInfo& c : componentClasses())
    if (equalsIgnoreCase(c.name, className) || equalsIgnoreCase(c.progId, className)) cls = &c;
  if (!cls) throw ProtocolError("unknown class " + className);
  for (const auto& [existing, object] : objects_)
    if (existing == name)
      throw ProtocolError("an object named " + name + " exists already; release it first");
  host();
  std::unique_ptr<DispatchObject> object = tovrand::createObject(*cls, host_);
  if (!object) throw ProtocolError("unknown class " + className);
  objects_.emplace_back(name, std::move(object));
  Json ok{{"ok", true}};
  if (Json shown = takeMessages(); !shown.empty()) ok["messages"] = std::move(shown);
  return ok;
}

Json ScriptRunner::releaseObject(const Json& request) {
  checkKeys(request, {"release"});
  const std::string& name = requiredString(request, "release");
  for (auto it = objects_.begin(); it != objects_.end(); ++it) {
    if (it->first != name) continue;
    objects_.erase(it);
    Json ok{{"ok", true}};
    if (Json shown = takeMessages(); !shown.empty()) ok["messages"] = std::move(shown);
    return ok;
  }
  throw ProtocolError("no object named " + name);
}

ScriptRunner::CallOutcome ScriptRunner::callMember(const Json& request) {
  checkKeys(request, {"call", "args"});
  const std::string& target = requiredString(request, "call");
  const std::size_t dot = target.rfind('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == target.size())
    throw ProtocolError("\"call\" must be written object.Member: " + target);
  const std::string objectName = target.substr(0, dot);
  const std::string memberName = target.substr(dot + 1);
  DispatchObject* object = nullptr;
  for (const auto& [name, o] : objects_)
    if (name == objectName) object = o.get();
  if (!object) throw ProtocolError("no object named " + objectName);
  const ClassInfo& cls = object->classInfo();
  const MemberInfo* member = cls.find(memberName);
  if (!member) throw ProtocolError(std::string(cls.name) + " has no member " + memberName);
  const std::string qualified = std::string(cls.name) + "." + std::string(member->name);

  // Arguments by parameter name, matched without regard to case as VB binds named arguments.
  std::vector<const Json*> given(member->params.size(), nullptr);
  if (auto it = request.find("args"); it != request.end() && !it->is_null()) {
    if (!it->is_object()) throw ProtocolError("\"args\" must be an object of arguments by parameter name");
    for (auto a = it->begin(); a != it->end(); ++a) {
      std::size_t index = member->params.size();
      for (std::size_t i = 0; i < member->params.size(); ++i)
        if (equalsIgnoreCase(member->params[i].name, a.key())) index = i;
      if (index == member->params.size()) throw ProtocolError(qualified + " has no parameter " + a.key());
      if (given[index])
        throw ProtocolError("parameter " + std::string(member->params[index].name) + " given twice");
      given[index] = &a.value();
    }
  }
  std::vector<Argument> args;
  args.reserve(member->params.size());
  for (std::size_t i = 0; i < member->params.size(); ++i)
    args.push_back(argumentFromJson(given[i], member->params[i]));

  messages_->take();
  trace_.recorded.clear();
  trace_.recording = true;
  CallOutcome outcome;
  try {
    outcome.result = object->invoke(*member, args);
  } catch (...) {
    trace_.recording = false;
    throw;
  }
  trace_.recording = false;
  outcome.member = member;
  outcome.args = std::move(args);
  outcome.messages = messages_->take();
  if (options_.trace) {
    outcome.traced = true;
    outcome.statements = std::move(trace_.recorded);
    // The first traced call opened the objects' session: its answer says which engine answered.
    if (!engineTraced_) {
      engineTraced_ = true;
      outcome.engine = engine();
    }
  }
  trace_.recorded.clear();
  return outcome;
}

Json ScriptRunner::callAnswer(const CallOutcome& outcome) {
  const MemberInfo& member = *outcome.member;
  Json out = Json::object();
  out["result"] = valueToJson(outcome.result);
  Json argsOut = Json::object();
  for (std::size_t i = 0; i < member.params.size(); ++i)
    argsOut[std::string(member.params[i].name)] = argumentToJson(outcome.args[i], member.params[i]);
  out["args"] = std::move(argsOut);
  out["messages"] = messagesToJson(outcome.messages);
  if (outcome.traced) {
    Json sql = Json::array();
    for (const TracedStatement& s : outcome.statements) {
      if (s.origin == StatementOrigin::Method)
        sql.push_back(s.sql);
      else
        sql.push_back(Json{{"engine", s.sql}});
    }
    out["sql"] = std::move(sql);
    if (!outcome.engine.empty()) out["engine"] = outcome.engine;
  }
  return out;
}

void ScriptRunner::writeCallAnswer(std::string& out, const CallOutcome& outcome) {
  const MemberInfo& member = *outcome.member;
  out += "{\"result\":";
  writeValue(out, outcome.result);
  out += ",\"args\":{";
  for (std::size_t i = 0; i < member.params.size(); ++i) {
    if (i > 0) out += ',';
    writeString(out, member.params[i].name);
    out += ':';
    writeArgument(out, outcome.args[i], member.params[i]);
  }
  out += "},\"messages\":[";
  for (std::size_t i = 0; i < outcome.messages.size(); ++i) {
    const Message& m = outcome.messages[i];
    if (i > 0) out += ',';
    out += "{\"text\":";
    writeString(out, m.text);
    out += ",\"style\":";
    out += std::to_string(m.style);
    out += ",\"title\":";
    writeString(out, m.title);
    out += '}';
  }
  out += ']';
  if (outcome.traced) {
    out += ",\"sql\":[";
    for (std::size_t i = 0; i < outcome.statements.size(); ++i) {
      const TracedStatement& s = outcome.statements[i];
      if (i > 0) out += ',';
      if (s.origin == StatementOrigin::Method) {
        writeString(out, s.sql);
      } else {
        out += "{\"engine\":";
        writeString(out, s.sql);
        out += '}';
      }
    }
    out += ']';
    if (!outcome.engine.empty()) {
      out += ",\"engine\":";
      writeString(out, outcome.engine);
    }
  }
  out += '}';
}

OwnStatementResult ScriptRunner::runFixture(const Json& request) {
  checkKeys(request, {"sql"});
  const std::string& sql = requiredString(request, "sql");
  struct Suspend {
    CallTrace& t;
    explicit Suspend(CallTrace& trace) : t(trace) { t.suspended = true; }
    ~Suspend() { t.suspended = false; }
  } suspend(trace_);
  if (!fixtureConnection_) {
    auto connection = host().newDbConnection();
    connection->OpenConnection();
    fixtureConnection_ = std::move(connection);
  }
  return runFixtureStatementRaw(*fixtureConnection_, sql);
}

int ScriptRunner::run(std::istream& in, std::ostream& out) {
  std::string line;
  std::string answerText;
  bool first = true;
  while (std::getline(in, line)) {
    std::string_view text = line;
    if (first && text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    first = false;
    text = trimmed(text);
    if (text.empty()) continue;
    if (text.front() == '#') continue;
    answerText.clear();
    answerTo(text, answerText);
    answerText += '\n';
    out.write(answerText.data(), static_cast<std::streamsize>(answerText.size()));
    out.flush();
  }
  return 0;
}

int runScript(std::istream& in, std::ostream& out, const RunOptions& options, HostFactory hostFactory) {
  ScriptRunner runner(options, std::move(hostFactory));
  return runner.run(in, out);
}

}  // namespace tovrand::cli
