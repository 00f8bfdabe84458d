// `tovrand demo`: the road of sales order 2611015 through the four classes on the sample data.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Json.h"
#include "tests/support/Engines.h"
#include "tests/support/TestDatabase.h"
#include "tooling/Process.h"

namespace tovrand::cli {
namespace {

using tooling::executableDirectory;
using tooling::ProcessResult;
using tooling::runProcess;

std::string tovrandProgram() {
  return executableDirectory() + "/../tovrand";
}

std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class DemoTest : public test::DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    loadSample();
  }
  ProcessResult demo(std::vector<std::string> flags = {}) {
    std::vector<std::string> args{tovrandProgram(), "demo", "--dsn", dsn()};
    args.insert(args.end(), flags.begin(), flags.end());
    return runProcess(args, std::nullopt, true);
  }
};

// Every step's results and figures, as the sample data gives them: the numbers continuing November's,
// the seven sign-offs, the header figures P C1 X M K of each order, the lines' requested quantities,
// the reservations, purchasing's lists and the release that gives no stock back.
TEST_F(DemoTest, PrintsTheWholeRoadWithTheFiguresOfTheSampleData) {
  const ProcessResult r = demo();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::vector<std::string> expected =
      linesOf(fileText(std::string(TOVRAND_SOURCE_DIR) + "/tests/cli/demo.expected"));
  std::vector<std::string> got = linesOf(r.output);
  // The first line names the engine that answered, which the suite chooses; the road is the same on both.
  ASSERT_FALSE(got.empty());
  EXPECT_EQ(got.front().rfind("Engine: " + test::testEngine() + " (", 0), 0u) << got.front();
  got.erase(got.begin());
  ASSERT_EQ(got.size(), expected.size()) << r.output;
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(got[i], expected[i]) << "line " << i + 1;
}

TEST_F(DemoTest, LeavesTheDatabaseAsTheRoadWritesIt) {
  ASSERT_EQ(demo().status, 0);
  EXPECT_EQ(scalar("select group_concat(F_ProdNo order by F_No) from t_borderi where F_OrderNo=2611015"),
            "2026110004,2026110005,2026110006");
  EXPECT_EQ(
      scalar("select group_concat(concat_ws('|', F_Way, F_CSChecker) order by F_ProdNo) from t_porderchk "
             "where F_ProdNo between 2026110004 and 2026110006"),
      "自制|郑总,直接采购|郑总,自制|郑总");
  EXPECT_EQ(
      scalar("select group_concat(concat_ws('|', F_ProdNo, F_OrderQty, F_NeedQty, F_PlanPurQty, F_Status) "
             "order by F_ProdNo) from t_pmrph where F_ProdNo between 2026110004 and 2026110006"),
      "2026110004|2500|2500|0|1,2026110005|400|400|400|3,2026110006|700|500|0|1");
  EXPECT_EQ(scalar("select count(*) from t_pmrpi where F_ProdNo=2026110006"), "0");
  EXPECT_EQ(scalar("select F_NoPoStockQty from t_wstockqtyh where F_ItemNo='FG-1003'"), "50");
}

TEST_F(DemoTest, ASecondRunStopsWithAClearMessageAndAFailingStatus) {
  ASSERT_EQ(demo().status, 0);
  // Standard error too: that is where the demo says why it stopped.
  const ProcessResult again = runProcess(
      {"/bin/sh", "-c", "'" + tovrandProgram() + "' demo --dsn '" + dsn() + "' 2>&1"}, std::nullopt, true);
  EXPECT_EQ(again.status, 1);
  EXPECT_NE(again.output.find("tovrand demo: stopped: line 1 of sales order 2611015 has production number "
                              "2026110004 already"),
            std::string::npos)
      << again.output;
}

TEST_F(DemoTest, JsonPrintsTheRawAnswerOfEveryRequest) {
  const ProcessResult r = demo({"--json"});
  ASSERT_EQ(r.status, 0) << r.output;
  std::vector<std::string> lines = linesOf(r.output);
  ASSERT_GT(lines.size(), 60u);
  EXPECT_EQ(lines[0], R"js({"engine":")js" + test::testEngine() + R"js("})js");
  int calls = 0;
  for (const std::string& line : lines) {
    Json answer = Json::parse(line);
    EXPECT_FALSE(answer.contains("error")) << line;
    if (answer.contains("result")) {
      ++calls;
      EXPECT_EQ(answer["messages"], Json::array()) << line;
      EXPECT_FALSE(answer.contains("sql")) << line;
    }
  }
  // AddRecord, QueryProdNoView, 21 sign-offs, 3 loads, 3 x (QuerySalerID, AddRecord), 3 x (QueryItemNo,
  // AddRecord1, AccountData), the two purchasing lists, two line statuses, their list, the header status,
  // the taken-up orders and the release.
  EXPECT_EQ(calls, 2 + 21 + 3 + 6 + 9 + 2 + 2 + 1 + 1 + 1 + 1);
  // The engine, the four objects, the sales-order lines read, then the allocation.
  Json first = Json::parse(lines[6]);
  EXPECT_EQ(first["result"], 1) << lines[6];
  EXPECT_EQ(first["args"]["objColl"].size(), 3u);
}

TEST_F(DemoTest, TracePrintsTheStatementsOfEveryCall) {
  const ProcessResult r = demo({"--trace"});
  ASSERT_EQ(r.status, 0) << r.output;
  for (const char* statement :
       {"       sql: select * from t_porderchk where "
        "left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)",
        "       sql: update T_BOrderi set F_ProdNo=2026110004 where F_OrderNo=2611015 and F_ItemNo='FG-1001' "
        "and "
        "f_No='1'",
        "       sql: update t_POrderChk set F_CSNote='同意',F_Way='直接采购' ,F_csChecker='郑总', "
        "F_csCheckTime='2026-11-22 17:00:00' where F_ProdNo=2026110005",
        "       sql: Delete From T_PMrpi Where F_ProdNo='2026110006'"}) {
    EXPECT_NE(r.output.find(std::string(statement) + "\n"), std::string::npos) << statement;
  }
  EXPECT_NE(r.output.find("       engine: INSERT INTO `t_porderchk`"), std::string::npos);
}

TEST_F(DemoTest, TheFirstLineNamesTheEngineTheSettingChooses) {
  // The suite's own engine is the other tests'; the setting here names the other one.
  const std::string other = test::testEngine() == "mariadb" ? "odbc" : "mariadb";
  const ProcessResult r =
      runProcess({tovrandProgram(), "demo", "--dsn", dsn("engine=" + other)}, std::nullopt, true);
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(linesOf(r.output).front(),
            "Engine: " + other + (other == "mariadb" ? " (MariaDB Connector/C)" : " (ODBC)"));
}

}  // namespace
}  // namespace tovrand::cli
