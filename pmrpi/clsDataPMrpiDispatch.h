#pragma once

#include <memory>

#include "frame/Members.h"
#include "pmrpi/clsDataPMrpi.h"

namespace tovrand {

// clsDataPMrpi called by member name.
std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrpi> object);

}  // namespace tovrand
