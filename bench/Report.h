#pragma once

#include <string>

#include "bench/Results.h"

namespace tovrand::bench {

// The processor, its cores, the memory and the load average, for the report.
std::string describeMachine();

// Prints the tables (times and ratios per member and size, round trips against the floor, growth,
// what a site gains, the workloads, the targets), writes the CSV files and the charts into `directory`,
// and returns the program's exit status: 0, or 4 when a member exceeds its round-trip floor or a
// consistency check failed.
int report(const Results& results, const std::string& directory);

}  // namespace tovrand::bench
