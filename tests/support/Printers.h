#pragma once

#include <ostream>

#include "frame/MessageSink.h"
#include "frame/Trace.h"

namespace tovrand {

// Readable failures for the records the tests compare.
inline void PrintTo(const Message& m, std::ostream* os) {
  *os << "{\"" << m.text << "\", " << m.style << ", \"" << m.title << "\"}";
}
inline void PrintTo(const TracedStatement& s, std::ostream* os) {
  *os << (s.origin == StatementOrigin::Engine ? "engine: " : "method: ") << s.sql;
}

}  // namespace tovrand
