#include "entities/Collection.h"

#include "vb/VbError.h"

namespace tovrand {

Entity Collection::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) throw VbError::of(vberr::kSubscriptOutOfRange);
  return items_[static_cast<std::size_t>(index - 1)];
}

}  // namespace tovrand
