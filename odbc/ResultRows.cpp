#include "odbc/ResultRows.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "engine/TemporalText.h"

namespace tovrand::odbc {

namespace {

// Longest text or binary value bound to a buffer; longer columns are read with SQLGetData.
constexpr SQLULEN kMaxBoundCharacters = 4096;
// A temporal value as text: "YYYY-MM-DD HH:MM:SS.ffffff" and a little room.
constexpr std::size_t kTemporalBytes = 40;
// A DECIMAL as text: at most 65 digits, a sign and a point.
constexpr std::size_t kNumberBytes = 72;

std::size_t aligned(std::size_t n) {
  return (n + alignof(std::max_align_t) - 1) & ~(alignof(std::max_align_t) - 1);
}

SQLLEN indicatorAt(const char* row, std::size_t offset) {
  SQLLEN v;
  std::memcpy(&v, row + offset, sizeof v);
  return v;
}

double numberAt(SQLSMALLINT cType, const char* data, std::size_t length) {
  switch (cType) {
    case SQL_C_SBIGINT: {
      std::int64_t v;
      std::memcpy(&v, data, sizeof v);
      return static_cast<double>(v);
    }
    case SQL_C_UBIGINT: {
      std::uint64_t v;
      std::memcpy(&v, data, sizeof v);
      return static_cast<double>(v);
    }
    case SQL_C_CHAR: {
      // The text of a DECIMAL, read the way the driver reads it into a double (whatever the locale).
      double v = 0;
      std::from_chars(data, data + length, v);
      return v;
    }
    default: {
      double v;
      std::memcpy(&v, data, sizeof v);
      return v;
    }
  }
}

}  // namespace

void ResultRows::start(SQLHSTMT stmt, std::shared_ptr<const std::vector<ColumnInfo>> columns, TextForm form,
                       std::string_view secret) {
  stmt_ = stmt;
  columns_ = std::move(columns);
  form_ = form;
  secret_ = secret;
  fetched_ = position_ = 0;
  row_.clear();
  bound_ = form == TextForm::Utf8 && bindAll();
}

bool ResultRows::bindAll() {
  const std::vector<ColumnInfo>& columns = *columns_;
  slots_.assign(columns.size(), Slot{});
  std::size_t offset = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ColumnInfo& c = columns[i];
    Slot& s = slots_[i];
    switch (c.kind) {
      case ColumnKind::Double:
        // The driver refuses a BIGINT beyond 2^53 in a bound double (SQLGetData rounds it), so whole
        // numbers come as 64-bit integers and decimals as their text, each made a double here.
        if (c.sqlType == SQL_BIGINT || c.sqlType == SQL_INTEGER) {
          s.cType = c.isUnsigned ? SQL_C_UBIGINT : SQL_C_SBIGINT;
          s.bytes = sizeof(std::int64_t);
        } else if (c.sqlType == SQL_DECIMAL || c.sqlType == SQL_NUMERIC) {
          s.cType = SQL_C_CHAR;
          s.bytes = kNumberBytes;
        } else {
          s.cType = SQL_C_DOUBLE;
          s.bytes = sizeof(double);
        }
        break;
      case ColumnKind::Long:
        s.cType = SQL_C_SLONG;
        s.bytes = sizeof(SQLINTEGER);
        break;
      case ColumnKind::Date:
        s.cType = SQL_C_CHAR;
        s.bytes = kTemporalBytes;
        break;
      case ColumnKind::Text:
        // A character is at most four bytes of UTF-8; one more for the terminating NUL.
        if (c.size == 0 || c.size > kMaxBoundCharacters) return false;
        s.cType = SQL_C_CHAR;
        s.bytes = c.size * 4 + 1;
        break;
      case ColumnKind::Binary:
        if (c.size == 0 || c.size > kMaxBoundCharacters) return false;
        s.cType = SQL_C_BINARY;
        s.bytes = c.size;
        break;
    }
    s.offset = offset;
    offset = aligned(offset + s.bytes);
    s.indicator = offset;
    offset = aligned(offset + sizeof(SQLLEN));
  }
  rowBytes_ = offset;
  std::size_t need = rowBytes_ * kBlockRows;
  if (need > blockCapacity_) {
    block_.reset(new char[need]);
    blockCapacity_ = need;
  }
  SQLHSTMT h = stmt_;
  check(SQLSetStmtAttrW(h, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(rowBytes_), 0),
        SQL_HANDLE_STMT, h, "binding the result", secret_);
  check(SQLSetStmtAttrW(h, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kBlockRows), 0),
        SQL_HANDLE_STMT, h, "binding the result", secret_);
  check(SQLSetStmtAttrW(h, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0), SQL_HANDLE_STMT, h, "binding the result",
        secret_);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    const Slot& s = slots_[i];
    check(SQLBindCol(h, static_cast<SQLUSMALLINT>(i + 1), s.cType, block_.get() + s.offset,
                     static_cast<SQLLEN>(s.bytes), reinterpret_cast<SQLLEN*>(block_.get() + s.indicator)),
          SQL_HANDLE_STMT, h, "binding the result", secret_);
  }
  return true;
}

