// The engine's floor: the same statements through bare ODBC calls, nothing around them.
#include <sql.h>
#include <sqlext.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <map>

#include "bench/Baseline.h"
#include "odbc/OdbcConnection.h"
#include "vb/Text.h"

namespace tovrand::bench {

namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

constexpr SQLULEN kBlockRows = 32;
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

// One statement handle for one statement, as the engine has.
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

ColumnType typeOf(SQLSMALLINT sqlType, SQLULEN size) {
  switch (sqlType) {
    case SQL_DOUBLE:
    case SQL_FLOAT:
    case SQL_REAL:
      return {ColumnType::Kind::Double, sizeof(double), {}};
    case SQL_BIGINT:
      return {ColumnType::Kind::BigInt, sizeof(std::int64_t), {}};
    case SQL_INTEGER:
    case SQL_SMALLINT:
    case SQL_TINYINT:
    case SQL_BIT:
      return {ColumnType::Kind::Integer, sizeof(SQLINTEGER), {}};
    default:
      // Text, decimals and dates as the session's text (the driver hands the zero datetime to a
      // timestamp buffer as NULL).
      return {ColumnType::Kind::Text, std::max<std::size_t>(size * 4 + 1, 72), {}};
  }
}

class OdbcBaseline final : public Baseline {
 public:
  explicit OdbcBaseline(const ConnectionSettings& settings)
      : connection_(OdbcConnection::openPrivate(settings)),
        dbc_(static_cast<SQLHDBC>(connection_->nativeHandle())) {}
  ~OdbcBaseline() override {
    for (auto& [sql, h] : prepared_) SQLFreeHandle(SQL_HANDLE_STMT, h);
  }
  OdbcBaseline(const OdbcBaseline&) = delete;
  OdbcBaseline& operator=(const OdbcBaseline&) = delete;

  const char* name() const override { return "ODBC"; }

