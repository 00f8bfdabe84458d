#include "bench/RoundTripCount.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

#include "tooling/Relay.h"
#include "vb/Text.h"

namespace tovrand::bench {

namespace {

constexpr int kCountedCalls = 100;

std::map<std::string, double> sessionCounters(Objects& o) {
  auto rs = o.host->newRecordset();
  rs->Source =
      "show session status where Variable_name in ('Questions', 'Com_stmt_prepare', 'Com_stmt_execute', "
      "'Com_stmt_close', 'Com_select', 'Com_insert', 'Com_update', 'Com_delete')";
  auto holder = o.host->newDbConnection();
  holder->OpenConnection();
  rs->ActiveConnection = holder->Connection();
  rs->Open();
  std::map<std::string, double> counters;
  while (!rs->EOF_()) {
    counters[toLowerAscii(CStr(rs->Fields("Variable_name").value()))] = CDbl(rs->Fields("Value").value());
    rs->MoveNext();
  }
  rs->Close();
  holder->CloseConnection();
  return counters;
}

RoundTrips countRoundTrips(tooling::Relay& relay, Objects& counted,
                           const std::map<std::string, double>& overhead, int floor, int calls,
                           const std::function<Outcome(Objects&, int)>& call,
                           const std::function<void(int)>& restore,
                           const std::function<void(const Outcome&, int)>& check) {
  for (int v = 0; v < std::min(calls, kVariants); ++v) {
    check(call(counted, v), v);
    if (restore) restore(v);
  }
  auto before = sessionCounters(counted);
  tooling::Relay::Counts r0 = relay.counts();
  for (int k = 0; k < calls; ++k) {
    int v = k % kVariants;
    check(call(counted, v), v);
    if (restore) restore(v);
  }
  tooling::Relay::Counts r1 = relay.counts();
  auto after = sessionCounters(counted);
  RoundTrips rt;
  rt.floor = floor;
  rt.calls = calls;
  rt.perCall = static_cast<double>(r1.roundTrips - r0.roundTrips) / calls;
  auto server = [&](const char* name) { return (after[name] - before[name] - overhead.at(name)) / calls; };
  rt.questions = server("questions");
  rt.prepares = server("com_stmt_prepare");
  rt.executes = server("com_stmt_execute");
  rt.closes = server("com_stmt_close");
  rt.selects = server("com_select");
  rt.inserts = server("com_insert");
  rt.updates = server("com_update");
  rt.deletes = server("com_delete");
  double relayPrepares = static_cast<double>(r1.command(0x16) - r0.command(0x16)) / calls;
  double relayExecutes = static_cast<double>(r1.command(0x17) - r0.command(0x17)) / calls;
  rt.consistent = relayPrepares == rt.prepares && relayExecutes == rt.executes;
  return rt;
}

// The relay, and the four classes' objects connected through it.
struct CountingSession {
  tooling::Relay relay;
  Objects objects;
  std::map<std::string, double> overhead;  // what reading the counters adds to them

  CountingSession(const DataSet& d, bool odbcEngine)
      : relay(tooling::Relay::Upstream::unixSocket(d.settings.socket)),
        objects(throughRelay(odbcEngine ? d.settingsOdbc : d.settings, relay)) {
    sessionCounters(objects);  // the first reading learns the shape of its result
    auto a = sessionCounters(objects);
    auto b = sessionCounters(objects);
    for (auto& [name, value] : b) overhead[name] = value - a[name];
  }
  static ConnectionSettings throughRelay(ConnectionSettings s, const tooling::Relay& relay) {
    s.socket.clear();
    s.host = "127.0.0.1";
    s.port = relay.port();
    return s;
  }
};

// The native engine sends each statement as one server command: a text query, or the execution of a
// statement it prepared once per session. More questions than statements is a failed run.
void checkOneCommandPerStatement(const std::string& label, const RoundTrips& rt, bool odbcEngine,
                                 Results& results) {
  if (odbcEngine || rt.questions <= rt.floor + 1e-9) return;
  results.failures.push_back(label + " on the native engine: " + std::to_string(rt.questions) +
                             " server commands per call for " + std::to_string(rt.floor) + " statements");
}

const char* engineName(bool odbcEngine) {
  return odbcEngine ? "odbc" : "mariadb";
}

}  // namespace

void roundTripPass(DataSet& d, Plans& plans, Results& results, bool odbcEngine) {
  CountingSession session(d, odbcEngine);
  auto& counted = odbcEngine ? results.roundTripsOdbc : results.roundTrips;
  for (const Case& c : cases()) {
    CasePlan& plan = plans.of(d, c);
    int floor = static_cast<int>(plan.variants[0].traced) - c.appendOnlyOpens;
    std::string label = c.cls + "." + c.label;
    RoundTrips rt = countRoundTrips(
        session.relay, session.objects, session.overhead, floor, kCountedCalls,
        [&](Objects& o, int v) { return c.call(d, o, v); },
        c.restore ? std::function<void(int)>([&](int v) { c.restore(d, v); }) : std::function<void(int)>(),
        [&](const Outcome& out, int v) {
          checkOutcome(label + " through the relay", c.expected, out, session.objects);
          if (out.yield != plan.variants[static_cast<std::size_t>(v)].outcome.yield) {
            fatal(label + " through the relay listed " + std::to_string(out.yield) + " instead of " +
                  std::to_string(plan.variants[static_cast<std::size_t>(v)].outcome.yield));
          }
        });
    counted[c.key] = rt;
    checkOneCommandPerStatement(label, rt, odbcEngine, results);
    std::fprintf(stderr, "round trips (%s): %-50s %6.2f per call (floor %d), %.2f server commands\n",
                 engineName(odbcEngine), label.c_str(), rt.perCall, floor, rt.questions);
  }
}

void roundTripWorkloads(DataSet& d, Plans& plans, Results& results, bool odbcEngine) {
  CountingSession session(d, odbcEngine);
  auto& counted = odbcEngine ? results.roundTripsOdbc : results.roundTrips;
  for (const Workload& w : workloads()) {
    CasePlan& plan = plans.of(d, w);
    int floor = static_cast<int>(plan.variants[0].traced) - w.appendOnlyOpens;
    RoundTrips rt = countRoundTrips(
        session.relay, session.objects, session.overhead, floor, 1,
        [&](Objects& o, int) { return w.call(d, o); }, [&](int) { w.restore(d); },
        [&](const Outcome& out, int) {
          checkOutcome(w.label + " through the relay", 1, out, session.objects);
        });
    counted[w.key] = rt;
    checkOneCommandPerStatement(w.key, rt, odbcEngine, results);
    std::fprintf(stderr, "round trips (%s): %-50s %6.0f per call (floor %d), %.0f server commands\n",
                 engineName(odbcEngine), w.key.c_str(), rt.perCall, floor, rt.questions);
  }
}

}  // namespace tovrand::bench
