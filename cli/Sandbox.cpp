#include "cli/Sandbox.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "cli/Process.h"

namespace tovrand::cli {

namespace {

bool isExecutable(const std::string& path) {
  return ::access(path.c_str(), X_OK) == 0;
}

std::string trimmed(std::string s) {
  while (!s.empty() && (s.back() == '\n' || s.back() == '\r' || s.back() == ' ')) s.pop_back();
  return s;
}

}  // namespace

std::optional<std::string> findSandboxScript() {
  std::vector<std::string> candidates;
  if (const std::string dir = executableDirectory(); !dir.empty()) {
    candidates.push_back(dir + "/../scripts/sandbox");        // build directory inside the source tree
    candidates.push_back(dir + "/../../scripts/sandbox");     // test programs one level deeper
    candidates.push_back(dir + "/../share/tovrand/sandbox");  // installed
    candidates.push_back(dir + "/scripts/sandbox");
  }
  candidates.push_back(std::string(TOVRAND_SOURCE_DIR) + "/scripts/sandbox");
  for (const std::string& c : candidates)
    if (isExecutable(c)) return std::filesystem::weakly_canonical(c).string();
  return findProgram({"tovrand-sandbox"});
}

PrivateDatabase::PrivateDatabase(const std::vector<std::string>& sqlTexts) {
  const std::optional<std::string> script = findSandboxScript();
  if (!script) throw std::runtime_error("cannot find scripts/sandbox to start a private database");
  script_ = *script;
  const ProcessResult started =
      runProcess({script_, "start", "--watch", std::to_string(::getpid())}, std::nullopt, true);
  std::istringstream lines(started.output);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("DSN=", 0) == 0) dsn_ = trimmed(line.substr(4));
    if (line.rfind("DIR=", 0) == 0) dir_ = trimmed(line.substr(4));
  }
  if (started.status != 0 || dsn_.empty() || dir_.empty()) {
    if (!dir_.empty()) runProcess({script_, "stop", dir_});
    throw std::runtime_error("the private database did not start (" + script_ + " start exited with " +
                             std::to_string(started.status) + ")");
  }
  std::ifstream databaseFile(dir_ + "/database");
  std::getline(databaseFile, database_);
  database_ = trimmed(database_);
  try {
    for (const std::string& sql : sqlTexts) load(sql);
  } catch (...) {
    runProcess({script_, "stop", dir_});
    throw;
  }
}

PrivateDatabase::~PrivateDatabase() {
  try {
    runProcess({script_, "stop", dir_}, std::nullopt, true);
  } catch (...) {
    // The sandbox's watcher stops the server when this process ends.
  }
}

void PrivateDatabase::load(const std::string& sql) const {
  const std::optional<std::string> client = findProgram({"mariadb", "mysql"});
  if (!client) throw std::runtime_error("the mariadb client is not installed");
  const ProcessResult r = runProcess({*client, "--no-defaults", "-uroot", "--socket=" + dir_ + "/mysqld.sock",
                                      "--default-character-set=utf8mb4", database_},
                                     sql);
  if (r.status != 0) throw std::runtime_error("loading SQL into the private database failed");
}

}  // namespace tovrand::cli
