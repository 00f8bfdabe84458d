#pragma once

#include <memory>

#include "entities/Entity.h"
#include "frame/DbConnection.h"
#include "frame/MessageSink.h"
#include "frame/Recordset.h"

namespace tovrand {

// What the hosting side supplies to the four classes: the objects VB would create with New
// (Velmora's clsDbConnection, ADO's Recordset, Velmora's entities) and the message box. The native
// host serves them from the ODBC engine and in-process entities; the COM shell from COM objects.
class Host {
 public:
  virtual ~Host() = default;
  virtual std::shared_ptr<DbConnection> newDbConnection() = 0;
  virtual std::shared_ptr<Recordset> newRecordset() = 0;
  virtual Entity newEntity(const EntityClass& cls) = 0;
  virtual MessageSink& messages() = 0;
};

}  // namespace tovrand
