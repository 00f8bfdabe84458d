// A statement of the caller's own (a `tovrand run` fixture line) on the MariaDB engine gives back the
// same labels, values and errors as on the ODBC engine, column type by column type.
#include <sstream>

#include "tests/mariadb/MariaDbTestSupport.h"

namespace tovrand::test {
namespace {

std::string show(const OwnCell& cell) {
  if (std::holds_alternative<std::monostate>(cell)) return "null";
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return "int " + std::to_string(*integer);
  if (const auto* number = std::get_if<double>(&cell)) {
    std::ostringstream out;
    out.precision(17);
    out << "double " << *number;
    return out.str();
  }
  return "text '" + std::get<std::string>(cell) + "'";
}

std::string show(const OwnStatementResult& r) {
  std::string out = r.hasResult ? "result" : "no result";
  for (const std::string& column : r.columns) out += " [" + column + "]";
  for (const auto& row : r.rows) {
    out += "\n ";
    for (const OwnCell& cell : row) out += " " + show(cell) + ";";
  }
  return out;
}

class MariaDbOwnStatementTest : public MariaDbTest {
 protected:
  void SetUp() override {
    MariaDbTest::SetUp();
    odbc_ = std::make_shared<OdbcDbConnection>(ConnectionSettings::parse(dsn(options("odbc"))));
    odbc_->OpenConnection();
  }
  void TearDown() override {
    if (odbc_) odbc_->CloseConnection();
    odbc_.reset();
    MariaDbTest::TearDown();
  }
  OwnStatementResult onMariaDb(const std::string& sql) { return holder_->Connection()->runOwnStatement(sql); }
  OwnStatementResult onOdbc(const std::string& sql) { return odbc_->Connection()->runOwnStatement(sql); }
  void expectSameAnswer(const std::string& sql) { EXPECT_EQ(show(onMariaDb(sql)), show(onOdbc(sql))) << sql; }
  void expectSameError(const std::string& sql) {
    const VbError maria = errorOf([&] { onMariaDb(sql); });
    const VbError odbc = errorOf([&] { onOdbc(sql); });
    EXPECT_EQ(maria.number(), odbc.number()) << sql;
    EXPECT_EQ(maria.description(), odbc.description()) << sql;
    EXPECT_FALSE(maria.description().empty()) << sql;
  }

  std::shared_ptr<OdbcDbConnection> odbc_;
};

TEST_F(MariaDbOwnStatementTest, EveryColumnTypeComesBackInTheOdbcEnginesForm) {
  exec(
      "create table t_forms (F_ID int primary key, F_Tiny tinyint, F_Small smallint, F_Medium mediumint, "
      "F_Int int, F_IntU int unsigned, F_Big bigint, F_BigU bigint unsigned, F_Year year, F_Bit bit(1), "
      "F_Float float, F_Double double, F_Dec decimal(14,4), F_Date date, F_DateTime datetime, "
      "F_DateTime3 datetime(3), F_Stamp timestamp null, F_Time time, F_Time3 time(3), F_Char char(4), "
      "F_VarChar varchar(20), F_Text text, F_Enum enum('甲','乙'))");
  exec(
      "insert into t_forms values (1, -7, 32000, -8000000, -2000000000, 4000000000, -9000000000000000000, "
      "9000000000000000000, 2026, b'1', 0.1, 2.5e-300, -12345678.1234, '2026-01-02', '2026-12-31 23:59:59', "
      "'2026-05-06 07:08:09.678', '2026-11-22 10:20:30', '-838:59:59', '12:34:56.789', 'ab', '上海客户', "
      "'a longer text', '乙'), (2, null, null, null, null, null, null, null, null, b'0', null, null, null, "
      "null, null, null, null, null, null, null, '', null, null)");
  expectSameAnswer("select * from t_forms order by F_ID");
  expectSameAnswer(
      "select 1 as one, -5 as minus, 12345678901 as big, 2.5 as half, null as nothing, 'x' as letter, "
      "curdate() as today, now() as clock, cast('01:02:03' as time) as span, count(*) from t_forms");
}

TEST_F(MariaDbOwnStatementTest, BytesZeroDatesAndWideUnsignedNumbersComeBackAsOnTheOdbcEngine) {
  exec(
      "create table t_bytes (F_ID int, F_Blob blob, F_VarBin varbinary(8), F_Bit8 bit(8), F_BigU bigint "
      "unsigned, F_Zero datetime)");
  exec(
      "insert into t_bytes values (1, 'ab', 'cd', b'01000001', 18446744073709551615, '0000-00-00 "
      "00:00:00')");
  expectSameAnswer("select * from t_bytes");
  for (const char* expression :
       {"x'00ff'", "x'4100ff'", "cast(x'c3a9' as binary)", "cast('2026-00-00' as date)",
        "cast(-1 as unsigned)", "sec_to_time(100000.5)"}) {
    expectSameAnswer("select " + std::string(expression) + " as v");
  }
  // Bytes that are no UTF-8 text.
  expectSameError("select x'ff41' as v");
  expectSameError("select x'41ff' as v");
}

TEST_F(MariaDbOwnStatementTest, StatementsWithoutRowsAnswerNoResult) {
  exec("create table t_plain (F_ID int primary key, F_Name varchar(10))");
  EXPECT_EQ(show(onMariaDb("insert into t_plain values (1, 'one')")), "no result");
  EXPECT_EQ(show(onOdbc("insert into t_plain values (2, 'two')")), "no result");
  expectSameAnswer("update t_plain set F_Name = 'uno' where F_ID = 1");
  expectSameAnswer("set @unused = 1");
  expectSameAnswer("select * from t_plain where F_ID = 0");
  expectSameAnswer("select F_Name as name, F_ID from t_plain");
}

TEST_F(MariaDbOwnStatementTest, FailuresCarryTheServersOwnText) {
  exec("create table t_short (F_Name varchar(2))");
  expectSameError("select * from t_nosuchtable");
  expectSameError("");
  expectSameError("selec 1");
  expectSameError("insert into t_short values ('too long')");
}

}  // namespace
}  // namespace tovrand::test
