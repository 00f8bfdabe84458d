#pragma once

#include <memory>
#include <string>

#include "mariadb/MariaDbConnection.h"
#include "mariadb/MariaDbDbConnection.h"
#include "mariadb/MariaDbRecordset.h"
#include "odbc/OdbcDbConnection.h"
#include "odbc/OdbcRecordset.h"
#include "tests/odbc/OdbcTestSupport.h"

namespace tovrand::test {

// A DatabaseTest with one open holder on the MariaDB engine, and the means to ask the ODBC engine the
// same thing: the ODBC engine is the reference the MariaDB engine is held to.
class MariaDbTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    holder_ = std::make_shared<MariaDbDbConnection>(ConnectionSettings::parse(dsn(options("mariadb"))));
    holder_->OpenConnection();
    trace().clear();
  }
  void TearDown() override {
    if (holder_) holder_->CloseConnection();
    holder_.reset();
    DatabaseTest::TearDown();
  }
  static std::string options(const std::string& engine, const std::string& more = "") {
    return "engine=" + engine + (more.empty() ? "" : "&" + more);
  }
  std::shared_ptr<MariaDbConnection> session() { return holder_->mariaDbConnection(); }
  std::shared_ptr<Recordset> read(const std::string& sql) {
    auto rs = std::make_shared<MariaDbRecordset>();
    rs->Open(sql, holder_->Connection(), adOpenForwardOnly, adLockReadOnly, adCmdText);
    return rs;
  }
  std::shared_ptr<Recordset> keyset(const std::string& sql) {
    auto rs = std::make_shared<MariaDbRecordset>();
    rs->Open(sql, holder_->Connection(), adOpenKeyset, adLockOptimistic, adCmdText);
    return rs;
  }
  // The error the same read raises on the ODBC engine.
  VbError odbcErrorOf(const std::string& sql) {
    OdbcDbConnection holder(ConnectionSettings::parse(dsn(options("odbc"))));
    holder.OpenConnection();
    OdbcRecordset rs;
    return errorOf([&] { rs.Open(sql, holder.Connection(), adOpenForwardOnly, adLockReadOnly, adCmdText); });
  }

  std::shared_ptr<MariaDbDbConnection> holder_;
};

}  // namespace tovrand::test
