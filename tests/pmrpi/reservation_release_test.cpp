// clsDataPMrpi.DeleteAllPMrpiRecord: removing a production order's lines after releasing, line by line,
// the stock planning reserved for them.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

class ReservationRelease : public PMrpiTest {
 protected:
  // Every reservation row as "F_ProdNo|F_ItemNo|F_ReduceQty", in id order ("NULL" when none is left).
  std::string reservations() const {
    return scalar(
        "select group_concat(concat_ws('|', F_ProdNo, F_ItemNo, F_ReduceQty) order by F_ID separator ';') "
        "from "
        "t_wstockqtys");
  }
  // Every stock summary as "F_ItemNo|F_SafeQty|F_NoPoStockQty", by material.
  std::string summaries() const {
    return scalar(
        "select group_concat(concat_ws('|', F_ItemNo, ifnull(F_SafeQty,'NULL'), "
        "ifnull(F_NoPoStockQty,'NULL')) "
        "order by F_ItemNo separator ';') from t_wstockqtyh");
  }
  // Every planning line as "F_ProdNo|F_ItemNo", in id order.
  std::string lines() const {
    return scalar(
        "select group_concat(concat_ws('|', F_ProdNo, ifnull(F_ItemNo,'NULL')) order by F_ID separator ';') "
        "from t_pmrpi");
  }

  static std::vector<TracedStatement> release(const std::string& itemNo) {
    return {method("SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026110001 and  F_ItemNo='" + itemNo + "'"),
            method("Delete FROM T_WStockQtys WHERE F_ProdNo=2026110001 and  F_ItemNo='" + itemNo + "'"),
            method("SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + itemNo + "'")};
  }
  static TracedStatement summaryWrittenBack() {
    return engine("UPDATE `t_wstockqtyh` SET `F_NoPoStockQty`=? WHERE `F_ItemNo`=? LIMIT 1");
  }
  static TracedStatement noReservation(const std::string& itemNo) {
    return method("SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026110001 and  F_ItemNo='" + itemNo + "'");
  }
};

const TracedStatement kSelectLines = method("Select * From T_PMrpi Where F_ProdNo='2026110001'");
const TracedStatement kDeleteLines = method("Delete From T_PMrpi Where F_ProdNo='2026110001'");

std::vector<TracedStatement> concat(std::initializer_list<std::vector<TracedStatement>> parts) {
  std::vector<TracedStatement> out;
  for (const auto& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordForAnOrderWithoutLinesReturnsZeroAndTouchesNothing) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110002, 'RM-2001')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 3, NULL)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 0);

  EXPECT_EQ(statements(), std::vector<TracedStatement>{kSelectLines});
  EXPECT_EQ(lines(), "2026110002|RM-2001");
  EXPECT_EQ(reservations(), "2026110001|RM-2001|10");
  EXPECT_EQ(summaries(), "RM-2001|3|NULL");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordDeletesTheReservationsButGivesNoStockBack) {
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001'), (2026110002, 'RM-2001'), "
      "(2026110001, 'RM-2002')");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10), "
      "(2026110002, 'RM-2001', 7), (2026110001, 'RM-2001', 5), (2026110001, 'RM-2003', 2)");
  exec(
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 3, 25), ('RM-2002', "
      "0, 9)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(statements(), concat({{kSelectLines},
                                  release("RM-2001"),
                                  {summaryWrittenBack()},
                                  {noReservation("RM-2002")},
                                  {kDeleteLines}}));
  EXPECT_EQ(lines(), "2026110002|RM-2001");
  // Both rows of the pair go; other orders' rows and materials without a line stay.
  EXPECT_EQ(reservations(), "2026110002|RM-2001|7;2026110001|RM-2003|2");
  EXPECT_EQ(summaries(), "RM-2001|3|25;RM-2002|0|9");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordWritesANullUncommittedStockBackAsZero) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', NULL, NULL)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(statements(),
            concat({{kSelectLines}, release("RM-2001"), {summaryWrittenBack()}, {kDeleteLines}}));
  EXPECT_EQ(summaries(), "RM-2001|NULL|0");
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(lines(), "NULL");
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordReleasesAReservationWithANullQuantity) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', NULL)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 3, 25)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(statements(),
            concat({{kSelectLines}, release("RM-2001"), {summaryWrittenBack()}, {kDeleteLines}}));
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(summaries(), "RM-2001|3|25");
  EXPECT_EQ(lines(), "NULL");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordLeavesAMaterialWithoutReservationUntouched) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2002')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110002, 'RM-2002', 4)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2002', 1, NULL)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(statements(),
            (std::vector<TracedStatement>{kSelectLines, noReservation("RM-2002"), kDeleteLines}));
  EXPECT_EQ(summaries(), "RM-2002|1|NULL");
  EXPECT_EQ(reservations(), "2026110002|RM-2002|4");
  EXPECT_EQ(lines(), "NULL");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReservationRelease,
       AMaterialWithoutSummaryRowLosesItsReservationsShowsObjectRequiredAndGetsNoSummary) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001'), (2026110001, 'RM-2002')");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10), "
      "(2026110001, 'RM-2002', 6)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2002', 0, 25)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(messages().messages(), std::vector<Message>{information("Object required")});
  // No INSERT: the pending summary row is never stored, and the loop goes on with the next line.
  EXPECT_EQ(
      statements(),
      concat(
          {{kSelectLines}, release("RM-2001"), release("RM-2002"), {summaryWrittenBack()}, {kDeleteLines}}));
  EXPECT_EQ(summaries(), "RM-2002|0|25");
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(lines(), "NULL");
  // m_Recordset was dropped: a method that opens it without renewing it runs.
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNoRecord(col, "2026110001"), 1);
}

