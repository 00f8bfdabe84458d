// The sample data set: it loads on top of the schema in strict mode and holds the variety the demo
// and the benchmarks rely on (every planning status, outsourced orders with and without
// outsourcing lines, allocated and unallocated sales-order lines, closed purchases, ...).

#include <string>

#include <gtest/gtest.h>

#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

class SampleDataTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    loadSample();
  }

  long count(const std::string& sql) const { return std::stol(scalar(sql)); }
};

TEST_F(SampleDataTest, HasFiveCustomersAndSixSalesOrdersWithFifteenLines) {
  EXPECT_EQ(count("select count(distinct F_CustNo) from T_BOrderh"), 5);
  EXPECT_EQ(count("select count(*) from T_BOrderh"), 6);
  EXPECT_EQ(count("select count(*) from T_BOrderi"), 15);
  EXPECT_EQ(count("select count(*) from T_BOrderi i left join T_BOrderh h on h.F_OrderNo = i.F_OrderNo "
                  "where h.F_OrderNo is null"),
            0);
}

TEST_F(SampleDataTest, SomeSalesLinesHaveProductionNumbersAndSomeDoNot) {
  EXPECT_GE(count("select count(*) from T_BOrderi where F_ProdNo is not null"), 5);
  EXPECT_GE(count("select count(*) from T_BOrderi where F_ProdNo is null"), 3);
  EXPECT_GE(count("select count(*) from T_BOrderh where F_Flags = 1"), 1);
  EXPECT_GE(count("select count(*) from T_BOrderh where ifnull(F_Flags, 0) = 0"), 1);
}

TEST_F(SampleDataTest, EveryAllocatedSalesLineHasItsReview) {
  EXPECT_EQ(count("select count(*) from T_BOrderi i where i.F_ProdNo is not null and not exists "
                  "(select 1 from T_POrderChk c where c.F_ProdNo = i.F_ProdNo)"),
            0);
  EXPECT_EQ(count("select count(*) from T_POrderChk c where not exists "
                  "(select 1 from T_BOrderi i where i.F_ProdNo = c.F_ProdNo)"),
            0);
}

TEST_F(SampleDataTest, ProductionNumbersAreMonthPrefixedFromSeptemberToNovember2026) {
  EXPECT_EQ(scalar("select group_concat(distinct left(F_ProdNo,6) order by left(F_ProdNo,6) separator ',') "
                   "from T_POrderChk"),
            "202609,202610,202611");
  EXPECT_EQ(count("select count(*) from T_POrderChk where length(cast(F_ProdNo as char)) <> 10"), 0);
  EXPECT_EQ(count("select count(*) from t_porder p where not exists "
                  "(select 1 from T_POrderChk c where c.F_ProdNo = p.F_ProdNo)"),
            0);
}

TEST_F(SampleDataTest, ReviewsRangeFromFullySignedToUntouched) {
  EXPECT_GE(count("select count(*) from T_POrderChk where F_CSChecker is not null and F_Status = 1"), 1);
  EXPECT_GE(count("select count(*) from T_POrderChk where F_BSChecker is not null and F_CSChecker is null"),
            1);
  EXPECT_GE(count("select count(*) from T_POrderChk where F_BSChecker is null and F_EGAdmit is null"), 1);
}

TEST_F(SampleDataTest, EveryReviewLoadsWithoutNullInAColumnThatCannotReadNull) {
  EXPECT_EQ(count("select count(*) from T_POrderChk where F_OrderNo is null or F_OrderCount is null "
                  "or F_DeliverDate is null or F_BStradCon is null or F_BSCheckTime is null "
                  "or F_EGCheckTime is null or F_WIFill is null or F_WIEndtime is null or F_WPStock is null "
                  "or F_WPEndTime is null or F_WIChecktime is null or F_PUCheckTime is null "
                  "or F_QCheckTime is null or F_MKDate is null or F_MKCheckTime is null "
                  "or F_CSCheckTime is null or F_AlerTime is null"),
            0);
}

TEST_F(SampleDataTest, ProductionOrdersVaryInStatusAndOrderMode) {
  EXPECT_GE(count("select count(*) from t_porder where F_OrderMode = '外发加工'"), 2);
  EXPECT_GE(count("select count(distinct F_OrderMode) from t_porder"), 3);
  EXPECT_GE(count("select count(*) from t_porder where F_Status is null"), 1);
  EXPECT_GE(count("select count(*) from t_porder where F_Status = 0"), 1);
  EXPECT_GE(count("select count(*) from t_porder where F_Status = 1"), 1);
  EXPECT_GE(count("select count(*) from t_porder where F_Status = 2"), 1);
}

TEST_F(SampleDataTest, OutsourcedOrdersExistWithAndWithoutOutsourcingLines) {
  EXPECT_GE(count("select count(*) from t_porder p where F_OrderMode = '外发加工' and exists "
                  "(select 1 from t_boutmakei b where b.F_ProdNo = p.F_ProdNo)"),
            1);
  EXPECT_GE(count("select count(*) from t_porder p where F_OrderMode = '外发加工' and not exists "
                  "(select 1 from t_boutmakei b where b.F_ProdNo = p.F_ProdNo)"),
            1);
}

