// clsDataPOrderChk.UpdateRecord: one department's sign-off written into its own review columns.
#include <map>

#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

// Each department's columns of the review row.
const std::map<std::string, std::vector<std::string>> kDepartmentColumns = {
    {"业务", {"F_BStradCon", "F_BSAlertNote", "F_BSNote", "F_BSChecker", "F_BSCheckTime"}},
    {"工程", {"F_EGAdmit", "F_EGNote", "F_EGModel", "F_EGChecker", "F_EGCheckTime"}},
    {"仓库",
     {"F_WIFill", "F_WIEndtime", "F_WPStock", "F_WPEndTime", "F_WINote", "F_WIChecker", "F_WIChecktime"}},
    {"采购", {"F_PUprovider", "F_PUNote", "F_PUChecker", "F_PUCheckTime"}},
    {"品保", {"F_QCStd", "F_QCNote", "F_QChecker", "F_QCheckTime"}},
    {"生管", {"F_MKDate", "F_MKNote", "F_MKChecker", "F_MKCheckTime"}},
    {"终审", {"F_CSNote", "F_Way", "F_CSChecker", "F_CSCheckTime"}},
};

// The columns no department writes.
const std::vector<std::string> kRecordColumns = {"F_ProdNo",      "F_OrderNo",    "F_ItemNo",  "F_CustNo",
                                                 "F_CorderNo",    "F_OrderCount", "F_CItemNo", "F_AlerTime",
                                                 "F_DeliverDate", "F_Status"};

// A review whose every column holds a value of its own, and a second review that must never change.
constexpr const char* kReviews =
    "insert into t_porderchk values "
    "(2008050001, 2805001, 'FG-1', 'C001', 'PO-1', 10, '2008-06-30', 'CI-1', 0, 'old bs note', 'old alert', "
    "'old bs', '2008-05-01 01:01:01', 0, 0, 'old eg note', 'old eg', '2008-05-02 02:02:02', 1.5, "
    "'2008-05-03 03:03:03', 2.5, '2008-05-04 04:04:04', 'old wi note', 'old wi', '2008-05-05 05:05:05', 0, "
    "'old pu note', 'old pu', '2008-05-06 06:06:06', 0, 'old qc note', 'old qc', '2008-05-07 07:07:07', 1, "
    "'old mk note', 'old mk', '2008-05-08 08:08:08', 'old way', 'old cs note', 'old cs', '2008-05-09 "
    "09:09:09', "
    "'2008-05-10 10:10:10', 1),"
    "(2008050002, 2805001, 'FG-2', 'C001', 'PO-1', 20, '2008-06-30', 'CI-2', 0, 'n', 'a', 'c', "
    "'2008-05-01', 0, 0, 'n', 'c', '2008-05-01', 0, '2008-05-01', 0, '2008-05-01', 'n', 'c', '2008-05-01', "
    "0, "
    "'n', 'c', '2008-05-01', 0, 'n', 'c', '2008-05-01', 0, 'n', 'c', '2008-05-01', 'w', 'n', 'c', "
    "'2008-05-01', '2008-05-01', 0)";

class DepartmentSignOff : public POrderChkTest {
 protected:
  void SetUp() override {
    POrderChkTest::SetUp();
    exec(kReviews);
  }

  // The columns' values in the review, as the server prints them.
  std::string columns(const std::vector<std::string>& names, double prodNo = 2008050001) {
    std::string list;
    for (const std::string& n : names)
      list += (list.empty() ? "" : ", ") + std::string("ifnull(" + n + ",'NULL')");
    return scalar("select concat_ws('|', " + list + ") from t_porderchk where F_ProdNo=" + CStr(prodNo));
  }
  // Every column of the review but the department's.
  std::string columnsBut(const std::string& department) {
    std::vector<std::string> names = kRecordColumns;
    for (const auto& [name, owned] : kDepartmentColumns)
      if (name != department) names.insert(names.end(), owned.begin(), owned.end());
    return columns(names);
  }
  std::string wholeReview(double prodNo) {
    std::vector<std::string> names = kRecordColumns;
    for (const auto& [name, owned] : kDepartmentColumns)
      names.insert(names.end(), owned.begin(), owned.end());
    return columns(names, prodNo);
  }

