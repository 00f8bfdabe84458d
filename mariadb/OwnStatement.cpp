#include "mariadb/OwnStatement.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "mariadb/MariaDbApi.h"
#include "vb/Text.h"

namespace tovrand::mariadb {

namespace {

// The server's own words, as the ODBC engine gives them for a caller's statement: no multiple-step
// error in place of a value too long, nothing blanked out of a text the caller's own SQL caused.
[[noreturn]] void fail(MYSQL* session) {
  const unsigned int number = mysql_errno(session);
  const char* state = mysql_sqlstate(session);
  const char* message = mysql_error(session);
  VbError error(vberr::kProviderError, message != nullptr && *message != '\0'
                                           ? std::string(message)
                                           : "the fixture statement failed");
  if (isSessionLost(number, state != nullptr ? state : "")) throw SessionLost(std::move(error));
  throw error;
}

enum class CellForm { Integer, Unsigned, Bit, Double, Single, Date, Text, Bytes };

// The form the ODBC driver's description of the column leads that engine to read it in.
CellForm formOf(const MYSQL_FIELD& field) {
  switch (field.type) {
    case MYSQL_TYPE_TINY:
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_LONG:
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_YEAR:
      return CellForm::Integer;
    case MYSQL_TYPE_LONGLONG:
      return (field.flags & UNSIGNED_FLAG) != 0 ? CellForm::Unsigned : CellForm::Integer;
    case MYSQL_TYPE_BIT:
      // BIT(1) is the driver's SQL_BIT; wider ones are binary.
      return field.length <= 1 ? CellForm::Bit : CellForm::Bytes;
    case MYSQL_TYPE_FLOAT:
      return CellForm::Single;
    case MYSQL_TYPE_DOUBLE:
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
      return CellForm::Double;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_DATETIME2:
    case MYSQL_TYPE_TIMESTAMP:
    case MYSQL_TYPE_TIMESTAMP2:
      return CellForm::Date;
    case MYSQL_TYPE_TINY_BLOB:
    case MYSQL_TYPE_MEDIUM_BLOB:
    case MYSQL_TYPE_LONG_BLOB:
    case MYSQL_TYPE_BLOB:
    case MYSQL_TYPE_STRING:
    case MYSQL_TYPE_VAR_STRING:
    case MYSQL_TYPE_VARCHAR:
      return field.charsetnr == 63 ? CellForm::Bytes : CellForm::Text;
    default:
      // Times keep the server's text: a duration may exceed a day.
      return CellForm::Text;
  }
}

// "YYYY-MM-DD[ HH:MM:SS[.ffffff]]" to the fields a timestamp structure would carry.
std::string dateText(std::string_view text) {
  int parts[6] = {};
  std::size_t at = 0;
  for (int& part : parts) {
    while (at < text.size() && (text[at] < '0' || text[at] > '9')) ++at;
    if (at >= text.size()) break;
    const auto [end, ec] = std::from_chars(text.data() + at, text.data() + text.size(), part);
    (void)ec;
    at = static_cast<std::size_t>(end - text.data());
    // The fraction of a second is not a field of its own.
    if (&part == &parts[5]) break;
  }
  char out[40];
  std::snprintf(out, sizeof out, "%04d-%02d-%02d %02d:%02d:%02d", parts[0], parts[1], parts[2], parts[3],
                parts[4], parts[5]);
  return out;
}

OwnCell cellOf(CellForm form, const char* data, unsigned long length) {
  if (data == nullptr) return std::monostate{};
  const std::string_view text(data, length);
  switch (form) {
    case CellForm::Integer: {
      std::int64_t v = 0;
      std::from_chars(text.data(), text.data() + text.size(), v);
      return v;
    }
    case CellForm::Unsigned: {
      // The driver hands an unsigned BIGINT to a signed 64-bit buffer bit for bit.
      std::uint64_t v = 0;
      std::from_chars(text.data(), text.data() + text.size(), v);
      return static_cast<std::int64_t>(v);
    }
    case CellForm::Bit:
      // The text protocol sends the bit as a byte.
      return static_cast<std::int64_t>(text.empty() ? 0 : static_cast<unsigned char>(text.front()) & 1);
    case CellForm::Single: {
      // The driver reads a FLOAT in single precision and widens it.
      float v = 0;
      std::from_chars(text.data(), text.data() + text.size(), v);
      return static_cast<double>(v);
    }
    case CellForm::Double: {
      double v = 0;
      std::from_chars(text.data(), text.data() + text.size(), v);
      return v;
    }
    case CellForm::Date:
      // The driver reads a zero date as no date at all.
      if (text.starts_with("0000-00-00")) return std::monostate{};
      return dateText(text);
    case CellForm::Text:
      return std::string(text);
    case CellForm::Bytes: {
      // The driver reads bytes as text of the session's character set up to the first zero byte, and
      // refuses bytes that are no such text.
      const std::string_view upToZero = text.substr(0, text.find('\0'));
      std::string out(upToZero);
      if (toUtf8(toUtf16(out)) != out)
        throw VbError(vberr::kProviderError, "Ansi to Unicode conversion error occurred");
      return out;
    }
  }
  return std::monostate{};
}

}  // namespace

OwnStatementResult runOwnStatement(MYSQL* session, std::string_view sql) {
  // The ODBC driver refuses an empty text before the server sees it; so does this engine, in its words.
  if (sql.empty()) throw VbError(vberr::kProviderError, "Invalid string or buffer length");
  if (mysql_real_query(session, sql.data(), sql.size()) != 0) fail(session);
  OwnStatementResult result;
  if (mysql_field_count(session) == 0) return result;
  Result rows(mysql_store_result(session));
  if (!rows) fail(session);

  result.hasResult = true;
  const unsigned int count = mysql_num_fields(rows.get());
  const MYSQL_FIELD* fields = mysql_fetch_fields(rows.get());
  std::vector<CellForm> forms;
  forms.reserve(count);
  for (unsigned int c = 0; c < count; ++c) {
    result.columns.emplace_back(fields[c].name, fields[c].name_length);
    forms.push_back(formOf(fields[c]));
  }
  while (MYSQL_ROW row = mysql_fetch_row(rows.get())) {
    const unsigned long* lengths = mysql_fetch_lengths(rows.get());
    std::vector<OwnCell> cells;
    cells.reserve(count);
    for (unsigned int c = 0; c < count; ++c) cells.push_back(cellOf(forms[c], row[c], lengths[c]));
    result.rows.push_back(std::move(cells));
  }
  return result;
}

}  // namespace tovrand::mariadb
