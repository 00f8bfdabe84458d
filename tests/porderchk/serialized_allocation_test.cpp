// clsDataPOrderChk.AddRecord on a connection with serialize_allocation=1: the whole allocation runs in
// one transaction that first writes the allocation's lock row, so that concurrent allocators queue on
// one server and conflict (and run again) on a cluster; a conflict is retried within a bound.
#include <atomic>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

constexpr const char* kBegin = "start transaction";
constexpr const char* kCommit = "commit";
constexpr const char* kRollback = "rollback";
constexpr const char* kTakeLockRow =
    "set statement innodb_lock_wait_timeout=10 for insert into t_tovrand_lock (F_Name, F_Taken) values "
    "('production number', 1) on duplicate key update F_Taken=F_Taken+1";
constexpr const char* kTakeLockRowWithinOneSecond =
    "set statement innodb_lock_wait_timeout=1 for insert into t_tovrand_lock (F_Name, F_Taken) values "
    "('production number', 1) on duplicate key update F_Taken=F_Taken+1";
constexpr const char* kCreateLockTable =
    "create table if not exists t_tovrand_lock (F_Name varchar(64) not null, F_Taken bigint not null default "
    "0, primary key (F_Name)) engine=InnoDB default charset=utf8mb4 collate=utf8mb4_general_ci";
// What another session writes to hold the lock row in a transaction of its own.
constexpr const char* kHoldLockRow =
    "insert into t_tovrand_lock (F_Name, F_Taken) values ('production number', 1) on duplicate key update "
    "F_Taken=F_Taken+1";

class SerializedAllocation : public POrderChkTest {
 protected:
  std::string options() const override { return "server_date=2008-05-15&serialize_allocation=1"; }

  std::string timesTaken() {
    return scalar("select ifnull(max(F_Taken), 0) from t_tovrand_lock where F_Name='production number'");
  }

  // Two clients review `orders` sales orders of two lines each (client c's are 2900000 + c * 1000 + o),
  // both starting at the same moment; the statuses each got, in order. The trace is off meanwhile: it
  // records one thread at a time.
  std::pair<std::vector<int>, std::vector<int>> reviewTogether(clsDataPOrderChk& first,
                                                               clsDataPOrderChk& second, int orders) {
    for (int c = 0; c < 2; ++c) {
      for (int o = 0; o < orders; ++o) {
        Collection unused;
        salesOrder(unused, 2900000 + c * 1000 + o, 2);
      }
    }
    setTraceSink(nullptr);
    std::atomic<int> ready{0};
    auto client = [&](clsDataPOrderChk& chk, int c, std::vector<int>& results) {
      ++ready;
      while (ready.load() < 2) {
      }
      for (int o = 0; o < orders; ++o) {
        double orderNo = 2900000 + c * 1000 + o;
        Collection lines;
        lines.Add(line(orderNo, "1", "FG-1"));
        lines.Add(line(orderNo, "2", "FG-2"));
        results.push_back(chk.AddRecord(lines, CStr(orderNo), "C001", "PO-1", 4));
      }
    };
    std::vector<int> firstResults, secondResults;
    std::thread a([&] { client(first, 0, firstResults); });
    std::thread b([&] { client(second, 1, secondResults); });
    a.join();
    b.join();
    setTraceSink(&trace());
    return {firstResults, secondResults};
  }
};

TEST_F(SerializedAllocation, OneTransactionFromTheLockRowToTheCommitEnclosesTheAllocation) {
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  std::vector<TracedStatement> expected = firstTwoLinesOfTheMonth();
  expected.insert(expected.begin(), {method(kBegin), method(kTakeLockRow)});
  expected.push_back(method(kCommit));
  EXPECT_EQ(trace().statements(), expected);
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002");
  EXPECT_EQ(timesTaken(), "1");
  EXPECT_EQ(openTransactions(), "0");
  EXPECT_EQ(chk().lastAllocationAttempts(), 1);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, WithoutTheOptionOnlyTheComponentsOwnStatementsAreSent) {
  clsDataPOrderChk plain(hostWith("server_date=2008-05-15&serialize_allocation=0"));
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(plain.AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(trace().statements(), firstTwoLinesOfTheMonth());
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002");
  EXPECT_EQ(timesTaken(), "0");
  EXPECT_EQ(plain.lastAllocationAttempts(), 0);
}

TEST_F(SerializedAllocation, ContinuationOfTheMonthIsAlsoInsideTheTransaction) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050041)");
  Collection lines;
  salesOrder(lines, 2805001, 1);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                kBegin, kTakeLockRow, kMonthQuery, kMaxQuery, kReviewTable,
                "update T_BOrderi set F_ProdNo=2008050042 where F_OrderNo=2805001 and F_ItemNo='FG-1' and "
                "f_No='1'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001", kCommit}));
  EXPECT_EQ(lineNumbers(2805001), "2008050042");
}

