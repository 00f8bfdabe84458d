// clsDataPMrph.AddRecord1 and AddRecord: writing a production order's planning.
#include <gtest/gtest.h>

#include "tests/pmrph/Computation.h"
#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

clsEntPMrpi line(const std::string& itemNo, double dosage, double waste, std::int16_t leadTime) {
  clsEntPMrpi e;
  e.F_ItemNo(itemNo);
  e.F_Dosage(dosage);
  e.F_Waste(waste);
  e.F_LeadTime(leadTime);
  // Not written: the planning computes the line's own figures.
  e.F_SafeQty(999.0);
  e.F_RequestQty(999.0);
  e.F_Status(9);
  return e;
}

// The statements of the computation for the header's production number and material.
std::vector<std::string> computation(const std::string& prodNo, const std::string& itemNo, bool reviewFound) {
  std::vector<std::string> out{"SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo};
  for (std::string& s : lookUpStatements(prodNo, itemNo, reviewFound)) out.push_back(std::move(s));
  out.push_back(purchasesStatement(prodNo, itemNo, "  "));
  return out;
}

// The statements of one reservation.
std::vector<std::string> reservation(const std::string& prodNo, const std::string& itemNo) {
  return {"SELECT * FROM T_WStockQtys WHERE F_ProdNo=" + prodNo + " and  F_ItemNo='" + itemNo + "'",
          "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + itemNo + "'"};
}

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

class PlanningCreation : public PMrphTest {
 protected:
  // Each planning line as "item|dosage|waste|safety stock|requested|lead time|status", by item.
  std::string linesOf(const std::string& prodNo) {
    return scalar(
        "select group_concat(concat_ws('|', F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, "
        "F_LeadTime, "
        "F_Status) order by F_ItemNo separator ' / ') from t_pmrpi where F_ProdNo=" +
        prodNo);
  }
  std::string headerOf(const std::string& prodNo) {
    return scalar(
        "select concat_ws('|', F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
        "from t_pmrph where F_ProdNo=" +
        prodNo);
  }
  // Each reservation as "production number|item|quantity", by item.
  std::string reservations() {
    return scalar(
        "select group_concat(concat_ws('|', F_ProdNo, F_ItemNo, ifnull(F_ReduceQty, 'NULL')) order by "
        "F_ItemNo, "
        "F_ProdNo separator ' / ') from t_wstockqtys");
  }
  // Each stock header as "item|safety stock|uncommitted stock", by item.
  std::string stockHeaders() {
    return scalar(
        "select group_concat(concat_ws('|', F_ItemNo, ifnull(F_SafeQty, 'NULL'), ifnull(F_NoPoStockQty, "
        "'NULL')) "
        "order by F_ItemNo separator ' / ') from t_wstockqtyh");
  }
  // The engine's statements as "INSERT table" / "UPDATE table".
  std::vector<std::string> engineWrites() {
    std::vector<std::string> out;
    for (const std::string& s : engineStatements()) {
      std::size_t open = s.find('`');
      std::size_t close = s.find('`', open + 1);
      out.push_back(s.substr(0, s.find(' ')) + " " + s.substr(open + 1, close - open - 1));
    }
    return out;
  }
};

// A direct-purchase production order, new header. By hand:
// header P-100: P = 100 + 10 = 110, SQ 20, BN 50, X 30, C1 20. D = 110 - 20 - 30 = 60 > 0: stock
// to take A = 30, remaining M = 60; direct purchase, so the quantity to buy K = 60.
// Header reservation 30: P-100's uncommitted stock 50 - 30 = 20.
// Each line's computation then sees BN 20, SQ 20, X 0, C1 20; with F_NeedQty - F_PlanPurQty = 0 every
// line's G = 0 - 20 - 0 = -20, H = 0 - 20 = -20: nothing requested, nothing taken.
// Line reservations of 0: M-01 keeps 100, M-02 gets a stock header with 0, M-03's NULL becomes 0.
constexpr const char* kDirectPurchase =
    "insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110002, 100, '直接采购');"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5002, 2026110002, 10);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('P-100', 20, 50), ('M-01', 5, "
    "100), "
    "('M-03', 0, NULL);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('P-100', 60);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-2', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-2', 'P-100', 2026110002, 20, 0)";

TEST_F(PlanningCreation, ADirectPurchaseOrderGetsItsHeaderLinesAndReservations) {
  exec(kDirectPurchase);
  clsEntPMrph entity = header(2026110002, "P-100");
  Collection lines;
  lines.Add(line("M-01", 2, 0.1, 5));
  lines.Add(line("M-02", 1.0 / 3.0, 0, 3));
  lines.Add(line("M-03", 0.5, 0.05, 7));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  // The entity carries the header's figures.
  EXPECT_EQ(entity.F_PlanPurQty(), 60);
  EXPECT_EQ(entity.F_NeedQty(), 60);
  EXPECT_EQ(entity.F_SafeQty(), 20);
  EXPECT_EQ(entity.F_OrderQty(), 110);
  EXPECT_EQ(headerOf("2026110002"), "2026110002|P-100|110|20|60|60|1");
  // The dosage 1/3 went through its text "0.333333333333333" and back.
  EXPECT_EQ(linesOf("2026110002"),
            "M-01|2|0.1|20|0|5|1 / M-02|0.333333333333333|0|20|0|3|1 / M-03|0.5|0.05|20|0|7|1");
  EXPECT_EQ(reservations(),
            "2026110002|M-01|0 / 2026110002|M-02|0 / 2026110002|M-03|0 / 2026110002|P-100|30");
  EXPECT_EQ(stockHeaders(), "M-01|5|100 / M-02|NULL|0 / M-03|0|0 / P-100|20|20");
  EXPECT_TRUE(shown().empty());

  const std::string p = "2026110002";
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110002"} +
                       computation(p, "P-100", true) +
                       std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110002"} +
                       reservation(p, "P-100") +
                       std::vector<std::string>{"SELECT * FROM T_PMrpi WHERE F_ProdNo=2026110002"} +
                       computation(p, "P-100", true) + reservation(p, "M-01") +
                       computation(p, "P-100", true) + reservation(p, "M-02") +
                       computation(p, "P-100", true) + reservation(p, "M-03"));
  EXPECT_EQ(engineWrites(), (std::vector<std::string>{
                                "INSERT t_pmrph", "UPDATE t_wstockqtyh", "INSERT t_wstockqtys",  // header
                                "INSERT t_pmrpi", "UPDATE t_wstockqtyh", "INSERT t_wstockqtys",  // M-01
                                "INSERT t_pmrpi", "INSERT t_wstockqtyh", "INSERT t_wstockqtys",  // M-02
                                "INSERT t_pmrpi", "UPDATE t_wstockqtyh", "INSERT t_wstockqtys",  // M-03
                            }));
}

TEST_F(PlanningCreation, TheFirstStatementsOfANewPlanningInFull) {
  exec(kDirectPurchase);
  clsEntPMrph entity = header(2026110002, "P-100");
  Collection lines;

  ASSERT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110002",
                "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110002",
                "SELECT * FROM T_POrderChk WHERE F_ProdNo='2026110002'",
                "Select * From T_BOrderi Where F_ProdNo='2026110002'",
                "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='P-100'",
                "SELECT sum(F_StockQty) as S FROM T_WStockQtyi WHERE F_ItemNo='P-100' group by F_ItemNo",
                "SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where  "
                "F_Status<>3) h WHERE F_ItemNo='P-100' and F_Status<>3 and F_ProdNo=2026110002 and "
                "F_PurNo=h.PurNo",
                "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110002",
                "SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026110002 and  F_ItemNo='P-100'",
                "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='P-100'",
                "SELECT * FROM T_PMrpi WHERE F_ProdNo=2026110002",
            }));
}

