#pragma once

// The timed runs: every member and workload, through the component and through each baseline, as
// Google Benchmark runs them.

#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "bench/Capture.h"
#include "bench/Cases.h"
#include "bench/MemoryProbe.h"
#include "bench/Results.h"

namespace tovrand::bench {

struct Job {
  const Case* c = nullptr;
  const Workload* w = nullptr;
  Impl impl = Impl::Component;
  int rows = 0;
  std::string key() const { return c != nullptr ? c->key : w->key; }
};

// Registers jobs with Google Benchmark and gathers every repetition's time per call into the results.
// Registered jobs refer to it: it lives until the runs are over.
class TimedRuns {
 public:
  TimedRuns(DataSets& dataSets, Plans& plans, Results& results)
      : dataSets_(dataSets), plans_(plans), results_(results) {}
  TimedRuns(const TimedRuns&) = delete;
  TimedRuns& operator=(const TimedRuns&) = delete;

  // `heavy`: one call per repetition, however long it takes; otherwise calls for `minTime` seconds.
  void add(const Job& job, double minTime, int repetitions, bool heavy);
  // Runs the jobs the command line's filter selects.
  void run();

 private:
  class SummaryReporter;
  void runJob(benchmark::State& state, const Job& job);

  DataSets& dataSets_;
  Plans& plans_;
  Results& results_;
  std::map<std::string, Job> jobs_;  // by benchmark name
};

}  // namespace tovrand::bench
