#pragma once

#include <string_view>

#include "vb/Value.h"

namespace tovrand::engine {

// The server's DATE, DATETIME and TIME texts, as either engine receives them, read as a VB date:
// "YYYY-MM-DD", "YYYY-MM-DD HH:MM:SS[.fraction]" or "[-]HHH:MM:SS". A date with a zero year, month or
// day is the VB zero date (plus its time), since no VB date stands for it.
VbDate parseTemporal(std::string_view text);

}  // namespace tovrand::engine
