// clsDataPOrderChk.AddRecord: month-prefixed production numbers, the review rows created with them and
// the sales-order lines and headers that receive them.
#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

// The server's date is 15 May 2008 for the object's connection; the client's clock plays no part.
class NumberAllocation : public POrderChkTest {
 protected:
  std::string options() const override { return "server_date=2008-05-15"; }
};

TEST_F(NumberAllocation, EmptyCollectionReturnsZeroAndSendsNoStatement) {
  Collection lines;
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "0");
  EXPECT_EQ(scalar("select F_Flags from t_borderh"), "0");
}

TEST_F(NumberAllocation, FirstNumbersOfAMonthWithLenIntFourAreMonthPrefixAndFourDigits) {
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(trace().statements(), firstTwoLinesOfTheMonth());
  EXPECT_EQ(reviews(), "2008050001,2008050002");
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(NumberAllocation, LenIntTwoThreeAndFiveStartTheMonthWithThatManyDigits) {
  struct Case {
    std::int16_t lenInt;
    std::string first, second;
  };
  for (const Case& c : {Case{2, "20080501", "20080502"}, Case{3, "200805001", "200805002"},
                        Case{5, "20080500001", "20080500002"}}) {
    SCOPED_TRACE(c.lenInt);
    exec("delete from t_porderchk; delete from t_borderi; delete from t_borderh");
    trace().clear();
    Collection lines;
    salesOrder(lines, 2805001, 2);

    EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", c.lenInt), 1);

    EXPECT_EQ(reviews(), c.first + "," + c.second);
    ASSERT_EQ(sql().size(), 8u);
    EXPECT_EQ(sql()[3], "update T_BOrderi set F_ProdNo=" + c.first +
                            " where F_OrderNo=2805001 and F_ItemNo='FG-1' and f_No='1'");
    EXPECT_EQ(sql()[6], "update T_BOrderi set F_ProdNo=" + c.second +
                            " where F_OrderNo=2805001 and F_ItemNo='FG-2' and f_No='2'");
  }
}

TEST_F(NumberAllocation, LenIntOutsideTwoToFiveInAMonthWithoutNumbersAllocatesFromZero) {
  Collection lines;
  salesOrder(lines, 2805001, 3);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 6), 1);

  EXPECT_EQ(reviews(), "0,1,2");
  EXPECT_EQ(lineNumbers(2805001), "0,1,2");
  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                kMonthQuery,
                kPrefixQuery,
                kReviewTable,
                "update T_BOrderi set F_ProdNo=0 where F_OrderNo=2805001 and F_ItemNo='FG-1' and f_No='1'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001",
                kReviewTable,
                "update T_BOrderi set F_ProdNo=1 where F_OrderNo=2805001 and F_ItemNo='FG-2' and f_No='2'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001",
                kReviewTable,
                "update T_BOrderi set F_ProdNo=2 where F_OrderNo=2805001 and F_ItemNo='FG-3' and f_No='3'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001",
            }));
}

TEST_F(NumberAllocation, NegativeAndZeroLenIntAlsoAllocateFromZero) {
  for (std::int16_t lenInt : {std::int16_t{0}, std::int16_t{-1}, std::int16_t{1}}) {
    SCOPED_TRACE(lenInt);
    exec("delete from t_porderchk; delete from t_borderi; delete from t_borderh");
    Collection lines;
    salesOrder(lines, 2805001, 1);

    EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", lenInt), 1);

    EXPECT_EQ(reviews(), "0");
  }
}

