#pragma once

#include <cstdint>
#include <vector>

#include "entities/Entity.h"

namespace tovrand {

// VB's Collection of entity references as the component uses it: the caller creates and owns it,
// list methods append with Add, readers use Count and Item (1-based). The COM shell overrides the
// members to reach a caller's Collection object.
class Collection {
 public:
  virtual ~Collection() = default;
  virtual std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  // 1-based; 9 "Subscript out of range" outside 1..Count.
  virtual Entity Item(std::int32_t index) const;
  virtual void Add(const Entity& item) { items_.push_back(item); }

 private:
  std::vector<Entity> items_;
};

}  // namespace tovrand
