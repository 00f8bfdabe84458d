#pragma once

#include <string_view>
#include <vector>

#include "frame/Trace.h"
#include "vb/Value.h"

namespace tovrand {

// Reports one statement about to be sent: to the process's trace sink, and when TOVRAND_TRACE names a
// file, appended to it as one line (the engine's own statements prefixed "-- engine: ").
void traceStatement(std::string_view sql, StatementOrigin origin);

// How a traced statement reached the server, for measurements that replay what the engine sent. A
// statement that never needed to travel (a table opened whole only to add rows to it) is not reported.
enum class Delivery {
  Rows,       // run, and its result read
  NoResult,   // run; it has no result
  BoundWrite  // the engine's INSERT or UPDATE, run with the bound values given
};

class DeliveryObserver {
 public:
  virtual ~DeliveryObserver() = default;
  virtual void delivered(std::string_view sql, Delivery how, const std::vector<Value>& values) = 0;
};

// The process's observer (none by default).
void setDeliveryObserver(DeliveryObserver* observer);
void reportDelivery(std::string_view sql, Delivery how, const std::vector<Value>& values = {});

}  // namespace tovrand
