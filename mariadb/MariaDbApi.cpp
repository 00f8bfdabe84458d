#include "mariadb/MariaDbApi.h"

#include <mysqld_error.h>

#include <charconv>
#include <cstdint>

#include "engine/TemporalText.h"
#include "frame/ServerError.h"

namespace tovrand::mariadb {

namespace {

std::string blankOut(std::string text, std::string_view secret) {
  if (secret.empty()) return text;
  for (std::size_t at = text.find(secret); at != std::string::npos; at = text.find(secret, at + 3)) {
    text.replace(at, secret.size(), "***");
  }
  return text;
}

[[noreturn]] void raise(unsigned int number, std::string_view sqlState, std::string_view message,
                        std::string_view context, std::string_view secret) {
  VbError e = errorOf(number, sqlState, message, context, secret);
  if (isSessionLost(number, sqlState)) throw SessionLost(std::move(e));
  throw ServerError(std::move(e), number);
}

bool isBinaryCharset(unsigned int charset) {
  return charset == 63;
}

// Characters per byte of the column's character set, as the ODBC driver divides a text column's length.
std::size_t charactersIn(unsigned long bytes, unsigned int charset) {
  const MARIADB_CHARSET_INFO* info = mariadb_get_charset_by_nr(charset);
  unsigned int perCharacter = info != nullptr && info->char_maxlen > 0 ? info->char_maxlen : 1;
  return bytes / perCharacter;
}

void classify(ColumnInfo& c) {
  c.width = IntegerWidth::Full;
  switch (c.type) {
    case MYSQL_TYPE_DOUBLE:
    case MYSQL_TYPE_FLOAT:
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
    case MYSQL_TYPE_LONGLONG:
      c.kind = ColumnKind::Double;
      return;
    case MYSQL_TYPE_LONG:
    case MYSQL_TYPE_INT24:
      // The driver describes both as INTEGER: unsigned ones may exceed a Long.
      c.kind = c.isUnsigned ? ColumnKind::Double : ColumnKind::Long;
      return;
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_YEAR:
      c.kind = ColumnKind::Long;
      c.width = IntegerWidth::Small;
      return;
    case MYSQL_TYPE_TINY:
      c.kind = ColumnKind::Long;
      c.width = IntegerWidth::Tiny;
      return;
    case MYSQL_TYPE_BIT:
      // BIT(1) is a truth value to the driver; wider ones are bytes.
      if (c.length <= 1) {
        c.kind = ColumnKind::Long;
        c.width = IntegerWidth::Bit;
      } else {
        c.kind = ColumnKind::Binary;
        c.size = (c.length + 7) / 8;
      }
      return;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
    case MYSQL_TYPE_TIME:
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP:
    case MYSQL_TYPE_TIME2:
    case MYSQL_TYPE_DATETIME2:
    case MYSQL_TYPE_TIMESTAMP2:
      c.kind = ColumnKind::Date;
      return;
    case MYSQL_TYPE_GEOMETRY:
      c.kind = ColumnKind::Binary;
      c.size = c.length;
      return;
    case MYSQL_TYPE_TINY_BLOB:
    case MYSQL_TYPE_MEDIUM_BLOB:
    case MYSQL_TYPE_LONG_BLOB:
    case MYSQL_TYPE_BLOB:
    case MYSQL_TYPE_STRING:
    case MYSQL_TYPE_VAR_STRING:
    case MYSQL_TYPE_VARCHAR:
      if (isBinaryCharset(c.charset)) {
        c.kind = ColumnKind::Binary;
        c.size = c.length;
      } else {
        c.kind = ColumnKind::Text;
        c.size = charactersIn(c.length, c.charset);
      }
      return;
    default:
      c.kind = ColumnKind::Text;
      c.size = charactersIn(c.length, c.charset);
      return;
  }
}

// What describeFields takes as a column's table, column and catalog: all empty for a computed column.
struct BaseNames {
  std::string_view catalog, table, column;
};

BaseNames baseNamesOf(const MYSQL_FIELD& f) {
  if (f.org_table == nullptr || f.org_table_length == 0 || f.org_name == nullptr || f.org_name_length == 0) {
    return {};
  }
  return {f.db != nullptr ? std::string_view(f.db, f.db_length) : std::string_view(),
          std::string_view(f.org_table, f.org_table_length), std::string_view(f.org_name, f.org_name_length)};
}

std::string_view labelOf(const MYSQL_FIELD& f) {
  return f.name != nullptr ? std::string_view(f.name, f.name_length) : std::string_view();
}

// FNV-1a, 64 bits.
constexpr std::uint64_t kHashStart = 14695981039346656037ULL;

void mix(std::uint64_t& hash, std::string_view bytes) {
  for (unsigned char c : bytes) {
    hash ^= c;
    hash *= 1099511628211ULL;
  }
  // The length closes each part, so that parts cannot slide into one another.
  hash ^= bytes.size();
  hash *= 1099511628211ULL;
}

void mix(std::uint64_t& hash, std::uint64_t number) {
  hash ^= number;
  hash *= 1099511628211ULL;
}

}  // namespace

bool isSessionLost(unsigned int number, std::string_view sqlState) {
  switch (number) {
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
      return sqlState.rfind("08", 0) == 0;
  }
}

VbError errorOf(unsigned int number, std::string_view sqlState, std::string_view message,
                std::string_view context, std::string_view secret) {
  if (number == 1406 || sqlState == "22001") return VbError::of(vberr::kMultipleStep);
  std::string text(message);
  if (text.empty()) text = std::string(context) + " failed without an error text from the client library";
  return VbError(vberr::kProviderError, blankOut(std::move(text), secret));
}

void raiseSessionError(MYSQL* session, std::string_view context, std::string_view secret) {
  raise(mysql_errno(session), mysql_sqlstate(session), mysql_error(session), context, secret);
}

void raiseStatementError(MYSQL_STMT* stmt, std::string_view context, std::string_view secret) {
  raise(mysql_stmt_errno(stmt), mysql_stmt_sqlstate(stmt), mysql_stmt_error(stmt), context, secret);
}

Columns describeFields(const MYSQL_FIELD* fields, unsigned int count) {
  Columns columns(count);
  for (unsigned int i = 0; i < count; ++i) {
    const MYSQL_FIELD& f = fields[i];
    ColumnInfo& c = columns[i];
    c.name.assign(f.name, f.name_length);
    if (f.org_table != nullptr && f.org_table_length > 0 && f.org_name != nullptr && f.org_name_length > 0) {
      c.baseTable.assign(f.org_table, f.org_table_length);
      c.baseColumn.assign(f.org_name, f.org_name_length);
      if (f.db != nullptr) c.catalog.assign(f.db, f.db_length);
    }
    c.type = f.type;
    c.length = f.length;
    c.flags = f.flags;
    c.charset = f.charsetnr;
    c.isUnsigned = (f.flags & UNSIGNED_FLAG) != 0;
    classify(c);
  }
  return columns;
}

bool describesAs(const MYSQL_FIELD* fields, unsigned int count, const Columns& columns) {
  if (count != columns.size()) return false;
  for (unsigned int i = 0; i < count; ++i) {
    const MYSQL_FIELD& f = fields[i];
    const ColumnInfo& c = columns[i];
    if (f.type != c.type || f.length != c.length || f.charsetnr != c.charset ||
        ((f.flags & UNSIGNED_FLAG) != 0) != c.isUnsigned) {
      return false;
    }
  }
  return true;
}

std::uint64_t signatureOf(const MYSQL_FIELD* fields, unsigned int count) {
  std::uint64_t hash = kHashStart;
  mix(hash, count);
  for (unsigned int i = 0; i < count; ++i) {
    const MYSQL_FIELD& f = fields[i];
    BaseNames base = baseNamesOf(f);
    mix(hash, labelOf(f));
    mix(hash, base.catalog);
    mix(hash, base.table);
    mix(hash, base.column);
    mix(hash, static_cast<std::uint64_t>(f.type));
    mix(hash, static_cast<std::uint64_t>(f.length));
    mix(hash, static_cast<std::uint64_t>(f.flags));
    mix(hash, static_cast<std::uint64_t>(f.charsetnr));
  }
  return hash;
}

bool describedExactlyAs(const MYSQL_FIELD* fields, unsigned int count, const Columns& columns) {
  if (count != columns.size()) return false;
  for (unsigned int i = 0; i < count; ++i) {
    const MYSQL_FIELD& f = fields[i];
    const ColumnInfo& c = columns[i];
    if (f.type != c.type || f.length != c.length || f.flags != c.flags || f.charsetnr != c.charset)
      return false;
    BaseNames base = baseNamesOf(f);
    if (labelOf(f) != c.name || base.catalog != c.catalog || base.table != c.baseTable ||
        base.column != c.baseColumn) {
      return false;
    }
  }
  return true;
}

Value valueOf(const ColumnInfo& column, const char* data, unsigned long length) {
  if (data == nullptr) return Value::null();
  switch (column.kind) {
    case ColumnKind::Double: {
      if (column.type == MYSQL_TYPE_FLOAT) {
        // The ODBC driver reads a FLOAT in the binary protocol: the single-precision value, widened.
        float v = 0;
        std::from_chars(data, data + length, v);
        return Value(static_cast<double>(v));
      }
      double v = 0;
      std::from_chars(data, data + length, v);
      return Value(v);
    }
    case ColumnKind::Long: {
      if (column.type == MYSQL_TYPE_BIT) {
        std::int32_t bits = 0;
        for (unsigned long i = 0; i < length; ++i) bits = (bits << 8) | static_cast<unsigned char>(data[i]);
        return Value(bits);
      }
      std::int64_t v = 0;
      std::from_chars(data, data + length, v);
      return Value(static_cast<std::int32_t>(v));
    }
    case ColumnKind::Date:
      return Value(engine::parseTemporal(std::string_view(data, length)));
    case ColumnKind::Text:
    case ColumnKind::Binary:
      return Value(std::string(data, length));
  }
  return Value::null();
}

}  // namespace tovrand::mariadb
