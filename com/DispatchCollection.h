#pragma once

#include <oaidl.h>

#include "com/ComSupport.h"
#include "entities/Collection.h"

namespace tovrand::com {

// A caller's Collection object (VB's Collection or Velmora's), reached live through its IDispatch:
// Count, Item(i) and Add(item) go to the object; nothing is copied.
class DispatchCollection final : public Collection {
 public:
  // `elementClass`: the class the elements are expected to be (from the member's parameter).
  DispatchCollection(ComRef<IDispatch> object, const EntityClass& elementClass)
      : object_(std::move(object)), elementClass_(elementClass) {}

  std::int32_t Count() const override;
  Entity Item(std::int32_t index) const override;
  void Add(const Entity& item) override;

  IDispatch* object() const { return object_.get(); }

 private:
  ComRef<IDispatch> object_;
  const EntityClass& elementClass_;
};

// A Collection argument that is Nothing: every use raises 91, as VB does.
class NothingCollection final : public Collection {
 public:
  std::int32_t Count() const override;
  Entity Item(std::int32_t index) const override;
  void Add(const Entity& item) override;
};

}  // namespace tovrand::com
