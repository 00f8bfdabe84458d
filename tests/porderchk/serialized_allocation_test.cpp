// clsDataPOrderChk.AddRecord on a connection with serialize_allocation=1: the server's named lock held
// from before the month query to after the last line, and given back on every way out.
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

constexpr const char* kTakeLock =
    "select get_lock(concat('tovrand.allocation.', left(database(), 45)), 10) as Locked";
constexpr const char* kGiveLock = "select release_lock(concat('tovrand.allocation.', left(database(), 45)))";
constexpr const char* kLockName = "concat('tovrand.allocation.', left(database(), 45))";

class SerializedAllocation : public POrderChkTest {
 protected:
  std::string options() const override { return "server_date=2008-05-15&serialize_allocation=1"; }

  // Whether no session holds the allocation lock of this test's database.
  bool lockIsFree() { return scalar(std::string("select is_free_lock(") + kLockName + ")") == "1"; }
};

TEST_F(SerializedAllocation, LockIsTakenBeforeTheMonthQueryAndGivenBackAfterTheLastLine) {
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  std::vector<TracedStatement> expected = firstTwoLinesOfTheMonth();
  expected.insert(expected.begin(), method(kTakeLock));
  expected.push_back(method(kGiveLock));
  EXPECT_EQ(trace().statements(), expected);
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002");
  EXPECT_TRUE(lockIsFree());
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, ContinuationOfTheMonthIsAlsoInsideTheLock) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050041)");
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                kTakeLock, kMonthQuery, kMaxQuery, kReviewTable,
                "update T_BOrderi set F_ProdNo=2008050042 where F_OrderNo=2805001 and F_ItemNo='FG-1' and "
                "f_No='1'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001", kGiveLock}));
}

TEST_F(SerializedAllocation, FailedAllocationStillGivesTheLockBack) {
  Collection lines;
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");
  exec(
      "insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (2805001, '1', 'FG-1'), (2805001, '2', "
      "'FG-2')");
  lines.Add(line(2805001, "1", "FG-1"));
  lines.Add(line(2805001, "2", std::string(31, 'X')));

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  std::vector<TracedStatement> all = trace().statements();
  ASSERT_EQ(all.size(), 9u);
  EXPECT_EQ(all[0], method(kTakeLock));
  EXPECT_EQ(all[7], method(kReviewTable));
  EXPECT_EQ(all[8], method(kGiveLock));
  EXPECT_EQ(messages().messages(), oneMessage(kTooLongMessage));
  EXPECT_EQ(lineNumbers(2805001), "2008050001,NULL");
  EXPECT_TRUE(lockIsFree());
}

TEST_F(SerializedAllocation, DuplicateNumberStillGivesTheLockBack) {
  exec("insert into t_porderchk (F_ProdNo) values (20080599), (20080600)");
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 2), 0);

  EXPECT_EQ(messages().messages(), oneMessage("Duplicate entry '20080600' for key 'PRIMARY'"));
  EXPECT_EQ(trace().statements().back(), method(kGiveLock));
  EXPECT_TRUE(lockIsFree());
}

TEST_F(SerializedAllocation, LockHeldElsewhereEndsTheCallAfterTenSecondsWithResultZero) {
  ASSERT_EQ(scalar(std::string("select get_lock(") + kLockName + ", 0)"), "1");  // another session holds it
  Collection lines;
  salesOrder(lines, 2805001, 1);
  auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_GE(waited, 9.5);
  EXPECT_LT(waited, 30.0);
  // Nothing was allocated, so there is nothing to give back.
  EXPECT_EQ(sql(), std::vector<std::string>{kTakeLock});
  EXPECT_EQ(messages().messages(),
            oneMessage("Another client is allocating production numbers: the allocation "
                       "lock could not be had within 10 seconds"));
  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "0");
  EXPECT_EQ(lineNumbers(2805001), "NULL");
  EXPECT_EQ(scalar("select F_Flags from t_borderh"), "0");

  // Once the other session lets go, the same object allocates.
  ASSERT_EQ(scalar(std::string("select release_lock(") + kLockName + ")"), "1");
  messages().take();
  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
}

TEST_F(SerializedAllocation, AllocatorQueuesUntilTheOtherSessionLetsGo) {
  ASSERT_EQ(scalar(std::string("select get_lock(") + kLockName + ", 0)"), "1");
  Collection lines;
  salesOrder(lines, 2805001, 1);
  std::thread other([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    scalar(std::string("select release_lock(") + kLockName + ")");
  });
  auto start = std::chrono::steady_clock::now();

  std::int16_t result = chk().AddRecord(lines, "2805001", "C001", "PO-1", 4);

  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  other.join();
  EXPECT_EQ(result, 1);
  EXPECT_GE(waited, 1.0);
  EXPECT_LT(waited, 9.0);
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, EmptyCollectionSendsNoStatementAtAll) {
  Collection lines;

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, OtherMembersNeverTakeTheLock) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050001)");
  clsEntPOrderChk review;
  review.F_ProdNo(2008050001.0);
  Collection numbers;

  EXPECT_EQ(chk().UpdateRecord(review, "采购"), 1);
  EXPECT_EQ(chk().QueryProdNo(numbers), 0);
  EXPECT_EQ(chk().JudgeExits("FG-1"), 0);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                "update t_POrderChk set F_PUprovider=0,F_PUNote='' ,F_PUChecker='', F_PUCheckTime='0:00:00' "
                "where F_ProdNo=2008050001",
                "select F_ProdNo  from T_POrderChk order by F_ProdNo desc",
                "Select * From T_EBom Where F_GoodsNo='FG-1'"}));
}

}  // namespace
}  // namespace tovrand::test
