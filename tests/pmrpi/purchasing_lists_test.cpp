// clsDataPMrpi: the lists purchasing works from, by production-number range and by delivery date.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

constexpr const char* kHead =
    "select * from T_PMrpi where F_RequestQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
    "F_Status <> '1' and F_Status <> '2'";
constexpr const char* kFilteredHead =
    "select * from T_PMrpi where F_ItemNo like '%RM-200%' and F_RequestQty > '0' and F_ProdNo in (select "
    "F_ProdNo from T_POrder where F_Status <> '1' and F_Status <> '2'";

// Open orders 2026110001 (status 0), 2026110005 (status 3) and 2026120001 (status 0); closed ones in
// status 1 and 2, and one whose status is NULL (which "<> '1'" does not let through either).
class PurchasingLists : public PMrpiTest {
 protected:
  void SetUp() override {
    PMrpiTest::SetUp();
    exec(
        "insert into t_porder (F_ProdNo, F_Status, F_DeliverDate) values "
        "(2026110001, 0, '2026-12-01 00:00:00'), (2026110002, NULL, '2026-12-05 00:00:00'), "
        "(2026110003, 1, '2026-12-10 00:00:00'), (2026110004, 2, '2026-12-15 00:00:00'), "
        "(2026110005, 3, '2026-12-20 10:30:00'), (2026120001, 0, '2027-01-05 00:00:00')");
    exec(
        "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
        "F_Status) values "
        "(2026110001, 'RM-2001', 2.5, 0.03, 10, 12, 7, 0), "
        "(2026110001, 'RM-2002', 1, 0, 0, 0, 3, 0), "
        "(2026110001, 'PK-3001', NULL, NULL, NULL, 5, NULL, NULL), "
        "(2026110002, 'RM-2001', 1, 0, 0, 4, 3, 0), "
        "(2026110003, 'RM-2001', 1, 0, 0, 4, 3, 0), "
        "(2026110004, 'RM-2001', 1, 0, 0, 4, 3, 0), "
        "(2026110005, 'RM-2003', 0.5, 0.1, 2, 8, 14, 2), "
        "(2026120001, 'RM-2001', 3, 0, 0, 3, 7, 3)");
  }
};

const std::string kLine1 = "2026110001|RM-2001|2.5|0.03|10|12|7|0";
const std::string kLine1Pk = "2026110001|PK-3001|0|0|0|5|0|0";
const std::string kLine5 = "2026110005|RM-2003|0.5|0.1|2|8|14|2";
const std::string kLine12 = "2026120001|RM-2001|3|0|0|3|7|3";

TEST_F(PurchasingLists, QueryByIDForPurFromStartToEndListsLinesStillToBuyOfOpenOrdersInTheRange) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110001, 2026110005, 1, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) +
                                            " and F_ProdNo >= '2026110001' and F_ProdNo <= '2026110005')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{kLine1Pk, kLine1, kLine5}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(PurchasingLists, QueryByIDForPurFromStartOnListsEverythingAboveTheStart) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110005, 0, 2, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + " and F_ProdNo >= '2026110005')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByIDForPurUpToEndListsEverythingBelowTheEnd) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 0, 2026110004, 3, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + " and F_ProdNo <= '2026110004')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine1Pk, kLine1}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithoutRangeListsEveryLineStillToBuyOfAnOpenOrder) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110005, 2026110005, 4, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + ")"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{kLine1Pk, kLine1, kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithAnItemFilterFromStartToEnd) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110001, 2026110005, 1, "RM-200"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kFilteredHead) +
                                            " and F_ProdNo >= '2026110001' and F_ProdNo <= '2026110005')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine1, kLine5}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithAnItemFilterFromStartOn) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110002, 0, 2, "RM-200"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kFilteredHead) + " and F_ProdNo >= '2026110002')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithAnItemFilterUpToEnd) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 0, 2026110001, 3, "RM-200"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kFilteredHead) + " and F_ProdNo <= '2026110001')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine1}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithAnItemFilterAndNoRange) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 0, 0, 4, "RM-200"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kFilteredHead) + ")"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{kLine1, kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByIDForPurWithRangeChoiceZeroOrFiveRunsNothingAndLeavesTheCollection) {
  for (std::int16_t intCnt : {std::int16_t{0}, std::int16_t{5}}) {
    SCOPED_TRACE(intCnt);
    Collection col;
    clsEntPMrpi held;
    held.F_ItemNo("HELD");
    col.Add(held);
    EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110001, 2026120001, intCnt, ""), 0);
    EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110001, 2026120001, intCnt, "RM-200"), 0);
    EXPECT_TRUE(statements().empty());
    ASSERT_EQ(col.Count(), 1);
    EXPECT_EQ(clsEntPMrpi(col.Item(1)).F_ItemNo(), "HELD");
    EXPECT_TRUE(messages().messages().empty());
  }
}

