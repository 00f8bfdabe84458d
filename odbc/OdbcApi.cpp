#include "odbc/OdbcApi.h"

#include <cstdlib>

#include "engine/TemporalText.h"
#include "frame/ServerError.h"
#include "vb/Text.h"

namespace tovrand::odbc {

WideText::WideText(std::string_view utf8) : text_(toUtf16(utf8)) {}

std::string fromWide(const SQLWCHAR* text, std::size_t length) {
  return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text), length));
}

std::string fromWide(const SQLWCHAR* text) {
  std::size_t length = 0;
  while (text[length] != 0) ++length;
  return fromWide(text, length);
}

void Handle::reset() {
  if (handle_ != SQL_NULL_HANDLE) {
    SQLFreeHandle(type_, handle_);
    handle_ = SQL_NULL_HANDLE;
  }
}

Diagnostic diagnosticOf(SQLSMALLINT handleType, SQLHANDLE handle) {
  Diagnostic d;
  if (handle == SQL_NULL_HANDLE) return d;
  SQLWCHAR state[6] = {};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  std::u16string message(1024, u'\0');
  SQLRETURN rc =
      SQLGetDiagRecW(handleType, handle, 1, state, &native, reinterpret_cast<SQLWCHAR*>(message.data()),
                     static_cast<SQLSMALLINT>(message.size()), &length);
  if (rc == SQL_SUCCESS_WITH_INFO && static_cast<std::size_t>(length) >= message.size()) {
    message.assign(static_cast<std::size_t>(length) + 1, u'\0');
    rc = SQLGetDiagRecW(handleType, handle, 1, state, &native, reinterpret_cast<SQLWCHAR*>(message.data()),
                        static_cast<SQLSMALLINT>(message.size()), &length);
  }
  if (!SQL_SUCCEEDED(rc)) return d;
  d.sqlState = fromWide(state);
  d.nativeError = native;
  std::size_t used = std::min(static_cast<std::size_t>(length), message.size());
  while (used > 0 && message[used - 1] == u'\0') --used;
  d.message = stripDriverPrefixes(toUtf8(std::u16string_view(message.data(), used)));
  return d;
}

std::string stripDriverPrefixes(std::string_view message) {
  while (!message.empty() && message.front() == '[') {
    std::size_t close = message.find(']');
    if (close == std::string_view::npos) break;
    message.remove_prefix(close + 1);
  }
  return std::string(message);
}

namespace {

std::string blankOut(std::string text, std::string_view secret) {
  if (secret.empty()) return text;
  for (std::size_t at = text.find(secret); at != std::string::npos; at = text.find(secret, at + 3)) {
    text.replace(at, secret.size(), "***");
  }
  return text;
}

}  // namespace

VbError toVbError(const Diagnostic& diagnostic, std::string_view context, std::string_view secret) {
  if (diagnostic.nativeError == 1406 || diagnostic.sqlState == "22001")
    return VbError::of(vberr::kMultipleStep);
  std::string text = diagnostic.message;
  if (text.empty()) text = std::string(context) + " failed without a diagnostic from the ODBC driver";
  return VbError(vberr::kProviderError, blankOut(std::move(text), secret));
}

bool isConnectionLost(const Diagnostic& diagnostic) {
  switch (diagnostic.nativeError) {
    case 1053:  // server shutdown in progress
    case 1927:  // connection was killed
    case 2006:  // server has gone away
    case 2013:  // lost connection to server during query (also a read or write timeout)
    case 2055:  // lost connection to server at ...
    case 5013:  // the client library's read error on the socket
    case 5014:  // the client library's write error (broken pipe)
      return true;
    default:
      // 08S01 communication link failure, 08003 connection not open, ...
      return diagnostic.sqlState.rfind("08", 0) == 0;
  }
}

void check(SQLRETURN rc, SQLSMALLINT handleType, SQLHANDLE handle, std::string_view context,
           std::string_view secret) {
  if (SQL_SUCCEEDED(rc) || rc == SQL_NO_DATA) return;
  if (rc == SQL_INVALID_HANDLE) {
    throw VbError(vberr::kProviderError, std::string(context) + " failed: invalid ODBC handle");
  }
  Diagnostic diagnostic = diagnosticOf(handleType, handle);
  if (isConnectionLost(diagnostic)) throw ConnectionLost(toVbError(diagnostic, context, secret));
  throw ServerError(toVbError(diagnostic, context, secret),
                    static_cast<unsigned int>(diagnostic.nativeError));
}

