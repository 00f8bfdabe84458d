#pragma once

#include <memory>

#include "frame/Members.h"
#include "porderchk/clsDataPOrderChk.h"

namespace tovrand {

// clsDataPOrderChk called by member name.
std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrderChk> object);

}  // namespace tovrand
