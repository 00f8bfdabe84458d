// clsDataPMrph: the single-row and list queries of planning headers, and UpdateRecord.
#include <gtest/gtest.h>

#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

using HeaderQueries = PMrphTest;

constexpr const char* kTwoHeaders =
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
    "values "
    "(2026110001, 'P-100', 120, 10, 55.5, 40, 1), (2026110002, 'P-200', 30, 0, 0, 0, 3)";

// QueryBOrderhRecordset

constexpr const char* kSalesOrder =
    "insert into t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID) values "
    "(5001, '2026-10-30 09:15:00', 'C001', 'PO-77', '王伟');"
    "insert into t_borderi (F_OrderNo, F_No, F_ItemNo, F_ProdNo) values (5001, '1', 'P-100', 2026110001)";

TEST_F(HeaderQueries, QueryBOrderhRecordsetFillsTheSalesOrderHeaderAndStillReturnsZero) {
  exec(kSalesOrder);
  clsEntBOrderh entity;
  entity.F_SalerID("kept");

  EXPECT_EQ(pmrph().QueryBOrderhRecordset(entity, 2026110001), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select Bh.* From T_BOrderh Bh,T_BOrderi Bi  Where "
                                            "Bh.F_OrderNo=Bi.F_OrderNo And Bi.F_ProdNo='2026110001'"});
  EXPECT_EQ(entity.F_OrderNo(), 5001);
  EXPECT_EQ(entity.F_OrderDate(), date(2026, 10, 30, 9, 15));
  EXPECT_EQ(entity.F_CustNo(), "C001");
  // Only the three columns are taken.
  EXPECT_EQ(entity.F_CorderNo(), "");
  EXPECT_EQ(entity.F_SalerID(), "kept");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryBOrderhRecordsetForAnUnknownNumberReturnsZeroAndLeavesTheEntity) {
  exec(kSalesOrder);
  clsEntBOrderh entity;
  entity.F_OrderNo(9.0);
  entity.F_CustNo("mine");

  EXPECT_EQ(pmrph().QueryBOrderhRecordset(entity, 2026119999), 0);

  EXPECT_EQ(entity.F_OrderNo(), 9);
  EXPECT_EQ(entity.F_CustNo(), "mine");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryBOrderhRecordsetReadsNullsAsZeroZeroDateAndEmptyText) {
  exec(
      "insert into t_borderh (F_OrderNo) values (5002);"
      "insert into t_borderi (F_OrderNo, F_ProdNo) values (5002, 2026110003)");
  clsEntBOrderh entity;
  entity.F_OrderDate(date(2020, 1, 1));
  entity.F_CustNo("x");

  EXPECT_EQ(pmrph().QueryBOrderhRecordset(entity, 2026110003), 0);

  EXPECT_EQ(entity.F_OrderNo(), 5002);
  EXPECT_EQ(entity.F_OrderDate(), VbDate{});
  EXPECT_EQ(entity.F_CustNo(), "");
}

TEST_F(HeaderQueries, QueryBOrderhRecordsetAfterAnErrorReturnsTwoWithTheCriticalErrorNotice) {
  exec("drop table t_borderh");
  clsEntBOrderh entity;

  EXPECT_EQ(pmrph().QueryBOrderhRecordset(entity, 2026110001), 2);

  expectOneMessage(vbCritical, "错误提示", "t_borderh' doesn't exist");
}

// QueryPMrphRecordset

