#include "load/Checks.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string>

#include "load/Data.h"

namespace tovrand::load {

namespace {

std::string num(double v) {
  char text[48];
  std::snprintf(text, sizeof text, "%.0f", v);
  return text;
}

std::string fmt(double v) {
  char text[48];
  std::snprintf(text, sizeof text, "%.6g", v);
  return text;
}

double value(const std::string& text) {
  return text.empty() || text == "NULL" ? 0.0 : std::stod(text);
}

// F_ProdNo of one month's five-digit serials.
std::string monthRange(double base) {
  return "F_ProdNo > " + num(base) + " AND F_ProdNo < " + num(base + 100000);
}

struct Figures {
  long headers = 0, lines = 0, reservations = 0;
  double reserved = 0;
};

}  // namespace

CheckResult checkSums(const Target& target, const std::vector<RunResult>& runs) {
  CheckResult out;
  const auto check = [&](bool held, const std::string& text) {
    out.lines.push_back((held ? "ok      " : "FAILED  ") + text);
    if (!held) out.held = false;
  };
  const auto note = [&](const std::string& text) { out.lines.push_back("note    " + text); };

  long linesAllocated = 0, reviewFailures = 0, ordersAdded = 0, orderAddFailures = 0;
  std::vector<Planning> plannings;
  for (const RunResult& r : runs) {
    linesAllocated += r.reviewLinesAllocated;
    reviewFailures += r.reviewCallsFailed;
    ordersAdded += r.ordersAdded;
    orderAddFailures += r.orderAddsFailed;
    plannings.insert(plannings.end(), r.plannings.begin(), r.plannings.end());
  }

  // Production numbers: each sales-order line holds a number of its own; November's numbers run
  // without a gap from the first; every line that got one has its review row.
  {
    const auto dup =
        target.query("SELECT COUNT(*) - COUNT(DISTINCT F_ProdNo) FROM t_borderi WHERE F_ProdNo IS NOT NULL");
    const long duplicates = static_cast<long>(value(dup.at(0).at(0)));
    check(duplicates == 0,
          "no production number on two sales-order lines (" + std::to_string(duplicates) + " duplicates)");
    const auto month = target.query(
        "SELECT COUNT(*), IFNULL(MIN(F_ProdNo),0), IFNULL(MAX(F_ProdNo),0) FROM "
        "t_porderchk WHERE " +
        monthRange(data::kAllocatedFirst - 1));
    const long count = static_cast<long>(value(month.at(0).at(0)));
    const double first = value(month.at(0).at(1)), last = value(month.at(0).at(2));
    check(count == 0 || (first == data::kAllocatedFirst && last - first + 1 == static_cast<double>(count)),
          "November's " + std::to_string(count) + " review numbers are consecutive (" + num(first) + " .. " +
              num(last) + ")");
    check(count >= linesAllocated && (reviewFailures > 0 || count == linesAllocated),
          "review rows of November (" + std::to_string(count) +
              ") match the lines of the successful reviews (" + std::to_string(linesAllocated) + ", " +
              std::to_string(reviewFailures) + " reviews failed)");
    const auto orphans =
        target.query("SELECT COUNT(*) FROM t_borderi i WHERE i.F_ProdNo > " + num(data::kAllocatedFirst - 1) +
                     " AND NOT EXISTS (SELECT 1 FROM t_porderchk c WHERE c.F_ProdNo = i.F_ProdNo)");
    const long withoutReview = static_cast<long>(value(orphans.at(0).at(0)));
    check(withoutReview == 0, "every sales-order line given a number has its review row (" +
                                  std::to_string(withoutReview) + " without)");
  }

  // Production orders added: every successful call left its row, a failed one at most one.
  {
    const auto added = target.query("SELECT COUNT(*) FROM t_porder WHERE " + monthRange(data::kNewOrderBase));
    const long rows = static_cast<long>(value(added.at(0).at(0)));
    check(rows >= ordersAdded && rows <= ordersAdded + orderAddFailures,
          "production orders added: " + std::to_string(rows) + " rows for " + std::to_string(ordersAdded) +
              " successful calls (" + std::to_string(orderAddFailures) + " failed)");
  }

  // Plannings: per production order, the header, the lines and the reservations its planning wrote,
  // less what its release deleted.
  {
    std::map<double, Figures> found;
    const std::string range = monthRange(data::kPlanningBase);
    for (const auto& row :
         target.query("SELECT F_ProdNo, COUNT(*) FROM t_pmrph WHERE " + range + " GROUP BY F_ProdNo"))
      found[value(row.at(0))].headers = static_cast<long>(value(row.at(1)));
    for (const auto& row :
         target.query("SELECT F_ProdNo, COUNT(*) FROM t_pmrpi WHERE " + range + " GROUP BY F_ProdNo"))
      found[value(row.at(0))].lines = static_cast<long>(value(row.at(1)));
    for (const auto& row :
         target.query("SELECT F_ProdNo, COUNT(*), IFNULL(SUM(F_ReduceQty),0) FROM t_wstockqtys "
                      "WHERE " +
                      range + " GROUP BY F_ProdNo")) {
      Figures& f = found[value(row.at(0))];
      f.reservations = static_cast<long>(value(row.at(1)));
      f.reserved = value(row.at(2));
    }
    std::set<double> known;
    long certain = 0, released = 0, uncertain = 0, mismatched = 0;
    double expectedReserved = 0, tableReserved = 0, releasedQty = 0, plannedQty = 0;
    std::string firstMismatch;
    for (const Planning& p : plannings) {
      known.insert(p.prodNo);
      if (p.uncertain) {
        ++uncertain;
        continue;
      }
      ++certain;
      if (p.released) ++released;
      plannedQty += p.reserved;
      releasedQty += p.released ? p.releasable : 0;
      const double expected = p.reserved - (p.released ? p.releasable : 0);
      expectedReserved += expected;
      const Figures f = found.count(p.prodNo) ? found[p.prodNo] : Figures{};
      tableReserved += f.reserved;
      const long lines = p.released ? 0 : p.lines;
      const long rows = p.released ? 1 : p.lines + 1;
      if (f.headers != 1 || f.lines != lines || f.reservations != rows ||
          std::fabs(f.reserved - expected) > 1e-6 * std::max(1.0, expected)) {
        if (mismatched++ == 0)
          firstMismatch = " (first: " + num(p.prodNo) + " header " + std::to_string(f.headers) + ", lines " +
                          std::to_string(f.lines) + "/" + std::to_string(lines) + ", reservation rows " +
                          std::to_string(f.reservations) + "/" + std::to_string(rows) + ", reserved " +
                          fmt(f.reserved) + "/" + fmt(expected) + ")";
      }
    }
    check(mismatched == 0, std::to_string(certain) + " plannings (" + std::to_string(released) +
                               " released): header, lines and reservations as planned less released, " +
                               std::to_string(mismatched) + " differ" + firstMismatch);
    check(std::fabs(tableReserved - expectedReserved) <= 1e-6 * std::max(1.0, expectedReserved),
          "reserved in the table " + fmt(tableReserved) + " = planned " + fmt(plannedQty) + " - released " +
              fmt(releasedQty) + " (client tallies)");
    long strangers = 0;
    for (const auto& [prodNo, f] : found) strangers += known.count(prodNo) ? 0 : 1;
    check(strangers == 0, "no planning rows for orders nobody planned (" + std::to_string(strangers) + ")");
    if (uncertain > 0)
      note(std::to_string(uncertain) +
           " plannings or releases failed part-way: what they left is not counted");
    // The stock summary is read, changed and written back by each reservation with no lock held
    // between: concurrent plannings of one product can overwrite each other's decrease.
    const auto stock = target.query(
        "SELECT IFNULL(SUM(1e12 - F_NoPoStockQty),0) FROM t_wstockqtyh WHERE F_ItemNo LIKE 'FG-%'");
    double takenByAll = 0;
    for (const Planning& p : plannings) takenByAll += p.uncertain ? 0 : p.reserved;
    note("products' uncommitted stock lowered by " + fmt(value(stock.at(0).at(0))) +
         "; the successful plannings reserved " + fmt(takenByAll) +
         " (less: decreases lost between concurrent reservations of one product; more: failed plannings)");
  }
  return out;
}

}  // namespace tovrand::load
