#include "tests/support/TestDatabase.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host/NativeHost.h"
#include "tooling/SqlClient.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::test {

namespace {

constexpr const char* kDefaultServerDate = "2026-11-22";

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

TestServer& TestServer::instance() {
  static TestServer server;
  return server;
}

namespace {

bool restrictedByEnvironment() {
  const char* v = std::getenv("TOVRAND_TEST_ACCOUNT");
  return v != nullptr && std::string(v) == "component";
}

}  // namespace

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
    // The sandbox's own settings (one tablespace, no flushing) make a per-test database cheap.
    sandbox_ = std::make_unique<tooling::PrivateServer>();
    settings_ = ConnectionSettings::parse(sandbox_->dsn(), "the sandbox DSN");
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
  sandbox_.reset();
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
  tooling::SqlClient(settings_.user, settings_.password, settings_.socket, settings_.host, settings_.port)
      .run(database, sql);
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
  // A whole suite runs on the engine TOVRAND_TEST_ENGINE names (mariadb or odbc; unset, the default).
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

std::string DatabaseTest::openTransactions() const {
  return scalar(
      "select count(*) from information_schema.innodb_trx t join information_schema.processlist p on "
      "p.id = t.trx_mysql_thread_id where p.db = database()");
}

void DatabaseTest::loadSample() const {
  std::string sample = readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/sample.sql");
  if (sample.empty()) throw std::runtime_error("schema/sample.sql cannot be read");
  TestServer::instance().runSql(database_, sample);
}

}  // namespace tovrand::test
