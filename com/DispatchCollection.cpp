#include "com/DispatchCollection.h"

#include "com/DispatchEntityStore.h"

namespace tovrand::com {

std::int32_t DispatchCollection::Count() const {
  Variant result;
  invokeByName(object_.get(), "Count", DISPATCH_METHOD | DISPATCH_PROPERTYGET, nullptr, 0, result.get());
  return CLng(valueOf(*result.get()));
}

Entity DispatchCollection::Item(std::int32_t index) const {
  Variant arg;
  arg->vt = VT_I4;
  arg->lVal = index;
  Variant result;
  invokeByName(object_.get(), "Item", DISPATCH_METHOD | DISPATCH_PROPERTYGET, arg.get(), 1, result.get());
  VARIANT* v = result.get();
  if (v->vt == (VT_BYREF | VT_VARIANT) && v->pvarVal) v = v->pvarVal;
  if (v->vt == VT_DISPATCH) return entityOf(v->pdispVal, elementClass_);
  if (v->vt == (VT_BYREF | VT_DISPATCH)) return entityOf(*v->ppdispVal, elementClass_);
  if (v->vt == VT_UNKNOWN && v->punkVal) {
    ComRef<IDispatch> object;
    if (SUCCEEDED(v->punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.put()))))
      return entityOf(object.get(), elementClass_);
  }
  throw VbError::of(vberr::kObjectRequired);
}

void DispatchCollection::Add(const Entity& item) {
  ComRef<IDispatch> object = dispatchOf(item);
  Variant arg;
  arg->vt = VT_DISPATCH;
  arg->pdispVal = object.detach();
  invokeByName(object_.get(), "Add", DISPATCH_METHOD, arg.get(), 1, nullptr);
}

std::int32_t NothingCollection::Count() const {
  throw VbError::of(vberr::kObjectNotSet);
}
Entity NothingCollection::Item(std::int32_t) const {
  throw VbError::of(vberr::kObjectNotSet);
}
void NothingCollection::Add(const Entity&) {
  throw VbError::of(vberr::kObjectNotSet);
}

}  // namespace tovrand::com
