// clsDataPMrpi: marking lines and headers taken up by purchasing, and rewriting a line.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

// Every line as "N:F_ProdNo|F_ItemNo|figures|status", in id order, N its place in that order: the
// server's ids may step by more than one (on a cluster, by the node count).
constexpr const char* kAllLines =
    "select group_concat(concat_ws('|', concat(n, ':', F_ProdNo), F_ItemNo, ifnull(F_Dosage,'NULL'), "
    "ifnull(F_Waste,'NULL'), ifnull(F_SafeQty,'NULL'), ifnull(F_RequestQty,'NULL'), "
    "ifnull(F_LeadTime,'NULL'), ifnull(F_Status,'NULL')) order by n separator ';') from "
    "(select *, row_number() over (order by F_ID) as n from t_pmrpi) as ordered";

class StatusUpdates : public PMrpiTest {
 protected:
  void SetUp() override {
    PMrpiTest::SetUp();
    // Lines 1 to 4 in id order: the line to change sits between lines of the same order and of the same
    // material.
    exec(
        "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
        "F_Status) values "
        "(2026110001, 'RM-2001', 2.5, 0.03, 10, 12, 7, 0), "
        "(2026110001, 'RM-2002', 1, 0, 4, 6, 3, NULL), "
        "(2026110002, 'RM-2002', 1, 0, 4, 6, 3, 0), "
        "(2026110002, 'RM-2003', 1, 0, 4, 6, 3, 0)");
    exec(
        "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty, F_Status) values (2026110001, 'FG-1001', 30, "
        "0), (2026110002, 'FG-1002', 10, NULL)");
  }
};

clsEntPMrpi lineWithStatus(double prodNo, const std::string& itemNo, std::int16_t status) {
  clsEntPMrpi e = lineKey(prodNo, itemNo);
  e.F_Status(status);
  return e;
}

TEST_F(StatusUpdates, UpdatePMrpiStatusChangesTheStatusOfThatLineOnlyAndStillReturnsZero) {
  clsEntPMrpi e = lineWithStatus(2026110001, "RM-2002", 2);
  e.F_RequestQty(99.0);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(e), 0);
  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{
                method("Select * From T_PMrpi Where F_ProdNO='2026110001' And F_ItemNo='RM-2002'"),
                engine("UPDATE `t_pmrpi` SET `F_Status`=? WHERE `F_ID`=? LIMIT 1")}));
  EXPECT_EQ(scalar(kAllLines),
            "1:2026110001|RM-2001|2.5|0.03|10|12|7|0;2:2026110001|RM-2002|1|0|4|6|3|2;"
            "3:2026110002|RM-2002|1|0|4|6|3|0;4:2026110002|RM-2003|1|0|4|6|3|0");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(StatusUpdates, UpdatePMrpiStatusDropsItsRecordsetSoItCanRunAgain) {
  clsEntPMrpi first = lineWithStatus(2026110002, "RM-2002", 3);
  clsEntPMrpi missing = lineWithStatus(2026110009, "RM-2002", 3);
  clsEntPMrpi second = lineWithStatus(2026110002, "RM-2003", 2);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(first), 0);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(missing), 0);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(second), 0);
  EXPECT_EQ(scalar("select group_concat(F_Status order by F_ID) from t_pmrpi where F_ProdNo = 2026110002"),
            "3,2");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(StatusUpdates, UpdatePMrpiStatusForAMissingLineChangesNothing) {
  clsEntPMrpi e = lineWithStatus(2026110001, "RM-2003", 2);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(e), 0);
  EXPECT_EQ(statements(), (std::vector<TracedStatement>{method(
                              "Select * From T_PMrpi Where F_ProdNO='2026110001' And F_ItemNo='RM-2003'")}));
  EXPECT_EQ(scalar("select group_concat(ifnull(F_Status,'NULL') order by F_ID) from t_pmrpi"), "0,NULL,0,0");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(StatusUpdates, UpdatePMrpiStatusWithAQuoteShowsTheDescriptionAndReturnsZero) {
  clsEntPMrpi e = lineWithStatus(2026110001, "RM'2001", 2);
  EXPECT_EQ(pmrpi().UpdatePMrpiStatus(e), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("2001'"))});
  EXPECT_EQ(scalar("select group_concat(ifnull(F_Status,'NULL') order by F_ID) from t_pmrpi"), "0,NULL,0,0");
}

