#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "load/Workload.h"

namespace tovrand::load {

// One run's table: per member calls, calls per second, median and 99th-percentile latency, failures;
// then the failures by cause.
void printRun(std::ostream& out, const RunResult& run);

// load.csv (one row per target, clients and member), failures.csv (one row per cause), the chart's
// data and script, and load.png drawn by gnuplot when it is installed. Returns the chart's path, or
// "" when gnuplot is missing.
std::string writeResults(const std::string& directory, const std::vector<RunResult>& runs);

}  // namespace tovrand::load
