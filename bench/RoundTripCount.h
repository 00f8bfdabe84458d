#pragma once

// Round trips: every member called through the counting relay, after a call of each variant (what a
// session learns on its first calls is then known, as it is for a client that has been running).

#include "bench/Capture.h"
#include "bench/DataSet.h"
#include "bench/Results.h"

namespace tovrand::bench {

// Every member, 100 calls each, on `d`, through the native engine or the ODBC engine.
void roundTripPass(DataSet& d, Plans& plans, Results& results, bool odbcEngine);
// Every workload once, on `d`.
void roundTripWorkloads(DataSet& d, Plans& plans, Results& results, bool odbcEngine);

}  // namespace tovrand::bench