TEST_F(SerializedAllocation, FailedLineKeepsTheLinesBeforeItAndEndsTheTransaction) {
  Collection lines;
  exec("insert into t_borderh (F_OrderNo, F_Flags) values (2805001, 0)");
  exec(
      "insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (2805001, '1', 'FG-1'), (2805001, '2', "
      "'FG-2')");
  lines.Add(line(2805001, "1", "FG-1"));
  lines.Add(line(2805001, "2", std::string(31, 'X')));

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  std::vector<TracedStatement> all = trace().statements();
  ASSERT_EQ(all.size(), 10u);
  EXPECT_EQ(all[0], method(kBegin));
  EXPECT_EQ(all[1], method(kTakeLockRow));
  EXPECT_EQ(all[8], method(kReviewTable));
  EXPECT_EQ(all[9], method(kCommit));
  EXPECT_EQ(messages().messages(), oneMessage(kTooLongMessage));
  // As without the option: the lines done before the error stay done.
  EXPECT_EQ(lineNumbers(2805001), "2008050001,NULL");
  EXPECT_EQ(openTransactions(), "0");
}

TEST_F(SerializedAllocation, DuplicateNumberIsReportedAsWithoutTheOption) {
  exec("insert into t_porderchk (F_ProdNo) values (20080599), (20080600)");
  Collection lines;
  salesOrder(lines, 2805001, 2);

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 2), 0);

  // A duplicate may come from an allocation a cluster aborted late: it is tried twice more before the
  // duplicate is reported.
  EXPECT_EQ(messages().messages(), oneMessage("Duplicate entry '20080600' for key 'PRIMARY'"));
  EXPECT_EQ(trace().statements().back(), method(kCommit));
  EXPECT_EQ(chk().lastAllocationAttempts(), 3);
  EXPECT_EQ(lineNumbers(2805001), "NULL,NULL");
  EXPECT_EQ(openTransactions(), "0");
}

TEST_F(SerializedAllocation, LockRowHeldTooLongEndsTheCallAtTheBoundWithNothingWritten) {
  chk().setAllocationBound({.attempts = 2, .totalSeconds = 60, .lockWaitSeconds = 1});
  Collection lines;
  salesOrder(lines, 2805001, 1);
  exec("start transaction");
  exec(kHoldLockRow);  // another session holds the row
  trace().clear();
  auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_GE(waited, 1.9);
  EXPECT_LT(waited, 10.0);
  EXPECT_EQ(sql(), (std::vector<std::string>{kBegin, kTakeLockRowWithinOneSecond, kRollback, kBegin,
                                             kTakeLockRowWithinOneSecond, kRollback}));
  EXPECT_EQ(messages().messages(),
            oneMessage("The production number could not be allocated after 2 attempts: other clients were "
                       "allocating production numbers at the same time. Nothing of this sales order was "
                       "written; try again."));
  EXPECT_EQ(chk().lastAllocationAttempts(), 2);
  exec("rollback");
  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "0");
  EXPECT_EQ(lineNumbers(2805001), "NULL");
  EXPECT_EQ(scalar("select F_Flags from t_borderh"), "0");
  EXPECT_EQ(openTransactions(), "0");

  // Once the other session lets go, the same object allocates.
  messages().take();
  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, TotalTimeAlsoBoundsTheAttempts) {
  chk().setAllocationBound({.attempts = 1000, .totalSeconds = 3, .lockWaitSeconds = 1});
  Collection lines;
  salesOrder(lines, 2805001, 1);
  exec("start transaction");
  exec(kHoldLockRow);
  auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  exec("rollback");
  EXPECT_GE(waited, 2.0);
  EXPECT_LT(waited, 6.0);
  EXPECT_GE(chk().lastAllocationAttempts(), 2);
  EXPECT_LE(chk().lastAllocationAttempts(), 4);
  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_TRUE(
      messages().messages()[0].text.starts_with("The production number could not be allocated after "));
  EXPECT_EQ(scalar("select count(*) from t_porderchk"), "0");
}

TEST_F(SerializedAllocation, AllocatorQueuesUntilTheOtherSessionCommits) {
  Collection lines;
  salesOrder(lines, 2805001, 1);
  exec("start transaction");
  exec(kHoldLockRow);
  std::thread other([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    exec("commit");
  });
  auto start = std::chrono::steady_clock::now();

  std::int16_t result = chk().AddRecord(lines, "2805001", "C001", "PO-1", 4);

  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  other.join();
  EXPECT_EQ(result, 1);
  EXPECT_GE(waited, 1.0);
  EXPECT_LT(waited, 9.0);
  EXPECT_EQ(chk().lastAllocationAttempts(), 1);
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
  EXPECT_EQ(timesTaken(), "2");
  EXPECT_TRUE(messages().messages().empty());
}

