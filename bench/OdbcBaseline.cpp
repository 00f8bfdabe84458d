// The engine's floor: the same statements through bare ODBC calls, nothing around them.
#include <sql.h>
#include <sqlext.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "bench/Baseline.h"
#include "frame/Text.h"
#include "odbc/OdbcConnection.h"

namespace tovrand::bench {

namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

constexpr std::size_t kMaxParams = 64;

std::string diagnostic(SQLSMALLINT type, SQLHANDLE handle) {
  SQLWCHAR state[6] = {};
  SQLWCHAR text[1024] = {};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  if (!SQL_SUCCEEDED(SQLGetDiagRecW(type, handle, 1, state, &native, text, 1024, &length)))
    return "(no diagnostic)";
  return toUtf8(
      std::u16string_view(reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(length)));
}

void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* what, const std::string& sql) {
  if (SQL_SUCCEEDED(rc)) return;
  fatal(std::string("ODBC baseline: ") + what + " failed: " + diagnostic(type, handle) +
        "\n  statement: " + sql);
}

SQLWCHAR* wide(const std::u16string& text) {
  return reinterpret_cast<SQLWCHAR*>(const_cast<char16_t*>(text.data()));
}

// One statement handle for the length of a call, as a program that keeps nothing between calls has.
class Statement {
 public:
  explicit Statement(SQLHDBC dbc) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h_)))
      fatal("ODBC baseline: no statement handle");
  }
  ~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, h_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  SQLHSTMT get() const { return h_; }

 private:
  SQLHSTMT h_ = SQL_NULL_HSTMT;
};

ColumnType typeOf(SQLSMALLINT sqlType) {
  switch (sqlType) {
    case SQL_DOUBLE:
    case SQL_FLOAT:
    case SQL_REAL:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_BIGINT:
      return ColumnType::Double;
    case SQL_INTEGER:
    case SQL_SMALLINT:
    case SQL_TINYINT:
    case SQL_BIT:
      return ColumnType::Integer;
    default:
      // Text, and dates as text: the driver hands the zero datetime to a timestamp buffer as NULL.
      return ColumnType::Text;
  }
}

class OdbcBaseline final : public Baseline {
 public:
  explicit OdbcBaseline(const ConnectionSettings& settings)
      : connection_(OdbcConnection::openPrivate(settings)),
        dbc_(static_cast<SQLHDBC>(connection_->nativeHandle())) {}

  const char* name() const override { return "ODBC"; }

  std::size_t run(const Step& step) override {
    switch (step.form) {
      case Step::Form::Query:
        return query(step);
      case Step::Form::PrepareOnly: {
        Statement s(dbc_);
        check(SQLPrepareW(s.get(), wide(step.wide), static_cast<SQLINTEGER>(step.wide.size())),
              SQL_HANDLE_STMT, s.get(), "SQLPrepareW", step.sql);
        SQLSMALLINT count = 0;
        check(SQLNumResultCols(s.get(), &count), SQL_HANDLE_STMT, s.get(), "SQLNumResultCols", step.sql);
        return 0;
      }
      case Step::Form::Execute: {
        Statement s(dbc_);
        check(SQLExecDirectW(s.get(), wide(step.wide), static_cast<SQLINTEGER>(step.wide.size())),
              SQL_HANDLE_STMT, s.get(), "SQLExecDirectW", step.sql);
        return 0;
      }
      case Step::Form::Write:
        write(step);
        return 0;
    }
    return 0;
  }

 private:
  std::size_t query(const Step& step) {
    Statement s(dbc_);
    SQLHSTMT h = s.get();
    check(SQLExecDirectW(h, wide(step.wide), static_cast<SQLINTEGER>(step.wide.size())), SQL_HANDLE_STMT, h,
          "SQLExecDirectW", step.sql);
    std::size_t rows = 0;
    SQLRETURN rc = SQL_SUCCESS;
    while ((rc = SQLFetch(h)) != SQL_NO_DATA) {
      check(rc, SQL_HANDLE_STMT, h, "SQLFetch", step.sql);
      ++rows;
      for (std::size_t i = 0; i < step.columns.size(); ++i) {
        auto number = static_cast<SQLUSMALLINT>(i + 1);
        SQLLEN indicator = 0;
        switch (step.columns[i]) {
          case ColumnType::Double: {
            double v = 0;
            rc = SQLGetData(h, number, SQL_C_DOUBLE, &v, 0, &indicator);
            sink_ += v;
            break;
          }
          case ColumnType::Integer: {
            SQLINTEGER v = 0;
            rc = SQLGetData(h, number, SQL_C_SLONG, &v, 0, &indicator);
            sink_ += v;
            break;
          }
          case ColumnType::Text: {
            rc = SQLGetData(h, number, SQL_C_WCHAR, text_.data(), sizeof text_, &indicator);
            sink_ += static_cast<double>(indicator);
            break;
          }
        }
        check(rc, SQL_HANDLE_STMT, h, "SQLGetData", step.sql);
      }
    }
    return rows;
  }

