// What only the MariaDB engine does, and the MariaDB engine held to the ODBC engine's answers. The rules
// both engines keep are tests/odbc/connection_test.cpp's, run on each engine.
#include <chrono>

#include "host/NativeHost.h"
#include "tests/mariadb/MariaDbTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class MariaDbConnectionTest : public MariaDbTest {
 protected:
  std::shared_ptr<MariaDbDbConnection> openHolder(const std::string& more = "") {
    auto holder =
        std::make_shared<MariaDbDbConnection>(ConnectionSettings::parse(dsn(options("mariadb", more))));
    holder->OpenConnection();
    return holder;
  }
  double connectionId(const std::shared_ptr<DbConnection>& holder) {
    MariaDbRecordset rs;
    rs.Open("select connection_id() as id", holder->Connection(), -1, -1, -1);
    return CDbl(rs.Fields("id").value());
  }
  // The error opening a holder of `settings` raises on the engine, and the time it took.
  template <class Holder>
  std::pair<VbError, double> openingError(const std::string& settings) {
    Holder holder(ConnectionSettings::parse(settings));
    VbError e{0, ""};
    auto start = std::chrono::steady_clock::now();
    e = errorOf([&] { holder.OpenConnection(); });
    return {e, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()};
  }
};

TEST_F(MariaDbConnectionTest, TheEnginesNeverShareASession) {
  auto first = openHolder();
  OdbcDbConnection odbc(ConnectionSettings::parse(dsn(options("odbc"))));
  odbc.OpenConnection();
  OdbcRecordset rs;
  rs.Open("select connection_id() as id", odbc.Connection(), -1, -1, -1);
  EXPECT_NE(CDbl(rs.Fields("id").value()), connectionId(first));
}

TEST_F(MariaDbConnectionTest, TheLastCloseConnectionEndsTheSession) {
  std::size_t before = MariaDbConnection::sharedCount();
  auto extra = openHolder("serialize_allocation=1");
  EXPECT_EQ(MariaDbConnection::sharedCount(), before + 1);
  extra->CloseConnection();
  EXPECT_EQ(MariaDbConnection::sharedCount(), before);
}

TEST_F(MariaDbConnectionTest, ARecordsetOfOneEngineRefusesTheOtherEnginesConnectionWith3709) {
  OdbcRecordset odbc;
  EXPECT_EQ(errorOf([&] { odbc.Open("select 1", holder_->Connection(), -1, -1, -1); }).number(), 3709);
  OdbcDbConnection other(ConnectionSettings::parse(dsn(options("odbc"))));
  other.OpenConnection();
  MariaDbRecordset maria;
  EXPECT_EQ(errorOf([&] { maria.Open("select 1", other.Connection(), -1, -1, -1); }).number(), 3709);
}

TEST_F(MariaDbConnectionTest, AWrongPasswordIsRefusedWithTheOdbcEnginesTextAndNeverShown) {
  std::string settings = dsn(options("mariadb"));
  settings.replace(settings.find(":tovrand@"), 9, ":Wrong-Pw-7781@");
  auto [maria, tookMaria] = openingError<MariaDbDbConnection>(settings);
  std::string odbcSettings = dsn(options("odbc"));
  odbcSettings.replace(odbcSettings.find(":tovrand@"), 9, ":Wrong-Pw-7781@");
  auto [odbc, tookOdbc] = openingError<OdbcDbConnection>(odbcSettings);
  EXPECT_EQ(maria.number(), vberr::kProviderError);
  EXPECT_NE(maria.description().find("Access denied"), std::string::npos) << maria.description();
  EXPECT_EQ(maria.description().find("Wrong-Pw-7781"), std::string::npos) << maria.description();
  // The settings differ in their engine option only, which a message does not name.
  EXPECT_EQ(maria.description(), odbc.description());
}

TEST_F(MariaDbConnectionTest, AnOdbcConnectionStringIsRefusedByTheMariaDbEngine) {
  auto [e, took] = openingError<MariaDbDbConnection>("odbc:DSN=tovrand;UID=u;PWD=Secret-991");
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_NE(e.description().find("mysql://"), std::string::npos) << e.description();
  EXPECT_EQ(e.description().find("Secret-991"), std::string::npos) << e.description();
}

