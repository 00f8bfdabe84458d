#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/ConnectionSettings.h"
#include "frame/Host.h"
#include "frame/MessageSink.h"
#include "frame/Trace.h"
#include "odbc/OdbcConnection.h"
#include "tooling/PrivateServer.h"

namespace tovrand::test {

// The private MariaDB of this test program: started on first use (scripts/sandbox, watched so it
// stops when the program ends), or the server named by TOVRAND_TEST_DSN.
class TestServer {
 public:
  static TestServer& instance();
  // DSN (mysql://...) of a database on the server, without query options: as the server's
  // administrator, or as the given account.
  std::string dsnFor(const std::string& database) const;
  std::string dsnFor(const std::string& database, const std::string& user, const std::string& password) const;
  // Runs SQL text (several statements allowed) through the mariadb client on `database`.
  void runSql(const std::string& database, const std::string& sql) const;
  std::string socketPath() const;

  // The settings of the server's own database (user, password, host or socket).
  const ConnectionSettings& settings() const { return settings_; }
  // Statements on the server outside any test database (CREATE/DROP DATABASE), outside the trace.
  void admin(const std::string& sql);
  // The settings of the fixture connection of `database` (server_date pinned like the tests').
  ConnectionSettings fixtureSettings(const std::string& database) const;
  // A new unique database name for this program.
  std::string uniqueDatabaseName();

  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;
  ~TestServer();

 private:
  TestServer();
  std::unique_ptr<tooling::PrivateServer> sandbox_;  // none when TOVRAND_TEST_DSN names the server
  ConnectionSettings settings_;
  std::shared_ptr<OdbcConnection> admin_;
  int counter_ = 0;
};

// The account schema/grants.sql creates, as the tests load it: the component connects as it when a
// test asks for it, with exactly the privileges a site gives the component.
struct ComponentAccount {
  std::string user;
  std::string password;
};
ComponentAccount componentAccount();
// SQL text that gives the component account exactly its grants on the database it runs in.
std::string componentGrantsSql();

// SQL text cut into its statements at the semicolons outside quotes and comments.
std::vector<std::string> splitStatements(const std::string& sql);

// A test with a fresh database loaded from schema/tovrand.sql, server_date pinned to
// 2026-11-22 unless the test changes it, a recording message sink and a recorded statement trace.
class DatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Whether the component connects as the account of schema/grants.sql (componentAccount()) rather
  // than as the server's administrator; exec() and scalar() stay the administrator's either way.
  // Default: the environment variable TOVRAND_TEST_ACCOUNT=component, which runs a whole suite so.
  virtual bool componentRunsRestricted() const;

  // The DSN of this test's database, with `options` appended as query options ("server_date=..."),
  // for the account the component runs as.
  std::string dsn(const std::string& options = "") const;
  // The native host on this test's database; `serverDate` "" keeps the default.
  std::shared_ptr<Host> host(const std::string& serverDate = "");
  // Fixture statements (several allowed), run outside the component and outside the trace.
  void exec(const std::string& sql) const;
  // One value of a query run outside the component, as text ("NULL" for SQL NULL); "" for no row.
  std::string scalar(const std::string& sql) const;
  // Transactions open on this test's database, of any session (the fixture's included), as text: other
  // programs may share the server (TOVRAND_TEST_DSN, a cluster) and have transactions of their own.
  std::string openTransactions() const;
  // Loads schema/sample.sql.
  void loadSample() const;
  // The connection exec() and scalar() run on (never the component's shared one).
  OdbcConnection& fixtureConnection() const;

  const std::string& database() const { return database_; }
  RecordingMessageSink& messages() { return *messages_; }
  RecordingTraceSink& trace() { return trace_; }

 private:
  std::string database_;
  std::shared_ptr<OdbcConnection> fixture_;  // the test's own connection for exec() and scalar()
  std::shared_ptr<RecordingMessageSink> messages_ = std::make_shared<RecordingMessageSink>();
  RecordingTraceSink trace_;
};

}  // namespace tovrand::test
