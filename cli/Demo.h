#pragma once

// `tovrand demo`: the road of one sales order through the four classes, called by name as a client
// program calls them, on a database that holds the sample data (schema/sample.sql).

#include <iosfwd>

#include "cli/Runner.h"

namespace tovrand::cli {

struct DemoOptions {
  // Every statement each call sent, under the call.
  bool trace = false;
  // The raw `tovrand run` answers, one JSON line each, instead of the tables.
  bool json = false;
};

// Walks the road on the runner's database: review and production numbers, the seven departments'
// sign-offs, the production orders, the planning with its reservations, purchasing, and the release
// of one order's planning. Returns 0 when every call answered as the sample data says it must, 1 after
// printing what was unexpected (on `err`) and stopping.
int runDemo(ScriptRunner& runner, std::ostream& out, std::ostream& err, const DemoOptions& options);

}  // namespace tovrand::cli