  // Signs off `department` with signOffs(): one statement sent, the department's columns stored as
  // given, every other column as it was, no message.
  void signOffAndExpect(const std::string& department, const std::string& statement,
                        const std::string& stored) {
    clsEntPOrderChk e = signOffs();
    std::string others = columnsBut(department);

    EXPECT_EQ(chk().UpdateRecord(e, department), 1);

    EXPECT_EQ(sql(), std::vector<std::string>{statement});
    EXPECT_EQ(columns(kDepartmentColumns.at(department)), stored);
    EXPECT_EQ(columnsBut(department), others);
    EXPECT_TRUE(messages().messages().empty());
  }

  // A review entity carrying a sign-off for every department.
  static clsEntPOrderChk signOffs() {
    clsEntPOrderChk e;
    e.F_ProdNo(2008050001.0);
    e.F_BStradCon(1);
    e.F_BSAlertNote("加急");
    e.F_BSNote("按期交货");
    e.F_BSChecker("王伟");
    e.F_BSCheckTime(date(2008, 5, 15, 10, 30));
    e.F_EGAdmit(1);
    e.F_EGNote("图纸已确认");
    e.F_EGModel(0);
    e.F_EGChecker("李娜");
    e.F_EGCheckTime(date(2008, 5, 16));
    e.F_WIFill(12.5);
    e.F_WIEndtime(date(2008, 6, 1, 8));
    e.F_WPStock(1.0 / 3.0);
    e.F_WPEndTime(VbDate{});
    e.F_WINote("库存不足");
    e.F_WIChecker("张强");
    e.F_WIChecktime(date(2008, 5, 17, 14, 5, 9));
    e.F_PUprovider(2);
    e.F_PUNote("供应商已确认");
    e.F_PUChecker("赵敏");
    e.F_PUCheckTime(date(2008, 5, 18, 9));
    e.F_QCStd(-1);
    e.F_QCNote("按标准检验");
    e.F_QChecker("孙丽");
    e.F_QCheckTime(date(2008, 5, 19, 23, 59, 59));
    e.F_MKDate(3);
    e.F_MKNote("排产第三周");
    e.F_MKChecker("周洋");
    e.F_MKCheckTime(date(2008, 5, 20, 0, 0, 1));
    e.F_Way("自制");
    e.F_CSNote("同意生产");
    e.F_CSChecker("陈刚");
    e.F_CSCheckTime(date(2008, 5, 20, 17, 45));
    return e;
  }
};

TEST_F(DepartmentSignOff, SalesWritesTradeConditionAlertNoteNoteCheckerAndTime) {
  signOffAndExpect("业务",
                   "update t_POrderChk set F_BStradCon=1,F_BSAlertNote='加急', F_BSNote='按期交货' "
                   ",F_BSChecker='王伟', F_BSCheckTime='2008-5-15 10:30:00' where F_ProdNo=2008050001",
                   "1|加急|按期交货|王伟|2008-05-15 10:30:00");
}

TEST_F(DepartmentSignOff, EngineeringWritesItsFlagsWithADateOnlyCheckTime) {
  signOffAndExpect(
      "工程",
      "update t_POrderChk set F_EGAdmit=1,F_EGNote='图纸已确认', F_EGModel=0 ,F_EGChecker='李娜', "
      "F_EGCheckTime='2008-5-16' where F_ProdNo=2008050001",
      "1|图纸已确认|0|李娜|2008-05-16 00:00:00");
}

TEST_F(DepartmentSignOff, WarehouseWritesItsFiguresAsShortestDecimalsAndAZeroDateAsMidnightTime) {
  signOffAndExpect(
      "仓库",
      "update t_POrderChk set F_WIFill=12.5,F_WIEndtime='2008-6-1 8:00:00', "
      "F_WPStock=0.333333333333333,F_WPEndTime='0:00:00',F_WINote='库存不足' ,F_WIChecker='张强', "
      "F_wiCheckTime='2008-5-17 14:05:09' where F_ProdNo=2008050001",
      "12.5|2008-06-01 08:00:00|0.333333333333333|0000-00-00 00:00:00|库存不足|张强|2008-05-17 14:05:09");
}