bool ResultRows::fetch() {
  if (!bound_) {
    SQLRETURN rc = SQLFetch(stmt_);
    if (rc == SQL_NO_DATA) return false;
    check(rc, SQL_HANDLE_STMT, stmt_, "fetching a row", secret_);
    readRow();
    return true;
  }
  if (position_ + 1 < fetched_) {
    ++position_;
    return true;
  }
  return fetchBlock();
}

bool ResultRows::fetchBlock() {
  fetched_ = 0;
  position_ = 0;
  SQLRETURN rc = SQLFetch(stmt_);
  if (rc == SQL_NO_DATA) return false;
  check(rc, SQL_HANDLE_STMT, stmt_, "fetching a row", secret_);
  if (fetched_ == 0) return false;
  if (rc == SQL_SUCCESS_WITH_INFO) {
    // A warning may be a value cut short: the buffers are sized from the described lengths, so that
    // would be a driver describing a column too short. Never hand on half a value.
    for (SQLULEN r = 0; r < fetched_; ++r) {
      const char* rowStart = block_.get() + r * rowBytes_;
      for (std::size_t i = 0; i < slots_.size(); ++i) {
        const Slot& s = slots_[i];
        if (s.cType != SQL_C_CHAR && s.cType != SQL_C_BINARY) continue;
        SQLLEN length = indicatorAt(rowStart, s.indicator);
        std::size_t room = s.cType == SQL_C_CHAR ? s.bytes - 1 : s.bytes;
        if (length == SQL_NO_TOTAL || (length > 0 && static_cast<std::size_t>(length) > room)) tooLong(i);
      }
    }
  }
  return true;
}

void ResultRows::readRow() {
  const std::vector<ColumnInfo>& columns = *columns_;
  row_.clear();
  row_.reserve(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    row_.push_back(readColumn(stmt_, static_cast<SQLUSMALLINT>(i + 1), columns[i], secret_, form_));
  }
}

Value ResultRows::value(std::size_t column) const {
  if (!bound_) return row_[column];
  const Slot& s = slots_[column];
  const char* rowStart = block_.get() + position_ * rowBytes_;
  SQLLEN length = indicatorAt(rowStart, s.indicator);
  if (length == SQL_NULL_DATA) return Value::null();
  const char* data = rowStart + s.offset;
  switch ((*columns_)[column].kind) {
    case ColumnKind::Double:
      return Value(numberAt(s.cType, data, static_cast<std::size_t>(length)));
    case ColumnKind::Long: {
      SQLINTEGER v;
      std::memcpy(&v, data, sizeof v);
      return Value(static_cast<std::int32_t>(v));
    }
    case ColumnKind::Date:
      return Value(engine::parseTemporal(std::string_view(data, static_cast<std::size_t>(length))));
    case ColumnKind::Text:
    case ColumnKind::Binary:
      return Value(std::string(data, static_cast<std::size_t>(length)));
  }
  return Value::null();
}

void ResultRows::reset() {
  stmt_ = SQL_NULL_HSTMT;
  columns_.reset();
  bound_ = false;
  fetched_ = position_ = 0;
  row_.clear();
}

void ResultRows::tooLong(std::size_t column) const {
  throw VbError(vberr::kProviderError, "the value of the column " + (*columns_)[column].name +
                                           " is longer than the driver described it");
}

}  // namespace tovrand::odbc
