// clsDataPOrderChk review look-ups: QueryAll, QueryProdNoView, QueryMonthDate and QueryProdNo.
#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

constexpr const char* kFullReview =
    "insert into t_porderchk values "
    "(2008050001, 2805001, 'FG-1', 'C001', 'PO-1', 10.5, '2008-06-30', 'CI-1', 1, 'bs note', 'bs alert', "
    "'王伟', '2008-05-01 01:01:01', 1, 0, 'eg note', '李娜', '2008-05-02 02:02:02', 1.5, "
    "'2008-05-03 03:03:03', 2.25, '2008-05-04 04:04:04', 'wi note', '张强', '2008-05-05 05:05:05', 1, "
    "'pu note', '赵敏', '2008-05-06 06:06:06', 0, 'qc note', '孙丽', '2008-05-07 07:07:07', 3, "
    "'mk note', '周洋', '2008-05-08 08:08:08', '自制', 'cs note', '陈刚', '2008-05-09 09:09:09', "
    "'2008-05-10 10:10:10', 1)";

using ReviewQueries = POrderChkTest;

// The production order part of the full review: its first eight columns.
void expectOrderColumns(clsEntPOrderChk& e) {
  EXPECT_EQ(e.F_ProdNo(), 2008050001.0);
  EXPECT_EQ(e.F_OrderNo(), 2805001.0);
  EXPECT_EQ(e.F_ItemNo(), "FG-1");
  EXPECT_EQ(e.F_CustNo(), "C001");
  EXPECT_EQ(e.F_CorderNo(), "PO-1");
  EXPECT_EQ(e.F_OrderCount(), 10.5);
  EXPECT_EQ(e.F_DeliverDate(), date(2008, 6, 30));
  EXPECT_EQ(e.F_CItemNo(), "CI-1");
}

void expectFullReview(clsEntPOrderChk& e) {
  expectOrderColumns(e);
  EXPECT_EQ(e.F_BStradCon(), 1);
  EXPECT_EQ(e.F_BSNote(), "bs note");
  EXPECT_EQ(e.F_BSAlertNote(), "bs alert");
  EXPECT_EQ(e.F_BSChecker(), "王伟");
  EXPECT_EQ(e.F_BSCheckTime(), date(2008, 5, 1, 1, 1, 1));
  EXPECT_EQ(e.F_EGAdmit(), 1);
  EXPECT_EQ(e.F_EGModel(), 0);
  EXPECT_EQ(e.F_EGNote(), "eg note");
  EXPECT_EQ(e.F_EGChecker(), "李娜");
  EXPECT_EQ(e.F_EGCheckTime(), date(2008, 5, 2, 2, 2, 2));
  EXPECT_EQ(e.F_WIFill(), 1.5);
  EXPECT_EQ(e.F_WIEndtime(), date(2008, 5, 3, 3, 3, 3));
  EXPECT_EQ(e.F_WPStock(), 2.25);
  EXPECT_EQ(e.F_WPEndTime(), date(2008, 5, 4, 4, 4, 4));
  EXPECT_EQ(e.F_WINote(), "wi note");
  EXPECT_EQ(e.F_WIChecker(), "张强");
  EXPECT_EQ(e.F_WIChecktime(), date(2008, 5, 5, 5, 5, 5));
  EXPECT_EQ(e.F_PUprovider(), 1);
  EXPECT_EQ(e.F_PUNote(), "pu note");
  EXPECT_EQ(e.F_PUChecker(), "赵敏");
  EXPECT_EQ(e.F_PUCheckTime(), date(2008, 5, 6, 6, 6, 6));
  EXPECT_EQ(e.F_QCStd(), 0);
  EXPECT_EQ(e.F_QCNote(), "qc note");
  EXPECT_EQ(e.F_QChecker(), "孙丽");
  EXPECT_EQ(e.F_QCheckTime(), date(2008, 5, 7, 7, 7, 7));
  EXPECT_EQ(e.F_MKDate(), 3);
  EXPECT_EQ(e.F_MKNote(), "mk note");
  EXPECT_EQ(e.F_MKChecker(), "周洋");
  EXPECT_EQ(e.F_MKCheckTime(), date(2008, 5, 8, 8, 8, 8));
  EXPECT_EQ(e.F_Way(), "自制");
  EXPECT_EQ(e.F_CSNote(), "cs note");
  EXPECT_EQ(e.F_CSChecker(), "陈刚");
  EXPECT_EQ(e.F_CSCheckTime(), date(2008, 5, 9, 9, 9, 9));
  EXPECT_EQ(e.F_AlerTime(), date(2008, 5, 10, 10, 10, 10));
  EXPECT_EQ(e.F_Status(), 1);
}