// A production order made in house, new header. By hand:
// header P-200: P = 40 + 5 = 45, SQ 5, BN 15, X 10, C1 10. D = 45 - 10 - 10 = 25 > 0: A = 10,
// M = 25; not a direct purchase, so K = 0. Header reservation 10: P-200's stock 15 - 10 = 5.
// Lines see BN 5, SQ 5, X 0, C1 10, and F_NeedQty - F_PlanPurQty = 25 - 0 = 25:
//   M-11 dosage 2, waste 0.25: G = 25 * 2 * 1.25 - 10 - 0 = 52.5 > 0: request 52.5, take X = 0.
//   M-12 dosage 0.25, waste 0.5: G = 25 * 0.25 * 1.5 - 10 = -0.625; H = -0.625: request 0, take 0.
//   M-13 dosage 1/3 as 0.333333333333333, waste 0.5: G = 25 * 0.333333333333333 * 1.5 - 10
//        = 2.4999999999999875, stored as the nearest double 2.4999999999999876; take 0.
constexpr const char* kMadeInHouse =
    "insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110003, 40, '自制');"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5003, 2026110003, 5);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('P-200', 5, 15), ('M-11', 0, "
    "30), "
    "('M-13', 2, NULL);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-3', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-3', 'P-200', 2026110003, 10, 0)";

TEST_F(PlanningCreation, AnOrderOfAnotherWayPlansNoPurchaseAndRequestsWhatIsToBeMade) {
  exec(kMadeInHouse);
  clsEntPMrph entity = header(2026110003, "P-200");
  Collection lines;
  lines.Add(line("M-11", 2, 0.25, 5));
  lines.Add(line("M-12", 0.25, 0.5, 2));
  lines.Add(line("M-13", 1.0 / 3.0, 0.5, 4));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(entity.F_PlanPurQty(), 0);
  EXPECT_EQ(entity.F_NeedQty(), 25);
  EXPECT_EQ(entity.F_SafeQty(), 5);
  EXPECT_EQ(entity.F_OrderQty(), 45);
  EXPECT_EQ(headerOf("2026110003"), "2026110003|P-200|45|5|25|0|1");
  EXPECT_EQ(
      linesOf("2026110003"),
      "M-11|2|0.25|5|52.5|5|1 / M-12|0.25|0.5|5|0|2|1 / M-13|0.333333333333333|0.5|5|2.4999999999999876|4|1");
  EXPECT_EQ(scalar("select F_RequestQty = 2.4999999999999876 from t_pmrpi where F_ItemNo='M-13'"), "1");
  EXPECT_EQ(reservations(),
            "2026110003|M-11|0 / 2026110003|M-12|0 / 2026110003|M-13|0 / 2026110003|P-200|10");
  EXPECT_EQ(stockHeaders(), "M-11|0|30 / M-12|NULL|0 / M-13|2|0 / P-200|5|5");
  EXPECT_TRUE(shown().empty());
}

// A second call for a production order that has its header: the lines are computed from the
// caller's F_NeedQty 50 and F_PlanPurQty 10, so 40 is to be made. By hand, every line sees the
// header material P-300: P = 30 (no sales-order line), SQ 10, BN 40, X 30, C1 0.
//   M-21 dosage 1: G = 40 * 1 * 1 - 0 - 30 = 10 > 0: request 10, take X = 30. Its reservation of
//        12 is given back and 30 taken: 100 - 30 + 12 = 82; the reservation row now holds 30.
//   M-22 dosage 0.5: G = 20 - 30 = -10; H = 20: request 0, take 20. Reservation NULL (0):
//        15 - 20 + 0 = -5, so 0; the row now holds 20.
//   M-23 dosage 0.25: G = 10 - 30 = -20; H = 10: request 0, take 10. No reservation and no stock
//        header: a stock header with 0 and a reservation of 10 are added.
constexpr const char* kSecondCall =
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
    "values "
    "(2026110004, 'P-300', 30, 10, 99, 99, 1);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110004, 30, '自制');"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('P-300', 10, 40), ('M-21', 0, "
    "100), "
    "('M-22', 0, 15);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110004, 'M-21', 12), "
    "(2026110004, 'M-22', NULL), (2026110004, 'P-300', 7)";

TEST_F(PlanningCreation, ASecondCallAddsLinesFromTheCallersFiguresAndGivesTheOldReservationBack) {
  exec(kSecondCall);
  clsEntPMrph entity = header(2026110004, "P-300");
  entity.F_NeedQty(50.0);
  entity.F_PlanPurQty(10.0);
  Collection lines;
  lines.Add(line("M-21", 1, 0, 1));
  lines.Add(line("M-22", 0.5, 0, 2));
  lines.Add(line("M-23", 0.25, 0, 3));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  // No header is written or recomputed.
  EXPECT_EQ(headerOf("2026110004"), "2026110004|P-300|30|10|99|99|1");
  EXPECT_EQ(entity.F_NeedQty(), 50);
  EXPECT_EQ(entity.F_PlanPurQty(), 10);
  EXPECT_EQ(entity.F_SafeQty(), 0);
  EXPECT_EQ(entity.F_OrderQty(), 0);
  EXPECT_EQ(linesOf("2026110004"), "M-21|1|0|10|10|1|1 / M-22|0.5|0|10|0|2|1 / M-23|0.25|0|10|0|3|1");
  EXPECT_EQ(reservations(),
            "2026110004|M-21|30 / 2026110004|M-22|20 / 2026110004|M-23|10 / 2026110004|P-300|7");
  EXPECT_EQ(stockHeaders(), "M-21|0|82 / M-22|0|0 / M-23|NULL|0 / P-300|10|40");
  EXPECT_TRUE(shown().empty());

  const std::string p = "2026110004";
  EXPECT_EQ(sql(), (std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110004",
                                             "SELECT * FROM T_PMrpi WHERE F_ProdNo=2026110004"} +
                    computation(p, "P-300", true) + reservation(p, "M-21") + computation(p, "P-300", true) +
                    reservation(p, "M-22") + computation(p, "P-300", true) + reservation(p, "M-23")));
  EXPECT_EQ(engineWrites(), (std::vector<std::string>{
                                "INSERT t_pmrpi", "UPDATE t_wstockqtyh", "UPDATE t_wstockqtys",  // M-21
                                "INSERT t_pmrpi", "UPDATE t_wstockqtyh", "UPDATE t_wstockqtys",  // M-22
                                "INSERT t_pmrpi", "INSERT t_wstockqtyh", "INSERT t_wstockqtys",  // M-23
                            }));
}

TEST_F(PlanningCreation, ADirectPurchaseHeadersLinesHaveOnlyMinusPurchasesAndFreeStockAsRequirement) {
  // An existing direct-purchase header whose quantity to buy equals its remaining requirement:
  // G = (60 - 60) * 4 * 1.5 - C1 - X = -20 - 0 = -20 and H = -20: nothing requested, nothing taken.
  exec(kDirectPurchase);
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_NeedQty, F_PlanPurQty) values (2026110002, 'P-100', 60, "
      "60)");
  exec("update t_wstockqtyh set F_NoPoStockQty=20 where F_ItemNo='P-100'");
  clsEntPMrph entity = header(2026110002, "P-100");
  entity.F_NeedQty(60.0);
  entity.F_PlanPurQty(60.0);
  Collection lines;
  lines.Add(line("M-01", 4, 0.5, 1));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(linesOf("2026110002"), "M-01|4|0.5|20|0|1|1");
  EXPECT_EQ(reservations(), "2026110002|M-01|0");
}

