#pragma once

#include <memory>

#include "frame/Host.h"
#include "frame/Members.h"

namespace tovrand {

// Creates an object of one of the four classes for late-bound calls (the command line, the COM
// shell). Creation opens the connection; its failure propagates as a VbError.
std::unique_ptr<DispatchObject> createObject(const ClassInfo& cls, std::shared_ptr<Host> host);

}  // namespace tovrand
