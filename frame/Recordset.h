#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/OwnStatement.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand {

// ADO's enumerations, with the values the component passes.
enum CursorTypeEnum : int {
  adOpenUnspecified = -1,
  adOpenForwardOnly = 0,
  adOpenKeyset = 1,
  adOpenDynamic = 2,
  adOpenStatic = 3,
};
enum LockTypeEnum : int {
  adLockUnspecified = -1,
  adLockReadOnly = 1,
  adLockPessimistic = 2,
  adLockOptimistic = 3,
  adLockBatchOptimistic = 4,
};
enum CommandTypeEnum : int {
  adCmdUnspecified = -1,
  adCmdText = 1,
  adCmdUnknown = 8,
};

// The open database connection that recordsets run on (ADO's Connection object).
class Connection {
 public:
  virtual ~Connection() = default;
  // Whether the site asked that production numbers be allocated one client at a time
  // (clsDataPOrderChk.AddRecord then allocates inside one transaction that first writes a lock row).
  // A setting of the connection, off unless the connection's settings turn it on.
  virtual bool serializesAllocation() const { return false; }
  // Held by a member around a transaction of its own on this connection: the holders that share
  // the connection's session (other objects, other threads) then run such transactions one after
  // another, so that none starts or ends another's. Not reentrant.
  virtual void beginTransactionHold() {}
  virtual void endTransactionHold() {}
  // Whether the session has been found lost (killed, timed out, the server gone); the server has
  // then rolled back whatever transaction was open on it.
  virtual bool isLost() const { return false; }
  // A member whose routines handle their own errors and let it go on holds its call on the
  // connection (DataObject::CallScope): a session lost during the call fails every later statement
  // of it as well, so that what the member does after a routine met the loss never reaches the
  // database; the next call opens a new session.
  virtual void beginCall() {}
  virtual void endCall() {}
  // Runs one statement of the caller's own on this connection's session, outside the statement
  // trace, and gives back its rows. A session found lost is replaced first, as for a member's
  // statement, so that a caller preparing data is not stranded by a session the server ended.
  // Raises a VbError with the server's message when the statement fails.
  virtual OwnStatementResult runOwnStatement(std::string_view sql) {
    (void)sql;
    throw VbError(vberr::kProviderError, "this connection cannot run statements of the caller's own");
  }
};

class Recordset;

// Fields(name): reads and assigns the named column of the current row (or of the pending new row).
class FieldRef {
 public:
  FieldRef(Recordset& rs, std::string_view name) : rs_(rs), name_(name) {}
  Value value() const;
  FieldRef& operator=(const Value& v);

 private:
  Recordset& rs_;
  std::string_view name_;
};

// The ADO Recordset shape the component uses. Every failure raises a VbError with ADO's numbers:
// 3704 on a closed recordset, 3021 with no current row, 3265 for an unknown field name, 3251 when
// assigning on a read-only recordset, 0x80040E21 when a text does not fit its column.
class Recordset {
 public:
  virtual ~Recordset() = default;

  std::string Source;
  std::shared_ptr<Connection> ActiveConnection;
  int CursorType = adOpenForwardOnly;
  int LockType = adLockReadOnly;

  // Open with every argument left at its default: Source, ActiveConnection, -1, -1, -1.
  void Open() { Open(Source, ActiveConnection, adOpenUnspecified, adLockUnspecified, adCmdUnspecified); }
  // Cursor and lock -1 mean "use the property". A statement without a result set leaves the
  // recordset closed.
  virtual void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
                    int lockType, int options) = 0;

  virtual bool IsOpen() const = 0;
  virtual bool BOF() = 0;
  virtual bool EOF_() = 0;  // EOF is a macro of <cstdio>
  FieldRef Fields(std::string_view name) { return FieldRef(*this, name); }
  virtual Value getField(std::string_view name) = 0;
  virtual void setField(std::string_view name, const Value& value) = 0;
  virtual void MoveNext() = 0;
  virtual void AddNew() = 0;
  virtual void Update() = 0;
  virtual void Close() = 0;
};

inline Value FieldRef::value() const {
  return rs_.getField(name_);
}
inline FieldRef& FieldRef::operator=(const Value& v) {
  rs_.setField(name_, v);
  return *this;
}

}  // namespace tovrand
