// A lost session on the MariaDB engine, as OdbcConnection handles it: the statement that met the loss
// fails with the client's text, the rest of a held call fails the same way without reaching the server,
// and the next statement after it opens a new session (its clock pinned again) without re-sending
// anything.
#include <unistd.h>

#include "tests/mariadb/MariaDbTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class MariaDbLostSessionTest : public MariaDbTest {
 protected:
  void SetUp() override {
    MariaDbTest::SetUp();
    exec(
        "create table t_lost (F_ID int primary key, F_Name varchar(10)); insert into t_lost values (1, "
        "'one')");
  }
  std::string sessionId() { return CStr(*session()->scalar("select connection_id()", true)); }
  void kill(const std::string& id) {
    exec("KILL CONNECTION " + id);
    for (int i = 0; i < 500 && scalar("select count(*) from information_schema.processlist where id = " + id +
                                      " and command <> 'Killed'") != "0";
         ++i) {
      ::usleep(2000);
    }
  }
  void add(int id) {
    auto rs = keyset("select * from t_lost");
    rs->AddNew();
    rs->Fields("F_ID") = Value(id);
    rs->Update();
    rs->Close();
  }
};

TEST_F(MariaDbLostSessionTest, AKilledSessionFailsTheNextStatementAndTheOneAfterReconnects) {
  add(2);
  std::string before = sessionId();
  kill(before);
  VbError e = errorOf([&] { read("select F_Name from t_lost where F_ID = 1"); });
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_FALSE(e.description().empty());
  EXPECT_TRUE(session()->isLost());
  auto rs = read("select F_Name, curdate() as d from t_lost where F_ID = 1");
  EXPECT_EQ(rs->Fields("F_Name").value(), Value("one"));
  EXPECT_EQ(rs->Fields("d").value(), Value(makeDate({2026, 11, 22}))) << "the new session's clock pinned";
  EXPECT_NE(sessionId(), before);
  add(3);  // the INSERT prepared on the old session is prepared again
  EXPECT_EQ(scalar("select count(*) from t_lost"), "3");
}

TEST_F(MariaDbLostSessionTest, AnInsertThatMeetsALostSessionIsNeverSentAgain) {
  add(2);
  kill(sessionId());
  EXPECT_EQ(errorOf([&] { add(4); }).number(), vberr::kProviderError);
  EXPECT_EQ(scalar("select count(*) from t_lost where F_ID = 4"), "0");
  add(5);
  EXPECT_EQ(scalar("select count(*) from t_lost where F_ID in (4, 5)"), "1");
}

TEST_F(MariaDbLostSessionTest, WithinAHeldCallLaterStatementsFailWithTheSameErrorWithoutReachingTheServer) {
  auto connection = holder_->Connection();
  connection->beginCall();
  kill(sessionId());
  VbError first = errorOf([&] { read("select F_Name from t_lost where F_ID = 1"); });
  trace().clear();
  VbError second = errorOf([&] { read("select F_Name from t_lost where F_ID = 1"); });
  VbError third = errorOf([&] { add(6); });
  EXPECT_EQ(second.number(), first.number());
  EXPECT_EQ(second.description(), first.description());
  EXPECT_EQ(third.description(), first.description());
  EXPECT_TRUE(trace().statements().empty()) << "nothing of the rest of the call went out";
  connection->endCall();
  EXPECT_EQ(scalar("select count(*) from t_lost where F_ID = 6"), "0");
  auto rs = read("select F_Name from t_lost where F_ID = 1");
  EXPECT_EQ(rs->Fields("F_Name").value(), Value("one"));
}

TEST_F(MariaDbLostSessionTest, ARecordsetReadBeforeTheLossKeepsItsRows) {
  exec("insert into t_lost values (2, 'two'), (3, 'three')");
  auto rs = read("select F_Name from t_lost order by F_ID");
  kill(sessionId());
  std::vector<std::string> names;
  while (!rs->EOF_()) {
    names.push_back(rs->Fields("F_Name").value().str());
    rs->MoveNext();
  }
  EXPECT_EQ(names, (std::vector<std::string>{"one", "two", "three"}));
}

}  // namespace
}  // namespace tovrand::test