TEST_F(HeaderQueries, QueryPMrphRecordsetRunsTheCallersTextAndTakesSixColumns) {
  exec(kTwoHeaders);
  exec("insert into t_pmrph (F_ProdNo) values (2026110009)");
  Collection col;
  std::string text = "select * from T_PMrph where F_ProdNo <> 2026110002 order by F_ProdNo desc";

  EXPECT_EQ(pmrph().QueryPMrphRecordset(col, text), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{text});
  EXPECT_EQ(text, "select * from T_PMrph where F_ProdNo <> 2026110002 order by F_ProdNo desc");
  ASSERT_EQ(prodNos(col), (std::vector<double>{2026110009, 2026110001}));
  clsEntPMrph empty(col.Item(1)), full(col.Item(2));
  EXPECT_EQ(empty.F_ItemNo(), "");
  EXPECT_EQ(empty.F_OrderQty(), 0);
  EXPECT_EQ(empty.F_PlanPurQty(), 0);
  EXPECT_EQ(full.F_ItemNo(), "P-100");
  EXPECT_EQ(full.F_OrderQty(), 120);
  EXPECT_EQ(full.F_SafeQty(), 10);
  EXPECT_EQ(full.F_NeedQty(), 55.5);
  EXPECT_EQ(full.F_PlanPurQty(), 40);
  // F_Status is not among the columns this list takes.
  EXPECT_EQ(full.F_Status(), 0);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryPMrphRecordsetWithNoRowsReturnsZeroSilently) {
  Collection col;
  std::string text = "select * from T_PMrph";
  EXPECT_EQ(pmrph().QueryPMrphRecordset(col, text), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryPMrphRecordsetWithABadTextShowsTheCriticalErrorNotice) {
  Collection col;
  std::string text = "select * from T_PMrph wher F_ProdNo=1";

  EXPECT_EQ(pmrph().QueryPMrphRecordset(col, text), 0);

  expectOneMessage(vbCritical, "错误提示", "You have an error in your SQL syntax");
}

TEST_F(HeaderQueries, QueryPMrphRecordsetFailingAfterARowReturnsZeroAndKeepsWhatWasAdded) {
  exec(kTwoHeaders);
  Collection col;
  std::string text =
      "select F_ProdNo, F_ItemNo, if(F_ProdNo=2026110002, 'x', F_OrderQty) as F_OrderQty, F_SafeQty, "
      "F_NeedQty, F_PlanPurQty from T_PMrph order by F_ProdNo";

  EXPECT_EQ(pmrph().QueryPMrphRecordset(col, text), 0);

  EXPECT_EQ(prodNos(col), std::vector<double>{2026110001});
  EXPECT_EQ(shown(), (std::vector<Message>{{"Type mismatch", vbCritical, "错误提示"}}));
}

// QueryPMrphStatus

TEST_F(HeaderQueries, QueryPMrphStatusReadsStatusPlannedPurchaseAndNeed) {
  exec(kTwoHeaders);
  clsEntPMrph entity = header(2026110001);
  entity.F_OrderQty(7.0);

  EXPECT_EQ(pmrph().QueryPMrphStatus(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select * From T_PMrph Where F_ProdNO='2026110001'"});
  EXPECT_EQ(entity.F_Status(), 1);
  EXPECT_EQ(entity.F_PlanPurQty(), 40);
  EXPECT_EQ(entity.F_NeedQty(), 55.5);
  EXPECT_EQ(entity.F_OrderQty(), 7);
  EXPECT_EQ(entity.F_ItemNo(), "");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryPMrphStatusReadsNullsAsZero) {
  exec("insert into t_pmrph (F_ProdNo) values (2026110005)");
  clsEntPMrph entity = header(2026110005);
  entity.F_Status(3);
  entity.F_PlanPurQty(4.0);
  entity.F_NeedQty(5.0);

  EXPECT_EQ(pmrph().QueryPMrphStatus(entity), 1);

  EXPECT_EQ(entity.F_Status(), 0);
  EXPECT_EQ(entity.F_PlanPurQty(), 0);
  EXPECT_EQ(entity.F_NeedQty(), 0);
}

TEST_F(HeaderQueries, QueryPMrphStatusForAMissingHeaderReturnsZeroSilently) {
  clsEntPMrph entity = header(2026110001);
  entity.F_Status(2);
  EXPECT_EQ(pmrph().QueryPMrphStatus(entity), 0);
  EXPECT_EQ(entity.F_Status(), 2);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryPMrphStatusAfterAnErrorShowsTheDescriptionInTheInformationBox) {
  exec("drop table t_pmrph");
  clsEntPMrph entity = header(2026110001);

  EXPECT_EQ(pmrph().QueryPMrphStatus(entity), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

// QueryByItemNo

TEST_F(HeaderQueries, QueryByItemNoLooksTheHeaderUpByProductionNumber) {
  exec(kTwoHeaders);
  clsEntPMrph entity = header(2026110002, "P-100");

  EXPECT_EQ(pmrph().QueryByItemNo(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from T_PMrph where F_ProdNo = '2026110002'"});
  EXPECT_EQ(entity.F_ProdNo(), 2026110002);
  EXPECT_EQ(entity.F_ItemNo(), "P-200");
  EXPECT_EQ(entity.F_OrderQty(), 30);
  EXPECT_EQ(entity.F_SafeQty(), 0);
  EXPECT_EQ(entity.F_NeedQty(), 0);
  EXPECT_EQ(entity.F_PlanPurQty(), 0);
  EXPECT_EQ(entity.F_Status(), 3);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, AHeaderWhoseItemNumberIsNullGivesAnEmptyItemNumber) {
  exec("insert into t_pmrph (F_ProdNo) values (2026110005)");
  clsEntPMrph entity = header(2026110005, "before");
  entity.F_OrderQty(1.0);
  entity.F_SafeQty(2.0);
  entity.F_NeedQty(3.0);
  entity.F_PlanPurQty(4.0);
  entity.F_Status(5);

  EXPECT_EQ(pmrph().QueryByItemNo(entity), 1);

  EXPECT_EQ(entity.F_ItemNo(), "");
  EXPECT_EQ(entity.F_OrderQty(), 0);
  EXPECT_EQ(entity.F_SafeQty(), 0);
  EXPECT_EQ(entity.F_NeedQty(), 0);
  EXPECT_EQ(entity.F_PlanPurQty(), 0);
  EXPECT_EQ(entity.F_Status(), 0);
}

TEST_F(HeaderQueries, QueryByItemNoForAMissingHeaderReturnsZeroAndLeavesTheEntity) {
  clsEntPMrph entity = header(2026110001, "P-100");
  entity.F_NeedQty(9.0);
  EXPECT_EQ(pmrph().QueryByItemNo(entity), 0);
  EXPECT_EQ(entity.F_NeedQty(), 9);
  EXPECT_EQ(entity.F_ItemNo(), "P-100");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryByItemNoAfterAnErrorShowsTheDescription) {
  exec("drop table t_pmrph");
  clsEntPMrph entity = header(2026110001);

  EXPECT_EQ(pmrph().QueryByItemNo(entity), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

// UpdateRecord

clsEntPMrph changedHeader() {
  clsEntPMrph e = header(2026110001, "P-101");
  e.F_OrderQty(130.0);
  e.F_SafeQty(12.0);
  e.F_NeedQty(60.25);
  e.F_PlanPurQty(45.0);
  e.F_Status(2);
  return e;
}

TEST_F(HeaderQueries, UpdateRecordWritesTheSevenColumnsOfTheHeader) {
  exec(kTwoHeaders);
  clsEntPMrph entity = changedHeader();

  EXPECT_EQ(pmrph().UpdateRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from T_PMrph where F_ProdNo = '2026110001'"});
  EXPECT_EQ(
      scalar("select concat_ws('|', F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, "
             "F_Status) from t_pmrph where F_ProdNo=2026110001"),
      "2026110001|P-101|130|12|60.25|45|2");
  EXPECT_EQ(scalar("select concat_ws('|', F_ItemNo, F_Status) from t_pmrph where F_ProdNo=2026110002"),
            "P-200|3");
  EXPECT_EQ(engineStatements().size(), 1u);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, UpdateRecordForAMissingHeaderReturnsTwoAndWritesNothing) {
  clsEntPMrph entity = changedHeader();

  EXPECT_EQ(pmrph().UpdateRecord(entity), 2);

  EXPECT_EQ(scalar("select count(*) from t_pmrph"), "0");
  EXPECT_TRUE(engineStatements().empty());
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, UpdateRecordWithAnItemNumberLongerThanItsColumnShowsTheLengthMessage) {
  exec(kTwoHeaders);
  clsEntPMrph entity = changedHeader();
  entity.F_ItemNo(std::string(31, 'I'));

  EXPECT_EQ(pmrph().UpdateRecord(entity), 0);

  EXPECT_EQ(shown(), (std::vector<Message>{{kTooLongMessage, vbInformation, kTitleQuenta}}));
  EXPECT_EQ(scalar("select concat_ws('|', F_ItemNo, F_OrderQty) from t_pmrph where F_ProdNo=2026110001"),
            "P-100|120");
}

TEST_F(HeaderQueries, UpdateRecordWithAnotherErrorShowsTheDatabasesDescription) {
  exec("drop table t_pmrph");
  clsEntPMrph entity = changedHeader();

  EXPECT_EQ(pmrph().UpdateRecord(entity), 0);

  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

// QueryMonthDate

TEST_F(HeaderQueries, QueryMonthDateGivesTheTwelveNewestMonthPrefixesNewestFirst) {
  // Fifteen months, 2025-09 to 2026-11, two headers in one of them.
  exec(
      "insert into t_pmrph (F_ProdNo) values (2025090001), (2025100001), (2025110001), (2025120001), "
      "(2026010001), (2026020001), (2026030001), (2026040001), (2026050001), (2026060001), (2026070001), "
      "(2026080001), (2026090001), (2026100001), (2026110001), (2026110002)");
  Collection col;

  EXPECT_EQ(pmrph().QueryMonthDate(col), 1);

  EXPECT_EQ(sql(),
            std::vector<std::string>{"SELECT DISTINCT  left(F_ProdNo,6) as F_ProdNo  from T_PMrph  order "
                                     "by F_ProdNo desc limit 0,12"});
  EXPECT_EQ(prodNos(col), (std::vector<double>{202611, 202610, 202609, 202608, 202607, 202606, 202605, 202604,
                                               202603, 202602, 202601, 202512}));
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryMonthDateOnAnEmptyTableReturnsZero) {
  Collection col;
  EXPECT_EQ(pmrph().QueryMonthDate(col), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryMonthDateAfterAnErrorShowsTheDescription) {
  exec("drop table t_pmrph");
  Collection col;
  EXPECT_EQ(pmrph().QueryMonthDate(col), 0);
  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

// QueryProdNo

TEST_F(HeaderQueries, QueryProdNoListsEveryHeaderNewestFirstWithNumberAndItem) {
  exec(kTwoHeaders);
  exec("insert into t_pmrph (F_ProdNo) values (2026100001)");
  Collection col;
  col.Add(clsEntPMrph());

  EXPECT_EQ(pmrph().QueryProdNo(col), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select *  from T_PMrph order by F_ProdNo Desc"});
  ASSERT_EQ(prodNos(col), (std::vector<double>{0, 2026110002, 2026110001, 2026100001}));
  EXPECT_EQ(clsEntPMrph(col.Item(2)).F_ItemNo(), "P-200");
  EXPECT_EQ(clsEntPMrph(col.Item(3)).F_ItemNo(), "P-100");
  EXPECT_EQ(clsEntPMrph(col.Item(4)).F_ItemNo(), "");
  // Only the number and the item are taken.
  EXPECT_EQ(clsEntPMrph(col.Item(3)).F_OrderQty(), 0);
  EXPECT_EQ(clsEntPMrph(col.Item(2)).F_Status(), 0);
}

TEST_F(HeaderQueries, QueryProdNoOnAnEmptyTableReturnsZero) {
  Collection col;
  EXPECT_EQ(pmrph().QueryProdNo(col), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryProdNoAfterAnErrorShowsTheDescription) {
  exec("drop table t_pmrph");
  Collection col;
  EXPECT_EQ(pmrph().QueryProdNo(col), 0);
  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

// QueryStatus

TEST_F(HeaderQueries, QueryStatusReadsTheProductionOrdersStatus) {
  exec("insert into t_porder (F_ProdNo, F_Status, F_CustNo) values (2026110001, 2, 'C001')");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110001.0);

  EXPECT_EQ(pmrph().QueryStatus(entity), 1);

  EXPECT_EQ(sql(),
            std::vector<std::string>{"select F_ProdNo,F_Status  from T_POrder where F_ProdNo=2026110001"});
  EXPECT_EQ(entity.F_Status(), 2);
  EXPECT_EQ(entity.F_CustNo(), "");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryStatusReadsANullStatusAsZero) {
  exec("insert into t_porder (F_ProdNo) values (2026110001)");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110001.0);
  entity.F_Status(3);
  EXPECT_EQ(pmrph().QueryStatus(entity), 1);
  EXPECT_EQ(entity.F_Status(), 0);
}

TEST_F(HeaderQueries, QueryStatusForAMissingOrderReturnsZeroAndLeavesTheStatus) {
  clsEntPOrder entity;
  entity.F_ProdNo(2026110001.0);
  entity.F_Status(3);
  EXPECT_EQ(pmrph().QueryStatus(entity), 0);
  EXPECT_EQ(entity.F_Status(), 3);
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryStatusAfterAnErrorShowsTheDescription) {
  exec("drop table t_porder");
  clsEntPOrder entity;
  EXPECT_EQ(pmrph().QueryStatus(entity), 0);
  EXPECT_EQ(sql(), std::vector<std::string>{"select F_ProdNo,F_Status  from T_POrder where F_ProdNo=0"});
  expectOneMessage(vbInformation, kTitleQuenta, "t_porder' doesn't exist");
}

// QueryProdNoRecord

TEST_F(HeaderQueries, QueryProdNoRecordFillsAllSevenColumns) {
  exec(kTwoHeaders);
  clsEntPMrph entity = header(2026110001);

  EXPECT_EQ(pmrph().QueryProdNoRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select *  from T_PMrph WHERE F_ProdNo=2026110001"});
  EXPECT_EQ(entity.F_ItemNo(), "P-100");
  EXPECT_EQ(entity.F_OrderQty(), 120);
  EXPECT_EQ(entity.F_SafeQty(), 10);
  EXPECT_EQ(entity.F_NeedQty(), 55.5);
  EXPECT_EQ(entity.F_PlanPurQty(), 40);
  EXPECT_EQ(entity.F_Status(), 1);
}

TEST_F(HeaderQueries, QueryProdNoRecordForAMissingHeaderReturnsZero) {
  clsEntPMrph entity = header(2026110001, "mine");
  EXPECT_EQ(pmrph().QueryProdNoRecord(entity), 0);
  EXPECT_EQ(entity.F_ItemNo(), "mine");
  EXPECT_TRUE(shown().empty());
}

TEST_F(HeaderQueries, QueryProdNoRecordAfterAnErrorShowsTheDescription) {
  exec("drop table t_pmrph");
  clsEntPMrph entity = header(2026110001);
  EXPECT_EQ(pmrph().QueryProdNoRecord(entity), 0);
  expectOneMessage(vbInformation, kTitleQuenta, "t_pmrph' doesn't exist");
}

TEST_F(HeaderQueries, TheObjectStaysUsableAfterAHandledError) {
  exec(kTwoHeaders);
  clsEntPMrph entity = header(2026110001);
  std::string bad = "select nonsense";
  Collection col;
  ASSERT_EQ(pmrph().QueryPMrphRecordset(col, bad), 0);
  EXPECT_EQ(pmrph().QueryProdNoRecord(entity), 1);
  EXPECT_EQ(entity.F_ItemNo(), "P-100");
}

}  // namespace
}  // namespace tovrand::test