namespace {

// The types whose columns are read or assigned differently when unsigned.
bool signMatters(SQLSMALLINT type) {
  return type == SQL_INTEGER || type == SQL_BIGINT || type == SQL_SMALLINT || type == SQL_TINYINT;
}

ColumnKind kindOf(SQLSMALLINT type, bool isUnsigned) {
  switch (type) {
    case SQL_DOUBLE:
    case SQL_FLOAT:
    case SQL_REAL:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_BIGINT:
      return ColumnKind::Double;
    case SQL_INTEGER:
      return isUnsigned ? ColumnKind::Double : ColumnKind::Long;
    case SQL_SMALLINT:
    case SQL_TINYINT:
    case SQL_BIT:
      return ColumnKind::Long;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIME:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIME:
    case SQL_TIMESTAMP:
      return ColumnKind::Date;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnKind::Binary;
    default:
      return ColumnKind::Text;
  }
}

std::string textAttribute(SQLHSTMT stmt, SQLUSMALLINT number, SQLUSMALLINT field) {
  SQLWCHAR buffer[512] = {};
  SQLSMALLINT length = 0;
  SQLRETURN rc = SQLColAttributeW(stmt, number, field, buffer, sizeof buffer, &length, nullptr);
  if (!SQL_SUCCEEDED(rc)) return {};
  return fromWide(buffer);
}

// Reads a character or binary column in pieces until the driver has handed all of it.
template <class Unit>
std::basic_string<Unit> readPieces(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT cType, bool& isNull,
                                   std::string_view secret) {
  std::basic_string<Unit> out;
  constexpr std::size_t kChunk = 2048;
  Unit buffer[kChunk + 1];
  isNull = false;
  for (;;) {
    SQLLEN indicator = 0;
    SQLRETURN rc = SQLGetData(stmt, number, cType, buffer, sizeof buffer, &indicator);
    if (rc == SQL_NO_DATA) break;
    check(rc, SQL_HANDLE_STMT, stmt, "reading a column", secret);
    if (indicator == SQL_NULL_DATA) {
      isNull = true;
      return out;
    }
    // Character data leaves room for the terminating NUL; binary data fills the buffer.
    std::size_t capacity = cType == SQL_C_BINARY ? kChunk + 1 : kChunk;
    std::size_t got = (indicator == SQL_NO_TOTAL || indicator < 0 ||
                       static_cast<std::size_t>(indicator) / sizeof(Unit) > capacity)
                          ? capacity
                          : static_cast<std::size_t>(indicator) / sizeof(Unit);
    out.append(buffer, got);
    if (rc == SQL_SUCCESS) break;
  }
  return out;
}

}  // namespace

SQLSMALLINT resultColumnCount(SQLHSTMT stmt, std::string_view secret) {
  SQLSMALLINT count = 0;
  check(SQLNumResultCols(stmt, &count), SQL_HANDLE_STMT, stmt, "reading the result columns", secret);
  return count;
}

std::vector<ColumnInfo> describeTypes(SQLHSTMT stmt, SQLSMALLINT count, std::string_view secret) {
  std::vector<ColumnInfo> columns(static_cast<std::size_t>(count));
  for (SQLSMALLINT i = 1; i <= count; ++i) {
    ColumnInfo& c = columns[static_cast<std::size_t>(i - 1)];
    SQLSMALLINT nameLength = 0, decimals = 0, nullable = 0;
    check(SQLDescribeColW(stmt, static_cast<SQLUSMALLINT>(i), nullptr, 0, &nameLength, &c.sqlType, &c.size,
                          &decimals, &nullable),
          SQL_HANDLE_STMT, stmt, "describing a result column", secret);
    SQLLEN isUnsigned = SQL_FALSE;
    SQLColAttributeW(stmt, static_cast<SQLUSMALLINT>(i), SQL_DESC_UNSIGNED, nullptr, 0, nullptr, &isUnsigned);
    c.isUnsigned = isUnsigned == SQL_TRUE;
    c.kind = kindOf(c.sqlType, c.isUnsigned);
  }
  return columns;
}

