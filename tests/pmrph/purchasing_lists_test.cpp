// clsDataPMrph.QueryByIDForPur and QueryByDeliverDate: the headers purchasing still has to buy for.
#include <algorithm>

#include <gtest/gtest.h>

#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

// Production orders 1, 4, 6, 8-11 are open (status 0 or 3); 2 and 3 are in status 1 and 2, 5 has no
// status. Headers 1, 4, 6 (no item number) and 11 plan a purchase of their open order; 7 has no
// production order; 8, 9 and 10 plan nothing (0, NULL, a negative quantity).
constexpr const char* kPlanning =
    "insert into t_porder (F_ProdNo, F_Status, F_DeliverDate) values "
    "(2026110001, 0, '2026-12-01'), (2026110002, 1, '2026-12-05'), (2026110003, 2, '2026-12-10'), "
    "(2026110004, 3, '2026-12-15'), (2026110005, NULL, '2026-12-20'), (2026110006, 0, '2027-01-10 "
    "08:00:00'), "
    "(2026110008, 0, '2026-12-03'), (2026110009, 0, '2026-12-03'), (2026110010, 0, '2026-12-03'), "
    "(2026110011, 0, '2027-02-01');"
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
    "values "
    "(2026110001, 'M-A1', 100, 5, 30, 10, 1), (2026110002, 'M-A2', 1, 1, 1, 10, 1), "
    "(2026110003, 'M-B1', 1, 1, 1, 10, 1), (2026110004, 'M-B2', 50, 0, 5, 5, 3), "
    "(2026110005, 'M-A3', 1, 1, 1, 10, 1), (2026110006, NULL, NULL, NULL, NULL, 2.5, NULL), "
    "(2026110007, 'M-A4', 1, 1, 1, 10, 1), (2026110008, 'M-A5', 1, 1, 1, 0, 1), "
    "(2026110009, 'M-A6', 1, 1, 1, NULL, 1), (2026110010, 'M-A7', 1, 1, 1, -1, 1), "
    "(2026110011, 'M-B3', 8, 2, 1, 1, 1)";

constexpr const char* kForPur =
    "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
    "F_Status <> '1' and F_Status <> '2'";
constexpr const char* kForPurItemB =
    "select * from T_PMrph where F_ItemNo like '%B%' and F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo "
    "from T_POrder where F_Status <> '1' and F_Status <> '2'";

// The production numbers listed, in ascending order (the list itself has no order by).
std::vector<double> listed(const Collection& c) {
  std::vector<double> out = prodNos(c);
  std::sort(out.begin(), out.end());
  return out;
}

class PurchaseLists : public PMrphTest {
 protected:
  void SetUp() override {
    PMrphTest::SetUp();
    exec(kPlanning);
  }
};

TEST_F(PurchaseLists, QueryByIDForPurWithoutItemAndRangeListsEveryOpenOrdersPlannedPurchase) {
  Collection col;

  EXPECT_EQ(pmrph().QueryByIDForPur(col, 0, 0, 4, ""), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPur) + ")"});
  EXPECT_EQ(
      sql()[0],
      "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
      "F_Status <> '1' and F_Status <> '2')");
  // Status 1 and 2 are left out, and so is the order without a status (NULL <> '1' is not true).
  EXPECT_EQ(listed(col), (std::vector<double>{2026110001, 2026110004, 2026110006, 2026110011}));
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByIDForPurFillsAllSevenColumnsOfEachHeader) {
  Collection col;
  ASSERT_EQ(pmrph().QueryByIDForPur(col, 2026110004, 2026110004, 1, ""), 1);
  ASSERT_EQ(col.Count(), 1);
  clsEntPMrph e(col.Item(1));
  EXPECT_EQ(e.F_ProdNo(), 2026110004);
  EXPECT_EQ(e.F_ItemNo(), "M-B2");
  EXPECT_EQ(e.F_OrderQty(), 50);
  EXPECT_EQ(e.F_SafeQty(), 0);
  EXPECT_EQ(e.F_NeedQty(), 5);
  EXPECT_EQ(e.F_PlanPurQty(), 5);
  EXPECT_EQ(e.F_Status(), 3);
}

TEST_F(PurchaseLists, AListedHeaderWhoseItemNumberIsNullHasAnEmptyItemNumber) {
  Collection col;
  ASSERT_EQ(pmrph().QueryByIDForPur(col, 2026110006, 2026110006, 1, ""), 1);
  ASSERT_EQ(col.Count(), 1);
  clsEntPMrph e(col.Item(1));
  EXPECT_EQ(e.F_ProdNo(), 2026110006);
  EXPECT_EQ(e.F_ItemNo(), "");
  EXPECT_EQ(e.F_OrderQty(), 0);
  EXPECT_EQ(e.F_SafeQty(), 0);
  EXPECT_EQ(e.F_NeedQty(), 0);
  EXPECT_EQ(e.F_PlanPurQty(), 2.5);
  EXPECT_EQ(e.F_Status(), 0);
}

TEST_F(PurchaseLists, QueryByIDForPurRangeOneTakesBothBoundsQuoted) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110002, 2026110004, 1, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPur) +
                                            " and F_ProdNo >= '2026110002' and F_ProdNo <= '2026110004')"});
  EXPECT_EQ(listed(col), std::vector<double>{2026110004});
}

TEST_F(PurchaseLists, QueryByIDForPurRangeTwoTakesTheLowerBoundOnly) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110004, 2026110001, 2, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPur) + " and F_ProdNo >= '2026110004')"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110004, 2026110006, 2026110011}));
}

TEST_F(PurchaseLists, QueryByIDForPurRangeThreeTakesTheUpperBoundOnly) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110006, 2026110004, 3, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPur) + " and F_ProdNo <= '2026110004')"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110001, 2026110004}));
}

