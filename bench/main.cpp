// Every public member of the four classes on tables of growing size, each beside the same statements
// sent through bare ODBC calls (the engine's floor) and bare Connector/C calls (the protocol's floor);
// round trips per member against the floor; the workloads a site runs. See bench/README.md.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "bench/Baseline.h"
#include "bench/Capture.h"
#include "bench/Cases.h"
#include "bench/DataSet.h"
#include "bench/MemoryProbe.h"
#include "bench/Report.h"
#include "bench/Results.h"
#include "bench/RoundTripCount.h"
#include "bench/Server.h"
#include "bench/TimedRuns.h"

namespace tovrand::bench {

void fatal(const std::string& what) {
  std::fflush(stdout);
  std::fprintf(stderr, "\ntovrand_bench: FATAL: %s\n", what.c_str());
  std::fflush(stderr);
  // No static destructors: the private server stops by itself when this process has gone.
  std::_Exit(3);
}

namespace {

constexpr int kSmallestSize = 1000;

std::vector<int> intList(const char* variable, const std::string& fallback) {
  const char* given = std::getenv(variable);
  std::string list = given != nullptr ? given : fallback;
  std::vector<int> out;
  std::stringstream in(list);
  std::string item;
  while (std::getline(in, item, ',')) {
    if (item.empty()) continue;
    int v = std::atoi(item.c_str());
    // The middle orders the members are called on are November orders beyond the purchasing set (its
    // first 20): a smaller table has none, and its "middle" orders would carry planning lines.
    if (v != 0 && v < kSmallestSize)
      fatal(std::string(variable) + " takes sizes of at least " + std::to_string(kSmallestSize) +
            " rows: " + list);
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
  std::vector<char*> args{argv[0]};
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  args.push_back(interleaving.data());
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;

  Results results;
  results.label =
      std::getenv("TOVRAND_BENCH_LABEL") != nullptr ? std::getenv("TOVRAND_BENCH_LABEL") : "after";
  results.sizes = intList("TOVRAND_BENCH_ROWS", "1000,10000,100000");
  std::vector<int> large = intList("TOVRAND_BENCH_LARGE", "1000000");
  results.largeSize = large.empty() ? 0 : large.back();
  if (results.sizes.empty()) fatal("TOVRAND_BENCH_ROWS names no size");
  results.workloadSize = std::getenv("TOVRAND_BENCH_NO_WORKLOADS") != nullptr ? 0 : results.sizes.back();
  double minTime = envDouble("TOVRAND_BENCH_MIN_TIME", 0.1);
  int repetitions = static_cast<int>(envDouble("TOVRAND_BENCH_REPETITIONS", 9));
  std::string out = std::getenv("TOVRAND_BENCH_RESULTS") != nullptr
                        ? std::getenv("TOVRAND_BENCH_RESULTS")
                        : std::string(TOVRAND_SOURCE_DIR) + "/bench/results";
  std::string machineAtStart = describeMachine();
  for (const Case& c : cases()) {
    results.members.push_back({c.key, {c.cls, c.label}});
    results.grows[c.key] = c.grows;
    results.addsToWholeTable[c.key] = c.addsToWholeTable;
  }
  for (const Workload& w : workloads()) results.members.push_back({w.key, {"", w.label}});

  Server server;
  DataSets dataSets;
  for (int rows : results.sizes) dataSets[rows] = makeDataSet(server, rows, false);
  if (results.largeSize > 0) dataSets[results.largeSize] = makeDataSet(server, results.largeSize, true);
  for (auto& [rows, d] : dataSets) results.setupSeconds[rows] = d->setupSeconds;
  Plans plans(results);

  // Round trips first, on the middle size: every member, 100 calls each; the workloads once each.
  if (std::getenv("TOVRAND_BENCH_NO_ROUND_TRIPS") == nullptr) {
    for (bool odbcEngine : {false, true}) {
      roundTripPass(*dataSets.at(results.sizes[results.sizes.size() / 2]), plans, results, odbcEngine);
      if (results.workloadSize > 0)
        roundTripWorkloads(*dataSets.at(results.workloadSize), plans, results, odbcEngine);
    }
  }

  if (std::getenv("TOVRAND_BENCH_NO_MEMORY") == nullptr) memoryPass(dataSets, plans, results);
  // From here on freed memory is kept for the next call, as a long-running client's heap keeps it: by
  // default the allocator hands back whatever lies above 128 KiB at the top of the heap after every call,
  // and the next call faults it in again, page by page (on the machine below some 15 us a page, which
  // would bury the component's and the baselines' own costs under the virtual machine's).
  if (std::getenv("TOVRAND_BENCH_DEFAULT_MALLOC") == nullptr) {
    ::mallopt(M_TRIM_THRESHOLD, 1 << 30);
    ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
  }

  TimedRuns timed(dataSets, plans, results);
  for (const Case& c : cases()) {
    for (int rows : results.sizes) {
      for (Impl impl : {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC, Impl::Engine}) {
        if (impl == Impl::Engine && !dataSets.at(rows)->engine) continue;
        timed.add({&c, nullptr, impl, rows}, minTime, repetitions, false);
      }
      if (c.addsToWholeTable)
        timed.add({&c, nullptr, Impl::Installed, rows}, minTime, repetitions, rows >= 100000);
    }
    if (c.addsToWholeTable && results.largeSize > 0) {
      int rows = results.largeSize;
      for (Impl impl : {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC})
        timed.add({&c, nullptr, impl, rows}, minTime, repetitions, c.key == "porderchk.AddRecord");
      timed.add({&c, nullptr, Impl::Installed, rows}, minTime, std::min(repetitions, 3), true);
    }
  }
  if (results.workloadSize > 0) {
    for (const Workload& w : workloads()) {
      for (Impl impl : {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC})
        timed.add({nullptr, &w, impl, results.workloadSize}, minTime, std::min(repetitions, 5), true);
    }
  }
  timed.run();
  for (auto& [rows, d] : dataSets) drop(server, *d);
  dataSets.clear();

  results.machine =
      machineAtStart + "; at the end: " + describeMachine().substr(machineAtStart.find("load average"));
  int status = report(results, out);
  std::fflush(stdout);
  benchmark::Shutdown();
  return status;
}

}  // namespace
}  // namespace tovrand::bench
