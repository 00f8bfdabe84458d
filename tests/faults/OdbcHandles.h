#pragma once

#include <cstdint>
#include <ostream>

namespace tovrand::test {

// The ODBC handles the engine holds at this moment, by kind. This test program is linked with its
// own SQLAllocHandle and SQLFreeHandle in front of the driver manager's (the linker's --wrap), which
// count every handle the engine allocates and frees.
struct OdbcHandles {
  std::int64_t environments = 0;
  std::int64_t connections = 0;
  std::int64_t statements = 0;
  bool operator==(const OdbcHandles&) const = default;
};

OdbcHandles odbcHandlesHeld();

inline void PrintTo(const OdbcHandles& h, std::ostream* os) {
  *os << h.environments << " environments, " << h.connections << " connections, " << h.statements
      << " statements";
}

}  // namespace tovrand::test
