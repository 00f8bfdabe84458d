#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "entities/Collection.h"
#include "entities/Entity.h"
#include "frame/Host.h"
#include "frame/OpenForms.h"

namespace tovrand {

// How a handler ends a method: the result it stores (none: the result stays as the method left it).
// Every handler sets m_Recordset to nothing.
struct HandlerOptions {
  std::optional<std::int16_t> result = std::nullopt;
};

// What every object of the four classes shares: its two members, m_DbConnection and m_Recordset,
// each created on first use, the connection opened at creation and closed at destruction, and the
// three handler forms a method's catch block calls.
class DataObject {
 public:
  DataObject(const DataObject&) = delete;
  DataObject& operator=(const DataObject&) = delete;

 protected:
  // Creation: m_DbConnection.OpenConnection; its failure propagates and no object exists.
  explicit DataObject(std::shared_ptr<Host> host);
  // Destruction: m_DbConnection.CloseConnection, through the same create-on-first-use access.
  ~DataObject();

  // Held for the whole run of a member whose routines handle their own errors and let it go on: a
  // session lost in one routine then fails the rest of the member's statements too, instead of the
  // member writing the rest of its work on a new session over what the lost one left half done. The
  // member still ends in its handler; the next call opens a new session.
  class CallScope {
   public:
    explicit CallScope(ConnectionPtr connection) : connection_(std::move(connection)) {
      connection_->beginCall();
    }
    ~CallScope() { connection_->endCall(); }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

   private:
    ConnectionPtr connection_;
  };

  // m_DbConnection, created on first use.
  DbConnection& dbConnection();
  // m_DbConnection.Connection: what every method passes as the active connection.
  ConnectionPtr connection() { return dbConnection().Connection(); }
  // m_Recordset, created on first use.
  Recordset& recordset();
  // Set m_Recordset = New ADODB.Recordset
  void renewRecordset() { m_Recordset = host_->newRecordset(); }
  // Set m_Recordset = Nothing
  void dropRecordset() { m_Recordset.reset(); }
  // A recordset local to a method (New ADODB.Recordset).
  std::shared_ptr<Recordset> newRecordset() { return host_->newRecordset(); }
  // A new entity of the class, for the lists (New clsEntXxx).
  template <class T>
  T newEntity() {
    return T(host_->newEntity(T::Class()));
  }

  // The list loop: per row of `rs` from the current one to the end, a new entity of type T that
  // readRow fills, appended to the caller's collection (never cleared first), then MoveNext. 1 when a
  // row was added, else 0. An error propagates with the rows before it already in the collection.
  template <class T, class ReadRow>
  std::int16_t appendRows(Recordset& rs, Collection& col, ReadRow&& readRow) {
    std::int16_t added = 0;
    while (!rs.EOF_()) {
      T entity = newEntity<T>();
      readRow(rs, entity);
      col.Add(entity);
      added = 1;
      rs.MoveNext();
    }
    return added;
  }
  // The same on m_Recordset opened with `sql` in the read form, closed after the last row.
  template <class T, class ReadRow>
  std::int16_t appendRows(const std::string& sql, Collection& col, ReadRow&& readRow) {
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    const std::int16_t added = appendRows<T>(rs, col, readRow);
    rs.Close();
    return added;
  }

  // The handler forms. Call them from `catch (...)`: they report the exception being handled.
  // Write: the length message for 0x80040E21, else the description; style 64, "Quenta软件".
  void writeHandler(std::int16_t& result, HandlerOptions options = {});
  // Query: the description, style 64, "Quenta软件".
  void queryHandler(std::int16_t& result, HandlerOptions options = {});
  // Critical query: the description, style 16, with the method's title.
  void criticalHandler(std::int16_t& result, const char* title, HandlerOptions options = {});

  MessageSink& messages() { return host_->messages(); }

 private:
  std::shared_ptr<Host> host_;
  std::shared_ptr<DbConnection> m_DbConnection;
  std::shared_ptr<Recordset> m_Recordset;
};

}  // namespace tovrand
