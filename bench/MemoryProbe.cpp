#include "bench/MemoryProbe.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace tovrand::bench {

namespace {

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

// Peak memory: one call of every member and baseline, with the allocator handing freed memory back to
// the system as it does by default, so that the high-water mark over the call is what the call needed.

// Sends one call of the job: the component's or a baseline's.
std::size_t callOnce(DataSet& d, const Case* c, const Workload* w, Impl impl, int v, const VariantPlan& p) {
  if (impl == Impl::Component || impl == Impl::ComponentOdbc) {
    Objects& objects = d.objectsOf(impl == Impl::ComponentOdbc);
    return (c != nullptr ? c->call(d, objects, v) : w->call(d, objects)).yield;
  }
  Baseline& b = impl == Impl::ConnectorC ? *d.connectorC : impl == Impl::Engine ? *d.engine : *d.odbc;
  return b.runAll(impl == Impl::Installed ? p.installed : p.steps);
}

void measurePeak(DataSet& d, const Case* c, const Workload* w, Impl impl, Plans& plans, Results& results) {
  CasePlan& plan = c != nullptr ? plans.of(d, *c) : plans.of(d, *w);
  auto restore = [&] {
    if (c != nullptr && c->restore) c->restore(d, 0);
    if (w != nullptr && w->restore) w->restore(d);
  };
  const VariantPlan& p = plan.variants[0];
  callOnce(d, c, w, impl, 0, p);  // what the first call of a session learns is not the call's own cost
  restore();
  d.objects->messages->take();
  d.objectsOdbc->messages->take();
  ::malloc_trim(0);
  PeakProbe probe;
  callOnce(d, c, w, impl, 0, p);
  long grown = probe.growthKiB();
  restore();
  for (Objects* o : {d.objects.get(), d.objectsOdbc.get()}) {
    if (!o->messages->messages().empty())
      fatal("a message during the memory pass: " + o->messages->messages()[0].text);
  }
  Series& s = results.series[{c != nullptr ? c->key : w->key, impl, d.rows}];
  s.peakKiB = grown;
}

}  // namespace

void memoryPass(const DataSets& dataSets, Plans& plans, Results& results) {
  for (auto& [rows, d] : dataSets) {
    for (const Case& c : cases()) {
      if (d->appendTablesOnly && !c.addsToWholeTable) continue;
      std::vector<Impl> impls = {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC};
      if (!d->appendTablesOnly && d->engine) impls.push_back(Impl::Engine);
      if (c.addsToWholeTable) impls.push_back(Impl::Installed);
      for (Impl impl : impls) measurePeak(*d, &c, nullptr, impl, plans, results);
    }
    if (rows == results.workloadSize) {
      for (const Workload& w : workloads()) {
        for (Impl impl : {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC})
          measurePeak(*d, nullptr, &w, impl, plans, results);
      }
    }
  }
}

}  // namespace tovrand::bench
