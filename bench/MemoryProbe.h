#pragma once

// Peak memory: one call of every member and baseline, with the allocator handing freed memory back to
// the system as it does by default, so that the high-water mark over the call is what the call needed.

#include <map>
#include <memory>

#include "bench/Capture.h"
#include "bench/DataSet.h"
#include "bench/Results.h"

namespace tovrand::bench {

using DataSets = std::map<int, std::unique_ptr<DataSet>>;  // by rows

void memoryPass(const DataSets& dataSets, Plans& plans, Results& results);

}  // namespace tovrand::bench
