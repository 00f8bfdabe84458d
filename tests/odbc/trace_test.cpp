#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/odbc/OdbcTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class TraceTest : public RecordsetTest {
 protected:
  void SetUp() override {
    RecordsetTest::SetUp();
    exec("create table t_trorder (F_ProdNo double primary key, F_Name varchar(10))");
    trace().clear();
  }
};

TEST_F(TraceTest, MethodTextsAreReportedExactlyAndInOrderWithEngineStatementsMarked) {
  auto rs = newRecordset();
  rs->CursorType = adOpenKeyset;
  rs->LockType = adLockOptimistic;
  rs->Open("select * from t_trorder ", conn(), -1, -1, adCmdText);
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(2008050001.0);
  rs->Fields("F_Name") = Value("x");
  rs->Update();
  rs->Close();
  rs->Open("select * from T_TrOrder where F_ProdNo=2008050001", conn(), adOpenKeyset, adLockOptimistic,
           adCmdText);
  rs->Fields("F_Name") = Value("y");
  rs->Update();
  rs->Close();
  rs->Open("update t_trorder set F_Name='z'", conn(), adOpenDynamic, adLockOptimistic, -1);
  auto reader = newRecordset();
  reader->Source = "select  F_Name  from t_trorder";
  reader->ActiveConnection = conn();
  reader->Open();
  EXPECT_EQ(trace().statements(),
            (std::vector<TracedStatement>{
                {"select * from t_trorder ", StatementOrigin::Method},
                {"INSERT INTO `t_trorder` (`F_ProdNo`, `F_Name`) VALUES (?, ?)", StatementOrigin::Engine},
                {"select * from T_TrOrder where F_ProdNo=2008050001", StatementOrigin::Method},
                {"UPDATE `t_trorder` SET `F_Name`=? WHERE `F_ProdNo`=? LIMIT 1", StatementOrigin::Engine},
                {"update t_trorder set F_Name='z'", StatementOrigin::Method},
                {"select  F_Name  from t_trorder", StatementOrigin::Method},
            }));
  EXPECT_EQ(trace().methodStatements(),
            (std::vector<std::string>{"select * from t_trorder ",
                                      "select * from T_TrOrder where F_ProdNo=2008050001",
                                      "update t_trorder set F_Name='z'", "select  F_Name  from t_trorder"}));
}

TEST_F(TraceTest, OpeningTheConnectionReportsNoMethodStatement) {
  auto other = host()->newDbConnection();
  other->OpenConnection();
  auto separate = host("2001-01-01")->newDbConnection();
  separate->OpenConnection();
  EXPECT_TRUE(trace().methodStatements().empty());
  EXPECT_TRUE(trace().statements().empty());
}

TEST_F(TraceTest, AFailingStatementIsStillReported) {
  EXPECT_EQ(errorOf([&] { read("select * from t_missing"); }).number(), -2147467259);
  EXPECT_EQ(trace().methodStatements(), (std::vector<std::string>{"select * from t_missing"}));
}

TEST_F(TraceTest, TovrandTraceAppendsEveryStatementToTheFile) {
  std::string path = ::testing::TempDir() + "/tovrand-trace-test.sql";
  std::remove(path.c_str());
  ::setenv("TOVRAND_TRACE", path.c_str(), 1);
  auto rs = keyset("select * from t_trorder");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(1.0);
  rs->Update();
  rs->Close();
  read("select count(*)\nfrom t_trorder");
  ::unsetenv("TOVRAND_TRACE");
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  EXPECT_EQ(text.str(),
            "select * from t_trorder\n"
            "-- engine: INSERT INTO `t_trorder` (`F_ProdNo`) VALUES (?)\n"
            "select count(*) from t_trorder\n");
  std::remove(path.c_str());
}

}  // namespace
}  // namespace tovrand::test
