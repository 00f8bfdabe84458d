#pragma once

#include <string_view>

#include "frame/Trace.h"

namespace tovrand {

// Reports one statement about to be sent: to the process's trace sink, and when TOVRAND_TRACE names a
// file, appended to it as one line (the engine's own statements prefixed "-- engine: ").
void traceStatement(std::string_view sql, StatementOrigin origin);

}  // namespace tovrand
