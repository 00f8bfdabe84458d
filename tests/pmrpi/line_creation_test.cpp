// clsDataPMrpi.AddRecord: writing one planning line, inserted or overwritten.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

using LineCreation = PMrpiTest;

// Every line as "N:F_ProdNo|F_ItemNo|figures|status", in id order, N its place in that order: the
// server's ids may step by more than one (on a cluster, by the node count).
constexpr const char* kAllLines =
    "select group_concat(concat_ws('|', concat(n, ':', F_ProdNo), ifnull(F_ItemNo,'NULL'), "
    "ifnull(F_Dosage,'NULL'), ifnull(F_Waste,'NULL'), ifnull(F_SafeQty,'NULL'), ifnull(F_RequestQty,'NULL'), "
    "ifnull(F_LeadTime,'NULL'), ifnull(F_Status,'NULL')) order by n separator ';') from "
    "(select *, row_number() over (order by F_ID) as n from t_pmrpi) as ordered";

constexpr const char* kLineIds = "select group_concat(F_ID order by F_ID) from t_pmrpi";

clsEntPMrpi newLine(double prodNo, const std::string& itemNo) {
  clsEntPMrpi e = lineKey(prodNo, itemNo);
  e.F_Dosage(0.32);
  e.F_Waste(0.02);
  e.F_SafeQty(50.0);
  e.F_RequestQty(120.5);
  e.F_LeadTime(14);
  e.F_Status(3);  // never written
  return e;
}

TEST_F(LineCreation, AddRecordInsertsANewLineThroughTheWholeTableAndLeavesTheStatusToTheDefault) {
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Status) values (2026110001, 'RM-2001', 1, 2), "
      "(2026110002, 'RM-2002', 1, 2)");
  clsEntPMrpi e = newLine(2026110001, "RM-2002");

  EXPECT_EQ(pmrpi().AddRecord(e), 1);

  // The whole-table open reads no row: nothing is sent for it beyond its own text and the insert.
  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{
                method("SELECT * From T_PMrpi WHERE F_ProdNo='2026110001' and F_ItemNo='RM-2002'"),
                method("SELECT * From T_PMrpi "),
                engine("INSERT INTO `t_pmrpi` (`F_ProdNo`, `F_ItemNo`, `F_Dosage`, `F_Waste`, `F_SafeQty`, "
                       "`F_RequestQty`, `F_LeadTime`) VALUES (?, ?, ?, ?, ?, ?, ?)")}));
  EXPECT_EQ(scalar(kAllLines),
            "1:2026110001|RM-2001|1|NULL|NULL|NULL|NULL|2;2:2026110002|RM-2002|1|NULL|NULL|NULL|NULL|2;"
            "3:2026110001|RM-2002|0.32|0.02|50|120.5|14|NULL");
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(describeLine(e), "2026110001|RM-2002|0.32|0.02|50|120.5|14|3") << "the entity is not changed";
}

TEST_F(LineCreation, AddRecordOverwritesTheFiveFiguresOfAnExistingLineAndNothingElse) {
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
      "F_Status) values (2026110001, 'RM-2001', 1, 0, 1, 1, 1, 0), (2026110001, 'RM-2002', 2, 0.1, 5, 8, 3, "
      "3), "
      "(2026110002, 'RM-2002', 1, 0, 1, 1, 1, 2)");
  clsEntPMrpi e = newLine(2026110001, "RM-2002");
  e.F_Status(0);
  const std::string ids = scalar(kLineIds);

  EXPECT_EQ(pmrpi().AddRecord(e), 1);

  const std::string select = "SELECT * From T_PMrpi WHERE F_ProdNo='2026110001' and F_ItemNo='RM-2002'";
  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{
                method(select), method(select),
                engine("UPDATE `t_pmrpi` SET `F_Dosage`=?, `F_Waste`=?, `F_SafeQty`=?, `F_RequestQty`=?, "
                       "`F_LeadTime`=? WHERE `F_ID`=? LIMIT 1")}));
  EXPECT_EQ(scalar(kAllLines),
            "1:2026110001|RM-2001|1|0|1|1|1|0;2:2026110001|RM-2002|0.32|0.02|50|120.5|14|3;"
            "3:2026110002|RM-2002|1|0|1|1|1|2");
  EXPECT_EQ(scalar(kLineIds), ids) << "the line keeps its id";
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LineCreation, AddRecordTwiceForOneMaterialKeepsOneLine) {
  clsEntPMrpi e = newLine(2026110001, "RM-2001");
  EXPECT_EQ(pmrpi().AddRecord(e), 1);
  e.F_RequestQty(7.0);
  EXPECT_EQ(pmrpi().AddRecord(e), 1);
  EXPECT_EQ(scalar(kAllLines), "1:2026110001|RM-2001|0.32|0.02|50|7|14|NULL");
}

TEST_F(LineCreation, AddRecordWithAMaterialLongerThanItsColumnReturnsTwoWithTheLengthMessage) {
  clsEntPMrpi e = newLine(2026110001, std::string(31, 'M'));

  EXPECT_EQ(pmrpi().AddRecord(e), 2);

  EXPECT_EQ(messages().messages(), std::vector<Message>{information(kTooLongMessage)});
  EXPECT_EQ(sql(),
            (std::vector<std::string>{"SELECT * From T_PMrpi WHERE F_ProdNo='2026110001' and F_ItemNo='" +
                                          std::string(31, 'M') + "'",
                                      "SELECT * From T_PMrpi "}));
  for (const TracedStatement& s : statements()) EXPECT_EQ(s.origin, StatementOrigin::Method) << s.sql;
  EXPECT_EQ(scalar("select count(*) from t_pmrpi"), "0");
}

TEST_F(LineCreation, AddRecordWithAQuoteInTheMaterialReturnsTwoWithTheDatabasesDescription) {
  clsEntPMrpi e = newLine(2026110001, "RM'2001");

  EXPECT_EQ(pmrpi().AddRecord(e), 2);

  EXPECT_EQ(sql(), std::vector<std::string>{
                       "SELECT * From T_PMrpi WHERE F_ProdNo='2026110001' and F_ItemNo='RM'2001'"});
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("2001'"))});
  EXPECT_EQ(scalar("select count(*) from t_pmrpi"), "0");
}

TEST_F(LineCreation, AddRecordLeavesNoRecordsetOpenOnAnyPath) {
  clsEntPMrpi bad = newLine(2026110001, std::string(31, 'M'));
  ASSERT_EQ(pmrpi().AddRecord(bad), 2);
  clsEntPMrpi good = newLine(2026110001, "RM-2001");
  ASSERT_EQ(pmrpi().AddRecord(good), 1);
  // Methods that open m_Recordset without renewing it find it closed or gone.
  clsEntPMrpi probe = newLine(2026110001, "RM-2001");
  EXPECT_EQ(pmrpi().QueryByID(probe), 1);
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "2026110001"), 1);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(kTooLongMessage)});
}

}  // namespace
}  // namespace tovrand::test
