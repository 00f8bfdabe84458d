// Every public member of the four classes on tables of growing size, each beside the same statements
// sent through bare ODBC calls (the engine's floor) and bare Connector/C calls (the protocol's floor);
// round trips per member against the floor; the workloads a site runs. See bench/README.md.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bench/Baseline.h"
#include "bench/Cases.h"
#include "bench/DataSet.h"
#include "bench/Relay.h"
#include "bench/Report.h"
#include "bench/Results.h"
#include "frame/Trace.h"
#include "odbc/StatementTrace.h"
#include "tests/support/TestDatabase.h"
#include "vb/Text.h"

namespace tovrand::bench {

void fatal(const std::string& what) {
  std::fflush(stdout);
  std::fprintf(stderr, "\ntovrand_bench: FATAL: %s\n", what.c_str());
  std::fflush(stderr);
  // No static destructors: the private server stops by itself when this process has gone.
  std::_Exit(3);
}

namespace {

Results gResults;
std::map<int, std::unique_ptr<DataSet>> gDataSets;

// ---------------------------------------------------------------------------------------------------
// What one call sent: the engine's deliveries and the statement trace, turned into the baselines' plans.

struct Delivered {
  std::string sql;
  Delivery how;
  std::vector<Value> values;
};

class Collector final : public DeliveryObserver {
 public:
  void delivered(std::string_view sql, Delivery how, const std::vector<Value>& values) override {
    items.push_back({std::string(sql), how, values});
  }
  std::vector<Delivered> items;
};

struct VariantPlan {
  Plan steps;      // what the engine sent, in the order it sent it
  Plan installed;  // the same with every keyset open run and buffered, as the installed component does
  Outcome outcome;
  std::size_t rows = 0;  // rows the baselines read
  std::size_t traced = 0;
};

struct CasePlan {
  std::vector<VariantPlan> variants;
};

std::map<std::pair<std::string, int>, CasePlan> gPlans;
std::map<std::string, std::size_t> gTracedPerCall;  // statement shape: traced statements per call

Step stepOf(const DataSet& d, const Delivered& item) {
  Step s;
  s.sql = item.sql;
  s.wide = toUtf16(item.sql);
  switch (item.how) {
    case Delivery::Rows:
      s.form = Step::Form::Query;
      s.columns = describeQuery(d.settings, item.sql);
      break;
    case Delivery::NoResult:
      s.form = Step::Form::Execute;
      break;
    case Delivery::BoundWrite:
      s.form = Step::Form::Write;
      s.values = item.values;
      break;
  }
  return s;
}

void checkOutcome(const std::string& what, int expected, const Outcome& out, Objects& objects) {
  const auto& messages = objects.messages->messages();
  if (out.status == expected && messages.empty()) return;
  std::string text =
      what + " returned " + std::to_string(out.status) + " (expected " + std::to_string(expected) + ")";
  for (const Message& m : messages) text += "\n  message: " + m.text + " [" + m.title + "]";
  fatal(text);
}

// Calls the member once with the trace and the delivery observer on, and makes the baselines' plans.
VariantPlan capture(DataSet& d, const std::string& label, int expected, int appendOnlyOpens,
                    const std::function<Outcome(DataSet&, Objects&)>& call,
                    const std::function<void(DataSet&)>& restore) {
  RecordingTraceSink trace;
  Collector collector;
  setTraceSink(&trace);
  setDeliveryObserver(&collector);
  Outcome out = call(d, *d.objects);
  setDeliveryObserver(nullptr);
  setTraceSink(nullptr);
  std::string what = label + " on " + std::to_string(d.rows) + " rows";
  checkOutcome(what, expected, out, *d.objects);
  if (restore) restore(d);

  VariantPlan plan;
  plan.outcome = out;
  plan.traced = trace.statements().size();
  for (const Delivered& item : collector.items) plan.steps.push_back(stepOf(d, item));
  // The statements that do something: every traced one but the keyset opens only added to.
  std::size_t floor = plan.traced - static_cast<std::size_t>(appendOnlyOpens);
  if (plan.steps.size() != floor) {
    std::string text = what + " sent " + std::to_string(plan.steps.size()) + " statements; " +
                       std::to_string(floor) + " of its " + std::to_string(plan.traced) + " do something:";
    for (const TracedStatement& s : trace.statements())
      text += std::string("\n  ") + (s.origin == StatementOrigin::Engine ? "[engine] " : "[method] ") + s.sql;
    text += "\n delivered:";
    for (const Delivered& item : collector.items) text += "\n  " + item.sql;
    fatal(text);
  }
  // The installed component runs every open: the ones this engine never sent are buffered whole.
  std::map<std::string, std::deque<std::size_t>> byText;
  for (std::size_t i = 0; i < plan.steps.size(); ++i) byText[plan.steps[i].sql].push_back(i);
  for (const TracedStatement& s : trace.statements()) {
    auto it = byText.find(s.sql);
    if (it != byText.end() && !it->second.empty()) {
      plan.installed.push_back(plan.steps[it->second.front()]);
      it->second.pop_front();
    } else {
      Step buffered;
      buffered.form = Step::Form::Buffered;
      buffered.sql = s.sql;
      buffered.wide = toUtf16(s.sql);
      plan.installed.push_back(std::move(buffered));
    }
  }
  // Both baselines once, untimed: they must read what the component read.
  plan.rows = d.odbc->runAll(plan.steps);
  if (restore) restore(d);
  std::size_t viaC = d.connectorC->runAll(plan.steps);
  if (restore) restore(d);
  std::size_t viaEngine = plan.rows;
  if (d.engine) {
    viaEngine = d.engine->runAll(plan.steps);
    if (restore) restore(d);
  }
  if (viaC != plan.rows || viaEngine != plan.rows) {
    fatal(what + ": ODBC read " + std::to_string(plan.rows) + " rows, Connector/C " + std::to_string(viaC) +
          ", the engine alone " + std::to_string(viaEngine));
  }
  return plan;
}

void checkShape(const std::string& key, const std::string& label, std::size_t traced) {
  auto [it, inserted] = gTracedPerCall.emplace(key, traced);
  if (!inserted && it->second != traced) {
    fatal(label + " sent " + std::to_string(traced) + " statements where an earlier call sent " +
          std::to_string(it->second));
  }
}

CasePlan& casePlan(DataSet& d, const Case& c) {
  auto key = std::make_pair(c.key, d.rows);
  if (auto it = gPlans.find(key); it != gPlans.end()) return it->second;
  CasePlan plan;
  for (int v = 0; v < kVariants; ++v) {
    auto call = [&c, v](DataSet& data, Objects& o) { return c.call(data, o, v); };
    std::function<void(DataSet&)> restore;
    if (c.restore) restore = [&c, v](DataSet& data) { c.restore(data, v); };
    plan.variants.push_back(capture(d, c.cls + "." + c.label, c.expected, c.appendOnlyOpens, call, restore));
    checkShape(c.key, c.cls + "." + c.label, plan.variants.back().traced);
  }
  const VariantPlan& first = plan.variants.front();
  gResults.singleRowRead[c.key] = first.steps.size() == 1 && first.steps[0].form == Step::Form::Query &&
                                  first.rows == 1 && first.outcome.yield == 1;
  return gPlans.emplace(key, std::move(plan)).first->second;
}

CasePlan& workloadPlan(DataSet& d, const Workload& w) {
  auto key = std::make_pair(w.key, d.rows);
  if (auto it = gPlans.find(key); it != gPlans.end()) return it->second;
  CasePlan plan;
  plan.variants.push_back(capture(d, w.label, 1, w.appendOnlyOpens, w.call, w.restore));
  return gPlans.emplace(key, std::move(plan)).first->second;
}

// ---------------------------------------------------------------------------------------------------
// Round trips: every member called through the counting relay, after a call of each variant (what a
// session learns on its first calls is then known, as it is for a client that has been running).

constexpr int kCountedCalls = 100;

std::map<std::string, double> sessionCounters(Objects& o) {
  auto rs = o.host->newRecordset();
  rs->Source =
      "show session status where Variable_name in ('Questions', 'Com_stmt_prepare', 'Com_stmt_execute', "
      "'Com_stmt_close')";
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

RoundTrips countRoundTrips(Relay& relay, Objects& counted, const std::map<std::string, double>& overhead,
                           int floor, int calls, const std::function<Outcome(Objects&, int)>& call,
                           const std::function<void(int)>& restore,
                           const std::function<void(const Outcome&, int)>& check) {
  for (int v = 0; v < std::min(calls, kVariants); ++v) {
    check(call(counted, v), v);
    if (restore) restore(v);
  }
  auto before = sessionCounters(counted);
  Relay::Counts r0 = relay.counts();
  for (int k = 0; k < calls; ++k) {
    int v = k % kVariants;
    check(call(counted, v), v);
    if (restore) restore(v);
  }
  Relay::Counts r1 = relay.counts();
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
  double relayPrepares = static_cast<double>(r1.command(0x16) - r0.command(0x16)) / calls;
  double relayExecutes = static_cast<double>(r1.command(0x17) - r0.command(0x17)) / calls;
  rt.consistent = relayPrepares == rt.prepares && relayExecutes == rt.executes;
  return rt;
}

// The relay, and the four classes' objects connected through it.
struct CountingSession {
  Relay relay;
  Objects objects;
  std::map<std::string, double> overhead;  // what reading the counters adds to them

  explicit CountingSession(const DataSet& d)
      : relay(d.settings.socket), objects(throughRelay(d.settings, relay)) {
    sessionCounters(objects);  // the first reading learns the shape of its result
    auto a = sessionCounters(objects);
    auto b = sessionCounters(objects);
    for (auto& [name, value] : b) overhead[name] = value - a[name];
  }
  static ConnectionSettings throughRelay(ConnectionSettings s, const Relay& relay) {
    s.socket.clear();
    s.host = "127.0.0.1";
    s.port = relay.port();
    return s;
  }
};

void roundTripPass(DataSet& d) {
  CountingSession session(d);
  for (const Case& c : cases()) {
    CasePlan& plan = casePlan(d, c);
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
    gResults.roundTrips[c.key] = rt;
    std::fprintf(stderr, "round trips: %-50s %6.2f per call (floor %d)\n", label.c_str(), rt.perCall, floor);
  }
}

void roundTripWorkloads(DataSet& d) {
  CountingSession session(d);
  for (const Workload& w : workloads()) {
    CasePlan& plan = workloadPlan(d, w);
    int floor = static_cast<int>(plan.variants[0].traced) - w.appendOnlyOpens;
    RoundTrips rt = countRoundTrips(
        session.relay, session.objects, session.overhead, floor, 1,
        [&](Objects& o, int) { return w.call(d, o); }, [&](int) { w.restore(d); },
        [&](const Outcome& out, int) {
          checkOutcome(w.label + " through the relay", 1, out, session.objects);
        });
    gResults.roundTrips[w.key] = rt;
    std::fprintf(stderr, "round trips: %-50s %6.0f per call (floor %d)\n", w.key.c_str(), rt.perCall, floor);
  }
}

// ---------------------------------------------------------------------------------------------------
// Process memory: the high-water mark is reset before a run (Linux: 5 > /proc/self/clear_refs), so
// VmHWM afterwards minus VmRSS before is what the run needed at its peak.

long statusKiB(const char* field) {
  std::ifstream in("/proc/self/status");
  std::string line;
  std::string key = std::string(field) + ":";
  while (std::getline(in, line)) {
    if (line.rfind(key, 0) == 0) return std::strtol(line.c_str() + key.size(), nullptr, 10);
  }
  return 0;
}

class PeakProbe {
 public:
  PeakProbe() {
    std::ofstream out("/proc/self/clear_refs");
    out << "5";
    start_ = statusKiB("VmRSS");
  }
  long growthKiB() const { return std::max(0L, statusKiB("VmHWM") - start_); }

 private:
  long start_ = 0;
};

// ---------------------------------------------------------------------------------------------------
// Peak memory: one call of every member and baseline, with the allocator handing freed memory back to
// the system as it does by default, so that the high-water mark over the call is what the call needed.

// Sends one call of the job: the component's or a baseline's.
std::size_t callOnce(DataSet& d, const Case* c, const Workload* w, Impl impl, int v, const VariantPlan& p) {
  if (impl == Impl::Component)
    return (c != nullptr ? c->call(d, *d.objects, v) : w->call(d, *d.objects)).yield;
  Baseline& b = impl == Impl::ConnectorC ? *d.connectorC : impl == Impl::Engine ? *d.engine : *d.odbc;
  return b.runAll(impl == Impl::Installed ? p.installed : p.steps);
}

void measurePeak(DataSet& d, const Case* c, const Workload* w, Impl impl) {
  CasePlan& plan = c != nullptr ? casePlan(d, *c) : workloadPlan(d, *w);
  auto restore = [&] {
    if (c != nullptr && c->restore) c->restore(d, 0);
    if (w != nullptr && w->restore) w->restore(d);
  };
  const VariantPlan& p = plan.variants[0];
  callOnce(d, c, w, impl, 0, p);  // what the first call of a session learns is not the call's own cost
  restore();
  d.objects->messages->take();
  ::malloc_trim(0);
  PeakProbe probe;
  callOnce(d, c, w, impl, 0, p);
  long grown = probe.growthKiB();
  restore();
  if (!d.objects->messages->messages().empty())
    fatal("a message during the memory pass: " + d.objects->messages->messages()[0].text);
  Series& s = gResults.series[{c != nullptr ? c->key : w->key, impl, d.rows}];
  s.peakKiB = grown;
}

void memoryPass() {
  for (auto& [rows, d] : gDataSets) {
    for (const Case& c : cases()) {
      if (d->appendTablesOnly && !c.addsToWholeTable) continue;
      std::vector<Impl> impls = {Impl::Component, Impl::Odbc, Impl::ConnectorC};
      if (!d->appendTablesOnly && d->engine) impls.push_back(Impl::Engine);
      if (c.addsToWholeTable) impls.push_back(Impl::Installed);
      for (Impl impl : impls) measurePeak(*d, &c, nullptr, impl);
    }
    if (rows == gResults.workloadSize) {
      for (const Workload& w : workloads()) {
        for (Impl impl : {Impl::Component, Impl::Odbc, Impl::ConnectorC}) measurePeak(*d, nullptr, &w, impl);
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------------
// The timed runs.

struct Job {
  const Case* c = nullptr;
  const Workload* w = nullptr;
  Impl impl = Impl::Component;
  int rows = 0;
  std::string key() const { return c != nullptr ? c->key : w->key; }
};

std::map<std::string, Job> gJobs;

void runJob(benchmark::State& state, const Job& job) {
  DataSet& d = *gDataSets.at(job.rows);
  CasePlan& plan = job.c != nullptr ? casePlan(d, *job.c) : workloadPlan(d, *job.w);
  std::string label = job.c != nullptr ? job.c->cls + "." + job.c->label : job.w->label;
  int expected = job.c != nullptr ? job.c->expected : 1;
  int variants = static_cast<int>(plan.variants.size());
  std::size_t yielded = 0;
  int v = 0;
  for (auto _ : state) {
    const VariantPlan& p = plan.variants[static_cast<std::size_t>(v)];
    if (job.impl == Impl::Component) {
      Outcome out = job.c != nullptr ? job.c->call(d, *d.objects, v) : job.w->call(d, *d.objects);
      if (out.status != expected || !d.objects->messages->messages().empty() ||
          out.yield != p.outcome.yield) {
        checkOutcome(label, expected, out, *d.objects);
        fatal(label + " listed " + std::to_string(out.yield) + " instead of " +
              std::to_string(p.outcome.yield));
      }
      yielded = out.yield;
    } else {
      Baseline& b = job.impl == Impl::ConnectorC ? *d.connectorC
                    : job.impl == Impl::Engine   ? *d.engine
                                                 : *d.odbc;
      std::size_t rows = b.runAll(job.impl == Impl::Installed ? p.installed : p.steps);
      if (job.impl != Impl::Installed && rows != p.rows) {
        fatal(label + " via " + b.name() + " read " + std::to_string(rows) + " rows instead of " +
              std::to_string(p.rows));
      }
      yielded = p.outcome.yield;
    }
    if (job.c != nullptr ? static_cast<bool>(job.c->restore) : static_cast<bool>(job.w->restore)) {
      state.PauseTiming();
      if (job.c != nullptr) {
        job.c->restore(d, v);
      } else {
        job.w->restore(d);
      }
      state.ResumeTiming();
    }
    v = (v + 1) % variants;
  }
  Series& s = gResults.series[{job.key(), job.impl, job.rows}];
  s.yield = yielded;
  state.counters["yield"] = static_cast<double>(yielded);
}

// Keeps every repetition's time per call for the summary, and shows Google Benchmark's own aggregates
// (median and coefficient of variation) rather than each repetition.
class SummaryReporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> shown;
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate) {
        if (run.aggregate_name == "median" || run.aggregate_name == "cv") shown.push_back(run);
        continue;
      }
      if (run.error_occurred || run.iterations == 0) continue;
      auto it = gJobs.find(run.run_name.function_name);
      if (it != gJobs.end()) {
        auto n = static_cast<double>(run.iterations);
        const Job& job = it->second;
        gResults.series[{job.key(), job.impl, job.rows}].samples.push_back(
            {run.real_accumulated_time / n, run.cpu_accumulated_time / n});
      }
    }
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && run.repetitions <= 1) shown.push_back(run);
    }
    if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
  }
};

std::vector<int> intList(const char* variable, const std::string& fallback) {
  const char* given = std::getenv(variable);
  std::string list = given != nullptr ? given : fallback;
  std::vector<int> out;
  std::stringstream in(list);
  std::string item;
  while (std::getline(in, item, ',')) {
    if (item.empty()) continue;
    int v = std::atoi(item.c_str());
    if (v != 0 && v < 200) fatal(std::string(variable) + " takes sizes of at least 200 rows: " + list);
    if (v > 0) out.push_back(v);
  }
  std::sort(out.begin(), out.end());
  return out;
}

double envDouble(const char* variable, double fallback) {
  const char* given = std::getenv(variable);
  double v = given != nullptr ? std::atof(given) : 0.0;
  return v > 0 ? v : fallback;
}

void registerJob(const Job& job, double minTime, int repetitions, bool heavy) {
  std::string name = job.key() + "/" + implName(job.impl) + "/rows:" + std::to_string(job.rows);
  gJobs[name] = job;
  auto* b = benchmark::RegisterBenchmark(name.c_str(), [job](benchmark::State& s) { runJob(s, job); });
  b->UseRealTime()->Unit(benchmark::kMicrosecond)->Repetitions(repetitions);
  if (heavy) {
    b->Iterations(1);
  } else {
    b->MinTime(minTime);
  }
}

}  // namespace
}  // namespace tovrand::bench

