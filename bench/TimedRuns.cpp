#include "bench/TimedRuns.h"

#include <string>
#include <vector>

namespace tovrand::bench {

// Keeps every repetition's time per call for the summary, and shows Google Benchmark's own aggregates
// (median and coefficient of variation) rather than each repetition.
class TimedRuns::SummaryReporter final : public benchmark::ConsoleReporter {
 public:
  explicit SummaryReporter(TimedRuns& runs) : runs_(runs) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> shown;
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate) {
        if (run.aggregate_name == "median" || run.aggregate_name == "cv") shown.push_back(run);
        continue;
      }
      if (run.error_occurred || run.iterations == 0) continue;
      auto it = runs_.jobs_.find(run.run_name.function_name);
      if (it != runs_.jobs_.end()) {
        auto n = static_cast<double>(run.iterations);
        const Job& job = it->second;
        runs_.results_.series[{job.key(), job.impl, job.rows}].samples.push_back(
            {run.real_accumulated_time / n, run.cpu_accumulated_time / n});
      }
    }
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && run.repetitions <= 1) shown.push_back(run);
    }
    if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
  }

 private:
  TimedRuns& runs_;
};

void TimedRuns::runJob(benchmark::State& state, const Job& job) {
  DataSet& d = *dataSets_.at(job.rows);
  CasePlan& plan = job.c != nullptr ? plans_.of(d, *job.c) : plans_.of(d, *job.w);
  std::string label = job.c != nullptr ? job.c->cls + "." + job.c->label : job.w->label;
  int expected = job.c != nullptr ? job.c->expected : 1;
  int variants = static_cast<int>(plan.variants.size());
  std::size_t yielded = 0;
  int v = 0;
  for (auto _ : state) {
    const VariantPlan& p = plan.variants[static_cast<std::size_t>(v)];
    if (job.impl == Impl::Component || job.impl == Impl::ComponentOdbc) {
      Objects& objects = d.objectsOf(job.impl == Impl::ComponentOdbc);
      Outcome out = job.c != nullptr ? job.c->call(d, objects, v) : job.w->call(d, objects);
      if (out.status != expected || !objects.messages->messages().empty() || out.yield != p.outcome.yield) {
        checkOutcome(label, expected, out, objects);
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
  Series& s = results_.series[{job.key(), job.impl, job.rows}];
  s.yield = yielded;
  state.counters["yield"] = static_cast<double>(yielded);
}

void TimedRuns::add(const Job& job, double minTime, int repetitions, bool heavy) {
  std::string name = job.key() + "/" + implName(job.impl) + "/rows:" + std::to_string(job.rows);
  jobs_[name] = job;
  auto* b = benchmark::RegisterBenchmark(name.c_str(), [this, job](benchmark::State& s) { runJob(s, job); });
  b->UseRealTime()->Unit(benchmark::kMicrosecond)->Repetitions(repetitions);
  if (heavy) {
    b->Iterations(1);
  } else {
    b->MinTime(minTime);
  }
}

void TimedRuns::run() {
  SummaryReporter reporter(*this);
  benchmark::RunSpecifiedBenchmarks(&reporter);
}

}  // namespace tovrand::bench
