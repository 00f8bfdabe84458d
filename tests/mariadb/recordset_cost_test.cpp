// What the MariaDB engine sends for each recordset operation, counted by the server for the
// component's own session: every method text that does something is one text-protocol query (no
// prepare, no close), a whole table opened only to add a row never travels once its columns are known,
// and the engine's INSERT and UPDATE are prepared once per session.
#include <map>

#include "tests/mariadb/MariaDbTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class MariaDbCostTest : public MariaDbTest {
 protected:
  void SetUp() override {
    MariaDbTest::SetUp();
    exec(
        "create table t_cost (F_ProdNo double not null primary key, F_Name varchar(20), F_Qty int, "
        "F_Date datetime);"
        "insert into t_cost select seq, concat('row ', seq), seq mod 7, '2026-11-01' + interval seq day "
        "from seq_1_to_100");
    trace().clear();
  }
  // The server's counters of the component's session since the last call, less what reading them
  // costs (measured once: two readings with nothing between).
  std::map<std::string, double> sent() {
    std::map<std::string, double> now = readCounters();
    if (overhead_.empty()) {
      std::map<std::string, double> again = readCounters();
      for (auto& [name, value] : again) overhead_[name] = value - now[name];
      now = readCounters();
      last_ = now;
      return {};
    }
    std::map<std::string, double> delta;
    for (auto& [name, value] : now) delta[name] = value - last_[name] - overhead_[name];
    last_ = now;
    return delta;
  }
  std::map<std::string, double> readCounters() {
    auto rs = read(
        "show session status where Variable_name in ('Questions', 'Com_stmt_prepare', 'Com_stmt_execute', "
        "'Com_stmt_close', 'Com_select', 'Com_insert', 'Com_update')");
    std::map<std::string, double> counters;
    while (!rs->EOF_()) {
      counters[CStr(rs->Fields("Variable_name").value())] = CDbl(rs->Fields("Value").value());
      rs->MoveNext();
    }
    rs->Close();
    return counters;
  }
  void addRow(double prodNo) {
    auto rs = keyset("select * from t_cost ");
    rs->AddNew();
    rs->Fields("F_ProdNo") = Value(prodNo);
    rs->Fields("F_Name") = Value("added");
    rs->Update();
    rs->Close();
  }

 private:
  std::map<std::string, double> overhead_, last_;
};

TEST_F(MariaDbCostTest, AddingToAWholeTableWhoseColumnsAreKnownSendsOnlyTheInsert) {
  sent();
  addRow(1001);  // the session learns the table's columns and prepares the INSERT
  std::map<std::string, double> first = sent();
  EXPECT_EQ(first["Com_stmt_prepare"], 2.0) << "the table's columns, then the INSERT";
  EXPECT_EQ(first["Com_insert"], 1.0);
  EXPECT_EQ(first["Com_select"], 0.0);
  trace().clear();
  for (double prodNo : {1002.0, 1003.0, 1004.0}) addRow(prodNo);
  ASSERT_EQ(trace().statements().size(), 6u);
  EXPECT_EQ(trace().statements()[0], (TracedStatement{"select * from t_cost ", StatementOrigin::Method}));
  EXPECT_EQ(trace().statements()[1],
            (TracedStatement{"INSERT INTO `t_cost` (`F_ProdNo`, `F_Name`) VALUES (?, ?)",
                             StatementOrigin::Engine}));
  std::map<std::string, double> next = sent();
  EXPECT_EQ(next["Questions"], 3.0);
  EXPECT_EQ(next["Com_stmt_prepare"], 0.0);
  EXPECT_EQ(next["Com_stmt_execute"], 3.0);
  EXPECT_EQ(next["Com_insert"], 3.0);
  EXPECT_EQ(next["Com_select"], 0.0);
  EXPECT_EQ(scalar("select count(*) from t_cost where F_Name = 'added'"), "4");
}

TEST_F(MariaDbCostTest, EditingARowSendsItsReadAsOneQueryAndOneUpdate) {
  auto edit = [&](double prodNo, const char* name) {
    auto rs = keyset("select * from t_cost where F_ProdNo = " + CStr(prodNo));
    rs->Fields("F_Name") = Value(name);
    rs->Update();
    rs->Close();
  };
  edit(5, "warm");  // learns the columns, the primary key, prepares the UPDATE
  sent();
  edit(6, "six");
  edit(7, "seven");
  std::map<std::string, double> d = sent();
  EXPECT_EQ(d["Com_select"], 2.0);
  EXPECT_EQ(d["Com_update"], 2.0);
  EXPECT_EQ(d["Questions"], 4.0);
  EXPECT_EQ(d["Com_stmt_prepare"], 0.0) << "the reads are plain queries; the UPDATE is reused";
  EXPECT_EQ(d["Com_stmt_close"], 0.0);
  EXPECT_EQ(scalar("select F_Name from t_cost where F_ProdNo = 7"), "seven");
}

TEST_F(MariaDbCostTest, AReadIsOneQueryWhateverItsRowsAndColumns) {
  sent();
  auto rs = read("select * from t_cost where F_ProdNo <= 50 order by F_ProdNo");
  int rows = 0;
  while (!rs->EOF_()) {
    ++rows;
    rs->MoveNext();
  }
  rs->Close();
  std::map<std::string, double> d = sent();
  EXPECT_EQ(rows, 50);
  EXPECT_EQ(d["Questions"], 1.0);
  EXPECT_EQ(d["Com_select"], 1.0);
  EXPECT_EQ(d["Com_stmt_prepare"], 0.0);
  EXPECT_EQ(d["Com_stmt_execute"], 0.0);
}

TEST_F(MariaDbCostTest, AColumnAddedToATableAfterItsColumnsWereLearnedIsSeenAndWritten) {
  addRow(2001);
  exec("alter table t_cost add column F_Extra varchar(10)");
  auto rs = keyset("select * from t_cost where F_ProdNo = 2001");
  EXPECT_TRUE(rs->Fields("F_Extra").value().isNull());
  rs->Fields("F_Extra") = Value("now");
  rs->Update();
  rs->Close();
  auto added = keyset("select * from t_cost ");
  added->AddNew();
  added->Fields("F_ProdNo") = Value(2002.0);
  added->Fields("F_Extra") = Value("too");
  added->Update();
  added->Close();
  EXPECT_EQ(scalar("select F_Extra from t_cost where F_ProdNo = 2001"), "now");
  EXPECT_EQ(scalar("select F_Extra from t_cost where F_ProdNo = 2002"), "too");
}

}  // namespace
}  // namespace tovrand::test