TEST_F(NumberAllocation, LaterCallContinuesFromTheMonthsMaximumWhateverLenInt) {
  Collection first, second, third;
  salesOrder(first, 2805001, 1);
  salesOrder(second, 2805002, 2);
  salesOrder(third, 2805003, 1);
  ASSERT_EQ(chk().AddRecord(first, "2805001", "C001", "PO-1", 4), 1);
  trace().clear();

  EXPECT_EQ(chk().AddRecord(second, "2805002", "C002", "PO-2", 2), 1);

  EXPECT_EQ(sql(), (std::vector<std::string>{
                       kMonthQuery,
                       kMaxQuery,
                       kReviewTable,
                       "update T_BOrderi set F_ProdNo=2008050002 where F_OrderNo=2805002 and F_ItemNo='FG-1' "
                       "and f_No='1'",
                       "update T_BOrderh set F_Flags=1 where F_OrderNo=2805002",
                       kReviewTable,
                       "update T_BOrderi set F_ProdNo=2008050003 where F_OrderNo=2805002 and F_ItemNo='FG-2' "
                       "and f_No='2'",
                       "update T_BOrderh set F_Flags=1 where F_OrderNo=2805002",
                   }));
  EXPECT_EQ(chk().AddRecord(third, "2805003", "C003", "PO-3", 9), 1);
  EXPECT_EQ(reviews(), "2008050001,2008050002,2008050003,2008050004");
  EXPECT_EQ(lineNumbers(2805003), "2008050004");
}

TEST_F(NumberAllocation, ContinuationStartsFromTheLargestNumberNotTheLatest) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050007), (2008050003), (20080512)");
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 2), 1);

  EXPECT_EQ(lineNumbers(2805001), "2008050008");
}

TEST_F(NumberAllocation, NumbersOfOtherMonthsAreNotContinued) {
  exec("insert into t_porderchk (F_ProdNo) values (2008040009), (2009050001), (2008060001)");
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(sql()[1], kPrefixQuery);
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
}

TEST_F(NumberAllocation, UnboundedSequenceReachesTheNextMonthsPrefix) {
  Collection lines;
  salesOrder(lines, 2805001, 100);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 2), 1);

  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "100");
  EXPECT_EQ(scalar("select cast(min(F_ProdNo) as char) from t_porderchk"), "20080501");
  // The hundredth number reads as June's first: the width is the caller's business.
  EXPECT_EQ(scalar("select cast(max(F_ProdNo) as char) from t_porderchk"), "20080600");
  EXPECT_EQ(sql().size(), 2u + 100u * 3u);
  EXPECT_EQ(sql().back(), "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001");
  EXPECT_EQ(sql()[sql().size() - 2],
            "update T_BOrderi set F_ProdNo=20080600 where F_OrderNo=2805001 and F_ItemNo='FG-100' and "
            "f_No='100'");
}

TEST_F(NumberAllocation, AfterTheSequenceOverflowedTheMonthContinuesFromItsRemainingMaximumAndCollides) {
  Collection first, next;
  salesOrder(first, 2805001, 100);
  salesOrder(next, 2805002, 1);
  ASSERT_EQ(chk().AddRecord(first, "2805001", "C001", "PO-1", 2), 1);
  trace().clear();

  // The month test no longer sees 20080600; its remaining maximum is 20080599, so the next number is
  // 20080600 again, and the review table's key refuses it.
  EXPECT_EQ(chk().AddRecord(next, "2805002", "C002", "PO-2", 2), 0);

  EXPECT_EQ(trace().statements(),
            (std::vector<TracedStatement>{method(kMonthQuery), method(kMaxQuery), method(kReviewTable),
                                          engine(kReviewInsert)}));
  EXPECT_EQ(messages().messages(), oneMessage("Duplicate entry '20080600' for key 'PRIMARY'"));
  EXPECT_EQ(lineNumbers(2805002), "NULL");
  EXPECT_EQ(scalar("select F_Flags from t_borderh where F_OrderNo=2805002"), "0");
  EXPECT_EQ(scalar("select F_ItemNo from t_porderchk where F_ProdNo=20080600"), "FG-100");
}

