#include "tooling/NativeHostWiring.h"

#include <utility>

#include "engine/ConnectionSettings.h"
#include "host/NativeHost.h"

namespace tovrand::tooling {

std::shared_ptr<Host> makeNativeHost(const std::string& dsn, const std::string& serverDate,
                                     std::shared_ptr<MessageSink> sink) {
  ConnectionSettings settings = ConnectionSettings::parse(dsn);
  if (!serverDate.empty()) settings.serverDate = serverDate;
  return std::make_shared<NativeHost>(std::move(settings), std::move(sink));
}

}  // namespace tovrand::tooling
