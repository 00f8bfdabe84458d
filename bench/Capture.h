#pragma once

// What one call of a member sent, captured once per data set: the engine's deliveries and the
// statement trace, turned into the plans the baselines replay.

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/Baseline.h"
#include "bench/Cases.h"
#include "bench/Results.h"

namespace tovrand::bench {

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

// Ends the program when a call did not return `expected` or showed a message.
void checkOutcome(const std::string& what, int expected, const Outcome& out, Objects& objects);

// The plans of every member and workload per data set, captured on first use. Every call of a member
// must send as many statements as its first: a member whose statements vary would be measured on a
// shape it does not always have.
class Plans {
 public:
  explicit Plans(Results& results) : results_(results) {}
  Plans(const Plans&) = delete;
  Plans& operator=(const Plans&) = delete;

  CasePlan& of(DataSet& d, const Case& c);
  CasePlan& of(DataSet& d, const Workload& w);

 private:
  void checkShape(const std::string& key, const std::string& label, std::size_t traced);

  Results& results_;
  std::map<std::pair<std::string, int>, CasePlan> plans_;
  std::map<std::string, std::size_t> tracedPerCall_;  // statement shape: traced statements per call
};

}  // namespace tovrand::bench
