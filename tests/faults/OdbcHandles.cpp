#include "tests/faults/OdbcHandles.h"

#include <sql.h>

#include <atomic>

namespace tovrand::test {

namespace {

std::atomic<std::int64_t> gEnvironments{0}, gConnections{0}, gStatements{0};

std::atomic<std::int64_t>* counterOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_HANDLE_ENV:
      return &gEnvironments;
    case SQL_HANDLE_DBC:
      return &gConnections;
    case SQL_HANDLE_STMT:
      return &gStatements;
    default:
      return nullptr;
  }
}

}  // namespace

OdbcHandles odbcHandlesHeld() {
  return {gEnvironments.load(), gConnections.load(), gStatements.load()};
}

}  // namespace tovrand::test

extern "C" {

SQLRETURN __real_SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output);
SQLRETURN __real_SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle);

SQLRETURN __wrap_SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output) {
  SQLRETURN rc = __real_SQLAllocHandle(type, input, output);
  if (SQL_SUCCEEDED(rc)) {
    if (auto* counter = tovrand::test::counterOf(type)) ++*counter;
  }
  return rc;
}

SQLRETURN __wrap_SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle) {
  SQLRETURN rc = __real_SQLFreeHandle(type, handle);
  if (SQL_SUCCEEDED(rc)) {
    if (auto* counter = tovrand::test::counterOf(type)) --*counter;
  }
  return rc;
}

}  // extern "C"