TEST_F(DepartmentSignOff, WarehouseFiguresOutsideFifteenDigitsAreWrittenInExponentForm) {
  clsEntPOrderChk e = signOffs();
  e.F_WIFill(1e15);
  e.F_WPStock(0.00001);

  EXPECT_EQ(chk().UpdateRecord(e, "仓库"), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{
                       "update t_POrderChk set F_WIFill=1E+15,F_WIEndtime='2008-6-1 8:00:00', "
                       "F_WPStock=1E-05,F_WPEndTime='0:00:00',F_WINote='库存不足' ,F_WIChecker='张强', "
                       "F_wiCheckTime='2008-5-17 14:05:09' where F_ProdNo=2008050001"});
  EXPECT_EQ(columns({"F_WIFill", "F_WPStock"}), "1e15|0.00001");
}

TEST_F(DepartmentSignOff, PurchasingWritesSupplierFlagNoteCheckerAndTime) {
  signOffAndExpect("采购",
                   "update t_POrderChk set F_PUprovider=2,F_PUNote='供应商已确认' ,F_PUChecker='赵敏', "
                   "F_PUCheckTime='2008-5-18 9:00:00' where F_ProdNo=2008050001",
                   "2|供应商已确认|赵敏|2008-05-18 09:00:00");
}

TEST_F(DepartmentSignOff, QualityAssuranceWritesANegativeFlagAsItsDigits) {
  signOffAndExpect("品保",
                   "update t_POrderChk set F_QCStd=-1,F_QCNote='按标准检验' ,F_QChecker='孙丽', "
                   "F_QCheckTime='2008-5-19 23:59:59' where F_ProdNo=2008050001",
                   "-1|按标准检验|孙丽|2008-05-19 23:59:59");
}

TEST_F(DepartmentSignOff, ProductionControlWritesDateFlagNoteCheckerAndTime) {
  signOffAndExpect("生管",
                   "update t_POrderChk set F_MKDate=3,F_MkNote='排产第三周' ,F_MKChecker='周洋', "
                   "F_MKCheckTime='2008-5-20 0:00:01' where F_ProdNo=2008050001",
                   "3|排产第三周|周洋|2008-05-20 00:00:01");
}

TEST_F(DepartmentSignOff, FinalReviewWritesNoteWayCheckerAndTime) {
  signOffAndExpect("终审",
                   "update t_POrderChk set F_CSNote='同意生产',F_Way='自制' ,F_csChecker='陈刚', "
                   "F_csCheckTime='2008-5-20 17:45:00' where F_ProdNo=2008050001",
                   "同意生产|自制|陈刚|2008-05-20 17:45:00");
}

TEST_F(DepartmentSignOff, ZeroDatesAreWrittenAsMidnightTimeAndStoredAsTheZeroDatetime) {
  clsEntPOrderChk e = signOffs();
  e.F_BSCheckTime(VbDate{});
  e.F_EGCheckTime(VbDate{});
  e.F_CSCheckTime(VbDate{});

  EXPECT_EQ(chk().UpdateRecord(e, "业务"), 1);
  EXPECT_EQ(chk().UpdateRecord(e, "工程"), 1);
  EXPECT_EQ(chk().UpdateRecord(e, "终审"), 1);

  std::vector<std::string> sent = sql();
  ASSERT_EQ(sent.size(), 3u);
  EXPECT_NE(sent[0].find(", F_BSCheckTime='0:00:00' where"), std::string::npos) << sent[0];
  EXPECT_NE(sent[1].find(", F_EGCheckTime='0:00:00' where"), std::string::npos) << sent[1];
  EXPECT_NE(sent[2].find(", F_csCheckTime='0:00:00' where"), std::string::npos) << sent[2];
  EXPECT_EQ(columns({"F_BSCheckTime", "F_EGCheckTime", "F_CSCheckTime"}),
            "0000-00-00 00:00:00|0000-00-00 00:00:00|0000-00-00 00:00:00");
}

