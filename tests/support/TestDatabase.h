#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "frame/Host.h"
#include "frame/MessageSink.h"
#include "frame/Trace.h"

namespace tovrand::test {

// The private MariaDB of this test program: started on first use (scripts/sandbox, watched so it
// stops when the program ends), or the server named by TOVRAND_TEST_DSN.
class TestServer {
 public:
  static TestServer& instance();
  // DSN (mysql://...) of a database on the server, without query options.
  std::string dsnFor(const std::string& database) const;
  // Runs SQL text (several statements allowed) through the mariadb client on `database`.
  void runSql(const std::string& database, const std::string& sql) const;
  std::string socketPath() const;
};

// A test with a fresh database loaded from schema/tovrand.sql, server_date pinned to
// 2026-11-22 unless the test changes it, a recording message sink and a recorded statement trace.
class DatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The DSN of this test's database, with `options` appended as query options ("server_date=...").
  std::string dsn(const std::string& options = "") const;
  // The native host on this test's database; `serverDate` "" keeps the default.
  std::shared_ptr<Host> host(const std::string& serverDate = "");
  // Fixture statements (several allowed), run outside the component and outside the trace.
  void exec(const std::string& sql) const;
  // One value of a query run outside the component, as text ("NULL" for SQL NULL); "" for no row.
  std::string scalar(const std::string& sql) const;
  // Loads schema/sample.sql.
  void loadSample() const;

  const std::string& database() const { return database_; }
  RecordingMessageSink& messages() { return *messages_; }
  RecordingTraceSink& trace() { return trace_; }

 private:
  std::string database_;
  std::shared_ptr<RecordingMessageSink> messages_ = std::make_shared<RecordingMessageSink>();
  RecordingTraceSink trace_;
};

}  // namespace tovrand::test
