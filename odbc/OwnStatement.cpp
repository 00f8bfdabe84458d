#include "odbc/OwnStatement.h"

#include <cstdio>
#include <utility>

#include "odbc/OdbcApi.h"
#include "vb/Text.h"

namespace tovrand::odbc {

namespace {

// The server's own words, unlike check(): a caller preparing data wants to read what the server said,
// even where a member's statement would have ADO's multiple-step error instead.
[[noreturn]] void fail(SQLSMALLINT handleType, SQLHANDLE handle, std::string fallback) {
  const Diagnostic diagnostic = diagnosticOf(handleType, handle);
  VbError error(vberr::kProviderError, diagnostic.message.empty() ? std::move(fallback) : diagnostic.message);
  if (isConnectionLost(diagnostic)) throw ConnectionLost(std::move(error));
  throw error;
}

class Statement {
 public:
  explicit Statement(SQLHDBC dbc) {
    SQLHANDLE h = SQL_NULL_HANDLE;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h))) {
      const Diagnostic diagnostic = diagnosticOf(SQL_HANDLE_DBC, dbc);
      VbError error(vberr::kProviderError, "cannot allocate a statement for the fixture");
      if (isConnectionLost(diagnostic)) throw ConnectionLost(std::move(error));
      throw error;
    }
    handle_ = Handle(SQL_HANDLE_STMT, h);
  }
  SQLHSTMT get() const { return handle_.get(); }
  void check(SQLRETURN rc) const {
    if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA)
      fail(SQL_HANDLE_STMT, handle_.get(), "the fixture statement failed");
  }

 private:
  Handle handle_;
};

enum class CellForm { Integer, Double, Date, Text };

CellForm formOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_BIT:
      return CellForm::Integer;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return CellForm::Double;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIMESTAMP:
      return CellForm::Date;
    default:
      // Times keep the server's text: a duration may exceed a day.
      return CellForm::Text;
  }
}

OwnCell cellOf(const Statement& stmt, SQLUSMALLINT column, CellForm form) {
  SQLLEN indicator = 0;
  switch (form) {
    case CellForm::Integer: {
      SQLBIGINT v = 0;
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_SBIGINT, &v, sizeof v, &indicator));
      if (indicator == SQL_NULL_DATA) return std::monostate{};
      return static_cast<std::int64_t>(v);
    }
    case CellForm::Double: {
      SQLDOUBLE v = 0;
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_DOUBLE, &v, sizeof v, &indicator));
      if (indicator == SQL_NULL_DATA) return std::monostate{};
      return static_cast<double>(v);
    }
    case CellForm::Date: {
      SQL_TIMESTAMP_STRUCT ts{};
      stmt.check(SQLGetData(stmt.get(), column, SQL_C_TYPE_TIMESTAMP, &ts, sizeof ts, &indicator));
      if (indicator == SQL_NULL_DATA) return std::monostate{};
      char text[40];
      std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", ts.year, ts.month, ts.day, ts.hour,
                    ts.minute, ts.second);
      return std::string(text);
    }
    case CellForm::Text: {
      std::u16string text;
      std::vector<SQLWCHAR> chunk(1024);
      for (;;) {
        const SQLRETURN rc = SQLGetData(stmt.get(), column, SQL_C_WCHAR, chunk.data(),
                                        static_cast<SQLLEN>(chunk.size() * sizeof(SQLWCHAR)), &indicator);
        if (rc == SQL_NO_DATA) break;
        stmt.check(rc);
        if (indicator == SQL_NULL_DATA) return std::monostate{};
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
  return std::monostate{};
}

}  // namespace

OwnStatementResult runOwnStatement(void* dbc, std::string_view sql) {
  // Wine's ANSI entry points are stubs and the engine speaks the wide API only; so do these statements.
  Statement stmt(static_cast<SQLHDBC>(dbc));
  WideText text(sql);
  const SQLRETURN rc = SQLExecDirectW(stmt.get(), text.get(), text.length());
  if (rc != SQL_NO_DATA) stmt.check(rc);
  OwnStatementResult result;
  SQLSMALLINT count = 0;
  stmt.check(SQLNumResultCols(stmt.get(), &count));
  if (count <= 0) return result;

  result.hasResult = true;
  std::vector<CellForm> forms;
  for (SQLUSMALLINT c = 1; c <= static_cast<SQLUSMALLINT>(count); ++c) {
    SQLWCHAR name[256] = {};
    SQLSMALLINT nameLength = 0, type = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    stmt.check(SQLDescribeColW(stmt.get(), c, name, 256, &nameLength, &type, &size, &digits, &nullable));
    result.columns.push_back(
        fromWide(name, std::min<std::size_t>(static_cast<std::size_t>(nameLength), 255)));
    forms.push_back(formOf(type));
  }
  for (;;) {
    const SQLRETURN fetched = SQLFetch(stmt.get());
    if (fetched == SQL_NO_DATA) break;
    stmt.check(fetched);
    std::vector<OwnCell> row;
    row.reserve(forms.size());
    for (SQLUSMALLINT c = 1; c <= static_cast<SQLUSMALLINT>(count); ++c)
      row.push_back(cellOf(stmt, c, forms[c - 1]));
    result.rows.push_back(std::move(row));
  }
  return result;
}

}  // namespace tovrand::odbc