TEST_F(PlanningCreation, AHeaderMaterialWithoutAStockHeaderGetsOneWithZeroAndAnEmptyListWritesOnlyTheHeader) {
  // By hand: P = 12 (no sales-order line), no stock header: SQ 0, BN 0, X 0, C1 0. D = 12 > 0:
  // A = 0, M = 12, direct purchase: K = 12.
  exec("insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110005, 12, '直接采购')");
  clsEntPMrph entity = header(2026110005, "P-400");
  Collection lines;

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(headerOf("2026110005"), "2026110005|P-400|12|0|12|12|1");
  EXPECT_EQ(scalar("select count(*) from t_pmrpi"), "0");
  EXPECT_EQ(reservations(), "2026110005|P-400|0");
  EXPECT_EQ(stockHeaders(), "P-400|NULL|0");
  EXPECT_EQ(engineWrites(),
            (std::vector<std::string>{"INSERT t_pmrph", "INSERT t_wstockqtyh", "INSERT t_wstockqtys"}));
  EXPECT_TRUE(shown().empty());
}

TEST_F(PlanningCreation, AnEmptyListForAnExistingHeaderWritesNothing) {
  exec(kSecondCall);
  clsEntPMrph entity = header(2026110004, "P-300");
  Collection lines;

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(sql(), (std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110004",
                                             "SELECT * FROM T_PMrpi WHERE F_ProdNo=2026110004"}));
  EXPECT_TRUE(engineStatements().empty());
  EXPECT_EQ(headerOf("2026110004"), "2026110004|P-300|30|10|99|99|1");
  EXPECT_TRUE(shown().empty());
}