TEST_F(StatusUpdates, UpdatePMrphStatusMarksTheHeaderAndReturnsOne) {
  clsEntPMrph e;
  e.F_ProdNo(2026110002.0);
  e.F_Status(3);
  e.F_PlanPurQty(77.0);
  EXPECT_EQ(pmrpi().UpdatePMrphStatus(e), 1);
  EXPECT_EQ(statements(), (std::vector<TracedStatement>{
                              method("Select * From T_PMrph Where F_ProdNO='2026110002'"),
                              engine("UPDATE `t_pmrph` SET `F_Status`=? WHERE `F_ProdNo`=? LIMIT 1")}));
  EXPECT_EQ(
      scalar("select group_concat(concat_ws('|', F_ProdNo, F_ItemNo, F_PlanPurQty, ifnull(F_Status,'NULL')) "
             "order by F_ProdNo separator ';') from t_pmrph"),
      "2026110001|FG-1001|30|0;2026110002|FG-1002|10|3");
  EXPECT_TRUE(messages().messages().empty());
  // It closes its recordset: the object can run it again.
  e.F_ProdNo(2026110001.0);
  e.F_Status(2);
  EXPECT_EQ(pmrpi().UpdatePMrphStatus(e), 1);
  EXPECT_EQ(scalar("select F_Status from t_pmrph where F_ProdNo = 2026110001"), "2");
}

TEST_F(StatusUpdates, UpdatePMrphStatusWithoutAHeaderReturnsZeroAndChangesNothing) {
  clsEntPMrph e;
  e.F_ProdNo(2026110003.0);
  e.F_Status(3);
  EXPECT_EQ(pmrpi().UpdatePMrphStatus(e), 0);
  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{method("Select * From T_PMrph Where F_ProdNO='2026110003'")}));
  EXPECT_EQ(scalar("select group_concat(ifnull(F_Status,'NULL') order by F_ProdNo) from t_pmrph"), "0,NULL");
  EXPECT_TRUE(messages().messages().empty());
  e.F_ProdNo(2026110002.0);
  EXPECT_EQ(pmrpi().UpdatePMrphStatus(e), 1) << "the recordset was closed on the way out";
}

