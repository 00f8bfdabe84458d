#include "engine/StatementTrace.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/Lock.h"

namespace tovrand {

namespace {

void appendToFile(const char* path, std::string_view sql, StatementOrigin origin) {
  static engine::Mutex mutex;
  std::string line = origin == StatementOrigin::Engine ? "-- engine: " : "";
  for (char c : sql) line += (c == '\n' || c == '\r') ? ' ' : c;
  line += '\n';
  engine::Guard lock(mutex);
  if (std::FILE* f = std::fopen(path, "a")) {
    std::fwrite(line.data(), 1, line.size(), f);
    std::fclose(f);
  }
}

std::atomic<DeliveryObserver*> gObserver{nullptr};

}  // namespace

void traceStatement(std::string_view sql, StatementOrigin origin) {
  if (TraceSink* sink = traceSink()) sink->statement(sql, origin);
  const char* path = std::getenv("TOVRAND_TRACE");
  if (path != nullptr && *path != '\0') appendToFile(path, sql, origin);
}

void setDeliveryObserver(DeliveryObserver* observer) {
  gObserver.store(observer, std::memory_order_release);
}

void reportDelivery(std::string_view sql, Delivery how, const std::vector<Value>& values) {
  if (DeliveryObserver* observer = gObserver.load(std::memory_order_acquire)) {
    observer->delivered(sql, how, values);
  }
}

}  // namespace tovrand
