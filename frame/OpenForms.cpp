#include "frame/OpenForms.h"

namespace tovrand {

void openRead(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection) {
  rs.Source = sql;
  rs.ActiveConnection = connection;
  rs.Open();
}

void openInsert(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection) {
  rs.CursorType = adOpenKeyset;
  rs.LockType = adLockOptimistic;
  rs.Open(sql, connection, adOpenUnspecified, adLockUnspecified, adCmdText);
}

void openStatement(Recordset& rs, const std::string& sql, const std::shared_ptr<Connection>& connection,
                   int cursorType, int lockType, int options) {
  rs.Open(sql, connection, cursorType, lockType, options);
}

Value fieldOr(Recordset& rs, std::string_view name, const Value& fallback) {
  // The field's value is handed on, not copied: text fields are read once per row in every list.
  Value v = rs.Fields(name).value();
  if (v.isNull()) return fallback;
  return v;
}

}  // namespace tovrand