TEST_F(PurchaseLists, QueryByIDForPurWithAnItemFilterAndRangeOne) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110002, 2026110004, 1, "B"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPurItemB) +
                                            " and F_ProdNo >= '2026110002' and F_ProdNo <= '2026110004')"});
  EXPECT_EQ(listed(col), std::vector<double>{2026110004});
}

TEST_F(PurchaseLists, QueryByIDForPurWithAnItemFilterAndRangeTwo) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110005, 0, 2, "B"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPurItemB) + " and F_ProdNo >= '2026110005')"});
  EXPECT_EQ(listed(col), std::vector<double>{2026110011});
}

TEST_F(PurchaseLists, QueryByIDForPurWithAnItemFilterAndRangeThree) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 0, 2026110004, 3, "B"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPurItemB) + " and F_ProdNo <= '2026110004')"});
  EXPECT_EQ(listed(col), std::vector<double>{2026110004});
}

TEST_F(PurchaseLists, QueryByIDForPurWithAnItemFilterAndNoRange) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 0, 0, 4, "B"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kForPurItemB) + ")"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110004, 2026110011}));
}

TEST_F(PurchaseLists, QueryByIDForPurSplicesTheItemNumberAndFractionalBoundsAsTheyStand) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110003.5, 2026110010.25, 1, "M-A"), 0);
  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "select * from T_PMrph where F_ItemNo like '%M-A%' and F_PlanPurQty > '0' and F_ProdNo in "
                "(select F_ProdNo from T_POrder where F_Status <> '1' and F_Status <> '2' and F_ProdNo >= "
                "'2026110003.5' and F_ProdNo <= '2026110010.25')"});
  EXPECT_EQ(listed(col), std::vector<double>{});
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110000.5, 2026110010.25, 1, "M-A"), 1);
  EXPECT_EQ(listed(col), std::vector<double>{2026110001});
}

TEST_F(PurchaseLists, QueryByIDForPurWithRangeChoiceZeroOrFiveSendsNothingAndLeavesTheCollection) {
  for (std::int16_t intCnt : {0, 5}) {
    Collection col;
    col.Add(header(1));
    EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110001, 2026110011, intCnt, ""), 0) << intCnt;
    EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110001, 2026110011, intCnt, "B"), 0) << intCnt;
    EXPECT_EQ(prodNos(col), std::vector<double>{1}) << intCnt;
  }
  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByIDForPurAppendsToWhatTheCollectionHeld) {
  Collection col;
  col.Add(header(1));
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 2026110001, 2026110001, 1, ""), 1);
  EXPECT_EQ(prodNos(col), (std::vector<double>{1, 2026110001}));
}

TEST_F(PurchaseLists, QueryByIDForPurWithNothingToBuyReturnsZeroSilently) {
  exec("delete from t_pmrph where F_ProdNo in (2026110001, 2026110004, 2026110006, 2026110011)");
  Collection col;
  EXPECT_EQ(pmrph().QueryByIDForPur(col, 0, 0, 4, ""), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_EQ(sql().size(), 1u);
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByIDForPurAfterAnErrorReturnsZeroWithTheDescription) {
  exec("drop table t_porder");
  Collection col;

  EXPECT_EQ(pmrph().QueryByIDForPur(col, 0, 0, 4, ""), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_porder' doesn't exist");
}

// QueryByDeliverDate

constexpr const char* kByDate =
    "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
    "F_Status <> '1' and F_Status <> '2'";

TEST_F(PurchaseLists, QueryByDeliverDateRangeOneTakesBothDates) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 1), date(2026, 12, 15), 1), 1);
  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from "
                "T_POrder where F_Status <> '1' and F_Status <> '2' and F_DeliverDate >= '2026-12-1' and "
                "F_DeliverDate <= '2026-12-15')"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110001, 2026110004}));
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByDeliverDateRangeTwoTakesTheStartOnly) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 2), date(2026, 12, 3), 2), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kByDate) + " and F_DeliverDate >= '2026-12-2')"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110004, 2026110006, 2026110011}));
}

TEST_F(PurchaseLists, QueryByDeliverDateRangeThreeTakesTheEndOnlyWithItsTime) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 2), date(2027, 1, 10, 12, 30), 3), 1);
  EXPECT_EQ(sql(),
            std::vector<std::string>{std::string(kByDate) + " and F_DeliverDate <= '2027-1-10 12:30:00')"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110001, 2026110004, 2026110006}));
}

TEST_F(PurchaseLists, QueryByDeliverDateRangeFourTakesNoDate) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 2), date(2026, 12, 3), 4), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kByDate) + ")"});
  EXPECT_EQ(listed(col), (std::vector<double>{2026110001, 2026110004, 2026110006, 2026110011}));
}

TEST_F(PurchaseLists, QueryByDeliverDateWithRangeChoiceZeroOrFiveSendsNothingAndLeavesTheCollection) {
  for (std::int16_t intCnt : {0, 5}) {
    Collection col;
    col.Add(header(1));
    EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 1), date(2027, 12, 1), intCnt), 0) << intCnt;
    EXPECT_EQ(prodNos(col), std::vector<double>{1}) << intCnt;
  }
  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByDeliverDateWithNoOrderInTheRangeReturnsZero) {
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2030, 1, 1), date(2030, 12, 31), 1), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(shown().empty());
}

TEST_F(PurchaseLists, QueryByDeliverDateAfterAnErrorReturnsZeroWithTheDescription) {
  exec("drop table t_pmrph");
  Collection col;
  EXPECT_EQ(pmrph().QueryByDeliverDate(col, date(2026, 12, 1), date(2026, 12, 15), 1), 0);
  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

}  // namespace
}  // namespace tovrand::test