TEST_F(PlanningCreation, AnErrorHalfWayLeavesWhatWasWrittenAndShowsTheLengthMessage) {
  // By hand: P = 10, no stock header for P-600, C1 0: A = 0, M = 10, K = 0 (made in house).
  // M-31, dosage 1: G = 10 > 0, request 10, take 0. The second line's item does not fit its column.
  exec("insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110006, 10, '自制')");
  clsEntPMrph entity = header(2026110006, "P-600");
  Collection lines;
  lines.Add(line("M-31", 1, 0, 1));
  lines.Add(line(std::string(31, 'X'), 1, 0, 1));
  lines.Add(line("M-33", 1, 0, 1));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 0);

  EXPECT_EQ(shown(), (std::vector<Message>{{kTooLongMessage, vbInformation, kTitleQuenta}}));
  EXPECT_EQ(headerOf("2026110006"), "2026110006|P-600|10|0|10|0|1");
  EXPECT_EQ(linesOf("2026110006"), "M-31|1|0|0|10|1|1");
  EXPECT_EQ(reservations(), "2026110006|M-31|0 / 2026110006|P-600|0");
  EXPECT_EQ(stockHeaders(), "M-31|NULL|0 / P-600|NULL|0");
  // The failing line was computed, then nothing more was sent.
  const std::string p = "2026110006";
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110006"} +
                       computation(p, "P-600", true) +
                       std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110006"} +
                       reservation(p, "P-600") +
                       std::vector<std::string>{"SELECT * FROM T_PMrpi WHERE F_ProdNo=2026110006"} +
                       computation(p, "P-600", true) + reservation(p, "M-31") +
                       computation(p, "P-600", true));
  // The object stays usable.
  clsEntPMrph back = header(2026110006);
  EXPECT_EQ(pmrph().QueryProdNoRecord(back), 1);
  EXPECT_EQ(back.F_NeedQty(), 10);
}

