#pragma once

// The engine's private view of MariaDB Connector/C: what a result column is to the recordset, how a
// value of the text protocol becomes a Value, and client or server errors as VbErrors. Only the
// engine's .cpp files include this header, so that nothing else sees <mysql.h>.

#include <mysql.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::mariadb {

// The session is gone: killed, timed out, the server shut down or out of reach. Its owner opens a new
// session before the next statement and never re-sends the one that failed (it may have run).
class SessionLost : public VbError {
 public:
  explicit SessionLost(VbError error) : VbError(std::move(error)) {}
};

bool isSessionLost(unsigned int number, std::string_view sqlState);

// The last error of the session (or of one of its prepared statements) as the VbError the component
// sees: data too long (1406, SQLSTATE 22001) as ADO's multiple-step error, anything else as a provider
// error with the client's or the server's own text, the password blanked out. A lost session raises
// SessionLost with the same number and text.
[[noreturn]] void raiseSessionError(MYSQL* session, std::string_view context, std::string_view secret);
[[noreturn]] void raiseStatementError(MYSQL_STMT* stmt, std::string_view context, std::string_view secret);
VbError errorOf(unsigned int number, std::string_view sqlState, std::string_view message,
                std::string_view context, std::string_view secret);

// How a column is read: as the ODBC engine reads the same column (DOUBLE/FLOAT/DECIMAL/BIGINT and
// unsigned INT as Double, INT/MEDIUMINT/SMALLINT/TINYINT/YEAR/BIT(1) as Long, DATE/DATETIME/TIMESTAMP/
// TIME as Date, binary strings as Binary, the rest as String).
enum class ColumnKind { Double, Long, Date, Text, Binary };
// The range an assigned whole number must fit.
enum class IntegerWidth { Tiny, Small, Bit, Full };

struct ColumnInfo {
  std::string name;                            // the label the row is addressed by
  std::string catalog, baseTable, baseColumn;  // empty for computed columns
  enum_field_types type = MYSQL_TYPE_NULL;
  unsigned long length = 0;  // as the server describes it: bytes
  unsigned int flags = 0;
  unsigned int charset = 0;
  std::size_t size = 0;  // for text: the defined length in characters
  bool isUnsigned = false;
  ColumnKind kind = ColumnKind::Text;
  IntegerWidth width = IntegerWidth::Full;
};
using Columns = std::vector<ColumnInfo>;

Columns describeFields(const MYSQL_FIELD* fields, unsigned int count);
// Whether the fields describe the columns' types, lengths and signedness (labels aside), so that an
// earlier description can serve this result.
bool describesAs(const MYSQL_FIELD* fields, unsigned int count, const Columns& columns);

// A hash of everything describeFields reads from the fields, so that a result's columns can be found
// again without reading its text.
std::uint64_t signatureOf(const MYSQL_FIELD* fields, unsigned int count);
// Whether describeFields would describe the fields exactly as `columns`.
bool describedExactlyAs(const MYSQL_FIELD* fields, unsigned int count, const Columns& columns);

// The value of one column of a text-protocol row; `data` null is SQL NULL.
Value valueOf(const ColumnInfo& column, const char* data, unsigned long length);

// Owners of the client's objects.
struct ResultCloser {
  void operator()(MYSQL_RES* r) const { mysql_free_result(r); }
};
using Result = std::unique_ptr<MYSQL_RES, ResultCloser>;
struct StatementCloser {
  void operator()(MYSQL_STMT* s) const { mysql_stmt_close(s); }
};
using Statement = std::unique_ptr<MYSQL_STMT, StatementCloser>;

}  // namespace tovrand::mariadb
