// The scripts in examples/, one per class, run as an integrator would run them, answer exactly what
// their .expected files say.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestDatabase.h"
#include "tooling/Process.h"

namespace tovrand::cli {
namespace {

using tooling::executableDirectory;
using tooling::ProcessResult;
using tooling::runProcess;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class ExampleScript : public test::DatabaseTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ExampleScript, AnswersWhatItsExpectedFileSays) {
  const std::string base = std::string(TOVRAND_SOURCE_DIR) + "/examples/" + GetParam();
  std::ifstream expectedFile(base + ".expected", std::ios::binary);
  ASSERT_TRUE(expectedFile) << base << ".expected";
  std::ostringstream expectedText;
  expectedText << expectedFile.rdbuf();
  const ProcessResult r = runProcess({executableDirectory() + "/../tovrand", "run", "--dsn", dsn(),
                                      "--server-date", "2026-11-22", base + ".jsonl"},
                                     std::nullopt, true);
  ASSERT_EQ(r.status, 0);
  const std::vector<std::string> expected = linesOf(expectedText.str()), got = linesOf(r.output);
  ASSERT_EQ(got.size(), expected.size()) << r.output;
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(got[i], expected[i]) << GetParam() << " answer " << i + 1;
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleScript,
                         ::testing::Values("production-orders", "review-and-numbers", "planning-header",
                                           "planning-lines"));

TEST(ExampleScripts, EveryScriptHasItsTest) {
  int scripts = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(TOVRAND_SOURCE_DIR) + "/examples"))
    if (entry.path().extension() == ".jsonl") ++scripts;
  EXPECT_EQ(scripts, 4);
}

}  // namespace
}  // namespace tovrand::cli
