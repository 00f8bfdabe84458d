#pragma once

#include <memory>

#include "frame/Recordset.h"

namespace tovrand {

using ConnectionPtr = std::shared_ptr<Connection>;

// Velmora's clsDbConnection: the holder of the database connection each object uses.
class DbConnection {
 public:
  virtual ~DbConnection() = default;
  // The open connection; raises when OpenConnection has not succeeded.
  virtual ConnectionPtr Connection() = 0;
  // Raise a VbError when the connection cannot be opened.
  virtual void OpenConnection() = 0;
  virtual void CloseConnection() = 0;
};

}  // namespace tovrand
