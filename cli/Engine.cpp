#include "cli/Engine.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "odbc/NativeHost.h"
#include "odbc/OdbcDbConnection.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand::cli {

namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "wide ODBC text is UTF-16");

// Wine's ANSI entry points are stubs and the engine speaks the wide API only; so do the fixtures.
class Statement {
 public:
  explicit Statement(SQLHDBC dbc) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &handle_)))
      throw VbError(vberr::kProviderError, "cannot allocate a statement for the fixture");
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() {
    SQLFreeStmt(handle_, SQL_CLOSE);
    SQLFreeHandle(SQL_HANDLE_STMT, handle_);
  }
  SQLHSTMT get() const { return handle_; }

  // The driver's diagnostic as an error, without its "[vendor][driver]" prefixes.
  [[noreturn]] void fail() const {
    SQLWCHAR state[6] = {};
    SQLINTEGER native = 0;
    std::vector<SQLWCHAR> message(2048);
    SQLSMALLINT length = 0;
    std::string text = "the fixture statement failed";
    if (SQL_SUCCEEDED(SQLGetDiagRecW(SQL_HANDLE_STMT, handle_, 1, state, &native, message.data(),
                                     static_cast<SQLSMALLINT>(message.size()), &length))) {
      const auto used = std::min<std::size_t>(static_cast<std::size_t>(length), message.size() - 1);
      std::string_view view;
      text = toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(message.data()), used));
      view = text;
      while (!view.empty() && view.front() == '[') {
        const std::size_t close = view.find(']');
        if (close == std::string_view::npos) break;
        view.remove_prefix(close + 1);
      }
      text = std::string(view);
    }
    throw VbError(vberr::kProviderError, text);
  }
  void check(SQLRETURN rc) const {
    if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA) fail();
  }

 private:
  SQLHSTMT handle_ = SQL_NULL_HSTMT;
};

enum class ColumnForm { Integer, Double, Date, Time, Text };

ColumnForm formOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_BIT:
      return ColumnForm::Integer;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return ColumnForm::Double;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIMESTAMP:
      return ColumnForm::Date;
    case SQL_TYPE_TIME:
    case SQL_TIME:
      return ColumnForm::Time;
    default:
      return ColumnForm::Text;
  }
}

Json columnValue(const Statement& stmt, SQLUSMALLINT column, ColumnForm form) {
  SQLLEN indicator = 0;
  switch (form) {
    case ColumnForm::Integer: {
      SQLBIGINT v = 0;
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_SBIGINT, &v, sizeof v, &indicator));
      return indicator == SQL_NULL_DATA ? Json(nullptr) : Json(static_cast<std::int64_t>(v));
    }
    case ColumnForm::Double: {
      SQLDOUBLE v = 0;
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_DOUBLE, &v, sizeof v, &indicator));
      return indicator == SQL_NULL_DATA ? Json(nullptr) : numberToJson(v);
    }
    case ColumnForm::Date: {
      SQL_TIMESTAMP_STRUCT ts{};
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_TYPE_TIMESTAMP, &ts, sizeof ts, &indicator));
      if (indicator == SQL_NULL_DATA) return nullptr;
      char text[40];
      std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", ts.year, ts.month, ts.day, ts.hour,
                    ts.minute, ts.second);
      return text;
    }
    case ColumnForm::Time:
    case ColumnForm::Text: {
      std::u16string text;
      std::vector<SQLWCHAR> chunk(1024);
      for (;;) {
        const SQLRETURN rc = SQLGetData(stmt.get(), column, SQL_C_WCHAR, chunk.data(),
                                        static_cast<SQLLEN>(chunk.size() * sizeof(SQLWCHAR)), &indicator);
        if (rc == SQL_NO_DATA) break;
        stmt.check(rc);
        if (indicator == SQL_NULL_DATA) return nullptr;
        // A truncated piece fills the buffer but for its terminator; the last piece says its length.
        const std::size_t capacity = chunk.size() - 1;
        const std::size_t got =
            indicator == SQL_NO_TOTAL || static_cast<std::size_t>(indicator) / sizeof(SQLWCHAR) > capacity
                ? capacity
                : static_cast<std::size_t>(indicator) / sizeof(SQLWCHAR);
        text.append(reinterpret_cast<const char16_t*>(chunk.data()), got);
        if (rc == SQL_SUCCESS) break;
      }
      return toUtf8(text);
    }
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<Host> makeNativeHost(const std::string& dsn, const std::string& serverDate,
                                     std::shared_ptr<MessageSink> sink) {
  ConnectionSettings settings = ConnectionSettings::parse(dsn);
  if (!serverDate.empty()) settings.serverDate = serverDate;
  return std::make_shared<NativeHost>(std::move(settings), std::move(sink));
}

Json runFixtureStatement(DbConnection& connection, const std::string& sql) {
  auto* native = dynamic_cast<OdbcDbConnection*>(&connection);
  if (!native || !native->odbcConnection())
    throw VbError(vberr::kProviderError, "fixture statements need an open native connection");
  Statement stmt(static_cast<SQLHDBC>(native->odbcConnection()->nativeHandle()));
  const std::u16string wide = toUtf16(sql);
  const SQLRETURN rc =
      SQLExecDirectW(stmt.get(), reinterpret_cast<SQLWCHAR*>(const_cast<char16_t*>(wide.c_str())),
                     static_cast<SQLINTEGER>(wide.size()));
  if (rc != SQL_NO_DATA) stmt.check(rc);
  Json answer{{"ok", true}};
  SQLSMALLINT count = 0;
  stmt.check(SQLNumResultCols(stmt.get(), &count));
  if (count <= 0) return answer;

  Json columns = Json::array();
  std::vector<ColumnForm> forms;
  for (SQLUSMALLINT c = 1; c <= static_cast<SQLUSMALLINT>(count); ++c) {
    SQLWCHAR name[256] = {};
    SQLSMALLINT nameLength = 0, type = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    stmt.check(SQLDescribeColW(stmt.get(), c, name, 256, &nameLength, &type, &size, &digits, &nullable));
    const auto used = std::min<std::size_t>(static_cast<std::size_t>(nameLength), 255);
    columns.push_back(toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(name), used)));
    forms.push_back(formOf(type));
  }
  Json rows = Json::array();
  for (;;) {
    const SQLRETURN fetched = SQLFetch(stmt.get());
    if (fetched == SQL_NO_DATA) break;
    stmt.check(fetched);
    Json row = Json::array();
    for (SQLUSMALLINT c = 1; c <= static_cast<SQLUSMALLINT>(count); ++c)
      row.push_back(columnValue(stmt, c, forms[c - 1]));
    rows.push_back(std::move(row));
  }
  answer["columns"] = std::move(columns);
  answer["rows"] = std::move(rows);
  return answer;
}

}  // namespace tovrand::cli