  void write(const Step& step) {
    if (step.params.size() > kMaxParams) fatal("ODBC baseline: too many parameters");
    Statement s(dbc_);
    SQLHSTMT h = s.get();
    check(SQLPrepareW(h, wide(step.wide), static_cast<SQLINTEGER>(step.wide.size())), SQL_HANDLE_STMT, h,
          "SQLPrepareW", step.sql);
    for (std::size_t i = 0; i < step.params.size(); ++i) {
      // Input parameters only: the driver reads the buffers, never writes them.
      Param& p = const_cast<Param&>(step.params[i]);
      auto number = static_cast<SQLUSMALLINT>(i + 1);
      SQLLEN& indicator = indicators_[i];
      indicator = 0;
      SQLRETURN rc = SQL_SUCCESS;
      switch (p.kind) {
        case Param::Kind::Double:
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &p.number, 0,
                                &indicator);
          break;
        case Param::Kind::Integer:
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &p.integer, 0,
                                &indicator);
          break;
        case Param::Kind::Text: {
          indicator = static_cast<SQLLEN>(p.wide.size() * sizeof(char16_t));
          SQLULEN size = p.wide.empty() ? 1 : p.wide.size();
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, size, 0, p.wide.data(),
                                indicator, &indicator);
          break;
        }
        case Param::Kind::Timestamp: {
          SQL_TIMESTAMP_STRUCT& t = timestamps_[i];
          t = {};
          t.year = static_cast<SQLSMALLINT>(p.year);
          t.month = static_cast<SQLUSMALLINT>(p.month);
          t.day = static_cast<SQLUSMALLINT>(p.day);
          t.hour = static_cast<SQLUSMALLINT>(p.hour);
          t.minute = static_cast<SQLUSMALLINT>(p.minute);
          t.second = static_cast<SQLUSMALLINT>(p.second);
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19, 0,
                                &t, 0, &indicator);
          break;
        }
      }
      check(rc, SQL_HANDLE_STMT, h, "SQLBindParameter", step.sql);
    }
    check(SQLExecute(h), SQL_HANDLE_STMT, h, "SQLExecute", step.sql);
  }

  std::shared_ptr<OdbcConnection> connection_;  // connected and set up like the engine's
  SQLHDBC dbc_;
  std::array<SQLWCHAR, 512> text_{};
  std::array<SQLLEN, kMaxParams> indicators_{};
  std::array<SQL_TIMESTAMP_STRUCT, kMaxParams> timestamps_{};
  double sink_ = 0;  // keeps the reads observable
};

}  // namespace

std::unique_ptr<Baseline> odbcBaseline(const ConnectionSettings& settings) {
  return std::make_unique<OdbcBaseline>(settings);
}

std::vector<ColumnType> describeQuery(const ConnectionSettings& settings, const std::string& sql) {
  auto connection = OdbcConnection::openPrivate(settings);
  Statement s(static_cast<SQLHDBC>(connection->nativeHandle()));
  std::u16string text = toUtf16(sql);
  check(SQLPrepareW(s.get(), wide(text), static_cast<SQLINTEGER>(text.size())), SQL_HANDLE_STMT, s.get(),
        "SQLPrepareW", sql);
  SQLSMALLINT count = 0;
  check(SQLNumResultCols(s.get(), &count), SQL_HANDLE_STMT, s.get(), "SQLNumResultCols", sql);
  std::vector<ColumnType> columns;
  for (SQLSMALLINT i = 1; i <= count; ++i) {
    SQLWCHAR name[256] = {};
    SQLSMALLINT nameLength = 0, sqlType = 0, decimals = 0, nullable = 0;
    SQLULEN size = 0;
    check(SQLDescribeColW(s.get(), static_cast<SQLUSMALLINT>(i), name, 256, &nameLength, &sqlType, &size,
                          &decimals, &nullable),
          SQL_HANDLE_STMT, s.get(), "SQLDescribeColW", sql);
    columns.push_back(typeOf(sqlType));
  }
  return columns;
}

}  // namespace tovrand::bench
