#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/Recordset.h"

namespace tovrand {

// Read form: Source and ActiveConnection set, then Open with every argument at its default, which
// gives the provider's forward-only, read-only recordset.
void openRead(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection);

// Insert form: CursorType adOpenKeyset and LockType adLockOptimistic set on the recordset, then Open
// of the `select * from` text with cursor and lock -1 (keep the properties) and adCmdText. The
// caller goes on with AddNew, the assignments, Update and Close.
void openInsert(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection);

// Statement form: Open of the text with explicit cursor, lock and options.
void openStatement(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection,
                   int cursorType, int lockType, int options);

// No rows: both BOF and EOF.
inline bool noRows(Recordset& rs) {
  return rs.BOF() && rs.EOF_();
}

// A column read through its NULL default: IIf(IsNull(value), fallback, value). The caller converts
// the result to the property's type (by assigning it to the property).
Value fieldOr(Recordset& rs, std::string_view name, const Value& fallback);

}  // namespace tovrand