  std::size_t run(const Step& step) override {
    switch (step.form) {
      case Step::Form::Query:
        return query(step);
      case Step::Form::Execute:
      case Step::Form::Buffered: {
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
    // Row-wise bound buffers, a block of rows per fetch.
    std::size_t rowBytes = 0;
    offsets_.clear();
    for (const ColumnType& c : step.columns) {
      offsets_.push_back(rowBytes);
      rowBytes += (c.bytes + sizeof(SQLLEN) + 7) & ~std::size_t{7};
    }
    if (block_.size() < rowBytes * kBlockRows) block_.resize(rowBytes * kBlockRows);
    SQLULEN fetched = 0;
    SQLSetStmtAttrW(h, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(rowBytes), 0);
    SQLSetStmtAttrW(h, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kBlockRows), 0);
    SQLSetStmtAttrW(h, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    for (std::size_t i = 0; i < step.columns.size(); ++i) {
      const ColumnType& c = step.columns[i];
      SQLSMALLINT cType = c.kind == ColumnType::Kind::Double    ? SQL_C_DOUBLE
                          : c.kind == ColumnType::Kind::BigInt  ? SQL_C_SBIGINT
                          : c.kind == ColumnType::Kind::Integer ? SQL_C_SLONG
                                                                : SQL_C_CHAR;
      char* at = block_.data() + offsets_[i];
      check(SQLBindCol(h, static_cast<SQLUSMALLINT>(i + 1), cType, at + sizeof(SQLLEN),
                       static_cast<SQLLEN>(c.bytes), reinterpret_cast<SQLLEN*>(at)),
            SQL_HANDLE_STMT, h, "SQLBindCol", step.sql);
    }
    std::size_t rows = 0;
    SQLRETURN rc = SQL_SUCCESS;
    while ((rc = SQLFetch(h)) != SQL_NO_DATA) {
      check(rc, SQL_HANDLE_STMT, h, "SQLFetch", step.sql);
      for (SQLULEN r = 0; r < fetched; ++r) {
        const char* row = block_.data() + r * rowBytes;
        for (std::size_t i = 0; i < step.columns.size(); ++i) {
          SQLLEN indicator;
          std::memcpy(&indicator, row + offsets_[i], sizeof indicator);
          if (indicator == SQL_NULL_DATA) continue;
          const char* value = row + offsets_[i] + sizeof(SQLLEN);
          switch (step.columns[i].kind) {
            case ColumnType::Kind::Double: {
              double v;
              std::memcpy(&v, value, sizeof v);
              sink_ += v;
              break;
            }
            case ColumnType::Kind::BigInt: {
              std::int64_t v;
              std::memcpy(&v, value, sizeof v);
              sink_ += static_cast<double>(v);
              break;
            }
            case ColumnType::Kind::Integer: {
              SQLINTEGER v;
              std::memcpy(&v, value, sizeof v);
              sink_ += v;
              break;
            }
            case ColumnType::Kind::Text:
              sink_ += static_cast<double>(indicator);
              break;
          }
        }
      }
      rows += fetched;
    }
    return rows;
  }

  void write(const Step& step) {
    if (step.values.size() > kMaxParams) fatal("ODBC baseline: too many parameters");
    SQLHSTMT& h = prepared_[step.sql];
    if (h == SQL_NULL_HSTMT) {
      check(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &h), SQL_HANDLE_DBC, dbc_, "SQLAllocHandle", step.sql);
      check(SQLPrepareW(h, wide(step.wide), static_cast<SQLINTEGER>(step.wide.size())), SQL_HANDLE_STMT, h,
            "SQLPrepareW", step.sql);
    }
    for (std::size_t i = 0; i < step.values.size(); ++i) {
      const Value& v = step.values[i];
      auto number = static_cast<SQLUSMALLINT>(i + 1);
      SQLLEN& indicator = indicators_[i];
      indicator = 0;
      SQLRETURN rc = SQL_SUCCESS;
      switch (v.type()) {
        case Value::Type::Double:
          numbers_[i] = v.dbl();
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &numbers_[i], 0,
                                &indicator);
          break;
        case Value::Type::Integer:
        case Value::Type::Long:
          integers_[i] = v.type() == Value::Type::Integer ? v.integer() : v.longValue();
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &integers_[i], 0,
                                &indicator);
          break;
        case Value::Type::String: {
          const std::string& text = v.str();
          indicator = static_cast<SQLLEN>(text.size());
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR,
                                text.empty() ? 1 : text.size(), 0, const_cast<char*>(text.data()), indicator,
                                &indicator);
          break;
        }
        case Value::Type::Date: {
          DateParts parts = dateParts(v.date());
          SQL_TIMESTAMP_STRUCT& t = timestamps_[i];
          t = {};
          t.year = static_cast<SQLSMALLINT>(parts.year);
          t.month = static_cast<SQLUSMALLINT>(parts.month);
          t.day = static_cast<SQLUSMALLINT>(parts.day);
          t.hour = static_cast<SQLUSMALLINT>(parts.hour);
          t.minute = static_cast<SQLUSMALLINT>(parts.minute);
          t.second = static_cast<SQLUSMALLINT>(parts.second);
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19, 0,
                                &t, 0, &indicator);
          break;
        }
        default:
          indicator = SQL_NULL_DATA;
          rc = SQLBindParameter(h, number, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 1, 0, &numbers_[i], 0,
                                &indicator);
          break;
      }
      check(rc, SQL_HANDLE_STMT, h, "SQLBindParameter", step.sql);
    }
    check(SQLExecute(h), SQL_HANDLE_STMT, h, "SQLExecute", step.sql);
  }

  std::shared_ptr<OdbcConnection> connection_;  // connected and set up like the engine's
  SQLHDBC dbc_;
  std::map<std::string, SQLHSTMT> prepared_;
  std::vector<char> block_;
  std::vector<std::size_t> offsets_;
  std::array<SQLLEN, kMaxParams> indicators_{};
  std::array<double, kMaxParams> numbers_{};
  std::array<SQLINTEGER, kMaxParams> integers_{};
  std::array<SQL_TIMESTAMP_STRUCT, kMaxParams> timestamps_{};
  double sink_ = 0;  // keeps the reads observable
};

}  // namespace

std::unique_ptr<Baseline> odbcBaseline(const ConnectionSettings& settings) {
  return std::make_unique<OdbcBaseline>(settings);
}

std::vector<ColumnType> describeQuery(const ConnectionSettings& settings, const std::string& sql) {
  static std::map<std::string, std::shared_ptr<OdbcConnection>> connections;
  std::shared_ptr<OdbcConnection>& connection = connections[settings.connectionKey()];
  if (!connection) connection = OdbcConnection::openPrivate(settings);
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
    columns.push_back(typeOf(sqlType, size));
    columns.back().name =
        toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(name),
                                   std::min<std::size_t>(static_cast<std::size_t>(nameLength), 255)));
  }
  return columns;
}

}  // namespace tovrand::bench
