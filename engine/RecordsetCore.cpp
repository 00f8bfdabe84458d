#include "engine/RecordsetCore.h"

namespace tovrand::engine {

void raise(std::int32_t number) {
  throw VbError::of(number);
}

bool isUpdatableLock(int lock) {
  return lock == adLockPessimistic || lock == adLockOptimistic || lock == adLockBatchOptimistic;
}

}  // namespace tovrand::engine
