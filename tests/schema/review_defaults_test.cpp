// The review table t_porderchk: a review row created by the production-number allocation must load
// in clsDataPOrderChk.QueryAll, which cannot read NULL from most numeric and date columns, and the
// production number must stay unique under concurrent allocation.

#include <exception>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

// The numeric and date columns that the review load reads without a NULL test.
const std::vector<std::string> kNonFlagNumericAndDateColumns = {
    "F_ProdNo",      "F_OrderNo",    "F_OrderCount", "F_DeliverDate", "F_BStradCon",   "F_BSCheckTime",
    "F_EGCheckTime", "F_WIFill",     "F_WIEndtime",  "F_WPStock",     "F_WPEndTime",   "F_WIChecktime",
    "F_PUCheckTime", "F_QCheckTime", "F_MKDate",     "F_MKCheckTime", "F_CSCheckTime", "F_AlerTime",
};

// The flag columns that the review load tests for NULL and reads as 2 (not yet decided).
const std::vector<std::string> kFlagColumns = {"F_EGAdmit", "F_EGModel", "F_PUprovider", "F_QCStd",
                                               "F_Status"};

class ReviewDefaultsTest : public DatabaseTest {
 protected:
  // Exactly the fields clsDataPOrderChk.AddRecord writes, spelled as it spells them.
  void allocate(const std::string& prodNo) const {
    exec(
        "insert into t_porderchk (F_ProdNo, f_OrderNo, f_CustNo, F_ItemNo, f_CorderNo, f_OrderCount, "
        "f_DeliverDate, F_CItemNO) values (" +
        prodNo + ", 2611006, 'C004', 'FG-1003', 'YJ-20261109', 800, '2026-12-20', 'YJ-FC-B')");
  }

  std::string column(const std::string& name) const {
    return scalar("select " + name + " from t_porderchk where F_ProdNo = 2026110001");
  }
};

TEST_F(ReviewDefaultsTest, FreshReviewHasNoNullInAnyNumericOrDateColumnButTheFlags) {
  allocate("2026110001");
  for (const auto& name : kNonFlagNumericAndDateColumns) {
    SCOPED_TRACE(name);
    EXPECT_NE(column(name), "NULL");
  }
}

TEST_F(ReviewDefaultsTest, FreshReviewLeavesTheFiveFlagsNull) {
  allocate("2026110001");
  for (const auto& name : kFlagColumns) {
    SCOPED_TRACE(name);
    EXPECT_EQ(column(name), "NULL");
  }
}

TEST_F(ReviewDefaultsTest, EveryNumericOrDateColumnWithoutDefaultIsAFlagOrTheKey) {
  // Guards columns added later: each new numeric or date column needs a default or a NULL test.
  EXPECT_EQ(
      scalar("select group_concat(column_name order by ordinal_position separator ',') "
             "from information_schema.columns where table_schema = database() and table_name = 't_porderchk' "
             "and data_type in ('double', 'smallint', 'int', 'datetime', 'date') "
             "and (column_default is null or column_default = 'NULL')"),
      "F_ProdNo,F_EGAdmit,F_EGModel,F_PUprovider,F_QCStd,F_Status");
}

TEST_F(ReviewDefaultsTest, DateColumnsDefaultToTheZeroDate) {
  allocate("2026110001");
  for (const std::string name :
       {"F_BSCheckTime", "F_EGCheckTime", "F_WIEndtime", "F_WPEndTime", "F_WIChecktime", "F_PUCheckTime",
        "F_QCheckTime", "F_MKCheckTime", "F_CSCheckTime", "F_AlerTime"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(column("cast(" + name + " as char)"), "1899-12-30 00:00:00");
  }
}

TEST_F(ReviewDefaultsTest, NumericColumnsDefaultToWhatANullWouldReadAs) {
  allocate("2026110001");
  EXPECT_EQ(column("F_BStradCon"), "2");
  EXPECT_EQ(column("F_MKDate"), "0");
  EXPECT_EQ(column("F_WIFill"), "0");
  EXPECT_EQ(column("F_WPStock"), "0");
}

TEST_F(ReviewDefaultsTest, AllocationWritesTheEightFieldsAsGiven) {
  allocate("2026110001");
  EXPECT_EQ(column("F_OrderNo"), "2611006");
  EXPECT_EQ(column("F_CustNo"), "C004");
  EXPECT_EQ(column("F_ItemNo"), "FG-1003");
  EXPECT_EQ(column("F_CorderNo"), "YJ-20261109");
  EXPECT_EQ(column("F_OrderCount"), "800");
  EXPECT_EQ(column("cast(F_DeliverDate as char)"), "2026-12-20 00:00:00");
  EXPECT_EQ(column("F_CItemNo"), "YJ-FC-B");
}

TEST_F(ReviewDefaultsTest, DefaultedColumnsStillAcceptNull) {
  // A NULL put there by hand must still reach the review load (which then fails on it).
  allocate("2026110001");
  exec("update t_porderchk set F_WIFill = NULL, F_AlerTime = NULL where F_ProdNo = 2026110001");
  EXPECT_EQ(column("F_WIFill"), "NULL");
  EXPECT_EQ(column("F_AlerTime"), "NULL");
}

TEST_F(ReviewDefaultsTest, SignOffStatementsWithZeroDateTextAreAccepted) {
  allocate("2026110001");
  exec(
      "update t_POrderChk set F_QCStd=1,F_QCNote='' ,F_QChecker='周涛', F_QCheckTime='0:00:00' "
      "where F_ProdNo=2026110001");
  exec(
      "update t_POrderChk set F_BStradCon=1,F_BSAlertNote='', F_BSNote='' ,F_BSChecker='王芳', "
      "F_BSCheckTime='2026-11-22 9:05:00' where F_ProdNo=2026110001");
  EXPECT_EQ(column("F_QCStd"), "1");
  EXPECT_EQ(column("cast(F_BSCheckTime as char)"), "2026-11-22 09:05:00");
}

TEST_F(ReviewDefaultsTest, SecondReviewWithTheSameProductionNumberIsADuplicateKeyError) {
  allocate("2026110001");
  std::string error;
  try {
    allocate("2026110001");
  } catch (const std::exception& e) {
    error = e.what();
  }
  EXPECT_NE(error.find("Duplicate entry"), std::string::npos) << "error: " << error;
  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "1");
}

TEST_F(ReviewDefaultsTest, DifferentProductionNumbersOfTheSameMonthCoexist) {
  allocate("2026110001");
  allocate("2026110002");
  EXPECT_EQ(scalar("select max(F_ProdNo) as ProdNo from T_POrderChk where "
                   "left(cast(F_ProdNo as char),6)='202611'"),
            "2026110002");
}

}  // namespace
}  // namespace tovrand::test