TEST_F(StatusUpdates, UpdatePMrphStatusWithoutTheHeaderTableShowsTheDescriptionAndReturnsZero) {
  exec("drop table t_pmrph");
  clsEntPMrph e;
  e.F_ProdNo(2026110001.0);
  EXPECT_EQ(pmrpi().UpdatePMrphStatus(e), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrph"))});
}

clsEntPMrpi fullLine(double prodNo, const std::string& itemNo) {
  clsEntPMrpi e = lineKey(prodNo, itemNo);
  e.F_Dosage(0.75);
  e.F_Waste(0.05);
  e.F_SafeQty(20.0);
  e.F_RequestQty(15.5);
  e.F_LeadTime(10);
  e.F_Status(2);
  return e;
}

TEST_F(StatusUpdates, UpdateRecordWritesTheEightColumnsOfThatLineOnly) {
  clsEntPMrpi e = fullLine(2026110001, "RM-2002");
  EXPECT_EQ(pmrpi().UpdateRecord(e), 1);
  EXPECT_EQ(
      statements(),
      (std::vector<TracedStatement>{
          method("select * from T_PMrpi where F_ProdNo = '2026110001' and F_ItemNo = 'RM-2002'"),
          engine("UPDATE `t_pmrpi` SET `F_ProdNo`=?, `F_ItemNo`=?, `F_Dosage`=?, `F_Waste`=?, "
                 "`F_SafeQty`=?, `F_RequestQty`=?, `F_LeadTime`=?, `F_Status`=? WHERE `F_ID`=? LIMIT 1")}));
  EXPECT_EQ(scalar(kAllLines),
            "1:2026110001|RM-2001|2.5|0.03|10|12|7|0;2:2026110001|RM-2002|0.75|0.05|20|15.5|10|2;"
            "3:2026110002|RM-2002|1|0|4|6|3|0;4:2026110002|RM-2003|1|0|4|6|3|0");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(StatusUpdates, UpdateRecordWritesTheMaterialAsTheEntitySpellsIt) {
  // The material is found without regard to case and written back as the caller spells it.
  clsEntPMrpi e = fullLine(2026110002, "rm-2003");
  EXPECT_EQ(pmrpi().UpdateRecord(e), 1);
  EXPECT_EQ(
      scalar("select concat(n, ':', F_ItemNo) from (select *, row_number() over (order by F_ID) as n from "
             "t_pmrpi) as ordered where F_ProdNo = 2026110002 and F_Status = 2"),
      "4:rm-2003");
  EXPECT_EQ(scalar("select count(*) from t_pmrpi"), "4");
}

TEST_F(StatusUpdates, UpdateRecordForAMissingLineReturnsZeroAndWritesNothing) {
  clsEntPMrpi e = fullLine(2026110001, "RM-2003");
  EXPECT_EQ(pmrpi().UpdateRecord(e), 0);
  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{
                method("select * from T_PMrpi where F_ProdNo = '2026110001' and F_ItemNo = 'RM-2003'")}));
  EXPECT_EQ(scalar(kAllLines),
            "1:2026110001|RM-2001|2.5|0.03|10|12|7|0;2:2026110001|RM-2002|1|0|4|6|3|NULL;"
            "3:2026110002|RM-2002|1|0|4|6|3|0;4:2026110002|RM-2003|1|0|4|6|3|0");
  EXPECT_TRUE(messages().messages().empty());
  // The recordset was closed: the next call opens it again.
  clsEntPMrpi present = fullLine(2026110002, "RM-2003");
  EXPECT_EQ(pmrpi().UpdateRecord(present), 1);
}

TEST_F(StatusUpdates, UpdateRecordWithAMaterialLongerThanItsColumnShowsTheLengthMessage) {
  // Trailing blanks do not count when the line is looked up, but they do when the material is written.
  clsEntPMrpi e = fullLine(2026110001, "RM-2001" + std::string(30, ' '));
  EXPECT_EQ(pmrpi().UpdateRecord(e), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(kTooLongMessage)});
  EXPECT_EQ(
      scalar(
          "select concat(F_Dosage, '|', F_Status) from t_pmrpi where F_ID = (select min(F_ID) from t_pmrpi)"),
      "2.5|0");
  for (const TracedStatement& s : statements()) EXPECT_EQ(s.origin, StatementOrigin::Method) << s.sql;
  clsEntPMrpi probe = fullLine(2026110001, "RM-2001");
  EXPECT_EQ(pmrpi().UpdateRecord(probe), 1) << "the object stays usable";
}

TEST_F(StatusUpdates, UpdateRecordWithAQuoteShowsTheDescriptionAndReturnsZero) {
  clsEntPMrpi e = fullLine(2026110001, "RM'2001");
  EXPECT_EQ(pmrpi().UpdateRecord(e), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("2001'"))});
  EXPECT_EQ(
      scalar(
          "select concat(F_Dosage, '|', F_Status) from t_pmrpi where F_ID = (select min(F_ID) from t_pmrpi)"),
      "2.5|0");
}

}  // namespace
}  // namespace tovrand::test
