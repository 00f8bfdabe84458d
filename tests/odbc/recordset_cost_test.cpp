// What the engine sends for each recordset operation, counted by the server for the component's own
// session: a statement that does something travels once, a whole table opened only to add a row never
// travels once its columns are known, and the engine's INSERT and UPDATE are prepared once per session.
// The suite runs on the engine TOVRAND_TEST_ENGINE names; the MariaDB engine sends every method text
// as one text-protocol query (no prepare, no close), the ODBC engine prepares and runs a read in one
// exchange.
#include <map>

#include "tests/odbc/OdbcTestSupport.h"
#include "tests/support/Engines.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class RecordsetCostTest : public RecordsetTest {
 protected:
  void SetUp() override {
    RecordsetTest::SetUp();
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

TEST_F(RecordsetCostTest, AddingToAWholeTableWhoseColumnsAreKnownSendsOnlyTheInsert) {
  sent();
  addRow(1001);  // the session learns the table's columns and prepares the INSERT
  std::map<std::string, double> first = sent();
  EXPECT_EQ(first["Com_stmt_prepare"], 2.0) << "the table's columns, then the INSERT";
  EXPECT_EQ(first["Com_insert"], 1.0);
  if (onMariaDbEngine()) {
    EXPECT_EQ(first["Com_select"], 0.0);
  }
  trace().clear();
  for (double prodNo : {1002.0, 1003.0, 1004.0}) addRow(prodNo);
  // Every text the method built is still reported, whether or not it travelled.
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

TEST_F(RecordsetCostTest, EditingARowSendsItsReadAndOneUpdate) {
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
  if (onMariaDbEngine()) {
    EXPECT_EQ(d["Com_stmt_prepare"], 0.0) << "the reads are plain queries; the UPDATE is reused";
    EXPECT_EQ(d["Com_stmt_close"], 0.0);
  } else {
    EXPECT_EQ(d["Com_stmt_prepare"], 2.0)
        << "each read is prepared and run in one exchange; the UPDATE is reused";
  }
  EXPECT_EQ(scalar("select F_Name from t_cost where F_ProdNo = 7"), "seven");
}

TEST_F(RecordsetCostTest, AReadTravelsOnceWhateverItsRowsAndColumns) {
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
  if (onMariaDbEngine()) {
    EXPECT_EQ(d["Com_stmt_prepare"], 0.0);
    EXPECT_EQ(d["Com_stmt_execute"], 0.0);
  }
}

TEST_F(RecordsetCostTest, RowsAreReadInOrderAcrossTheBlocksTheDriverFillsAtOnce) {
  exec("update t_cost set F_Name = null, F_Date = null where F_ProdNo mod 10 = 0");
  auto rs = read("select F_ProdNo, F_Name, F_Qty, F_Date from t_cost order by F_ProdNo");
  for (int i = 1; i <= 100; ++i) {
    ASSERT_FALSE(rs->EOF_()) << "row " << i;
    EXPECT_EQ(rs->Fields("F_ProdNo").value(), Value(static_cast<double>(i)));
    EXPECT_EQ(rs->Fields("F_Qty").value(), Value(static_cast<std::int32_t>(i % 7)));
    if (i % 10 == 0) {
      EXPECT_TRUE(rs->Fields("F_Name").value().isNull()) << "row " << i;
      EXPECT_TRUE(rs->Fields("F_Date").value().isNull()) << "row " << i;
    } else {
      EXPECT_EQ(rs->Fields("F_Name").value(), Value("row " + std::to_string(i)));
      EXPECT_EQ(rs->Fields("F_Date").value(), Value(VbDate{makeDate({2026, 11, 1, 0, 0, 0}).serial + i}));
    }
    rs->MoveNext();
  }
  EXPECT_TRUE(rs->EOF_());
}

TEST_F(RecordsetCostTest, AColumnAddedToATableAfterItsColumnsWereLearnedIsSeenAndWritten) {
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

TEST_F(RecordsetCostTest, TwoRecordsetsAddingToOneTableAtOnceEachStoreTheirOwnRow) {
  addRow(3000);
  auto a = keyset("select * from t_cost ");
  auto b = keyset("select * from t_cost ");
  a->AddNew();
  b->AddNew();
  a->Fields("F_ProdNo") = Value(3001.0);
  b->Fields("F_ProdNo") = Value(3002.0);
  a->Fields("F_Name") = Value("a");
  b->Fields("F_Name") = Value("b");
  a->Update();
  b->Update();
  EXPECT_EQ(scalar("select F_Name from t_cost where F_ProdNo = 3001"), "a");
  EXPECT_EQ(scalar("select F_Name from t_cost where F_ProdNo = 3002"), "b");
}

TEST_F(RecordsetCostTest, ANewSessionPreparesItsStatementsAgain) {
  addRow(4001);
  auto rs = read("select connection_id() as id");
  std::string id = CStr(rs->Fields("id").value());
  rs->Close();
  exec("KILL CONNECTION " + id);
  EXPECT_EQ(errorOf([&] { addRow(4002); }).number(), -2147467259)
      << "the statement that met the lost session";
  addRow(4003);
  EXPECT_EQ(scalar("select count(*) from t_cost where F_ProdNo in (4001, 4003)"), "2");
}

}  // namespace
}  // namespace tovrand::test
