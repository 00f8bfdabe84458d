#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "entities/Entities.h"
#include "frame/Messages.h"
#include "host/NativeHost.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/support/Printers.h"
#include "tests/support/TestDatabase.h"
#include "vb/VbError.h"

namespace tovrand::test {

inline VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

inline std::vector<Message> oneMessage(const std::string& text) {
  return {Message{text, vbInformation, kTitleQuenta}};
}

inline TracedStatement engine(const std::string& sql) {
  return {sql, StatementOrigin::Engine};
}
inline TracedStatement method(const std::string& sql) {
  return {sql, StatementOrigin::Method};
}

// What AddRecord sends, and what the engine sends for the review row it adds.
inline constexpr const char* kMonthQuery =
    "select * from t_porderchk where left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)";
inline constexpr const char* kMaxQuery =
    "select max(F_ProdNo) as ProdNo from T_POrderChk where "
    "left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)";
inline constexpr const char* kPrefixQuery = "select left(cast(curdate()+0 as char),6) as ProdNo";
inline constexpr const char* kReviewTable = "select * from  t_porderchk";
inline constexpr const char* kReviewInsert =
    "INSERT INTO `t_porderchk` (`F_ProdNo`, `F_OrderNo`, `F_CustNo`, `F_ItemNo`, `F_CorderNo`, "
    "`F_OrderCount`, `F_DeliverDate`, `F_CItemNo`) VALUES (?, ?, ?, ?, ?, ?, ?, ?)";

// What AddRecord sends for two lines ("1", FG-1 and "2", FG-2) of sales order 2805001 in a month that
// has no production number yet, with LenInt 4 on a day of May 2008.
inline std::vector<TracedStatement> firstTwoLinesOfTheMonth() {
  return {
      method(kMonthQuery),
      method(kPrefixQuery),
      method(kReviewTable),
      engine(kReviewInsert),
      method("update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=2805001 and F_ItemNo='FG-1' and "
             "f_No='1'"),
      method("update T_BOrderh set F_Flags=1 where F_OrderNo=2805001"),
      method(kReviewTable),
      engine(kReviewInsert),
      method("update T_BOrderi set F_ProdNo=2008050002 where F_OrderNo=2805001 and F_ItemNo='FG-2' and "
             "f_No='2'"),
      method("update T_BOrderh set F_Flags=1 where F_OrderNo=2805001"),
  };
}

// A clsDataPOrderChk on this test's fresh database, with the trace and the messages starting empty.
class POrderChkTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    object_ = std::make_unique<clsDataPOrderChk>(hostWith(options()));
    trace().clear();
  }
  void TearDown() override {
    object_.reset();
    DatabaseTest::TearDown();
  }
  // The query options of the object's connection ("" keeps the fixture's server date).
  virtual std::string options() const { return ""; }

  // A native host on this test's database with these query options, its messages going to messages().
  std::shared_ptr<Host> hostWith(const std::string& options) {
    std::shared_ptr<MessageSink> sink(std::shared_ptr<void>(), &messages());
    return std::make_shared<NativeHost>(ConnectionSettings::parse(dsn(options)), sink);
  }

  clsDataPOrderChk& chk() { return *object_; }
  std::vector<std::string> sql() { return trace().methodStatements(); }

  // A sales-order line as the sales screens pass it.
  static clsEntBOrderi line(double orderNo, const std::string& no, const std::string& item) {
    clsEntBOrderi l;
    l.F_OrderNo(orderNo);
    l.F_No(no);
    l.F_ItemNo(item);
    l.F_CItemNo("C-" + item);
    l.F_OrderQty(10.0);
    l.F_DeliverDate(date(2008, 6, 30));
    return l;
  }

  // Sales order `orderNo` with `count` lines numbered "1".. and items FG-1.., in the tables and in
  // `lines`.
  void salesOrder(Collection& lines, double orderNo, int count) {
    exec("insert into t_borderh (F_OrderNo, F_CustNo, F_Flags) values (" + CStr(orderNo) + ", 'C001', 0)");
    for (int i = 1; i <= count; ++i) {
      std::string no = std::to_string(i);
      exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values (" + CStr(orderNo) + ", '" + no +
           "', 'FG-" + no + "')");
      lines.Add(line(orderNo, no, "FG-" + no));
    }
  }

  // The review numbers, lowest first, and the numbers of one sales order's lines in line order.
  std::string reviews() {
    return scalar(
        "select ifnull(group_concat(cast(F_ProdNo as char) order by F_ProdNo), '') from t_porderchk");
  }
  std::string lineNumbers(double orderNo) {
    return scalar(
        "select group_concat(ifnull(cast(F_ProdNo as char), 'NULL') order by F_ID) from t_borderi "
        "where F_OrderNo=" +
        CStr(orderNo));
  }

 private:
  std::unique_ptr<clsDataPOrderChk> object_;
};

}  // namespace tovrand::test
