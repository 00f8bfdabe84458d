// A server that stops answering, whether its process is stopped or its port blackholed, ends every call
// in the member's handled error within the connection's timeouts, never a frozen caller; the object
// works again once the server answers.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "engine/ConnectionSettings.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/Messages.h"
#include "host/NativeHost.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/Printers.h"
#include "tests/support/SessionFaults.h"
#include "tooling/PrivateServer.h"
#include "tooling/Relay.h"
#include "vb/VbError.h"

namespace tovrand::test {
namespace {

constexpr const char* kLostDuringQuery = "Lost connection to server during query";

template <class F>
double secondsOf(F f) {
  auto start = std::chrono::steady_clock::now();
  f();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// One private server for the suite; every test has a database of its own on it and leaves the server
// answering.
class NoHang : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!std::getenv("TOVRAND_TEST_DSN")) server_ = std::make_unique<tooling::PrivateServer>();
  }
  static void TearDownTestSuite() { server_.reset(); }

  void SetUp() override {
    if (!server_) GTEST_SKIP() << "needs a private server it may stop";
    database_ = "frozen" + std::to_string(++databases_);
    server_->createDatabase(database_, {fileText(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql")});
  }
  void TearDown() override {
    if (server_) server_->thaw();
  }

  void loadSample() {
    server_->runSql(database_, fileText(std::string(TOVRAND_SOURCE_DIR) + "/schema/sample.sql"));
  }
  std::shared_ptr<Host> hostOn(const std::string& dsn) {
    return std::make_shared<NativeHost>(dsn, messages_);
  }
  const std::vector<Message>& shown() const { return messages_->messages(); }
  // Order 2026110001 of customer C001, and a clsDataPOrder on `dsn` that has read it into `order`.
  std::unique_ptr<clsDataPOrder> readerOfOneOrder(const std::string& dsn, clsEntPOrder& order) {
    server_->runSql(database_, "insert into t_porder (F_ProdNo, F_CustNo) values (2026110001, 'C001')");
    auto porder = std::make_unique<clsDataPOrder>(hostOn(dsn));
    order.F_ProdNo(2026110001.0);
    EXPECT_EQ(porder->QueryItem(order), 1);
    return porder;
  }

  static std::unique_ptr<tooling::PrivateServer> server_;
  static int databases_;
  std::string database_;
  std::shared_ptr<RecordingMessageSink> messages_ = std::make_shared<RecordingMessageSink>();
};

std::unique_ptr<tooling::PrivateServer> NoHang::server_;
int NoHang::databases_ = 0;

TEST_F(NoHang, ACallToAServerThatStopsAnsweringEndsWithinTheTimeoutAndTheObjectRecovers) {
  clsEntPOrder order;
  auto reader = readerOfOneOrder(server_->socketDsn(database_) + "&timeout=2", order);
  clsDataPOrder& porder = *reader;

  server_->freeze();
  std::int16_t result = -1;
  double took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(shown()[0].text, kLostDuringQuery);
  EXPECT_EQ(shown()[0].style, vbInformation);

  // Still frozen: the reconnect gives up within the timeout too.
  took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(shown().size(), 2u);
  EXPECT_NE(shown()[1].text.find("cannot connect to the database"), std::string::npos) << shown()[1].text;
  EXPECT_EQ(shown()[1].text.find(":tovrand@"), std::string::npos);

  server_->thaw();
  order.F_CustNo("");
  EXPECT_EQ(porder.QueryItem(order), 1);
  EXPECT_EQ(order.F_CustNo(), "C001");
  EXPECT_EQ(shown().size(), 2u);
}

// A member whose routines go on after their own handled errors meets the frozen server once: the rest
// of the call does not wait for it again, statement after statement.
TEST_F(NoHang, APlanningCreationThatMeetsAFrozenServerWaitsForItOnlyOnce) {
  loadSample();
  clsDataPMrph pmrph(hostOn(server_->socketDsn(database_) + "&timeout=2"));
  clsEntPMrph header;
  header.F_ProdNo(2026110003.0);
  header.F_ItemNo("FG-1001");
  Collection lines;
  for (const char* item : {"RM-2001", "RM-2002", "RM-2003"}) {
    clsEntPMrpi line;
    line.F_ItemNo(item);
    line.F_Dosage(1.0);
    lines.Add(line);
  }
  // The server stops while the header's figures are being looked up.
  StatementHook freezeThird([&](std::size_t position, const TracedStatement&) {
    if (position == 3) server_->freeze();
  });
  std::int16_t result = -1;
  double took = secondsOf([&] {
    ScopedTraceSink installed(&freezeThird);
    result = pmrph.AddRecord1(header, lines);
  });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  EXPECT_EQ(freezeThird.count(), 3u);
  // The computation's handler, then the member's own: both the driver's text.
  EXPECT_EQ(shown(), (std::vector<Message>{{kLostDuringQuery, vbInformation, kTitleQuenta},
                                           {kLostDuringQuery, vbInformation, kTitleQuenta}}));

  server_->thaw();
  messages_->take();
  header.F_ProdNo(2026110003.0);
  EXPECT_EQ(pmrph.AddRecord1(header, lines), 1);
  EXPECT_TRUE(shown().empty());
}

TEST_F(NoHang, ALineReleaseThatMeetsAFrozenServerWaitsForItOnlyOnce) {
  loadSample();
  clsDataPMrpi pmrpi(hostOn(server_->socketDsn(database_) + "&timeout=2"));
  // The server stops before the first material's reservation is looked at; four more lines follow.
  StatementHook freezeSecond([&](std::size_t position, const TracedStatement&) {
    if (position == 2) server_->freeze();
  });
  std::int16_t result = -1;
  double took = secondsOf([&] {
    ScopedTraceSink installed(&freezeSecond);
    result = pmrpi.DeleteAllPMrpiRecord(2026110001.0);
  });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  EXPECT_EQ(freezeSecond.count(), 2u);
  // One message per line's release (each meets the lost session), then the member's own.
  ASSERT_EQ(shown().size(), 6u);
  for (const Message& m : shown()) EXPECT_EQ(m, (Message{kLostDuringQuery, vbInformation, kTitleQuenta}));

  server_->thaw();
  messages_->take();
  EXPECT_EQ(pmrpi.DeleteAllPMrpiRecord(2026110001.0), 1);
  EXPECT_TRUE(shown().empty());
}

// The port stops carrying anything after the object was created: the call ends within the read
// timeout, a reconnect within the connect timeout, and the object works again once the port does.
TEST_F(NoHang, ABlackholedPortEndsTheCallWithinTheTimeoutAndTheObjectRecovers) {
  tooling::Relay port(tooling::Relay::Upstream::tcpPort(server_->port()));
  clsEntPOrder order;
  auto reader = readerOfOneOrder(server_->tcpDsn(database_, port.port()) + "?timeout=2", order);
  clsDataPOrder& porder = *reader;

  port.blackhole();
  std::int16_t result = -1;
  double took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(shown()[0], (Message{kLostDuringQuery, vbInformation, kTitleQuenta}));

  took = secondsOf([&] { result = porder.QueryItem(order); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(shown().size(), 2u);
  EXPECT_NE(shown()[1].text.find("cannot connect to the database"), std::string::npos) << shown()[1].text;

  port.restore();
  order.F_CustNo("");
  EXPECT_EQ(porder.QueryItem(order), 1);
  EXPECT_EQ(order.F_CustNo(), "C001");
  EXPECT_EQ(shown().size(), 2u);
}

// An update whose answer never comes may or may not have run; the object's next call never sends it
// again, so the quantity is added once per call that succeeded.
TEST_F(NoHang, AnUpdateCutOffByABlackholedPortIsNeverSentAgain) {
  server_->runSql(database_, "insert into t_porder (F_ProdNo, F_ProdQty) values (2026110001, 10)");
  tooling::Relay port(tooling::Relay::Upstream::tcpPort(server_->port()));
  clsDataPOrder porder(hostOn(server_->tcpDsn(database_, port.port()) + "?timeout=2"));
  clsEntPOrder order;
  order.F_ProdNo(2026110001.0);
  order.F_ProdDate(makeDate({2026, 11, 20}));
  order.F_ProdQty(5.0);

  port.blackhole();
  EXPECT_EQ(porder.UpdateOrderOutNo(order), 0);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(shown()[0].text, kLostDuringQuery);
  port.restore();

  auto fixture = OdbcConnection::openPrivate(ConnectionSettings::parse(server_->socketDsn(database_)));
  auto quantity = [&] { return CStr(*fixture->scalar("select F_ProdQty from t_porder", true)); };
  // Held back by the blackhole and dropped with it: the statement never reached the server.
  EXPECT_EQ(quantity(), "10");
  EXPECT_EQ(porder.UpdateOrderOutNo(order), 1);
  EXPECT_EQ(quantity(), "15");
  EXPECT_EQ(shown().size(), 1u);
}

// Creating an object behind a port that takes connections and never answers gives up after the
// connect timeout, not the read timeout.
TEST_F(NoHang, CreationBehindABlackholedPortFailsWithinTheConnectTimeout) {
  tooling::Relay port(tooling::Relay::Upstream::tcpPort(server_->port()));
  port.blackhole();
  std::string dsn = server_->tcpDsn(database_, port.port()) + "?connect_timeout=2&timeout=60";
  double took = secondsOf([&] {
    try {
      clsDataPOrder porder(hostOn(dsn));
      ADD_FAILURE() << "created an object behind a blackholed port";
    } catch (const VbError& e) {
      EXPECT_EQ(e.number(), vberr::kProviderError);
      EXPECT_NE(e.description().find("cannot connect to the database"), std::string::npos) << e.description();
    }
  });
  EXPECT_LT(took, 10.0);
  EXPECT_TRUE(shown().empty());
}

// A statement the server cannot take in (the port carries nothing, the system's buffers fill up)
// gives up after the write timeout.
TEST_F(NoHang, AStatementThatCannotBeSentEndsWithinTheWriteTimeout) {
  tooling::Relay port(tooling::Relay::Upstream::tcpPort(server_->port()));
  clsDataPOrder porder(hostOn(server_->tcpDsn(database_, port.port()) + "?timeout=2"));
  port.blackhole();
  Collection orders;
  // Far more than the socket buffers between the component and the relay hold.
  std::string condition = " where F_CustNo = '" + std::string(12 * 1024 * 1024, 'x') + "'";
  std::int16_t result = -1;
  double took = secondsOf([&] { result = porder.QueryByStrSql(orders, condition); });
  EXPECT_EQ(result, 0);
  EXPECT_LT(took, 10.0);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(shown()[0].style, vbCritical);
  EXPECT_EQ(shown()[0].title, kTitleQuenta);
  std::printf("write timeout: %s after %.1f s\n", shown()[0].text.c_str(), took);
}

// Without any timeout option a frozen server still ends the call, after the default read timeout.
// Half a minute and more: make reliability runs it (TOVRAND_LONG_RUNS=1).
TEST_F(NoHang, WithoutTimeoutOptionsAFrozenServerEndsTheCallAfterTheDefaultTimeout) {
  if (!std::getenv("TOVRAND_LONG_RUNS")) GTEST_SKIP() << "a long run: TOVRAND_LONG_RUNS=1";
  clsEntPOrder order;
  auto reader = readerOfOneOrder(server_->socketDsn(database_), order);
  clsDataPOrder& porder = *reader;

  server_->freeze();
  std::int16_t result = -1;
  double took = secondsOf([&] { result = porder.QueryItem(order); });
  std::printf("default timeout: the call ended after %.1f s\n", took);
  EXPECT_EQ(result, 0);
  EXPECT_GE(took, ConnectionSettings::kDefaultTimeoutSeconds - 1.0);
  EXPECT_LT(took, 4.0 * ConnectionSettings::kDefaultTimeoutSeconds);
  ASSERT_EQ(shown().size(), 1u);
  EXPECT_EQ(shown()[0].text, kLostDuringQuery);
  server_->thaw();
  EXPECT_EQ(porder.QueryItem(order), 1);
}

TEST(TimeoutOptions, ConnectTimeoutKeepsItsValueWhereverItStandsAmongTheOptions) {
  for (const char* dsn :
       {"mysql://u:p@h/d?timeout=45&connect_timeout=3", "mysql://u:p@h/d?connect_timeout=3&timeout=45",
        "odbc:DSN=erp;connect_timeout=3;timeout=45;"}) {
    ConnectionSettings s = ConnectionSettings::parse(dsn);
    EXPECT_EQ(s.connectTimeoutSeconds, 3) << dsn;
    EXPECT_EQ(s.timeoutSeconds, 45) << dsn;
    EXPECT_TRUE(s.odbcConnectionString().ends_with("CONN_TIMEOUT=3;READ_TIMEOUT=45;WRITE_TIMEOUT=45;"))
        << dsn;
  }
}

}  // namespace
}  // namespace tovrand::test
