#include "mariadb/MariaDbDbConnection.h"

#include "vb/VbError.h"

namespace tovrand {

std::shared_ptr<Connection> MariaDbDbConnection::Connection() {
  if (!connection_) {
    throw VbError(vberr::kObjectNotSet,
                  "Object variable or With block variable not set (the database connection is not open)");
  }
  return connection_;
}

void MariaDbDbConnection::OpenConnection() {
  if (!connection_) connection_ = MariaDbConnection::acquire(settings_);
}

void MariaDbDbConnection::CloseConnection() {
  connection_.reset();
}

}  // namespace tovrand
