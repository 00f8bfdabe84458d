// clsDataPMrpi: single lines, the lines purchasing has taken up, and the lists by production number.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

class LineQueries : public PMrpiTest {
 protected:
  void SetUp() override {
    PMrpiTest::SetUp();
    exec(
        "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
        "F_Status) values "
        "(2026110001, 'RM-2001', 2.5, 0.03, 10, 12, 7, 0), "
        "(2026110001, 'RM-2002', 1.25, 0, 4, 6, 3, 2), "
        "(2026110001, 'PK-3001', NULL, NULL, NULL, NULL, NULL, 3), "
        "(2026110001, 'PK-3002', 1, 0, 0, 2, 1, NULL), "
        "(2026110002, 'RM-2001', 3, 0, 0, 9, 7, 3)");
  }
};

TEST_F(LineQueries, QueryByIDFillsTheEightColumnsOfTheLine) {
  clsEntPMrpi e = lineKey(2026110001, "RM-2001");
  EXPECT_EQ(pmrpi().QueryByID(e), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{
                       "select * from T_PMrpi where F_ProdNo = '2026110001' and F_ItemNo = 'RM-2001'"});
  EXPECT_EQ(describeLine(e), "2026110001|RM-2001|2.5|0.03|10|12|7|0");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryByIDReadsNullColumnsAsZero) {
  clsEntPMrpi e = lineKey(2026110001, "PK-3001");
  e.F_Dosage(9.0);
  e.F_LeadTime(9);
  EXPECT_EQ(pmrpi().QueryByID(e), 1);
  EXPECT_EQ(describeLine(e), "2026110001|PK-3001|0|0|0|0|0|3");
}

TEST_F(LineQueries, QueryByIDForAnUnknownLineReturnsZeroAndLeavesTheEntity) {
  clsEntPMrpi e = lineKey(2026110002, "RM-2002");
  e.F_Dosage(9.0);
  e.F_Status(1);
  EXPECT_EQ(pmrpi().QueryByID(e), 0);
  EXPECT_EQ(describeLine(e), "2026110002|RM-2002|9|0|0|0|0|1");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryByIDWithAQuoteInTheItemShowsTheDescriptionAndReturnsTwo) {
  clsEntPMrpi e = lineKey(2026110001, "RM'2001");
  EXPECT_EQ(pmrpi().QueryByID(e), 2);
  EXPECT_EQ(sql(), std::vector<std::string>{
                       "select * from T_PMrpi where F_ProdNo = '2026110001' and F_ItemNo = 'RM'2001'"});
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("2001'"))});
  EXPECT_EQ(describeLine(e), "2026110001|RM'2001|0|0|0|0|0|0");
  clsEntPMrpi probe = lineKey(2026110001, "RM-2001");
  EXPECT_EQ(pmrpi().QueryByID(probe), 1) << "the object stays usable";
}

TEST_F(LineQueries, QueryPMrpiStatusListsTheLinesInStatusTwoOrThree) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryPMrpiStatus(col, 2026110001), 1);
  EXPECT_EQ(sql(),
            std::vector<std::string>{"Select * From T_PMrpi Where F_ProdNO='2026110001' And (F_Status = "
                                     "3 Or F_Status = 2)"});
  // Only the item, the status and the requested quantity are read.
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{"0|PK-3001|0|0|0|0|0|3", "0|RM-2002|0|0|0|6|0|2"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryPMrpiStatusWithNoLineTakenUpReturnsZeroAndKeepsTheCollection) {
  exec("update t_pmrpi set F_Status = 1 where F_ProdNo = 2026110002");
  Collection col;
  col.Add(clsEntPMrpi());
  EXPECT_EQ(pmrpi().QueryPMrpiStatus(col, 2026110002), 0);
  EXPECT_EQ(col.Count(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryPMrpiStatusAppendsToWhatTheCollectionHeld) {
  Collection col;
  clsEntPMrpi held;
  held.F_ItemNo("HELD");
  col.Add(held);
  EXPECT_EQ(pmrpi().QueryPMrpiStatus(col, 2026110002), 1);
  EXPECT_EQ(describeAll<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{"0|HELD|0|0|0|0|0|0", "0|RM-2001|0|0|0|9|0|3"}));
}

TEST_F(LineQueries, QueryPMrpiStatusWithoutTheLineTableShowsTheDescriptionAndReturnsZero) {
  exec("drop table t_pmrpi");
  Collection col;
  EXPECT_EQ(pmrpi().QueryPMrpiStatus(col, 2026110001), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrpi"))});
  EXPECT_EQ(col.Count(), 0);
}

TEST_F(LineQueries, QueryItemNoRecordListsTheLinesOfTheProductionNumberPassedAsItemNo) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "2026110001"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * From T_PMrpi WHERE F_ProdNo='2026110001'"});
  // Seven columns are read, numbers NULL as "0"; the status is not read.
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{"2026110001|PK-3001|0|0|0|0|0|0", "2026110001|PK-3002|1|0|0|2|1|0",
                                      "2026110001|RM-2001|2.5|0.03|10|12|7|0",
                                      "2026110001|RM-2002|1.25|0|4|6|3|0"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryItemNoRecordGivenAMaterialNumberFindsNothing) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "RM-2001"), 0);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * From T_PMrpi WHERE F_ProdNo='RM-2001'"});
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryItemNoRecordFindsAMaterialNumberThatEqualsAProductionNumber) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo, F_RequestQty) values (4711, '4711', 1)");
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "4711"), 1);
  EXPECT_EQ(describeAll<clsEntPMrpi>(col, describeLine), std::vector<std::string>{"4711|4711|0|0|0|1|0|0"});
}

