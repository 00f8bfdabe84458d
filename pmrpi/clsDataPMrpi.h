#pragma once

#include <memory>

#include "frame/DataObject.h"

namespace tovrand {

// Its members come with their own work; until then the object exists and holds its connection.
class clsDataPMrpi : public DataObject {
 public:
  explicit clsDataPMrpi(std::shared_ptr<Host> host) : DataObject(std::move(host)) {}
};

}  // namespace tovrand