TEST_F(DepartmentSignOff, EverySignOffLeavesEveryOtherDepartmentsColumnsAndOtherReviewsAsTheyWere) {
  clsEntPOrderChk e = signOffs();
  std::string second = wholeReview(2008050002);
  for (const auto& [department, owned] : kDepartmentColumns) {
    SCOPED_TRACE(department);
    std::string others = columnsBut(department);

    EXPECT_EQ(chk().UpdateRecord(e, department), 1);

    EXPECT_EQ(columnsBut(department), others);
    EXPECT_EQ(wholeReview(2008050002), second);
  }
  EXPECT_EQ(sql().size(), 7u);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(DepartmentSignOff, UnknownOrBlankPaddedDepartmentNameRunsNothingAndReturnsOne) {
  clsEntPOrderChk e = signOffs();
  std::string before = wholeReview(2008050001);
  for (const char* name : {"Sales", "", "业务 ", " 业务", "业　务", "终审\t", "QC", "品保部"}) {
    SCOPED_TRACE(name);

    EXPECT_EQ(chk().UpdateRecord(e, name), 1);
  }
  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(wholeReview(2008050001), before);
}

TEST_F(DepartmentSignOff, QuoteInANoteBreaksTheStatementAndShowsTheDatabasesDescription) {
  clsEntPOrderChk e = signOffs();
  e.F_BSNote("客户's 要求");
  std::string before = wholeReview(2008050001);

  EXPECT_EQ(chk().UpdateRecord(e, "业务"), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{
                       "update t_POrderChk set F_BStradCon=1,F_BSAlertNote='加急', F_BSNote='客户's 要求' "
                       ",F_BSChecker='王伟', F_BSCheckTime='2008-5-15 10:30:00' where F_ProdNo=2008050001"});
  EXPECT_EQ(
      messages().messages(),
      oneMessage("You have an error in your SQL syntax; check the manual that corresponds to your MariaDB "
                 "server version for the right syntax to use near 's 要求' ,F_BSChecker='王伟', "
                 "F_BSCheckTime='2008-5-15 10:30:00' where F_P...' at line 1"));
  EXPECT_EQ(wholeReview(2008050001), before);
}

TEST_F(DepartmentSignOff, ValueLongerThanItsColumnShowsTheLengthMessage) {
  clsEntPOrderChk e = signOffs();
  e.F_PUChecker(std::string(21, 'K'));  // the checker's column holds 20 characters
  std::string before = wholeReview(2008050001);

  EXPECT_EQ(chk().UpdateRecord(e, "采购"), 0);

  EXPECT_EQ(sql().size(), 1u);
  EXPECT_EQ(messages().messages(), oneMessage(kTooLongMessage));
  EXPECT_EQ(wholeReview(2008050001), before);
}

TEST_F(DepartmentSignOff, TooLongWayOfTheFinalReviewShowsTheLengthMessage) {
  clsEntPOrderChk e = signOffs();
  e.F_Way(std::string(31, 'W'));  // the way of production holds 30 characters

  EXPECT_EQ(chk().UpdateRecord(e, "终审"), 0);

  EXPECT_EQ(messages().messages(), oneMessage(kTooLongMessage));
  EXPECT_EQ(columns({"F_Way"}), "old way");
}

TEST_F(DepartmentSignOff, SignOffOfAReviewThatDoesNotExistChangesNothingAndReturnsOne) {
  clsEntPOrderChk e = signOffs();
  e.F_ProdNo(2008059999.0);
  std::string first = wholeReview(2008050001), second = wholeReview(2008050002);

  EXPECT_EQ(chk().UpdateRecord(e, "品保"), 1);

  EXPECT_EQ(sql().size(), 1u);
  EXPECT_EQ(wholeReview(2008050001), first);
  EXPECT_EQ(wholeReview(2008050002), second);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(DepartmentSignOff, ObjectStaysUsableAfterAFailedSignOff) {
  clsEntPOrderChk bad = signOffs();
  bad.F_MKNote("it's late");
  ASSERT_EQ(chk().UpdateRecord(bad, "生管"), 0);

  clsEntPOrderChk good = signOffs();
  EXPECT_EQ(chk().UpdateRecord(good, "生管"), 1);

  EXPECT_EQ(columns({"F_MKNote"}), "排产第三周");
}

}  // namespace
}  // namespace tovrand::test
