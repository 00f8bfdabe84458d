#include "load/Data.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tovrand::load {

namespace data {

namespace {
std::string numbered(const char* prefix, int i, int width) {
  char text[32];
  std::snprintf(text, sizeof text, "%s%0*d", prefix, width, i);
  return text;
}
}  // namespace

std::string product(int i) {
  return numbered("FG-", i % kProducts, 4);
}
std::string material(int i) {
  return numbered("RM-", i % kMaterials, 4);
}
std::string customer(int i) {
  return numbered("C", i % kCustomers, 3);
}

}  // namespace data

namespace {

std::string readFile(const std::string& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string n(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", v);
  return text;
}

// SQL of the fixtures, from the sequence tables so that tens of thousands of rows take a second.
std::string fixturesSql() {
  using namespace data;
  const std::string P = std::to_string(kProducts), M = std::to_string(kMaterials),
                    C = std::to_string(kCustomers);
  const std::string productOf = "concat('FG-', lpad(seq % " + P + ", 4, '0'))";
  const std::string materialOf = "concat('RM-', lpad(seq % " + M + ", 4, '0'))";
  const std::string customerOf = "concat('C', lpad(seq % " + C + ", 3, '0'))";
  std::string sql;
  // Stock: the products' free stock is ample (planning takes all it requires from it), the
  // materials' too; one warehouse line each.
  sql += "INSERT INTO t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) SELECT " + productOf +
         ", 0, 1e12 FROM seq_0_to_" + std::to_string(kProducts - 1) + ";\n";
  sql += "INSERT INTO t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) SELECT " + materialOf +
         ", 10, 1e9 FROM seq_0_to_" + std::to_string(kMaterials - 1) + ";\n";
  sql +=
      "INSERT INTO t_wstockqtyi (F_ItemNo, F_WhNo, F_StockQty) SELECT F_ItemNo, 'W1', 1e9 FROM "
      "t_wstockqtyh;\n";
  sql += "INSERT INTO t_eitem (F_ItemNo) SELECT F_ItemNo FROM t_wstockqtyh;\n";
  // Reviewed orders of October: production order and review, the sign-offs' and reads' targets.
  const auto orders = [&](double base, int count, const std::string& status, const std::string& deliver) {
    return "INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_ItemNo, F_CustNo, F_COrderNo, "
           "F_OrdQty, "
           "F_DeliverDate, F_Status) SELECT " +
           n(base) + " + seq, '自制', 0, " + productOf + ", " + customerOf +
           ", concat('PO-', seq), 100 + seq % 50, '" + deliver + "', " + status + " FROM seq_1_to_" +
           std::to_string(count) + ";\n";
  };
  const auto reviews = [&](double base, int count) {
    return "INSERT INTO t_porderchk (F_ProdNo, F_OrderNo, F_ItemNo, F_CustNo, F_CorderNo, F_OrderCount, "
           "F_DeliverDate, F_CItemNo, F_Way) SELECT " +
           n(base) + " + seq, 0, " + productOf + ", " + customerOf +
           ", concat('PO-', seq), 100 + seq % 50, '2027-01-15', concat('CI-', seq % 100), '自制' FROM "
           "seq_1_to_" +
           std::to_string(count) + ";\n";
  };
  sql += orders(kReviewedBase, kReviewed, "0", "2027-01-15");
  sql += reviews(kReviewedBase, kReviewed);
  // September: reviewed, not planned yet (no sales-order line, no purchases: the requirement is the
  // review's ordered quantity).
  sql += orders(kPlanningBase, kPlanningPool, "0", "2027-02-15");
  sql += reviews(kPlanningBase, kPlanningPool);
  // August: open orders planned with something to buy, what the purchasing lists show.
  sql += orders(kPurchasingBase, kPurchasing, "0", "2027-06-15");
  sql +=
      "INSERT INTO t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
      "SELECT " +
      n(kPurchasingBase) + " + seq, " + productOf + ", 120, 0, 120, 50, 1 FROM seq_1_to_" +
      std::to_string(kPurchasing) + ";\n";
  sql +=
      "INSERT INTO t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
      "F_Status) "
      "SELECT " +
      n(kPurchasingBase) + " + s.seq, concat('RM-', lpad((s.seq * 3 + l.seq) % " + M +
      ", 4, '0')), 1, 0.01, 10, 20, 5, 1 FROM seq_1_to_" + std::to_string(kPurchasing) +
      " s, seq_0_to_2 l;\n";
  // Sales orders of two lines each, waiting for their review.
  sql += "INSERT INTO t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID, F_Flags) SELECT " +
         n(kSalesOrderBase) + " + seq, '2026-11-20', " + customerOf +
         ", concat('HM-', seq), 'S01', 0 FROM seq_1_to_" + std::to_string(kSalesOrders) + ";\n";
  sql +=
      "INSERT INTO t_borderi (F_OrderNo, F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_BkQty) "
      "SELECT " +
      n(kSalesOrderBase) + " + s.seq, l.seq, concat('FG-', lpad((s.seq + l.seq) % " + P +
      ", 4, '0')), concat('CI-', s.seq % 100), 100 * l.seq, '2027-01-15', 0 FROM seq_1_to_" +
      std::to_string(kSalesOrders) + " s, seq_1_to_2 l;\n";
  return sql;
}

std::string accountsSql(const std::string& database, int clients) {
  std::string sql;
  for (int i = 0; i < clients; ++i) {
    const std::string user = "'ld" + std::to_string(i) + "'@'127.0.0.1'";
    sql += "CREATE USER " + user + " IDENTIFIED BY 'ld';\nGRANT ALL PRIVILEGES ON `" + database + "`.* TO " +
           user + ";\n";
  }
  return sql;
}

}  // namespace

void fillTarget(const Target& target, int clients) {
  target.run(accountsSql(target.database(), clients));
  target.run(readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql"));
  target.run(fixturesSql());
  target.settle();
}

}  // namespace tovrand::load
