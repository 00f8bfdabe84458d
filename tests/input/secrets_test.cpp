// A password never appears in a message box, an error, a trace or the command line's output: not the
// right one, not a wrong one, not one that changed under a running object.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "component/Component.h"
#include "engine/ConnectionSettings.h"
#include "entities/Entities.h"
#include "frame/Invoke.h"
#include "host/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/SessionFaults.h"
#include "tests/support/TestDatabase.h"
#include "tooling/Process.h"
#include "vb/VbError.h"

namespace tovrand::test {
namespace {

constexpr const char* kWrongPassword = "Wr0ng-Pa55-fz7";

std::string readAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The component connects as the account of schema/grants.sql, whose password is its own (the
// sandbox administrator's password is also its user name, which every message shows anyway).
class Secrets : public DatabaseTest {
 protected:
  bool componentRunsRestricted() const override { return true; }
  void SetUp() override {
    DatabaseTest::SetUp();
    exec("insert into t_porder (F_ProdNo, F_CustNo) values (2026110001, 'C001')");
  }
  void TearDown() override {
    std::filesystem::remove(tracePath_);
    DatabaseTest::TearDown();
  }
  std::string password() const { return componentAccount().password; }
  std::string wrongDsn() const {
    std::string right = dsn();
    return right.replace(right.find(":" + password() + "@"), password().size() + 1,
                         ":" + std::string(kWrongPassword));
  }
  // Expects no password, right or wrong, in `text`.
  void expectNoPassword(const std::string& text, const std::string& where) const {
    EXPECT_EQ(text.find(password()), std::string::npos) << where << " shows the password: " << text;
    EXPECT_EQ(text.find(kWrongPassword), std::string::npos) << where << " shows the password given: " << text;
  }
  // `tovrand run` on `script`, its standard output and error together; TOVRAND_TRACE names a file.
  std::string runCommandLine(const std::vector<std::string>& options, const std::string& script) {
    std::string command =
        "TOVRAND_TRACE='" + tracePath_ + "' '" + tooling::executableDirectory() + "/../tovrand' run";
    for (const std::string& o : options) command += " '" + o + "'";
    command += " - 2>&1";
    return tooling::runProcess({"/bin/sh", "-c", command}, script, true).output;
  }
  std::string tracePath() const { return tracePath_; }

 private:
  std::string tracePath_ =
      (std::filesystem::temp_directory_path() / ("tovrand-secrets-" + std::to_string(::getpid()) + ".trace"))
          .string();
};

TEST_F(Secrets, AWrongPasswordIsNamedAsRefusedAndNeverShown) {
  try {
    auto h = std::make_shared<NativeHost>(wrongDsn(), std::make_shared<RecordingMessageSink>());
    auto object = createObject(clsDataPOrder::Members(), h);
    FAIL() << "a wrong password connected";
  } catch (const VbError& e) {
    EXPECT_NE(e.description().find("Access denied"), std::string::npos) << e.description();
    EXPECT_NE(e.description().find(":***@"), std::string::npos) << e.description();
    expectNoPassword(e.description(), "the creation error");
  }
}

TEST_F(Secrets, APasswordChangedUnderARunningObjectIsNotShownWhenItsReconnectIsRefused) {
  auto object = createObject(clsDataPOrder::Members(), host());
  const MemberInfo& queryItem = memberOf<&clsDataPOrder::QueryItem>();
  auto query = [&] {
    clsEntPOrder order;
    order.F_ProdNo(2026110001.0);
    std::vector<Argument> args{Entity(order)};
    return object->invoke(queryItem, args);
  };
  ASSERT_EQ(query(), Value(std::int16_t{1}));
  std::string session = sharedSessionId(ConnectionSettings::parse(dsn()));
  exec("ALTER USER '" + componentAccount().user + "'@'%' IDENTIFIED BY '" + std::string(kWrongPassword) +
       "'");
  exec("KILL CONNECTION " + session);
  messages().take();
  EXPECT_EQ(query(), Value(std::int16_t{0}));  // the statement that met the lost session
  EXPECT_EQ(query(), Value(std::int16_t{0}));  // the reconnect, refused
  std::vector<Message> shown = messages().take();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_NE(shown[1].text.find("Access denied"), std::string::npos) << shown[1].text;
  for (const Message& m : shown) expectNoPassword(m.text, "a message box");
  exec("ALTER USER '" + componentAccount().user + "'@'%' IDENTIFIED BY '" + password() + "'");
  EXPECT_EQ(query(), Value(std::int16_t{1}));
}

TEST_F(Secrets, TheCommandLineShowsNoPasswordInItsAnswersTraceOrErrors) {
  const std::string script =
      "{\"new\":\"p\",\"class\":\"clsDataPOrder\"}\n"
      "{\"call\":\"p.QueryItem\",\"args\":{\"Entity\":{\"F_ProdNo\":2026110001}}}\n"
      "{\"call\":\"p.QueryByStrSql\",\"args\":{\"strSql\":\" where F_CustNo = '\"}}\n"
      "{\"call\":\"p.AddRecord\",\"args\":{\"Entity\":{\"F_ProdNo\":2026110002,\"F_CustNo\":\"C002\"}}}\n"
      "{\"release\":\"p\"}\n";
  std::string output = runCommandLine({"--trace", "--dsn", dsn()}, script);
  EXPECT_NE(output.find("select * from t_porder where F_ProdNo ='2026110001'"), std::string::npos) << output;
  EXPECT_NE(output.find("\"result\":1"), std::string::npos) << output;
  EXPECT_NE(output.find("SQL syntax"), std::string::npos) << output;
  expectNoPassword(output, "tovrand run --trace");
  std::string trace = readAll(tracePath());
  EXPECT_NE(trace.find("INSERT INTO"), std::string::npos) << trace;
  expectNoPassword(trace, "the TOVRAND_TRACE file");
}

TEST_F(Secrets, TheCommandLineShowsNoPasswordWhenTheServerRefusesIt) {
  for (const std::string& dsnGiven : {wrongDsn(), wrongDsn() + "&timeout=5&ssl=required"}) {
    std::string output =
        runCommandLine({"--trace", "--dsn", dsnGiven}, "{\"new\":\"p\",\"class\":\"clsDataPOrder\"}\n");
    EXPECT_NE(output.find("\"error\""), std::string::npos) << output;
    expectNoPassword(output, "tovrand run with a wrong password");
  }
  // Through the environment, as a deployed client program gives it.
  std::string command =
      "TOVRAND_DSN='" + wrongDsn() + "' '" + tooling::executableDirectory() + "/../tovrand' demo 2>&1";
  tooling::ProcessResult demo = tooling::runProcess({"/bin/sh", "-c", command}, std::nullopt, true);
  EXPECT_NE(demo.status, 0);
  expectNoPassword(demo.output, "tovrand demo with a wrong password");
  expectNoPassword(readAll(tracePath()), "the TOVRAND_TRACE file");
}

TEST_F(Secrets, AMalformedSettingNeverEchoesThePassword) {
  const std::string p = kWrongPassword;
  const std::vector<std::string> malformed{
      "mysql://erp:" + p + "@dbhost:99999/erp",
      "mysql://erp:" + p + "@/erp",
      "mysql://erp:" + p + "@dbhost",
      "mysql://erp:" + p + "@dbhost/erp?unknown=1",
      "mysql://erp:" + p + "@dbhost/erp?timeout=soon",
      "mysql://erp:" + p + "@dbhost/erp?ssl=maybe",
      "mysql://erp:" + p + "@dbhost/erp?ssl_ca=/nonexistent/ca.pem",
      "mysql://erp:" + p + "@dbhost/erp/extra",
      "mysql:/erp:" + p + "@dbhost/erp",
      "odbc:DRIVER={MariaDB Unicode};PWD={" + p,
      "odbc:DRIVER={MariaDB Unicode};UID=erp;PWD=" + p + ";timeout=never",
  };
  for (const std::string& setting : malformed) {
    try {
      ConnectionSettings::parse(setting);
      ADD_FAILURE() << setting << " was accepted";
    } catch (const VbError& e) {
      expectNoPassword(e.description(), setting);
    }
  }
}

}  // namespace
}  // namespace tovrand::test