TEST_F(MariaDbConnectionTest, TheEngineOptionTakesOdbcOrMariadbOnly) {
  EXPECT_EQ(ConnectionSettings::parse("mysql://u:p@h/d?engine=MariaDB").engine, "mariadb");
  EXPECT_EQ(ConnectionSettings::parse("mysql://u:p@h/d?engine=ODBC").engine, "odbc");
  VbError e = errorOf([] { ConnectionSettings::parse("mysql://u:p@h/d?engine=oracle"); });
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_NE(e.description().find("odbc or mariadb"), std::string::npos) << e.description();
  EXPECT_NE(ConnectionSettings::parse("mysql://u:p@h/d?engine=mariadb").connectionKey(),
            ConnectionSettings::parse("mysql://u:p@h/d?engine=odbc").connectionKey());
  EXPECT_EQ(ConnectionSettings::parse("mysql://u:p@h/d?engine=mariadb").connectionKey(),
            ConnectionSettings::parse("mysql://u:p@h/d").connectionKey());
}

TEST_F(MariaDbConnectionTest, AMysqlSettingWithoutTheEngineOptionRunsOnTheNativeEngine) {
  EXPECT_STREQ(ConnectionSettings::kDefaultEngine, "mariadb");
  EXPECT_EQ(ConnectionSettings::parse("mysql://u:p@h/d").engine, "mariadb");
  EXPECT_EQ(ConnectionSettings::parse("mysql://u:p@localhost/d?socket=/s&timeout=5").engine, "mariadb");
  EXPECT_EQ(ConnectionSettings{}.engine, "mariadb");
  auto host = std::make_shared<NativeHost>("mysql://u:p@h/d", nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<MariaDbDbConnection>(host->newDbConnection()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<MariaDbRecordset>(host->newRecordset()), nullptr);
  auto odbcHost = std::make_shared<NativeHost>("mysql://u:p@h/d?engine=odbc", nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<OdbcDbConnection>(odbcHost->newDbConnection()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<OdbcRecordset>(odbcHost->newRecordset()), nullptr);
}

TEST_F(MariaDbConnectionTest, AnOdbcSettingRunsOnOdbcAndRefusesTheNativeEngine) {
  EXPECT_EQ(ConnectionSettings::parse("odbc:DSN=erp;UID=u").engine, "odbc");
  auto named = ConnectionSettings::parse("odbc:DSN=erp;engine=odbc;UID=u");
  EXPECT_EQ(named.engine, "odbc");
  // The option is the component's, not the driver's.
  EXPECT_EQ(named.odbcConnectionString().find("engine"), std::string::npos) << named.odbcConnectionString();
  auto host = std::make_shared<NativeHost>("odbc:DSN=erp;UID=u", nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<OdbcDbConnection>(host->newDbConnection()), nullptr);
  VbError e = errorOf([] { ConnectionSettings::parse("odbc:DSN=erp;engine=mariadb;PWD=Secret-17"); });
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_NE(e.description().find("must be odbc"), std::string::npos) << e.description();
  EXPECT_EQ(e.description().find("Secret-17"), std::string::npos) << e.description();
}

TEST_F(MariaDbConnectionTest, ServerErrorsCarryTheSameTextsAsOnTheOdbcEngine) {
  for (const char* sql : {"select * from t_nosuch", "select 1; select 2", "select nosuch from t_porder",
                          "insert into t_porder (F_ProdNo) values (1), (1)"}) {
    VbError maria = errorOf([&] { read(sql); });
    exec("delete from t_porder");
    VbError odbc = odbcErrorOf(sql);
    exec("delete from t_porder");
    EXPECT_EQ(maria.number(), odbc.number()) << sql;
    EXPECT_EQ(maria.description(), odbc.description()) << sql;
  }
}

TEST_F(MariaDbConnectionTest, AReadThatOutlastsTheTimeoutFailsAndTheNextStatementReconnects) {
  auto quick = openHolder("timeout=1");
  MariaDbRecordset rs;
  auto start = std::chrono::steady_clock::now();
  VbError e = errorOf([&] { rs.Open("select sleep(5)", quick->Connection(), -1, -1, -1); });
  double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_LT(took, 4.5);
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_FALSE(e.description().empty());
  MariaDbRecordset again;
  again.Open("select curdate() as d", quick->Connection(), -1, -1, -1);
  EXPECT_EQ(again.Fields("d").value(), Value(makeDate({2026, 11, 22}))) << "the new session pinned";
}

}  // namespace
}  // namespace tovrand::test