TEST_F(NumberAllocation, ReviewRowHoldsTheEightFieldsAndLeavesTheSignOffsAtTheirDefaults) {
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");
  exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (2805001, '3', 'FG-1003')");
  clsEntBOrderi l;
  l.F_OrderNo(2805099.0);  // the line's own order number goes into the review, not the argument's
  l.F_No("3");
  l.F_ItemNo("FG-1003");
  l.F_CItemNo("客户料号-7");
  l.F_OrderQty(800.5);
  l.F_DeliverDate(date(2008, 12, 20, 9, 30));
  l.F_BkQty(5.0);
  l.F_StockQty(6.0);
  Collection lines;
  lines.Add(l);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C004", "YJ-20080515", 4), 1);

  EXPECT_EQ(scalar("select concat_ws('|', F_ProdNo, F_OrderNo, F_ItemNo, F_CustNo, F_CorderNo, F_OrderCount, "
                   "F_DeliverDate, F_CItemNo) from t_porderchk"),
            "2008050001|2805099|FG-1003|C004|YJ-20080515|800.5|2008-12-20 09:30:00|客户料号-7");
  exec("insert into t_porderchk (F_ProdNo) values (1)");
  const std::string signOffs =
      "select concat_ws('|', ifnull(F_BStradCon,'NULL'), ifnull(F_BSNote,'NULL'), "
      "ifnull(F_BSCheckTime,'NULL'), "
      "ifnull(F_EGAdmit,'NULL'), ifnull(F_WIFill,'NULL'), ifnull(F_PUprovider,'NULL'), "
      "ifnull(F_QCStd,'NULL'), "
      "ifnull(F_MKDate,'NULL'), ifnull(F_Way,'NULL'), ifnull(F_CSCheckTime,'NULL'), "
      "ifnull(F_AlerTime,'NULL'), "
      "ifnull(F_Status,'NULL')) from t_porderchk where F_ProdNo=";
  EXPECT_EQ(scalar(signOffs + "2008050001"), scalar(signOffs + "1"));
}

TEST_F(NumberAllocation, EachLineReceivesItsNumberAndTheHeaderIsFlagged) {
  Collection lines;
  salesOrder(lines, 2805001, 3);
  Collection unused;
  salesOrder(unused, 2805002, 3);  // another order with the same line numbers and items
  exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (2805001, '9', 'FG-1')");

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002,2008050003,NULL");
  EXPECT_EQ(lineNumbers(2805002), "NULL,NULL,NULL");
  EXPECT_EQ(scalar("select group_concat(F_Flags order by F_OrderNo) from t_borderh"), "1,0");
}

TEST_F(NumberAllocation, NonNumericOrderNoIsWrittenAsZeroInBothUpdates) {
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (0, 0), (2805001, 0)");
  exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (0, '1', 'FG-1'), (2805001, '1', 'FG-1')");
  Collection lines;
  lines.Add(line(2805001, "1", "FG-1"));

  EXPECT_EQ(chk().AddRecord(lines, "SO-2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                kMonthQuery,
                kPrefixQuery,
                kReviewTable,
                "update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=0 and F_ItemNo='FG-1' and f_No='1'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=0",
            }));
  EXPECT_EQ(lineNumbers(0), "2008050001");
  EXPECT_EQ(lineNumbers(2805001), "NULL");
  EXPECT_EQ(scalar("select group_concat(F_Flags order by F_OrderNo) from t_borderh"), "1,0");
  EXPECT_EQ(scalar("select F_OrderNo from t_porderchk"), "2805001");
}

TEST_F(NumberAllocation, OrderNoIsReadUpToItsLeadingNumber) {
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, " 2805 001/A", "C001", "PO-1", 4), 1);

  EXPECT_EQ(
      sql()[3],
      "update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=2805001 and F_ItemNo='FG-1' and f_No='1'");
  EXPECT_EQ(sql()[4], "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001");
}

TEST_F(NumberAllocation, OrderNoEndsAtACarriageReturn) {
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, "2805001\r\n9", "C001", "PO-1", 4), 1);

  EXPECT_EQ(
      sql()[3],
      "update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=2805001 and F_ItemNo='FG-1' and f_No='1'");
  EXPECT_EQ(sql()[4], "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001");
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
}

