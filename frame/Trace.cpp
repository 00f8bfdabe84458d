#include "frame/Trace.h"

#include <atomic>

namespace tovrand {

namespace {
std::atomic<TraceSink*> gTraceSink{nullptr};
}  // namespace

std::vector<std::string> RecordingTraceSink::methodStatements() const {
  std::vector<std::string> result;
  for (const TracedStatement& s : statements_)
    if (s.origin == StatementOrigin::Method) result.push_back(s.sql);
  return result;
}

TraceSink* traceSink() {
  return gTraceSink.load(std::memory_order_acquire);
}

void setTraceSink(TraceSink* sink) {
  gTraceSink.store(sink, std::memory_order_release);
}

}  // namespace tovrand