namespace tovrand::bench {
namespace {
int run(int argc, char** argv);
}
}  // namespace tovrand::bench

int main(int argc, char** argv) {
  try {
    return tovrand::bench::run(argc, argv);
  } catch (const std::exception& e) {
    tovrand::bench::fatal(e.what());
  }
}

namespace tovrand::bench {
namespace {

int run(int argc, char** argv) {
  // A buffer pool that holds every table, so that reads measure the clients and not the disk.
  setenv("TOVRAND_SANDBOX_ARGS", "--innodb-buffer-pool-size=3G", 0);
  std::vector<char*> args{argv[0]};
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  args.push_back(interleaving.data());
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;

  gResults.label =
      std::getenv("TOVRAND_BENCH_LABEL") != nullptr ? std::getenv("TOVRAND_BENCH_LABEL") : "after";
  gResults.sizes = intList("TOVRAND_BENCH_ROWS", "1000,10000,100000");
  std::vector<int> large = intList("TOVRAND_BENCH_LARGE", "1000000");
  gResults.largeSize = large.empty() ? 0 : large.back();
  if (gResults.sizes.empty()) fatal("TOVRAND_BENCH_ROWS names no size");
  gResults.workloadSize = std::getenv("TOVRAND_BENCH_NO_WORKLOADS") != nullptr ? 0 : gResults.sizes.back();
  double minTime = envDouble("TOVRAND_BENCH_MIN_TIME", 0.1);
  int repetitions = static_cast<int>(envDouble("TOVRAND_BENCH_REPETITIONS", 9));
  std::string out = std::getenv("TOVRAND_BENCH_RESULTS") != nullptr
                        ? std::getenv("TOVRAND_BENCH_RESULTS")
                        : std::string(TOVRAND_SOURCE_DIR) + "/bench/results";
  std::string machineAtStart = describeMachine();
  for (const Case& c : cases()) {
    gResults.members.push_back({c.key, {c.cls, c.label}});
    gResults.grows[c.key] = c.grows;
    gResults.addsToWholeTable[c.key] = c.addsToWholeTable;
  }
  for (const Workload& w : workloads()) gResults.members.push_back({w.key, {"", w.label}});

  for (int rows : gResults.sizes) gDataSets[rows] = makeDataSet(rows, false);
  if (gResults.largeSize > 0) gDataSets[gResults.largeSize] = makeDataSet(gResults.largeSize, true);
  for (auto& [rows, d] : gDataSets) gResults.setupSeconds[rows] = d->setupSeconds;

  // Round trips first, on the middle size: every member, 100 calls each; the workloads once each.
  if (std::getenv("TOVRAND_BENCH_NO_ROUND_TRIPS") == nullptr) {
    roundTripPass(*gDataSets.at(gResults.sizes[gResults.sizes.size() / 2]));
    if (gResults.workloadSize > 0) roundTripWorkloads(*gDataSets.at(gResults.workloadSize));
  }

  if (std::getenv("TOVRAND_BENCH_NO_MEMORY") == nullptr) memoryPass();
  // From here on freed memory is kept for the next call, as a long-running client's heap keeps it: by
  // default the allocator hands back whatever lies above 128 KiB at the top of the heap after every call,
  // and the next call faults it in again, page by page (on the machine below some 15 us a page, which
  // would bury the component's and the baselines' own costs under the virtual machine's).
  if (std::getenv("TOVRAND_BENCH_DEFAULT_MALLOC") == nullptr) {
    ::mallopt(M_TRIM_THRESHOLD, 1 << 30);
    ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
  }

  for (const Case& c : cases()) {
    for (int rows : gResults.sizes) {
      for (Impl impl : {Impl::Component, Impl::Odbc, Impl::ConnectorC, Impl::Engine}) {
        if (impl == Impl::Engine && !gDataSets.at(rows)->engine) continue;
        registerJob({&c, nullptr, impl, rows}, minTime, repetitions, false);
      }
      if (c.addsToWholeTable)
        registerJob({&c, nullptr, Impl::Installed, rows}, minTime, repetitions, rows >= 100000);
    }
    if (c.addsToWholeTable && gResults.largeSize > 0) {
      int rows = gResults.largeSize;
      for (Impl impl : {Impl::Component, Impl::Odbc, Impl::ConnectorC})
        registerJob({&c, nullptr, impl, rows}, minTime, repetitions, c.key == "porderchk.AddRecord");
      registerJob({&c, nullptr, Impl::Installed, rows}, minTime, std::min(repetitions, 3), true);
    }
  }
  if (gResults.workloadSize > 0) {
    for (const Workload& w : workloads()) {
      for (Impl impl : {Impl::Component, Impl::Odbc, Impl::ConnectorC})
        registerJob({nullptr, &w, impl, gResults.workloadSize}, minTime, std::min(repetitions, 5), true);
    }
  }
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  for (auto& [rows, d] : gDataSets) drop(*d);
  gDataSets.clear();

  gResults.machine =
      machineAtStart + "; at the end: " + describeMachine().substr(machineAtStart.find("load average"));
  int status = report(gResults, out);
  std::fflush(stdout);
  benchmark::Shutdown();
  return status;
}

}  // namespace
}  // namespace tovrand::bench