TEST_F(PlanningCreation, AnotherDatabaseErrorShowsItsDescription) {
  exec("insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110007, 10)");
  exec("drop table t_pmrpi");
  clsEntPMrph entity = header(2026110007, "P-700");
  Collection lines;
  lines.Add(line("M-41", 1, 0, 1));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrpi' doesn't exist");
  // The header and its reservation were written before the lines were opened.
  EXPECT_EQ(headerOf("2026110007"), "2026110007|P-700|10|0|10|0|1");
  EXPECT_EQ(reservations(), "2026110007|P-700|0");
}

TEST_F(PlanningCreation, AFailedComputationShowsItsMessageAndThePlanningGoesOnWithTheFiguresItReached) {
  // The review's quantity and the sales-order line's backlog overflow when added: the computation
  // stops before any figure is assigned, so the header is written with the starting figures 0.
  exec(
      "insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2026110008, 1.7e308, '直接采购');"
      "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5008, 2026110008, 1.7e308);"
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('P-800', 1, 5)");
  clsEntPMrph entity = header(2026110008, "P-800");
  Collection lines;

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
  EXPECT_EQ(headerOf("2026110008"), "2026110008|P-800|0|0|0|0|1");
  EXPECT_EQ(reservations(), "2026110008|P-800|0");
  EXPECT_EQ(stockHeaders(), "P-800|1|5");
}

TEST_F(PlanningCreation, LinesAreWrittenByColumnNameWhateverKeyThePlanningLinesHave) {
  // Planning lines are keyed by an id of their own, the production number and material kept unique.
  ASSERT_EQ(scalar("select group_concat(column_name order by ordinal_position) from "
                   "information_schema.key_column_usage where table_schema=database() and "
                   "table_name='t_pmrpi' and constraint_name='PRIMARY'"),
            "F_ID");
  exec(kSecondCall);
  clsEntPMrph entity = header(2026110004, "P-300");
  entity.F_NeedQty(50.0);
  entity.F_PlanPurQty(10.0);
  Collection lines;
  lines.Add(line("M-21", 1, 0, 1));
  lines.Add(line("M-22", 0.5, 0, 2));

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(linesOf("2026110004"), "M-21|1|0|10|10|1|1 / M-22|0.5|0|10|0|2|1");
  EXPECT_EQ(scalar("select count(distinct F_ID) from t_pmrpi"), "2");
  EXPECT_TRUE(shown().empty());
}

// AddRecord

TEST_F(PlanningCreation, AddRecordWritesTheFourQuantitiesOfAnExistingHeader) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
      "values "
      "(2026110009, 'P-900', 1, 2, 3, 4, 1), (2026110010, 'P-901', 5, 6, 7, 8, 1)");
  clsEntPMrph entity = header(2026110009, "other");
  entity.F_OrderQty(10.0);
  entity.F_SafeQty(20.0);
  entity.F_NeedQty(30.5);
  entity.F_PlanPurQty(40.0);
  entity.F_Status(3);

  EXPECT_EQ(pmrph().AddRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110009"});
  // Item and status stay as they were.
  EXPECT_EQ(headerOf("2026110009"), "2026110009|P-900|10|20|30.5|40|1");
  EXPECT_EQ(headerOf("2026110010"), "2026110010|P-901|5|6|7|8|1");
  EXPECT_EQ(engineWrites(), std::vector<std::string>{"UPDATE t_pmrph"});
  EXPECT_TRUE(shown().empty());
}

TEST_F(PlanningCreation, AddRecordForAMissingHeaderReturnsZeroAndAddsNoRow) {
  clsEntPMrph entity = header(2026110009, "P-900");
  entity.F_OrderQty(10.0);

  EXPECT_EQ(pmrph().AddRecord(entity), 0);

  EXPECT_EQ(scalar("select count(*) from t_pmrph"), "0");
  EXPECT_TRUE(engineStatements().empty());
  EXPECT_TRUE(shown().empty());
  // The object stays usable.
  exec("insert into t_pmrph (F_ProdNo) values (2026110009)");
  EXPECT_EQ(pmrph().AddRecord(entity), 1);
  EXPECT_EQ(scalar("select F_OrderQty from t_pmrph"), "10");
}

TEST_F(PlanningCreation, AddRecordAfterAnErrorShowsTheDescription) {
  exec("drop table t_pmrph");
  clsEntPMrph entity = header(2026110009);

  EXPECT_EQ(pmrph().AddRecord(entity), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

}  // namespace
}  // namespace tovrand::test
