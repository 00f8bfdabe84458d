#include "tests/support/TestDatabase.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "odbc/NativeHost.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::test {

namespace {

constexpr const char* kDefaultServerDate = "2026-11-22";

std::atomic<double> gStartSeconds{0.0};

std::string shellQuote(const std::string& s) {
  std::string out = "'";
  for (char c : s) {
    if (c == '\'') {
      out += "'\\''";
    } else {
      out += c;
    }
  }
  return out + "'";
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string lineValue(const std::string& output, const std::string& key) {
  std::istringstream lines(output);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.rfind(key + "=", 0) == 0) return line.substr(key.size() + 1);
  }
  return {};
}

std::string runCommand(const std::string& command) {
  std::string output;
  if (std::FILE* pipe = ::popen(command.c_str(), "r")) {
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) output += buffer;
    int status = ::pclose(pipe);
    if (status != 0) throw std::runtime_error("command failed (" + std::to_string(status) + "): " + output);
  } else {
    throw std::runtime_error("cannot run: " + command);
  }
  return output;
}

}  // namespace

double sandboxStartSeconds() {
  return gStartSeconds.load();
}

TestServer& TestServer::instance() {
  static TestServer server;
  return server;
}

namespace {

std::string sandboxScript() {
  return shellQuote(std::string(TOVRAND_SOURCE_DIR) + "/scripts/sandbox");
}

bool restrictedByEnvironment() {
  const char* v = std::getenv("TOVRAND_TEST_ACCOUNT");
  return v != nullptr && std::string(v) == "component";
}

}  // namespace

Sandbox startSandbox(const std::string& options) {
  std::string output = runCommand(sandboxScript() + " start --watch " + std::to_string(::getpid()) +
                                  (options.empty() ? "" : " " + options) + " 2>&1");
  Sandbox sandbox;
  sandbox.dsn = lineValue(output, "DSN");
  sandbox.dir = lineValue(output, "DIR");
  sandbox.port = std::atoi(lineValue(output, "PORT").c_str());
  sandbox.ca = lineValue(output, "CA");
  if (sandbox.dsn.empty() || sandbox.dir.empty())
    throw std::runtime_error("the sandbox printed no DSN: " + output);
  return sandbox;
}

void stopSandbox(const std::string& dir) {
  std::string command = sandboxScript() + " stop " + shellQuote(dir) + " >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) {
    // The watcher started with the sandbox stops it when this program has gone.
  }
}

ComponentAccount componentAccount() {
  // One account per test program, so that programs sharing a server (TOVRAND_TEST_DSN) keep apart.
  // Made on each call: the server's teardown at exit needs it after other statics have gone.
  return {"tovrand_app" + std::to_string(::getpid()), "component-only-7Qx"};
}

std::string componentGrantsSql() {
  std::string grants = readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/grants.sql");
  if (grants.empty()) throw std::runtime_error("schema/grants.sql cannot be read");
  const ComponentAccount account = componentAccount();
  return "SET @tovrand_user = '" + account.user + "', @tovrand_password = '" + account.password + "';\n" +
         grants;
}

TestServer::TestServer() {
  const char* given = std::getenv("TOVRAND_TEST_DSN");
  if (given != nullptr && *given != '\0') {
    settings_ = ConnectionSettings::parse(given, "TOVRAND_TEST_DSN");
  } else {
    auto start = std::chrono::steady_clock::now();
    // The sandbox's own settings (one tablespace, no flushing) make a per-test database cheap.
    Sandbox sandbox = startSandbox();
    sandboxDir_ = sandbox.dir;
    settings_ = ConnectionSettings::parse(sandbox.dsn, "the sandbox DSN");
    gStartSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  admin_ = OdbcConnection::openPrivate(settings_);
}

TestServer::~TestServer() {
  try {
    // The component account of this program, if a test created it.
    admin_->execute("DROP USER IF EXISTS '" + componentAccount().user + "'@'%'");
  } catch (...) {
    // The server is going anyway.
  }
  admin_.reset();
  if (!sandboxDir_.empty()) stopSandbox(sandboxDir_);
}

std::string TestServer::dsnFor(const std::string& database) const {
  return dsnFor(database, settings_.user, settings_.password);
}

std::string TestServer::dsnFor(const std::string& database, const std::string& user,
                               const std::string& password) const {
  std::string out = "mysql://" + user + ":" + password + "@" + settings_.host;
  if (settings_.port != 0) out += ":" + std::to_string(settings_.port);
  out += "/" + database;
  if (!settings_.socket.empty()) out += "?socket=" + settings_.socket;
  return out;
}

std::string TestServer::socketPath() const {
  return settings_.socket;
}

void TestServer::runSql(const std::string& database, const std::string& sql) const {
  char path[] = "/tmp/tovrand-sql.XXXXXX";
  int fd = ::mkstemp(path);
  if (fd < 0) throw std::runtime_error("cannot create a temporary file for SQL text");
  ::close(fd);
  {
    std::ofstream out(path, std::ios::binary);
    out << sql;
  }
  std::string connection = settings_.socket.empty()
                               ? "-h " + shellQuote(settings_.host) +
                                     (settings_.port != 0 ? " -P " + std::to_string(settings_.port) : "")
                               : "--socket=" + shellQuote(settings_.socket);
  std::string command = "MYSQL_PWD=" + shellQuote(settings_.password) + " mariadb --no-defaults -u" +
                        shellQuote(settings_.user) + " " + connection + " " + shellQuote(database) + " < " +
                        path + " 2>&1";
  try {
    runCommand(command);
  } catch (...) {
    ::unlink(path);
    throw;
  }
  ::unlink(path);
}

void TestServer::admin(const std::string& sql) {
  admin_->execute(sql);
}

ConnectionSettings TestServer::fixtureSettings(const std::string& database) const {
  ConnectionSettings s = settings_;
  s.database = database;
  s.serverDate = kDefaultServerDate;
  return s;
}

std::vector<std::string> splitStatements(const std::string& sql) {
  std::vector<std::string> statements;
  std::string current;
  char quote = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    char c = sql[i];
    if (quote != 0) {
      current += c;
      if (c == '\\' && i + 1 < sql.size()) {
        current += sql[++i];
      } else if (c == quote) {
        quote = 0;
      }
      continue;
    }
    if (c == '\'' || c == '"' || c == '`') {
      quote = c;
    } else if (c == '-' && i + 1 < sql.size() && sql[i + 1] == '-') {
      while (i < sql.size() && sql[i] != '\n') ++i;
      current += '\n';
      continue;
    } else if (c == '#') {
      while (i < sql.size() && sql[i] != '\n') ++i;
      current += '\n';
      continue;
    } else if (c == '/' && i + 1 < sql.size() && sql[i + 1] == '*') {
      std::size_t end = sql.find("*/", i + 2);
      i = end == std::string::npos ? sql.size() : end + 1;
      current += ' ';
      continue;
    } else if (c == ';') {
      if (current.find_first_not_of(" \t\r\n") != std::string::npos) statements.push_back(current);
      current.clear();
      continue;
    }
    current += c;
  }
  if (current.find_first_not_of(" \t\r\n") != std::string::npos) statements.push_back(current);
  return statements;
}

