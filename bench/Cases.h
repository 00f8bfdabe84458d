#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "bench/DataSet.h"
#include "frame/Members.h"

namespace tovrand::bench {

// What one call of a member gave back: its status and how many entities or numbers it listed (1 for a
// member that fills one entity or writes).
struct Outcome {
  int status = 0;
  std::size_t yield = 1;
};

// One public member of the four classes as a site calls it. Every call takes one of kVariants argument
// sets in turn (different production orders, customers, sales orders), so that no two successive calls
// send the same text.
struct Case {
  std::string cls;    // clsDataPOrder, ...
  std::string label;  // the member, with what its variants have in common where that needs saying
  std::string key;    // in benchmark names and files
  // The status the member returns when it works (a few never store a success value and return 0).
  int expected = 1;
  // Keyset opens the member makes only to add rows through them: they need not reach the server.
  int appendOnlyOpens = 0;
  // The member opens a whole table only to add to it: also measured at the largest size, and beside
  // what the installed component pays for that open.
  bool addsToWholeTable = false;
  // Why the member's cost grows with the table ("" when it should not): its own statements read a
  // table whole, or its answer grows with the table.
  std::string grows;
  std::function<Outcome(DataSet&, Objects&, int variant)> call;
  // Puts back what the call changed, outside the timing; empty when a call changes nothing that would
  // alter the next one.
  std::function<void(DataSet&, int variant)> restore;
  const MemberInfo* member = nullptr;  // its entry in its class's member table
};

// A sequence of calls a site runs as one piece of work.
struct Workload {
  std::string label;
  std::string key;
  int appendOnlyOpens = 0;
  std::function<Outcome(DataSet&, Objects&)> call;
  std::function<void(DataSet&)> restore;
};

constexpr int kVariants = 4;

const std::vector<Case>& cases();
const std::vector<Workload>& workloads();

}  // namespace tovrand::bench