TEST_F(NumberAllocation, TheMonthIsTheServersDate) {
  auto decemberHost = hostWith("server_date=2009-12-31");
  clsDataPOrderChk december(decemberHost);
  Collection lines;
  salesOrder(lines, 2912001, 1);

  EXPECT_EQ(december.AddRecord(lines, "2912001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(lineNumbers(2912001), "2009120001");
}

TEST_F(NumberAllocation, TooLongItemNumberOnTheThirdOfFiveLinesLeavesTheFirstTwoDoneAndTheRestUntouched) {
  Collection lines;
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");
  const std::string tooLong(31, 'X');  // the review's item number holds 30 characters
  for (int i = 1; i <= 5; ++i) {
    std::string no = std::to_string(i);
    std::string item = i == 3 ? tooLong : "FG-" + no;
    exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (2805001, '" + no + "', 'FG-" + no + "')");
    lines.Add(line(2805001, no, item));
  }

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_EQ(messages().messages(), oneMessage(kTooLongMessage));
  EXPECT_EQ(reviews(), "2008050001,2008050002");
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002,NULL,NULL,NULL");
  EXPECT_EQ(scalar("select F_Flags from t_borderh"), "1");
  // The third line stops at its assignment: no INSERT is sent for it.
  std::vector<TracedStatement> all = trace().statements();
  ASSERT_EQ(all.size(), 11u);
  EXPECT_EQ(all[10], method(kReviewTable));
  EXPECT_EQ(all[9], method("update T_BOrderh set F_Flags=1 where F_OrderNo=2805001"));
}

TEST_F(NumberAllocation, DuplicateNumberOnTheThirdOfFiveLinesLeavesTheFirstTwoDoneAndTheRestUntouched) {
  // A month whose sequence ran past 99: 20080600 is there, the month's remaining maximum is 20080597.
  exec(
      "insert into t_porderchk (F_ProdNo, F_ItemNo) values (20080501, 'OLD'), (20080597, 'OLD'), "
      "(20080600, 'OLD')");
  Collection lines;
  salesOrder(lines, 2805001, 5);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 2), 0);

  EXPECT_EQ(messages().messages(), oneMessage("Duplicate entry '20080600' for key 'PRIMARY'"));
  EXPECT_EQ(reviews(), "20080501,20080597,20080598,20080599,20080600");
  EXPECT_EQ(scalar("select F_ItemNo from t_porderchk where F_ProdNo=20080600"), "OLD");
  EXPECT_EQ(lineNumbers(2805001), "20080598,20080599,NULL,NULL,NULL");
  std::vector<TracedStatement> all = trace().statements();
  ASSERT_EQ(all.size(), 12u);
  EXPECT_EQ(all[10], method(kReviewTable));
  EXPECT_EQ(all[11], engine(kReviewInsert));
}

TEST_F(NumberAllocation, ElementThatIsNoSalesOrderLineStopsTheAllocationWithTypeMismatch) {
  Collection lines;
  salesOrder(lines, 2805001, 1);
  lines.Add(clsEntBOrderh());

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_EQ(messages().messages(), oneMessage("Type mismatch"));
  EXPECT_EQ(reviews(), "2008050001");
  EXPECT_EQ(sql().size(), 5u);
}

TEST_F(NumberAllocation, ObjectStaysUsableAfterAFailedAllocation) {
  Collection bad, good;
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");
  bad.Add(line(2805001, "1", std::string(31, 'X')));
  salesOrder(good, 2805002, 1);
  ASSERT_EQ(chk().AddRecord(bad, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_EQ(chk().AddRecord(good, "2805002", "C001", "PO-1", 4), 1);

  EXPECT_EQ(lineNumbers(2805002), "2008050001");
}

}  // namespace
}  // namespace tovrand::test