TEST_F(ReservationRelease, ALineWithoutMaterialReleasesMaterialZero) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, NULL)");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, '0', 3), (2026110001, "
      "NULL, 4)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('0', 0, NULL)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(statements(), concat({{kSelectLines}, release("0"), {summaryWrittenBack()}, {kDeleteLines}}));
  EXPECT_EQ(reservations(), "2026110001|4");
  EXPECT_EQ(summaries(), "0|0|0");
  EXPECT_EQ(lines(), "NULL");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReservationRelease, ReleasesThatFailInTheMiddleOfTheLoopEachShowAMessageAndTheLoopGoesOn) {
  // In the order the lines come back (by material): A and C have a summary row, B and D none.
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-A'), (2026110001, 'RM-B'), "
      "(2026110001, "
      "'RM-C'), (2026110001, 'RM-D'), (2026110002, 'RM-B')");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-A', 1), "
      "(2026110001, "
      "'RM-B', 2), (2026110001, 'RM-C', 3), (2026110001, 'RM-D', 4), (2026110002, 'RM-B', 5)");
  exec(
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-A', 0, 11), ('RM-C', 0, "
      "NULL)");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(messages().messages(),
            (std::vector<Message>{information("Object required"), information("Object required")}));
  EXPECT_EQ(statements(), concat({{kSelectLines},
                                  release("RM-A"),
                                  {summaryWrittenBack()},
                                  release("RM-B"),
                                  release("RM-C"),
                                  {summaryWrittenBack()},
                                  release("RM-D"),
                                  {kDeleteLines}}));
  EXPECT_EQ(reservations(), "2026110002|RM-B|5");
  EXPECT_EQ(summaries(), "RM-A|0|11;RM-C|0|0");
  EXPECT_EQ(lines(), "2026110002|RM-B");
}

TEST_F(ReservationRelease, ReleasesFailingOnTheDatabaseShowTheDescriptionForEachLine) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001'), (2026110001, 'RM-2002')");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10), "
      "(2026110001, 'RM-2002', 6)");
  exec("drop table t_wstockqtyh");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  EXPECT_EQ(messages().messages(), (std::vector<Message>{information(missingTable("t_wstockqtyh")),
                                                         information(missingTable("t_wstockqtyh"))}));
  EXPECT_EQ(statements(), concat({{kSelectLines}, release("RM-2001"), release("RM-2002"), {kDeleteLines}}));
  // The reservation rows were deleted before the summary was looked up, and stay deleted.
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(lines(), "NULL");
  EXPECT_EQ(scalar("select count(*) from information_schema.tables where table_schema = database() and "
                   "table_name = 't_wstockqtyh'"),
            "0");
}

TEST_F(ReservationRelease, AReleaseShowsTheDescriptionEvenOfTheLengthError) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 0, 25)");
  exec(
      "create trigger t_wstockqtys_kept before delete on t_wstockqtys for each row "
      "signal sqlstate '22001' set message_text = 'reservations are kept'");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 1);

  // The provider's multiple-step text, where the other writing methods show the length message.
  EXPECT_EQ(messages().messages(),
            std::vector<Message>{
                information("Multiple-step operation generated errors. Check each status value.")});
  EXPECT_EQ(statements(),
            concat({{kSelectLines}, {release("RM-2001")[0], release("RM-2001")[1]}, {kDeleteLines}}));
  EXPECT_EQ(reservations(), "2026110001|RM-2001|10");
  EXPECT_EQ(summaries(), "RM-2001|0|25");
  EXPECT_EQ(lines(), "NULL");
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordWithoutTheLineTableShowsTheDescriptionAndReturnsZero) {
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 0, 25)");
  exec("drop table t_pmrpi");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 0);

  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrpi"))});
  EXPECT_EQ(statements(), std::vector<TracedStatement>{kSelectLines});
  EXPECT_EQ(reservations(), "2026110001|RM-2001|10");
  EXPECT_EQ(summaries(), "RM-2001|0|25");
}

TEST_F(ReservationRelease, AFailedDeleteOfTheLinesKeepsTheReleasesDoneAndReturnsZero) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  exec("insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-2001', 10)");
  exec("insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('RM-2001', 0, NULL)");
  exec(
      "create trigger t_pmrpi_kept before delete on t_pmrpi for each row signal sqlstate '45000' set "
      "message_text = 'planning lines are locked'");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 0);

  EXPECT_EQ(messages().messages(), std::vector<Message>{information("planning lines are locked")});
  EXPECT_EQ(statements(),
            concat({{kSelectLines}, release("RM-2001"), {summaryWrittenBack()}, {kDeleteLines}}));
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(summaries(), "RM-2001|0|0");
  EXPECT_EQ(lines(), "2026110001|RM-2001");
}

TEST_F(ReservationRelease, DeleteAllPMrpiRecordShowsTheLengthMessageForTheLengthError) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')");
  exec(
      "create trigger t_pmrpi_kept before delete on t_pmrpi for each row signal sqlstate '22001' set "
      "message_text = 'planning lines are locked'");

  EXPECT_EQ(pmrpi().DeleteAllPMrpiRecord(2026110001), 0);

  EXPECT_EQ(messages().messages(), std::vector<Message>{information(kTooLongMessage)});
  EXPECT_EQ(statements(), concat({{kSelectLines}, {noReservation("RM-2001")}, {kDeleteLines}}));
  EXPECT_EQ(lines(), "2026110001|RM-2001");
  EXPECT_EQ(reservations(), "NULL");
  EXPECT_EQ(summaries(), "NULL");
}

}  // namespace
}  // namespace tovrand::test