TEST_F(LineQueries, QueryItemNoRecordWithAQuoteShowsTheDescriptionAndReturnsTwo) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "2026'"), 2);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("'2026''"))});
  EXPECT_EQ(col.Count(), 0);
}

TEST_F(LineQueries, GetProdNoItemNoListsHeadersMatchingThePartOfTheNumberNotTakenUp) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
      "values (2026110001, 'FG-1001', 100, 5, 40, 30, 0), (2026110002, 'FG-1002', 50, 0, NULL, NULL, NULL), "
      "(2026110003, 'FG-1003', 10, 0, 10, 10, 2), (2026110004, 'FG-1004', 10, 0, 10, 10, 3), "
      "(2026120001, 'FG-1001', 10, 0, 10, 10, 1)");
  Collection col;
  EXPECT_EQ(pmrpi().getProdNoItemNo(col, "202611"), Value());
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * From T_PMrph WHERE F_ProdNo like '%202611%' And "
                                            "IFNull(F_Status,0)<>3 And IFNull(F_Status,0)<>2"});
  // Production number, item, planned purchase and need are read; the rest stays as created.
  EXPECT_EQ(describeSorted<clsEntPMrph>(col, describeHeader),
            (std::vector<std::string>{"2026110001|FG-1001|0|0|40|30|0", "2026110002|FG-1002|0|0|0|0|0"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, GetProdNoItemNoWithNothingMatchingGivesEmptyAndKeepsTheCollection) {
  Collection col;
  col.Add(clsEntPMrph());
  EXPECT_TRUE(pmrpi().getProdNoItemNo(col, "2099").isEmpty());
  EXPECT_EQ(col.Count(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, GetProdNoItemNoWithAQuoteShowsTheDescriptionAndGivesEmpty) {
  Collection col;
  EXPECT_TRUE(pmrpi().getProdNoItemNo(col, "2026'").isEmpty());
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError(
                                       "' And IFNull(F_Status,0)<>3 And IFNull(F_Status,0)<>2"))});
  EXPECT_EQ(col.Count(), 0);
}

TEST_F(LineQueries, GetProdNoItemNoByPMrpiListsTheLinesNotTakenUp) {
  Collection col;
  EXPECT_EQ(pmrpi().getProdNoItemNoByPMrpi(col, "2026110001"), Value());
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * From T_PMrpi WHERE F_ProdNo = '2026110001' And "
                                            "IFNull(F_Status,0)<>3 And IFNull(F_Status,0)<>2"});
  // Production number, item and requested quantity are read.
  EXPECT_EQ(describeSorted<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{"2026110001|PK-3002|0|0|0|2|0|0", "2026110001|RM-2001|0|0|0|12|0|0"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, GetProdNoItemNoByPMrpiAppendsAndGivesEmptyWhenNothingIsLeft) {
  Collection col;
  col.Add(clsEntPMrpi());
  EXPECT_TRUE(pmrpi().getProdNoItemNoByPMrpi(col, "2026110002").isEmpty());
  EXPECT_EQ(col.Count(), 1);
  EXPECT_TRUE(pmrpi().getProdNoItemNoByPMrpi(col, "2026110001").isEmpty());
  EXPECT_EQ(col.Count(), 3);
}

TEST_F(LineQueries, GetProdNoItemNoByPMrpiWithoutTheLineTableShowsTheDescriptionAndGivesEmpty) {
  exec("drop table t_pmrpi");
  Collection col;
  EXPECT_TRUE(pmrpi().getProdNoItemNoByPMrpi(col, "2026110001").isEmpty());
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrpi"))});
}

constexpr const char* kAllNullRecordSql =
    "Select ih.F_ProdNo From (Select i.F_ProdNo From  (Select F_ProdNo From T_PMrpi Where F_Status = 3 OR "
    "F_Status = 2 ) i Union select h.F_ProdNo From (Select F_ProdNo From T_PMrph Where F_Status = 3 Or "
    "F_Status = 2 ) h) ih  Order By ih.F_ProdNo Desc  limit 1000";

TEST_F(LineQueries, QueryAllNullRecordListsNumbersWithAHeaderOrLineTakenUpNewestFirst) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_Status) values (2026110001, 'FG-1', 0), (2026110003, "
      "'FG-3', 2), (2026120001, 'FG-4', 1), (2026110002, 'FG-2', 3)");
  Collection col;
  EXPECT_EQ(pmrpi().QueryAllNullRecord(col), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{kAllNullRecordSql});
  // 2026110001 and 2026110002 have lines in status 2 or 3; 2026110002 and 2026110003 headers.
  EXPECT_EQ(
      describeAll<clsEntPMrph>(col, describeHeader),
      (std::vector<std::string>{"2026110003||0|0|0|0|0", "2026110002||0|0|0|0|0", "2026110001||0|0|0|0|0"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryAllNullRecordReturnsOnlyTheThousandHighestNumbers) {
  exec("delete from t_pmrpi");
  // 1,200 qualifying numbers: 600 headers in status 2, 600 lines in status 3, 100 of them on both,
  // and higher numbers in other statuses that do not count.
  exec("insert into t_pmrph (F_ProdNo, F_Status) select 2026000000 + seq, 2 from seq_1_to_600");
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Status) select 2026000000 + seq, 'RM-1', 3 from "
      "seq_501_to_1200");
  exec("insert into t_pmrph (F_ProdNo, F_Status) select 2026900000 + seq, 1 from seq_1_to_50");
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Status) select 2026900000 + seq, 'RM-1', NULL from "
      "seq_1_to_50");
  ASSERT_EQ(
      scalar("select count(distinct F_ProdNo) from (select F_ProdNo from t_pmrph where F_Status in (2,3) "
             "union all select F_ProdNo from t_pmrpi where F_Status in (2,3)) q"),
      "1200");
  Collection col;
  EXPECT_EQ(pmrpi().QueryAllNullRecord(col), 1);
  ASSERT_EQ(col.Count(), 1000);
  EXPECT_EQ(clsEntPMrph(col.Item(1)).F_ProdNo(), 2026001200.0);
  EXPECT_EQ(clsEntPMrph(col.Item(2)).F_ProdNo(), 2026001199.0);
  EXPECT_EQ(clsEntPMrph(col.Item(1000)).F_ProdNo(), 2026000201.0);
  for (int i = 1; i <= 1000; ++i) {
    ASSERT_EQ(clsEntPMrph(col.Item(i)).F_ProdNo(), 2026001201.0 - i) << i;
  }
}

TEST_F(LineQueries, QueryAllNullRecordWithNothingTakenUpReturnsZero) {
  exec("update t_pmrpi set F_Status = 1");
  Collection col;
  EXPECT_EQ(pmrpi().QueryAllNullRecord(col), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineQueries, QueryAllNullRecordWithoutTheHeaderTableShowsTheDescriptionAndReturnsZero) {
  exec("drop table t_pmrph");
  Collection col;
  EXPECT_EQ(pmrpi().QueryAllNullRecord(col), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrph"))});
  EXPECT_EQ(col.Count(), 0);
}

}  // namespace
}  // namespace tovrand::test
