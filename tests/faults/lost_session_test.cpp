// A session that is lost (killed, or a server that stops answering) ends the call in a handled error
// within the connection's timeout; the object's next call runs on a new session, and nothing that may
// have run is sent again.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "frame/Messages.h"
#include "odbc/ConnectionSettings.h"
#include "odbc/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

template <class F>
double secondsOf(F f) {
  auto start = std::chrono::steady_clock::now();
  f();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class LostSession : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    exec(
        "insert into t_porder (F_ProdNo, F_CustNo, F_ProdQty) values (2026110001, 'C001', 10), "
        "(2026110002, 'C002', NULL)");
  }
  // The session id of the connection every object on this test's database shares.
  std::string sessionId() {
    auto shared = OdbcConnection::acquire(ConnectionSettings::parse(dsn()));
    return CStr(*shared->scalar("select connection_id()", true));
  }
};

TEST_F(LostSession, AKilledSessionFailsTheNextCallWithAMessageAndTheCallAfterItReconnects) {
  auto h = host();
  clsDataPOrder porder(h);
  clsEntPOrder order;
  order.F_ProdNo(2026110001.0);
  ASSERT_EQ(porder.QueryItem(order), 1);
  std::string before = sessionId();

  exec("KILL CONNECTION " + before);
  trace().clear();
  clsEntPOrder lost;
  lost.F_ProdNo(2026110001.0);
  EXPECT_EQ(porder.QueryItem(lost), 0);
  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_EQ(messages().messages()[0].style, vbInformation);
  EXPECT_EQ(messages().messages()[0].title, kTitleQuenta);
  EXPECT_FALSE(messages().messages()[0].text.empty());
  EXPECT_EQ(lost.F_CustNo(), "");

  messages().take();
  EXPECT_EQ(porder.QueryItem(lost), 1);
  EXPECT_EQ(lost.F_CustNo(), "C001");
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_NE(sessionId(), before);
  // The failed statement was not sent again on the new session: each call sent its one text.
  EXPECT_EQ(trace().methodStatements(),
            (std::vector<std::string>{"select * from t_porder where F_ProdNo ='2026110001'",
                                      "select * from t_porder where F_ProdNo ='2026110001'"}));
}

TEST_F(LostSession, AnUpdateOnAKilledSessionIsNeverSentTwice) {
  auto h = host();
  clsDataPOrder porder(h);
  clsEntPOrder order;
  order.F_ProdNo(2026110001.0);
  ASSERT_EQ(porder.QueryItem(order), 1);
  exec("KILL CONNECTION " + sessionId());

  order.F_ProdQty(5.0);
  order.F_ProdDate(makeDate({2026, 11, 20}));
  EXPECT_EQ(porder.UpdateOrderOutNo(order), 0);
  EXPECT_EQ(messages().messages().size(), 1u);
  EXPECT_EQ(scalar("select F_ProdQty from t_porder where F_ProdNo=2026110001"), "10");

  EXPECT_EQ(porder.UpdateOrderOutNo(order), 1);
  EXPECT_EQ(scalar("select F_ProdQty from t_porder where F_ProdNo=2026110001"), "15");
}

TEST_F(LostSession, ObjectsSharingTheConnectionAllReconnectOnce) {
  auto h = host();
  clsDataPOrder first(h), second(h);
  clsEntPOrder order;
  order.F_ProdNo(2026110002.0);
  ASSERT_EQ(first.QueryItem(order), 1);
  exec("KILL CONNECTION " + sessionId());
  EXPECT_EQ(first.QueryItem(order), 0);
  EXPECT_EQ(second.QueryItem(order), 1);
  EXPECT_EQ(first.QueryItem(order), 1);
  EXPECT_EQ(order.F_CustNo(), "C002");
}

// Whether the process has reached the stopped state (state T in /proc/PID/stat) within a second.
bool waitUntilStopped(pid_t pid) {
  for (int i = 0; i < 100; ++i) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    std::size_t close = text.rfind(')');
    if (close != std::string::npos && close + 2 < text.size() && text[close + 2] == 'T') return true;
    ::usleep(10000);
  }
  return false;
}

// A private server of this test alone, so that stopping it freezes nothing else.
class FrozenServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv("TOVRAND_TEST_DSN")) GTEST_SKIP() << "needs a private server it may stop";
    sandbox_ = std::string(TOVRAND_SOURCE_DIR) + "/scripts/sandbox";
    std::string out = ::testing::TempDir() + "/tovrand-frozen-sandbox.txt";
    ASSERT_EQ(std::system((sandbox_ + " start --watch " + std::to_string(getpid()) + " > " + out).c_str()),
              0);
    std::ifstream in(out);
    std::string line;
    while (std::getline(in, line)) {
      if (line.rfind("DSN=", 0) == 0) dsn_ = line.substr(4);
      if (line.rfind("DIR=", 0) == 0) dir_ = line.substr(4);
    }
    ASSERT_FALSE(dir_.empty());
    std::string load = "mariadb --no-defaults -utovrand -ptovrand --socket=" + dir_ +
                       "/mysqld.sock tovrand < " + std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql";
    ASSERT_EQ(std::system(load.c_str()), 0);
    std::string row =
        "mariadb --no-defaults -utovrand -ptovrand --socket=" + dir_ +
        "/mysqld.sock tovrand -e \"insert into t_porder (F_ProdNo, F_CustNo) values (2026110001, "
        "'C001')\"";
    ASSERT_EQ(std::system(row.c_str()), 0);
    std::ifstream pidFile(dir_ + "/server.pid");
    pidFile >> serverPid_;
    ASSERT_GT(serverPid_, 0);
  }
  void TearDown() override {
    if (serverPid_ > 0) ::kill(serverPid_, SIGCONT);
    if (!dir_.empty()) std::system((sandbox_ + " stop " + dir_ + " >/dev/null 2>&1").c_str());
  }

  std::string sandbox_, dsn_, dir_;
  pid_t serverPid_ = 0;
};

TEST_F(FrozenServer, ACallToAServerThatStopsAnsweringEndsWithinTheTimeoutAndTheObjectRecovers) {
  auto messages = std::make_shared<RecordingMessageSink>();
  auto host = std::make_shared<NativeHost>(dsn_ + "&timeout=2", messages);
  clsDataPOrder porder(host);
  clsEntPOrder order;
  order.F_ProdNo(2026110001.0);
  ASSERT_EQ(porder.QueryItem(order), 1);

  ASSERT_EQ(::kill(serverPid_, SIGSTOP), 0);
  ASSERT_TRUE(waitUntilStopped(serverPid_));
  std::int16_t result = -1;
  double took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(messages->messages().size(), 1u);
  EXPECT_EQ(messages->messages()[0].text, "Lost connection to server during query");
  EXPECT_EQ(messages->messages()[0].style, vbInformation);

  // Still frozen: the reconnect gives up within the timeout too.
  took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(messages->messages().size(), 2u);
  EXPECT_NE(messages->messages()[1].text.find("cannot connect to the database"), std::string::npos)
      << messages->messages()[1].text;
  EXPECT_EQ(messages->messages()[1].text.find(":tovrand@"), std::string::npos);

  ASSERT_EQ(::kill(serverPid_, SIGCONT), 0);
  order.F_CustNo("");
  EXPECT_EQ(porder.QueryItem(order), 1);
  EXPECT_EQ(order.F_CustNo(), "C001");
  EXPECT_EQ(messages->messages().size(), 2u);
}

}  // namespace
}  // namespace tovrand::test