std::string TestServer::uniqueDatabaseName() {
  return "tovrand_t" + std::to_string(::getpid()) + "_" + std::to_string(++counter_);
}

void DatabaseTest::SetUp() {
  setTraceSink(nullptr);
  TestServer& server = TestServer::instance();
  auto t0 = std::chrono::steady_clock::now();
  auto lap = [&](const char* what) {
    if (std::getenv("TOVRAND_TEST_TIMING")) {
      std::fprintf(stderr, "%s %.3f\n", what,
                   std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
    }
  };
  database_ = server.uniqueDatabaseName();
  server.admin("CREATE DATABASE `" + database_ + "` CHARACTER SET utf8mb4");
  lap("create");
  std::string schema = readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql");
  // The grants name the tables, so they follow the schema in the same load.
  if (componentRunsRestricted()) schema += "\n" + componentGrantsSql();
  if (!schema.empty()) server.runSql(database_, schema);
  lap("schema");
  fixture_ = OdbcConnection::openPrivate(server.fixtureSettings(database_));
  lap("fixture");
  messages_->take();
  trace_.clear();
  setTraceSink(&trace_);
}

void DatabaseTest::TearDown() {
  setTraceSink(nullptr);
  fixture_.reset();
  if (!database_.empty()) TestServer::instance().admin("DROP DATABASE IF EXISTS `" + database_ + "`");
}

bool DatabaseTest::componentRunsRestricted() const {
  return restrictedByEnvironment();
}

std::string DatabaseTest::dsn(const std::string& options) const {
  const ComponentAccount account = componentAccount();
  std::string out = componentRunsRestricted()
                        ? TestServer::instance().dsnFor(database_, account.user, account.password)
                        : TestServer::instance().dsnFor(database_);
  std::string all = options;
  if (all.find("server_date=") == std::string::npos) {
    all = "server_date=" + std::string(kDefaultServerDate) + (all.empty() ? "" : "&" + all);
  }
  // A whole suite runs on the engine TOVRAND_TEST_ENGINE names (odbc, the default, or mariadb).
  const char* engine = std::getenv("TOVRAND_TEST_ENGINE");
  if (engine && *engine && all.find("engine=") == std::string::npos) all += "&engine=" + std::string(engine);
  return out + (out.find('?') == std::string::npos ? "?" : "&") + all;
}

std::shared_ptr<Host> DatabaseTest::host(const std::string& serverDate) {
  return std::make_shared<NativeHost>(
      ConnectionSettings::parse(dsn(serverDate.empty() ? "" : "server_date=" + serverDate)), messages_);
}

OdbcConnection& DatabaseTest::fixtureConnection() const {
  if (!fixture_) throw std::logic_error("the test database is not set up");
  return *fixture_;
}

void DatabaseTest::exec(const std::string& sql) const {
  for (const std::string& statement : splitStatements(sql)) fixtureConnection().execute(statement);
}

std::string DatabaseTest::scalar(const std::string& sql) const {
  std::optional<Value> v = fixtureConnection().scalar(sql, true);
  if (!v) return "";
  if (v->isNull()) return "NULL";
  return v->str();
}

void DatabaseTest::loadSample() const {
  std::string sample = readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/sample.sql");
  if (sample.empty()) throw std::runtime_error("schema/sample.sql cannot be read");
  TestServer::instance().runSql(database_, sample);
}

}  // namespace tovrand::test
