#include "com/DispatchEntityStore.h"

#include "entities/Entities.h"
#include "vb/Text.h"

namespace tovrand::com {

DispatchEntityStore::DispatchEntityStore(ComRef<IDispatch> object, const EntityClass& presumed, bool known)
    : object_(std::move(object)),
      cls_(&presumed),
      known_(known),
      dispids_(presumed.properties.size(), DISPID_UNKNOWN) {}

bool DispatchEntityStore::conformsTo(const EntityClass& cls) {
  if (known_) return cls_ == &cls;
  ComRef<ITypeInfo> info;
  if (SUCCEEDED(object_->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.put())) && info) {
    BSTR name = nullptr;
    if (SUCCEEDED(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr))) {
      std::string text = fromBstr(name);
      SysFreeString(name);
      if (!text.empty() && text.front() == '_') text.erase(0, 1);
      if (const EntityClass* named = findEntityClass(text)) {
        if (named != cls_) dispids_.assign(named->properties.size(), DISPID_UNKNOWN);
        cls_ = named;
        known_ = true;
        return named == &cls;
      }
    }
  }
  // An object that does not name its class conforms when it has every property of the class.
  std::vector<DISPID> ids(cls.properties.size(), DISPID_UNKNOWN);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    std::wstring wide = toWide(cls.properties[i].name);
    LPOLESTR names[] = {wide.data()};
    if (FAILED(object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &ids[i]))) return false;
  }
  cls_ = &cls;
  known_ = true;
  dispids_ = std::move(ids);
  return true;
}

DISPID DispatchEntityStore::dispid(std::size_t index) {
  if (dispids_[index] == DISPID_UNKNOWN)
    dispids_[index] = dispidOf(object_.get(), cls_->properties[index].name);
  return dispids_[index];
}

Value DispatchEntityStore::get(std::size_t index) {
  Variant result;
  invokeByDispid(object_.get(), dispid(index), DISPATCH_PROPERTYGET, nullptr, 0, result.get());
  return valueOf(*result.get());
}

void DispatchEntityStore::put(std::size_t index, Value v) {
  Variant arg;
  toVariant(v, arg.get());
  invokeByDispid(object_.get(), dispid(index), DISPATCH_PROPERTYPUT, arg.get(), 1, nullptr);
}

Entity entityOf(IDispatch* object, const EntityClass& presumed) {
  if (!object) return Entity();
  return Entity(std::make_shared<DispatchEntityStore>(ComRef<IDispatch>::share(object), presumed, false));
}

Entity newVelmoraEntity(const EntityClass& cls) {
  std::wstring progId = toWide(cls.progId);
  CLSID clsid{};
  HRESULT hr = CLSIDFromProgID(progId.c_str(), &clsid);
  if (FAILED(hr)) throw VbError(429, "ActiveX component can't create object: " + std::string(cls.progId));
  ComRef<IDispatch> object;
  hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                        reinterpret_cast<void**>(object.put()));
  if (FAILED(hr)) throw errorOf(hr);
  return Entity(std::make_shared<DispatchEntityStore>(std::move(object), cls, true));
}

ComRef<IDispatch> dispatchOf(const Entity& entity) {
  if (entity.isNothing()) return nullptr;
  if (auto* store = dynamic_cast<DispatchEntityStore*>(entity.store().get()))
    return ComRef<IDispatch>::share(store->object());
  const EntityClass& cls = entity.entityClass();
  Entity copy = newVelmoraEntity(cls);
  for (std::size_t i = 0; i < cls.properties.size(); ++i) copy.store()->put(i, entity.getAt(i));
  return ComRef<IDispatch>::share(static_cast<DispatchEntityStore*>(copy.store().get())->object());
}

}  // namespace tovrand::com
