#pragma once

#include <memory>

#include "frame/Members.h"
#include "pmrph/clsDataPMrph.h"

namespace tovrand {

// clsDataPMrph called by member name.
std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrph> object);

}  // namespace tovrand