// Two clients, each on a session of its own, allocate again and again at the same moments: every
// allocation gets its numbers, the numbers of one sales order are consecutive, and none is given twice.
TEST_F(SerializedAllocation, TwoClientsAllocatingAtOnceBothGetConsecutiveNumbers) {
  constexpr int kOrders = 25;
  // A different read timeout keeps the two clients' sessions apart.
  clsDataPOrderChk first(hostWith("server_date=2008-05-15&serialize_allocation=1&timeout=31"));
  clsDataPOrderChk second(hostWith("server_date=2008-05-15&serialize_allocation=1&timeout=32"));
  auto [firstResults, secondResults] = reviewTogether(first, second, kOrders);

  EXPECT_EQ(firstResults, std::vector<int>(kOrders, 1));
  EXPECT_EQ(secondResults, std::vector<int>(kOrders, 1));
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(scalar("select count(distinct F_ProdNo) from t_porderchk"), std::to_string(4 * kOrders));
  EXPECT_EQ(scalar("select cast(min(F_ProdNo) as char) from t_porderchk"), "2008050001");
  EXPECT_EQ(scalar("select cast(max(F_ProdNo) as char) from t_porderchk"), CStr(2008050000.0 + 4 * kOrders));
  // Each sales order's second line has the number after its first line's.
  EXPECT_EQ(scalar("select count(*) from t_borderi a join t_borderi b on a.F_OrderNo=b.F_OrderNo and "
                   "a.F_No='1' and b.F_No='2' where b.F_ProdNo=a.F_ProdNo+1"),
            std::to_string(2 * kOrders));
  EXPECT_EQ(timesTaken(), std::to_string(2 * kOrders));
}

// Two objects of one process on the same settings share one session: their transactions take turns
// instead of one beginning or ending the other's.
TEST_F(SerializedAllocation, ObjectsSharingOneSessionTakeTurns) {
  constexpr int kOrders = 15;
  clsDataPOrderChk first(hostWith(options()));
  clsDataPOrderChk second(hostWith(options()));
  auto [firstResults, secondResults] = reviewTogether(first, second, kOrders);

  EXPECT_EQ(firstResults, std::vector<int>(kOrders, 1));
  EXPECT_EQ(secondResults, std::vector<int>(kOrders, 1));
  EXPECT_EQ(scalar("select count(distinct F_ProdNo) from t_porderchk"), std::to_string(4 * kOrders));
  EXPECT_EQ(scalar("select count(*) from t_borderi a join t_borderi b on a.F_OrderNo=b.F_OrderNo and "
                   "a.F_No='1' and b.F_No='2' where b.F_ProdNo=a.F_ProdNo+1"),
            std::to_string(2 * kOrders));
}

TEST_F(SerializedAllocation, MissingLockTableIsCreatedOnFirstUse) {
  exec("drop table t_tovrand_lock");
  Collection lines;
  salesOrder(lines, 2805001, 1);

  if (componentRunsRestricted()) {
    // An account without the right to create tables meets the missing table as a handled error.
    EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);
    EXPECT_EQ(sql(), (std::vector<std::string>{kBegin, kTakeLockRow, kRollback, kCreateLockTable}));
    ASSERT_EQ(messages().messages().size(), 1u);
    EXPECT_NE(messages().messages()[0].text.find("CREATE command denied"), std::string::npos);
    EXPECT_EQ(lineNumbers(2805001), "NULL");
    return;
  }
  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                kBegin, kTakeLockRow, kRollback, kCreateLockTable, kBegin, kTakeLockRow, kMonthQuery,
                kPrefixQuery, kReviewTable,
                "update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=2805001 and F_ItemNo='FG-1' and "
                "f_No='1'",
                "update T_BOrderh set F_Flags=1 where F_OrderNo=2805001", kCommit}));
  EXPECT_EQ(lineNumbers(2805001), "2008050001");
  EXPECT_EQ(timesTaken(), "1");
  EXPECT_EQ(scalar("select table_collation from information_schema.tables where table_schema=database() and "
                   "table_name='t_tovrand_lock'"),
            "utf8mb4_general_ci");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, EmptyCollectionSendsNoStatementAtAll) {
  Collection lines;

  EXPECT_EQ(chk().AddRecord(lines, "2805001", "C001", "PO-1", 4), 0);

  EXPECT_TRUE(trace().statements().empty());
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SerializedAllocation, OtherMembersSendNoTransaction) {
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
