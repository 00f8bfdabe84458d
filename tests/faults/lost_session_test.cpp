// A session that is lost ends the call in a handled error; the object's next call runs on a new
// session, and nothing that may have run is sent again. (A server that stops answering: no_hang_test.)
#include <gtest/gtest.h>

#include <string>

#include "engine/ConnectionSettings.h"
#include "frame/Messages.h"
#include "host/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/SessionFaults.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

class LostSession : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    exec(
        "insert into t_porder (F_ProdNo, F_CustNo, F_ProdQty) values (2026110001, 'C001', 10), "
        "(2026110002, 'C002', NULL)");
  }
  // The session id of the connection every object on this test's database shares.
  std::string sessionId() { return sharedSessionId(ConnectionSettings::parse(dsn())); }
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

}  // namespace
}  // namespace tovrand::test
