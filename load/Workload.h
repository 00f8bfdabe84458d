#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "load/Target.h"

namespace tovrand::load {

// The members a site's day is made of, with their weights in the mix.
enum Member : int {
  kReview,        // clsDataPOrderChk.AddRecord: production numbers for a sales order's lines
  kSignOff,       // clsDataPOrderChk.UpdateRecord: one department signs a review off
  kOrderRead,     // clsDataPOrder.QueryItem
  kOrderList,     // clsDataPOrder.QueryByStrSql: a customer's production orders
  kOrderAdd,      // clsDataPOrder.AddRecord
  kPlanning,      // clsDataPMrph.AddRecord1: header, lines and stock reservations
  kHeadersToBuy,  // clsDataPMrph.QueryByIDForPur
  kLinesToBuy,    // clsDataPMrpi.QueryByIDForPur
  kRelease,       // clsDataPMrpi.DeleteAllPMrpiRecord: a planning's lines and their reservations
  kMemberCount
};
const char* memberName(int member);
inline constexpr std::array<int, kMemberCount> kDefaultWeights{10, 20, 14, 8, 10, 12, 6, 6, 10};

struct MemberFigures {
  std::vector<float> latencyMs;  // of every call
  std::map<std::string, long> failures;
  long calls = 0;
};

// One planning as its client saw it: what it reserved, and whether a release removed its lines.
struct Planning {
  double prodNo = 0;
  double reserved = 0;    // in its reservation rows
  double releasable = 0;  // what of it the lines' reservations hold (a release deletes those)
  int lines = 0;
  bool released = false;
  bool uncertain = false;  // a call on it failed: what it left is not known
};

// What the clients of one run did, merged.
struct RunResult {
  std::string target;
  int clients = 0;
  double seconds = 0;
  std::array<MemberFigures, kMemberCount> members;
  long reviewLinesAllocated = 0;  // lines of the review calls that succeeded
  long reviewCallsFailed = 0;
  long ordersAdded = 0;
  long orderAddsFailed = 0;
  std::vector<Planning> plannings;
  std::map<std::string, long> connectFailures;  // clients whose objects could not be created
};

// Counters that go on from one run to the next on the same target: each fixture is used once.
struct TargetCursor {
  std::atomic<std::int64_t> salesOrder{0};
  std::atomic<std::int64_t> planning{0};
  std::atomic<std::int64_t> newOrder{0};
};

struct RunOptions {
  int clients = 16;
  double seconds = 20;
  std::uint64_t seed = 1;
  std::string engine = "odbc";
  std::array<int, kMemberCount> weights = kDefaultWeights;
};

// `clients` threads, each with its own host and objects of the four classes on a session of its own
// (its own account), calling the weighted mix until the time is up. `stop` ends the run early.
RunResult runClients(const Target& target, TargetCursor& cursor, const RunOptions& options,
                     const std::atomic<bool>& stop);

}  // namespace tovrand::load
