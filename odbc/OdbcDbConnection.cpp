#include "odbc/OdbcDbConnection.h"

#include "vb/VbError.h"

namespace tovrand {

std::shared_ptr<Connection> OdbcDbConnection::Connection() {
  if (!connection_) {
    throw VbError(vberr::kObjectNotSet,
                  "Object variable or With block variable not set (the database connection is not open)");
  }
  return connection_;
}

void OdbcDbConnection::OpenConnection() {
  if (!connection_) connection_ = OdbcConnection::acquire(settings_);
}

void OdbcDbConnection::CloseConnection() {
  connection_.reset();
}

}  // namespace tovrand