// --- QueryAll ---

TEST_F(ReviewQueries, QueryAllCopiesEveryColumnOfTheReviewAndStillReturnsZero) {
  exec(kFullReview);
  clsEntPOrderChk e;

  EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

  expectFullReview(e);
  EXPECT_EQ(sql(),
            std::vector<std::string>{"select distinct  *  from T_POrderChk  where F_ProdNo=2008050001"});
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryAllOfANumberWithoutReviewReturnsZeroAndLeavesTheEntityUnchanged) {
  exec(kFullReview);
  clsEntPOrderChk e;
  e.F_ProdNo(7.0);
  e.F_ItemNo("mine");
  e.F_EGAdmit(5);

  EXPECT_EQ(chk().QueryAll(e, 20080500001), 0);

  EXPECT_EQ(e.F_ProdNo(), 7.0);
  EXPECT_EQ(e.F_ItemNo(), "mine");
  EXPECT_EQ(e.F_EGAdmit(), 5);
  EXPECT_EQ(sql(),
            std::vector<std::string>{"select distinct  *  from T_POrderChk  where F_ProdNo=20080500001"});
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryAllLoadsAFreshlyAllocatedReviewWithUndecidedFlagsAsTwo) {
  exec(
      "insert into t_porderchk (F_ProdNo, f_OrderNo, f_CustNo, F_ItemNo, f_CorderNo, f_OrderCount, "
      "f_DeliverDate, F_CItemNO) values (2008050001, 2805001, 'C001', 'FG-1', 'PO-1', 800, '2008-12-20', "
      "'CI')");
  clsEntPOrderChk e;

  EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(e.F_EGAdmit(), 2);
  EXPECT_EQ(e.F_EGModel(), 2);
  EXPECT_EQ(e.F_PUprovider(), 2);
  EXPECT_EQ(e.F_QCStd(), 2);
  EXPECT_EQ(e.F_Status(), 2);
  EXPECT_EQ(e.F_BStradCon(), 2);
  EXPECT_EQ(e.F_MKDate(), 0);
  EXPECT_EQ(e.F_WIFill(), 0);
  EXPECT_EQ(e.F_BSNote(), "");
  EXPECT_EQ(e.F_CSCheckTime(), VbDate{});
  EXPECT_EQ(e.F_OrderCount(), 800);
}

