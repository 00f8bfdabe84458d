#pragma once

#include <string>
#include <vector>

#include "load/Target.h"
#include "load/Workload.h"

namespace tovrand::load {

// What the tables must say after every run on a target, against what the clients counted.
struct CheckResult {
  std::vector<std::string> lines;  // one per check: "ok ...", "FAILED ...", "note ..."
  bool held = true;
};
CheckResult checkSums(const Target& target, const std::vector<RunResult>& runs);

}  // namespace tovrand::load