void describeNames(SQLHSTMT stmt, std::vector<ColumnInfo>& columns, std::string_view secret) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SQLWCHAR name[512] = {};
    SQLSMALLINT nameLength = 0, sqlType = 0, decimals = 0, nullable = 0;
    SQLULEN size = 0;
    check(SQLDescribeColW(stmt, static_cast<SQLUSMALLINT>(i + 1), name, 512, &nameLength, &sqlType, &size,
                          &decimals, &nullable),
          SQL_HANDLE_STMT, stmt, "describing a result column", secret);
    columns[i].name = fromWide(name);
  }
}

void describeBaseNames(SQLHSTMT stmt, std::vector<ColumnInfo>& columns) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    ColumnInfo& c = columns[i];
    auto number = static_cast<SQLUSMALLINT>(i + 1);
    c.baseTable = textAttribute(stmt, number, SQL_DESC_BASE_TABLE_NAME);
    c.baseColumn = textAttribute(stmt, number, SQL_DESC_BASE_COLUMN_NAME);
    c.catalog = c.baseTable.empty() ? std::string() : textAttribute(stmt, number, SQL_DESC_CATALOG_NAME);
  }
}

bool describesAs(SQLHSTMT stmt, SQLSMALLINT count, const std::vector<ColumnInfo>& columns,
                 std::string_view secret) {
  if (static_cast<std::size_t>(count) != columns.size()) return false;
  for (SQLSMALLINT i = 1; i <= count; ++i) {
    const ColumnInfo& c = columns[static_cast<std::size_t>(i - 1)];
    SQLSMALLINT nameLength = 0, sqlType = 0, decimals = 0, nullable = 0;
    SQLULEN size = 0;
    check(SQLDescribeColW(stmt, static_cast<SQLUSMALLINT>(i), nullptr, 0, &nameLength, &sqlType, &size,
                          &decimals, &nullable),
          SQL_HANDLE_STMT, stmt, "describing a result column", secret);
    if (sqlType != c.sqlType || size != c.size) return false;
    // Only a whole number's sign is read from the description (its kind, its buffer, its range); for any
    // other type the driver is not asked again, one call less per column of every read.
    if (!signMatters(sqlType)) continue;
    SQLLEN isUnsigned = SQL_FALSE;
    SQLColAttributeW(stmt, static_cast<SQLUSMALLINT>(i), SQL_DESC_UNSIGNED, nullptr, 0, nullptr, &isUnsigned);
    if ((isUnsigned == SQL_TRUE) != c.isUnsigned) return false;
  }
  return true;
}

std::vector<ColumnInfo> describeColumns(SQLHSTMT stmt, std::string_view secret, BaseNames baseNames) {
  std::vector<ColumnInfo> columns = describeTypes(stmt, resultColumnCount(stmt, secret), secret);
  describeNames(stmt, columns, secret);
  if (baseNames == BaseNames::Read) describeBaseNames(stmt, columns);
  return columns;
}

Value readColumn(SQLHSTMT stmt, SQLUSMALLINT number, const ColumnInfo& column, std::string_view secret,
                 TextForm form) {
  SQLLEN indicator = 0;
  switch (column.kind) {
    case ColumnKind::Double: {
      double v = 0;
      check(SQLGetData(stmt, number, SQL_C_DOUBLE, &v, 0, &indicator), SQL_HANDLE_STMT, stmt,
            "reading a column", secret);
      return indicator == SQL_NULL_DATA ? Value::null() : Value(v);
    }
    case ColumnKind::Long: {
      SQLINTEGER v = 0;
      check(SQLGetData(stmt, number, SQL_C_SLONG, &v, 0, &indicator), SQL_HANDLE_STMT, stmt,
            "reading a column", secret);
      return indicator == SQL_NULL_DATA ? Value::null() : Value(static_cast<std::int32_t>(v));
    }
    case ColumnKind::Binary: {
      bool isNull = false;
      std::string bytes = readPieces<char>(stmt, number, SQL_C_BINARY, isNull, secret);
      return isNull ? Value::null() : Value(std::move(bytes));
    }
    case ColumnKind::Date:
    case ColumnKind::Text: {
      bool isNull = false;
      std::string utf8;
      if (form == TextForm::Utf8) {
        utf8 = readPieces<char>(stmt, number, SQL_C_CHAR, isNull, secret);
      } else {
        utf8 = toUtf8(readPieces<char16_t>(stmt, number, SQL_C_WCHAR, isNull, secret));
      }
      if (isNull) return Value::null();
      if (column.kind == ColumnKind::Date) return Value(engine::parseTemporal(utf8));
      return Value(std::move(utf8));
    }
  }
  return Value::null();
}

}  // namespace tovrand::odbc
