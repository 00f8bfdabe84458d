#pragma once

#include <string>
#include <vector>

#include "load/Target.h"

namespace tovrand::load {

// The data set every target is filled with before anything is timed. Production numbers are the
// month and a five-digit serial; each month holds one kind of order so that the clients' work never
// meets the fixtures of another kind.
namespace data {
inline constexpr int kProducts = 100;        // FG-0000 ..: ample free stock, so planning takes all it needs
inline constexpr int kMaterials = 500;       // RM-0000 ..
inline constexpr int kCustomers = 500;       // C000 ..
inline constexpr int kReviewed = 20000;      // 202610: reviewed orders, signed off and read
inline constexpr int kPlanningPool = 40000;  // 202609: reviewed orders waiting for their planning
inline constexpr int kPurchasing = 2000;     // 202608: planned orders with quantities to buy
inline constexpr int kSalesOrders = 60000;   // sales orders of two lines waiting for their review
inline constexpr double kReviewedBase = 20261000000.0;
inline constexpr double kPlanningBase = 20260900000.0;
inline constexpr double kPurchasingBase = 20260800000.0;
inline constexpr double kNewOrderBase = 20260700000.0;    // production orders the clients add
inline constexpr double kAllocatedFirst = 20261100001.0;  // the first number November allocates
inline constexpr double kSalesOrderBase = 3000000.0;
inline constexpr const char* kServerDate = "2026-11-22";
// What the planning of pool order k requires (its review's ordered quantity).
inline double planningQuantity(int k) {
  return 100.0 + k % 50;
}
std::string product(int i);
std::string material(int i);
std::string customer(int i);
}  // namespace data

// The schema, the fixtures and one account per client (ld0 .. ld<clients-1>, password ld).
void fillTarget(const Target& target, int clients);

}  // namespace tovrand::load