TEST_F(ReviewQueries, QueryAllReadsANullFlagColumnAsTwo) {
  for (const char* flag : {"F_EGAdmit", "F_EGModel", "F_PUprovider", "F_QCStd", "F_Status"}) {
    SCOPED_TRACE(flag);
    exec("delete from t_porderchk");
    exec(kFullReview);
    exec("update t_porderchk set F_EGAdmit=1, F_EGModel=1, F_PUprovider=1, F_QCStd=1, F_Status=1");
    exec(std::string("update t_porderchk set ") + flag + "=NULL");
    clsEntPOrderChk e;

    EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

    EXPECT_EQ(e.get(flag), Value(std::int16_t{2}));
    int ones = 0;
    for (const char* other : {"F_EGAdmit", "F_EGModel", "F_PUprovider", "F_QCStd", "F_Status"})
      ones += e.get(other) == Value(std::int16_t{1}) ? 1 : 0;
    EXPECT_EQ(ones, 4);
    EXPECT_EQ(e.F_AlerTime(), date(2008, 5, 10, 10, 10, 10));  // the load went on to the end
  }
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryAllReadsNullTextColumnsAsEmptyText) {
  exec(kFullReview);
  const std::vector<std::string> texts = {
      "F_ItemNo",   "F_CustNo",    "F_CorderNo",  "F_CItemNo",   "F_BSNote", "F_BSAlertNote", "F_BSChecker",
      "F_EGNote",   "F_EGChecker", "F_WINote",    "F_WIChecker", "F_PUNote", "F_PUChecker",   "F_QCNote",
      "F_QChecker", "F_MKNote",    "F_MKChecker", "F_Way",       "F_CSNote", "F_CSChecker"};
  std::string sets;
  for (const std::string& t : texts) sets += (sets.empty() ? "" : ", ") + t + "=NULL";
  exec("update t_porderchk set " + sets);
  clsEntPOrderChk e;
  for (const std::string& t : texts) e.put(t, "was here");

  EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

  for (const std::string& t : texts) EXPECT_EQ(e.get(t), Value("")) << t;
  EXPECT_EQ(e.F_Status(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryAllReadsNullCountTradeConditionDateFlagAndDeliveryDateThroughTheirDefaults) {
  exec(kFullReview);
  exec(
      "update t_porderchk set F_OrderCount=NULL, F_BStradCon=NULL, F_MKDate=NULL, F_DeliverDate=NULL, "
      "F_BSCheckTime=NULL");
  clsEntPOrderChk e;
  e.F_DeliverDate(date(2001, 1, 1));
  e.F_BSCheckTime(date(2001, 1, 1));
  e.F_OrderCount(9.0);

  EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

  EXPECT_EQ(e.F_OrderCount(), 0);          // "0"
  EXPECT_EQ(e.F_BStradCon(), 2);           // "2"
  EXPECT_EQ(e.F_MKDate(), 0);              // "0"
  EXPECT_EQ(e.F_DeliverDate(), VbDate{});  // "0:00:00"
  EXPECT_EQ(e.F_BSCheckTime(), VbDate{});  // "0:00:00"
  EXPECT_EQ(e.F_Status(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryAllFailsWithTypeMismatchOnANullNumberOrDateWhoseDefaultIsEmptyText) {
  // Each column, and one column copied before it and one after it in the load.
  struct Case {
    const char* column;
    const char* before;
    const char* after;
  };
  for (const Case& c : std::vector<Case>{{"F_OrderNo", "F_ProdNo", "F_ItemNo"},
                                         {"F_EGCheckTime", "F_EGChecker", "F_WINote"},
                                         {"F_WIFill", "F_EGChecker", "F_WINote"},
                                         {"F_WIEndtime", "F_EGChecker", "F_WINote"},
                                         {"F_WPStock", "F_EGChecker", "F_WINote"},
                                         {"F_WPEndTime", "F_EGChecker", "F_WINote"},
                                         {"F_WIChecktime", "F_WIChecker", "F_PUNote"},
                                         {"F_PUCheckTime", "F_PUChecker", "F_QCNote"},
                                         {"F_QCheckTime", "F_QChecker", "F_MKNote"},
                                         {"F_MKCheckTime", "F_MKChecker", "F_Way"},
                                         {"F_CSCheckTime", "F_CSChecker", "F_Status"},
                                         {"F_AlerTime", "F_CSChecker", "F_Status"}}) {
    SCOPED_TRACE(c.column);
    exec("delete from t_porderchk");
    exec(kFullReview);
    exec(std::string("update t_porderchk set ") + c.column + "=NULL");
    clsEntPOrderChk e;
    e.F_ItemNo("untouched");
    e.F_WINote("untouched");
    e.F_PUNote("untouched");
    e.F_QCNote("untouched");
    e.F_MKNote("untouched");
    e.F_Way("untouched");
    e.F_Status(7);
    Value after = e.get(c.after);

    EXPECT_EQ(chk().QueryAll(e, 2008050001), 0);

    EXPECT_EQ(messages().take(), oneMessage("Type mismatch"));
    EXPECT_EQ(e.get(c.after), after);
    EXPECT_NE(e.get(c.before), clsEntPOrderChk().get(c.before));  // copied before the failure
  }
}

TEST_F(ReviewQueries, ObjectStaysUsableAfterAFailedLoad) {
  exec(kFullReview);
  exec("update t_porderchk set F_WIFill=NULL");
  clsEntPOrderChk e;
  ASSERT_EQ(chk().QueryAll(e, 2008050001), 0);
  exec("update t_porderchk set F_WIFill=1.5");
  trace().clear();

  clsEntPOrderChk again;
  EXPECT_EQ(chk().QueryAll(again, 2008050001), 0);

  expectFullReview(again);
  EXPECT_EQ(messages().messages(), oneMessage("Type mismatch"));
}

// --- QueryProdNoView ---

TEST_F(ReviewQueries, QueryProdNoViewCopiesTheEightRecordColumnsAndReturnsOne) {
  exec(kFullReview);
  clsEntPOrderChk e;
  e.F_ProdNo(2008050001.0);
  e.F_BSNote("kept");
  e.F_Status(5);

  EXPECT_EQ(chk().QueryProdNoView(e), 1);

  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "select distinct F_ProdNo,F_OrderNo,F_ItemNo,F_CustNo,F_CorderNo,F_OrderCount,F_DeliverDate,"
                "F_CItemNo  from T_POrderChk  where F_ProdNo=2008050001"});
  expectOrderColumns(e);
  EXPECT_EQ(e.F_BSNote(), "kept");
  EXPECT_EQ(e.F_Status(), 5);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryProdNoViewOfANumberWithoutReviewReturnsTwo) {
  exec(kFullReview);
  clsEntPOrderChk e;
  e.F_ProdNo(2008050002.0);
  e.F_ItemNo("mine");

  EXPECT_EQ(chk().QueryProdNoView(e), 2);

  EXPECT_EQ(e.F_ItemNo(), "mine");
  EXPECT_EQ(sql().size(), 1u);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryProdNoViewReadsANullDeliveryDateAsTheZeroDate) {
  exec(kFullReview);
  exec("update t_porderchk set F_DeliverDate=NULL, F_OrderCount=NULL, F_ItemNo=NULL, F_CItemNo=NULL");
  clsEntPOrderChk e;
  e.F_ProdNo(2008050001.0);
  e.F_DeliverDate(date(2001, 1, 1));
  e.F_ItemNo("x");

  EXPECT_EQ(chk().QueryProdNoView(e), 1);

  EXPECT_EQ(e.F_DeliverDate(), VbDate{});
  EXPECT_EQ(e.F_OrderCount(), 0);
  EXPECT_EQ(e.F_ItemNo(), "");
  EXPECT_EQ(e.F_CItemNo(), "");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryProdNoViewFailsOnANullOrderNumberWithTheQueryForm) {
  exec(kFullReview);
  exec("update t_porderchk set F_OrderNo=NULL");
  clsEntPOrderChk e;
  e.F_ProdNo(2008050001.0);

  EXPECT_EQ(chk().QueryProdNoView(e), 0);

  EXPECT_EQ(messages().messages(), oneMessage("Type mismatch"));
}

// --- QueryMonthDate ---

TEST_F(ReviewQueries, QueryMonthDateOfFifteenMonthsGivesTheTwelveNewestNewestFirst) {
  // February 2007 to April 2008, several numbers in some months, both widths of sequence part.
  exec(
      "insert into t_porderchk (F_ProdNo) values (2007020001), (2007030001), (2007040001), (2007050001), "
      "(2007050002), (20070601), (2007070001), (2007080001), (2007090001), (2007100001), (2007110001), "
      "(2007120001), (2007120002), (2008010001), (2008020001), (2008030001), (20080401), (20080402)");
  Collection months;
  clsEntPOrderChk earlier;
  earlier.F_ProdNo(1.0);
  months.Add(earlier);

  EXPECT_EQ(chk().QueryMonthDate(months), 0);

  EXPECT_EQ(sql(),
            std::vector<std::string>{"select distinct  left(F_ProdNo,6) as F_ProdNo  from T_POrderChk  "
                                     "order by F_ProdNo desc limit 0,12"});
  ASSERT_EQ(months.Count(), 13);
  EXPECT_EQ(clsEntPOrderChk(months.Item(1)).F_ProdNo(), 1.0);  // the collection is not cleared
  const std::vector<double> expected = {200804, 200803, 200802, 200801, 200712, 200711,
                                        200710, 200709, 200708, 200707, 200706, 200705};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    clsEntPOrderChk month(months.Item(static_cast<std::int32_t>(i) + 2));
    EXPECT_EQ(month.F_ProdNo(), expected[i]) << i;
    EXPECT_EQ(month.F_ItemNo(), "");
  }
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryMonthDateOfAnEmptyTableAddsNothingAndReturnsZero) {
  Collection months;

  EXPECT_EQ(chk().QueryMonthDate(months), 0);

  EXPECT_EQ(months.Count(), 0);
  EXPECT_EQ(sql().size(), 1u);
  EXPECT_TRUE(messages().messages().empty());
}

// --- QueryProdNo ---

TEST_F(ReviewQueries, QueryProdNoListsEveryNumberHighestFirstAndReturnsZero) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050002), (20080501), (2008040003), (2008050010)");
  Collection numbers;

  EXPECT_EQ(chk().QueryProdNo(numbers), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"select F_ProdNo  from T_POrderChk order by F_ProdNo desc"});
  ASSERT_EQ(numbers.Count(), 4);
  EXPECT_EQ(clsEntPOrderChk(numbers.Item(1)).F_ProdNo(), 2008050010.0);
  EXPECT_EQ(clsEntPOrderChk(numbers.Item(2)).F_ProdNo(), 2008050002.0);
  EXPECT_EQ(clsEntPOrderChk(numbers.Item(3)).F_ProdNo(), 2008040003.0);
  EXPECT_EQ(clsEntPOrderChk(numbers.Item(4)).F_ProdNo(), 20080501.0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ReviewQueries, QueryProdNoOfAnEmptyTableAddsNothingAndReturnsZero) {
  Collection numbers;

  EXPECT_EQ(chk().QueryProdNo(numbers), 0);

  EXPECT_EQ(numbers.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

}  // namespace
}  // namespace tovrand::test
