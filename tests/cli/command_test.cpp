#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Embedded.h"
#include "cli/Json.h"
#include "tests/support/TestDatabase.h"
#include "tooling/Process.h"
#include "tovrand/Version.h"

namespace tovrand::cli {
namespace {

using tooling::executableDirectory;
using tooling::ProcessResult;
using tooling::runProcess;

// The tovrand program built beside this test program.
std::string tovrandProgram() {
  return executableDirectory() + "/../tovrand";
}

std::vector<Json> answersOf(const std::string& output) {
  std::vector<Json> answers;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) answers.push_back(Json::parse(line));
  return answers;
}

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& text) {
    path_ = (std::filesystem::temp_directory_path() /
             ("tovrand-cli-test-" + std::to_string(::getpid()) + ".jsonl"))
                .string();
    std::ofstream(path_, std::ios::binary) << text;
  }
  ~TemporaryFile() { std::filesystem::remove(path_); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// Sets or clears environment variables for the life of the object.
class EnvironmentOverride {
 public:
  void set(const std::string& name, const char* value) {
    const char* old = std::getenv(name.c_str());
    saved_.push_back({name, old ? std::optional<std::string>(old) : std::nullopt});
    if (value)
      ::setenv(name.c_str(), value, 1);
    else
      ::unsetenv(name.c_str());
  }
  ~EnvironmentOverride() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
      if (it->second)
        ::setenv(it->first.c_str(), it->second->c_str(), 1);
      else
        ::unsetenv(it->first.c_str());
    }
  }

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

using TovrandCommandTest = test::DatabaseTest;

TEST_F(TovrandCommandTest, RunAnswersEveryLineOfAFileAndExitsZero) {
  ASSERT_TRUE(std::filesystem::exists(tovrandProgram())) << tovrandProgram();
  TemporaryFile script(R"js(# production orders
{"new":"p","class":"clsDataPOrder"}
{"call":"p.AddRecord","args":{"Entity":{"F_ProdNo":2008050001,"F_CustNo":"C001"}}}
{"call":"p.QueryItem","args":{"Entity":{"F_ProdNo":2008050001}}}
not json
{"sql":"select curdate() as today"}
{"release":"p"}
)js");
  const ProcessResult r = runProcess(
      {tovrandProgram(), "run", "--dsn", dsn(), "--trace", "--server-date", "2026-02-03", script.path()},
      std::nullopt, true);
  EXPECT_EQ(r.status, 0);
  const std::vector<Json> a = answersOf(r.output);
  ASSERT_EQ(a.size(), 6u) << r.output;
  EXPECT_EQ(a[0].dump(), R"js({"ok":true})js");
  EXPECT_EQ(a[1]["result"], 1) << a[1].dump();
  EXPECT_EQ(a[2]["result"], 1) << a[2].dump();
  EXPECT_EQ(a[2]["args"]["Entity"]["F_CustNo"], "C001");
  EXPECT_EQ(a[2]["sql"].dump(), R"js(["select * from t_porder where F_ProdNo ='2008050001'"])js");
  EXPECT_TRUE(a[3].contains("error")) << a[3].dump();
  EXPECT_EQ(a[4]["rows"].dump(), R"js([["2026-02-03 00:00:00"]])js");
  EXPECT_EQ(a[5].dump(), R"js({"ok":true})js");
}

TEST_F(TovrandCommandTest, RunReadsStandardInputForDash) {
  const ProcessResult r =
      runProcess({tovrandProgram(), "run", "--dsn", dsn(), "-"},
                 std::string("{\"sql\":\"select 2008050001 as n, '中文' as t\"}\n"), true);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.output, "{\"ok\":true,\"columns\":[\"n\",\"t\"],\"rows\":[[2008050001,\"中文\"]]}\n");
}

TEST(TovrandCommand, UsageErrorsAndUnreadableFilesExitWithTwo) {
  EXPECT_EQ(
      runProcess({tovrandProgram(), "run", "--dsn", "mysql://u:p@localhost/x", "/nonexistent/script.jsonl"},
                 std::nullopt, true)
          .status,
      2);
  EXPECT_EQ(runProcess({tovrandProgram(), "run"}, std::nullopt, true).status, 2);
  EXPECT_EQ(
      runProcess({tovrandProgram(), "run", "--server-date", "22.11.2026", "x"}, std::nullopt, true).status,
      2);
  EXPECT_EQ(runProcess({tovrandProgram()}, std::nullopt, true).status, 2);
  const ProcessResult help = runProcess({tovrandProgram(), "run", "--help"}, std::nullopt, true);
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.output.find("--server-date"), std::string::npos) << help.output;
}

// Packaging scripts and bug reports read the version from this one line; it needs no database.
TEST(TovrandCommand, VersionPrintsOneLineAndExitsZero) {
  const ProcessResult r = runProcess({tovrandProgram(), "--version"}, std::nullopt, true);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.output, std::string("tovrand ") + TOVRAND_VERSION_STRING + "\n");
  EXPECT_TRUE(std::regex_match(r.output, std::regex("tovrand [0-9]+\\.[0-9]+\\.[0-9]+\n"))) << r.output;
}

TEST(TovrandCommand, SchemaPrintsTheSchemaText) {
  const ProcessResult r = runProcess({tovrandProgram(), "schema"}, std::nullopt, true);
  EXPECT_EQ(r.status, 0);
  std::ifstream file(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql", std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_EQ(r.output, text.str());
  EXPECT_NE(r.output.find("CREATE TABLE t_porder"), std::string::npos);
}

TEST(TovrandCommand, WithoutAnySettingRunUsesAPrivateDatabaseWithTheSchema) {
  const std::string emptyConfigHome =
      (std::filesystem::temp_directory_path() / ("tovrand-cli-noconfig-" + std::to_string(::getpid())))
          .string();
  std::filesystem::create_directories(emptyConfigHome);
  EnvironmentOverride env;
  env.set("TOVRAND_DSN", nullptr);
  env.set("TOVRAND_CONFIG", nullptr);
  env.set("XDG_CONFIG_HOME", emptyConfigHome.c_str());
  const ProcessResult r =
      runProcess({tovrandProgram(), "run", "--server-date", "2026-11-22", "-"},
                 std::string(R"js({"sql":"select count(*) as n, curdate() as today from t_porder"}
{"new":"p","class":"clsDataPOrder"}
{"call":"p.QueryAllProdNo"}
)js"),
                 true);
  std::filesystem::remove_all(emptyConfigHome);
  EXPECT_EQ(r.status, 0);
  const std::vector<Json> a = answersOf(r.output);
  ASSERT_EQ(a.size(), 3u) << r.output;
  EXPECT_EQ(a[0]["rows"].dump(), R"js([[0,"2026-11-22 00:00:00"]])js");
  EXPECT_EQ(a[2]["result"], 0) << a[2].dump();
  EXPECT_EQ(a[2]["args"]["dblProdNo"].dump(), "[0]");
}

}  // namespace
}  // namespace tovrand::cli