TEST_F(PurchasingLists, QueryByIDForPurAppendsToWhatTheCollectionHeld) {
  Collection col;
  clsEntPMrpi held;
  held.F_ItemNo("HELD");
  col.Add(held);
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026120001, 2026120001, 1, ""), 1);
  ASSERT_EQ(col.Count(), 2);
  EXPECT_EQ(clsEntPMrpi(col.Item(1)).F_ItemNo(), "HELD");
  EXPECT_EQ(describeLine(clsEntPMrpi(col.Item(2))), kLine12);
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026120001, 2026120001, 1, ""), 1);
  EXPECT_EQ(col.Count(), 3);
}

TEST_F(PurchasingLists, QueryByIDForPurWithNothingToBuyInTheRangeReturnsZeroSilently) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110002, 2026110004, 1, ""), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(PurchasingLists, QueryByIDForPurSplicesProductionNumbersAsTheirDecimalText) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 2026110000.5, 1e15, 1, ""), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) +
                                            " and F_ProdNo >= '2026110000.5' and F_ProdNo <= '1E+15')"});
  EXPECT_EQ(col.Count(), 4);
}

TEST_F(PurchasingLists, QueryByIDForPurWithAQuoteInTheItemShowsTheDescriptionAndReturnsTwo) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 0, 0, 4, "RM'1"), 2);
  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "select * from T_PMrpi where F_ItemNo like '%RM'1%' and F_RequestQty > '0' and F_ProdNo "
                "in (select F_ProdNo from T_POrder where F_Status <> '1' and F_Status <> '2')"});
  EXPECT_EQ(messages().messages(),
            std::vector<Message>{information(syntaxError(
                "1%' and F_RequestQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder whe..."))});
  EXPECT_EQ(col.Count(), 0);
  // The object stays usable.
  EXPECT_EQ(pmrpi().QueryByIDForPur(col, 0, 0, 4, ""), 1);
}

TEST_F(PurchasingLists, QueryByDeliverDateBetweenTwoDatesListsLinesOfOpenOrdersDueThen) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2026, 12, 1), date(2026, 12, 20, 10, 30), 1), 1);
  EXPECT_EQ(sql(),
            std::vector<std::string>{std::string(kHead) +
                                     " and F_DeliverDate >= '2026-12-1' and F_DeliverDate <= '2026-12-20 "
                                     "10:30:00')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{kLine1Pk, kLine1, kLine5}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(PurchasingLists, QueryByDeliverDateFromADateOnKeepsOnlyTheLowerBound) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2026, 12, 2), date(2026, 12, 3), 2), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + " and F_DeliverDate >= '2026-12-2')"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByDeliverDateUpToADateKeepsOnlyTheUpperBound) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2027, 1, 1), date(2026, 12, 20), 3), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + " and F_DeliverDate <= '2026-12-20')"});
  // The order due at 10:30 on the last day is later than that day's midnight.
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine), (std::vector<std::string>{kLine1Pk, kLine1}));
}

TEST_F(PurchasingLists, QueryByDeliverDateWithoutBoundsListsEveryLineStillToBuyOfAnOpenOrder) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2030, 1, 1), date(2020, 1, 1), 4), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{std::string(kHead) + ")"});
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{kLine1Pk, kLine1, kLine5, kLine12}));
}

TEST_F(PurchasingLists, QueryByDeliverDateWithRangeChoiceZeroOrFiveRunsNothingAndLeavesTheCollection) {
  for (std::int16_t intCnt : {std::int16_t{0}, std::int16_t{5}}) {
    SCOPED_TRACE(intCnt);
    Collection col;
    clsEntPMrpi held;
    held.F_ItemNo("HELD");
    col.Add(held);
    EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2026, 1, 1), date(2027, 12, 31), intCnt), 0);
    EXPECT_TRUE(statements().empty());
    ASSERT_EQ(col.Count(), 1);
    EXPECT_EQ(clsEntPMrpi(col.Item(1)).F_ItemNo(), "HELD");
    EXPECT_TRUE(messages().messages().empty());
  }
}

TEST_F(PurchasingLists, QueryByDeliverDateWithNothingDueReturnsZeroAndKeepsTheCollection) {
  Collection col;
  clsEntPMrpi held;
  col.Add(held);
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2026, 12, 2), date(2026, 12, 19), 1), 0);
  EXPECT_EQ(col.Count(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(PurchasingLists, QueryByDeliverDateWithoutTheOrderTableShowsTheDescriptionAndReturnsTwo) {
  exec("drop table t_porder");
  Collection col;
  EXPECT_EQ(pmrpi().QueryByDeliverDate(col, date(2026, 12, 1), date(2026, 12, 31), 1), 2);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_porder"))});
  EXPECT_EQ(col.Count(), 0);
}

}  // namespace
}  // namespace tovrand::test
