#pragma once

#include <memory>
#include <string>

#include "frame/Host.h"
#include "frame/MessageSink.h"

namespace tovrand::tooling {

// The native host on a connection setting; `serverDate` ("YYYY-MM-DD", or "" to keep the setting's)
// replaces its server_date option. A bad setting raises the VbError the engine gives.
std::shared_ptr<Host> makeNativeHost(const std::string& dsn, const std::string& serverDate,
                                     std::shared_ptr<MessageSink> sink);

}  // namespace tovrand::tooling
