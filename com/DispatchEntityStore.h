#pragma once

#include <oaidl.h>

#include <vector>

#include "com/ComSupport.h"
#include "entities/Entity.h"

namespace tovrand::com {

// An entity that lives in a caller's COM object (Velmora's clsEntXxx or any object with the same
// property names): every get and put goes live to the object through its IDispatch.
class DispatchEntityStore final : public EntityStore {
 public:
  // `presumed`: the class the object is expected to be (from the parameter or the Collection that
  // hands it over); `known`: whether that is certain (an object this process just created).
  DispatchEntityStore(ComRef<IDispatch> object, const EntityClass& presumed, bool known);

  const EntityClass& entityClass() const override { return *cls_; }
  // Learns the class from the object's type information ("clsEntPOrder" or "_clsEntPOrder"); an
  // object without one conforms when every property of `cls` binds by name.
  bool conformsTo(const EntityClass& cls) override;
  Value get(std::size_t index) override;
  void put(std::size_t index, Value v) override;

  IDispatch* object() const { return object_.get(); }

 private:
  DISPID dispid(std::size_t index);

  ComRef<IDispatch> object_;
  const EntityClass* cls_;
  bool known_;
  std::vector<DISPID> dispids_;
};

// The caller's object as an entity reference (Nothing for a null pointer).
Entity entityOf(IDispatch* object, const EntityClass& presumed);
// A new Velmora entity of the class, created by its ProgID.
Entity newVelmoraEntity(const EntityClass& cls);
// The COM object behind an entity. An entity held in this process is copied into a new Velmora
// object first, so that a caller's Collection only ever receives COM objects. Null for Nothing.
ComRef<IDispatch> dispatchOf(const Entity& entity);

}  // namespace tovrand::com
