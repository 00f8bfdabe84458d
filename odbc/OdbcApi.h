#pragma once

// The engine's private view of the ODBC API: handle ownership, wide-string conversion at the edge and
// driver diagnostics turned into VbErrors. Only the engine's .cpp files include this header, so that
// nothing else in the project sees an ODBC or Windows header.

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include <vector>

#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the engine needs a 16-bit SQLWCHAR");

// UTF-8 text as the NUL-terminated UTF-16 buffer the ...W functions take.
class WideText {
 public:
  explicit WideText(std::string_view utf8);
  SQLWCHAR* get() { return reinterpret_cast<SQLWCHAR*>(text_.data()); }
  SQLINTEGER length() const { return static_cast<SQLINTEGER>(text_.size()); }

 private:
  std::u16string text_;
};

std::string fromWide(const SQLWCHAR* text, std::size_t length);
std::string fromWide(const SQLWCHAR* text);  // NUL-terminated

// One ODBC handle, freed with SQLFreeHandle when it goes.
class Handle {
 public:
  Handle() = default;
  Handle(SQLSMALLINT type, SQLHANDLE handle) : type_(type), handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle(Handle&& other) noexcept
      : type_(other.type_), handle_(std::exchange(other.handle_, static_cast<SQLHANDLE>(SQL_NULL_HANDLE))) {}
  Handle& operator=(Handle&& other) noexcept {
    if (this != &other) {
      reset();
      type_ = other.type_;
      handle_ = std::exchange(other.handle_, static_cast<SQLHANDLE>(SQL_NULL_HANDLE));
    }
    return *this;
  }
  ~Handle() { reset(); }

  SQLHANDLE get() const { return handle_; }
  SQLSMALLINT type() const { return type_; }
  explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }
  void reset();

 private:
  SQLSMALLINT type_ = 0;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// The first diagnostic record of a handle.
struct Diagnostic {
  std::string sqlState;
  SQLINTEGER nativeError = 0;
  std::string message;  // with the driver's "[vendor][component]" prefixes removed
};
Diagnostic diagnosticOf(SQLSMALLINT handleType, SQLHANDLE handle);

// The message without its leading "[...]" groups: the server's own text.
std::string stripDriverPrefixes(std::string_view message);

// A driver diagnostic as the VbError the component sees: data too long (native error 1406, SQLSTATE
// 22001) as ADO's multiple-step error, anything else as a provider error with the server's message.
// `secret` (the password) is blanked out of the text wherever it would appear.
VbError toVbError(const Diagnostic& diagnostic, std::string_view context, std::string_view secret);

// The session is gone: killed, timed out, the server shut down or out of reach. Nothing more can run
// on that connection; its owner opens a new one before the next statement (never re-sending the one
// that failed, which may have run). Raised by check() in place of a plain VbError, with the same
// number and text.
class ConnectionLost : public VbError {
 public:
  explicit ConnectionLost(VbError error) : VbError(std::move(error)) {}
};
bool isConnectionLost(const Diagnostic& diagnostic);

// Raises the handle's diagnostic when `rc` is a failure; returns otherwise.
void check(SQLRETURN rc, SQLSMALLINT handleType, SQLHANDLE handle, std::string_view context,
           std::string_view secret = {});

// How the engine reads a column: DOUBLE/FLOAT/DECIMAL/BIGINT (and unsigned INT) as Double,
// INT/MEDIUMINT/SMALLINT/TINYINT/BIT as Long, DATE/DATETIME/TIMESTAMP/TIME as Date, the rest as String.
enum class ColumnKind { Double, Long, Date, Text, Binary };

struct ColumnInfo {
  std::string name;                            // the label the row is addressed by
  std::string catalog, baseTable, baseColumn;  // empty for computed columns
  SQLSMALLINT sqlType = 0;
  SQLULEN size = 0;  // for text: the defined length in characters
  bool isUnsigned = false;
  ColumnKind kind = ColumnKind::Text;
};

// The result columns of a prepared or executed statement: how many, then each column's type, size and
// signedness (cheap: no text crosses the driver), its label, and the table and column it comes from.
// Labels and base names are asked for separately because the driver converts every text it hands
// out through a new character-set converter, which costs more than the rest of a small read.
SQLSMALLINT resultColumnCount(SQLHSTMT stmt, std::string_view secret);
std::vector<ColumnInfo> describeTypes(SQLHSTMT stmt, SQLSMALLINT count, std::string_view secret);
void describeNames(SQLHSTMT stmt, std::vector<ColumnInfo>& columns, std::string_view secret);
void describeBaseNames(SQLHSTMT stmt, std::vector<ColumnInfo>& columns);
// Whether the statement's result has `count` columns of the types, sizes and signedness `columns`
// describe (labels aside), asking the driver nothing that costs a text conversion.
bool describesAs(SQLHSTMT stmt, SQLSMALLINT count, const std::vector<ColumnInfo>& columns,
                 std::string_view secret);
// Everything above at once.
enum class BaseNames { Read, Skip };
std::vector<ColumnInfo> describeColumns(SQLHSTMT stmt, std::string_view secret, BaseNames baseNames);

// How text crosses the driver: as UTF-16 (the wide types every driver offers), or as the session's own
// UTF-8 bytes where the driver is known to hand them over unchanged, which spares a conversion of every
// value in each direction.
enum class TextForm { Wide, Utf8 };

// The value of one column of the fetched row. Temporal columns are fetched as text, because the driver
// hands the zero datetime 0000-00-00 00:00:00 to SQL_C_TYPE_TIMESTAMP as NULL.
Value readColumn(SQLHSTMT stmt, SQLUSMALLINT number, const ColumnInfo& column, std::string_view secret,
                 TextForm form = TextForm::Wide);

}  // namespace tovrand::odbc