TEST_F(SampleDataTest, OutsourcingCandidatesLeaveOutTheFullyOutsourcedOrder) {
  EXPECT_EQ(
      scalar(
          "select group_concat(pi.F_ProdNo order by pi.F_ProdNo separator ',') from t_porder pi "
          "where f_ordermode='外发加工' and (F_status is null or F_status=0) and ((pi.F_Ordqty >(select "
          "sum(F_ordoutqty) as F_ordoutqty from t_boutmakei where F_ProdNo=pi.F_ProdNo)) or ((select "
          "sum(t_boutmakei.F_ordoutqty) from t_boutmakei where t_boutmakei.F_ProdNo=pi.F_ProdNo) is null))"),
      "2026090003,2026110001");
}

TEST_F(SampleDataTest, ItemMasterHoldsTwentyItemsAndFourBillsOfMaterial) {
  EXPECT_EQ(count("select count(*) from T_EItem"), 20);
  EXPECT_EQ(count("select count(distinct F_GoodsNo) from T_EBom"), 4);
  EXPECT_EQ(count("select count(*) from T_EBom b where not exists "
                  "(select 1 from T_EItem e where e.F_ItemNo = b.F_PartNo)"),
            0);
}

TEST_F(SampleDataTest, OneBillOfMaterialIsNotApproved) {
  EXPECT_EQ(count("select count(*) from T_EBomCheck"), 4);
  EXPECT_EQ(scalar("select F_GoodsNo from T_EBomCheck where F_Approve = ''"), "FG-1004");
  EXPECT_EQ(count("SELECT count(*) FROM T_EBom B,T_EBomCheck BC WHERE BC.F_GoodsNo= 'FG-1004' And "
                  "BC.F_GoodsNo=B.F_GoodsNo AND BC.F_Approve<>''"),
            0);
  EXPECT_GT(count("SELECT count(*) FROM T_EBom B,T_EBomCheck BC WHERE BC.F_GoodsNo= 'FG-1001' And "
                  "BC.F_GoodsNo=B.F_GoodsNo AND BC.F_Approve<>''"),
            0);
}

TEST_F(SampleDataTest, StockHasSummariesWarehouseLinesAndReservations) {
  EXPECT_GE(count("select count(*) from T_WStockQtyh"), 10);
  EXPECT_GE(count("select count(*) from T_WStockQtyi"), 10);
  EXPECT_GE(
      count(
          "select count(*) from (select F_ItemNo from T_WStockQtyi group by F_ItemNo having count(*) > 1) m"),
      1);
  EXPECT_GE(count("select count(*) from T_WStockQtys"), 3);
  EXPECT_GE(count("select count(*) from T_EItem e where not exists "
                  "(select 1 from T_WStockQtyh h where h.F_ItemNo = e.F_ItemNo)"),
            1);
}

TEST_F(SampleDataTest, PurchaseOrdersIncludeClosedOnes) {
  EXPECT_GE(count("select count(*) from T_CPurh where F_Status = 3"), 1);
  EXPECT_GE(count("select count(*) from T_CPurh where F_Status <> 3"), 1);
  EXPECT_GE(count("select count(*) from T_CPuri i join T_CPurh h on h.F_PurNo = i.F_PurNo "
                  "where h.F_Status <> 3 and i.F_Status = 3"),
            1);
  EXPECT_EQ(count("select count(*) from T_CPuri i where not exists "
                  "(select 1 from T_CPurh h where h.F_PurNo = i.F_PurNo)"),
            0);
}

TEST_F(SampleDataTest, OpenPurchasesOfAMaterialLeaveOutClosedOrdersAndLines) {
  EXPECT_EQ(scalar("SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where   "
                   "F_Status<>3) h WHERE F_ItemNo='RM-2001' and F_Status<>3 and F_ProdNo=2026100001 and "
                   "F_PurNo=h.PurNo"),
            "236.8");
}

TEST_F(SampleDataTest, PlanningHeadersCoverStatusesOneToThreeAndLinesZeroToThree) {
  EXPECT_EQ(scalar("select group_concat(distinct F_Status order by F_Status separator ',') from T_PMrph"),
            "1,2,3");
  EXPECT_EQ(scalar("select group_concat(distinct F_Status order by F_Status separator ',') from T_PMrpi"),
            "0,1,2,3");
  EXPECT_GE(count("select count(*) from T_PMrph where F_PlanPurQty > '0'"), 1);
  EXPECT_GE(count("select count(*) from T_PMrpi where F_RequestQty > '0'"), 1);
  EXPECT_EQ(count("select count(*) from T_PMrpi i where not exists "
                  "(select 1 from T_PMrph h where h.F_ProdNo = i.F_ProdNo)"),
            0);
}

TEST_F(SampleDataTest, ChineseTextIsStoredAsUtf8) {
  // 不锈钢真空保温杯 in UTF-8.
  EXPECT_EQ(scalar("select hex(F_ItemName) from T_EItem where F_ItemNo = 'FG-1001'"),
            "E4B88DE99488E992A2E79C9FE7A9BAE4BF9DE6B8A9E69DAF");
  EXPECT_EQ(scalar("select hex(F_OrderMode) from t_porder where F_ProdNo = 2026090003"),
            "E5A496E58F91E58AA0E5B7A5");
}

TEST_F(SampleDataTest, DatesLieBetweenAugust2026AndJanuary2027) {
  EXPECT_EQ(
      count("select count(*) from T_BOrderh where F_OrderDate < '2026-08-01' or F_OrderDate >= '2027-02-01'"),
      0);
  EXPECT_EQ(count("select count(*) from T_BOrderi where F_DeliverDate < '2026-08-01' or F_DeliverDate >= "
                  "'2027-02-01'"),
            0);
}

}  // namespace
}  // namespace tovrand::test
