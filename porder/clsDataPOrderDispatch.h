#pragma once

#include <memory>

#include "frame/Members.h"
#include "porder/clsDataPOrder.h"

namespace tovrand {

// clsDataPOrder called by member name.
std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrder> object);

}  // namespace tovrand
