// The entity classes of Velmora as COM objects. Their interfaces differ only in the number and the
// types of their properties, so one object type serves them all: its vtable is laid out per class
// at run time from the class's property list (IUnknown, IDispatch, then a put and a get per property
// in member order), each slot a function instantiated for the property's index and type.

#include <array>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "com/velmora/VelmoraObjects.h"
#include "entities/Entities.h"

namespace tovrand::velmora {

namespace {

using Slot = void (*)();

struct ClassTable {
  const EntityClass* cls = nullptr;
  IID iid{};
  ComRef<ITypeInfo> typeInfo;
  std::vector<Slot> vtable;
};

// One entity object. The interface pointer is the address of `vtable`, which is the first member.
struct EntityObject {
  const Slot* vtable;
  std::atomic<ULONG> refs{1};
  const ClassTable* table;
  std::vector<Value> values;
  com::ObjectCount count;
};
static_assert(std::is_standard_layout_v<EntityObject>);

EntityObject* self(void* p) {
  return static_cast<EntityObject*>(p);
}

HRESULT STDMETHODCALLTYPE queryInterface(void* p, REFIID riid, void** out) {
  if (!out) return E_POINTER;
  if (com::isDualInterface(riid, self(p)->table->iid)) {
    *out = p;
    ++self(p)->refs;
    return S_OK;
  }
  *out = nullptr;
  return E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE addRef(void* p) {
  return ++self(p)->refs;
}

ULONG STDMETHODCALLTYPE release(void* p) {
  ULONG n = --self(p)->refs;
  if (n == 0) {
    // The object was made by createEntity; the last Release ends it.
    std::unique_ptr<EntityObject> owned(self(p));
  }
  return n;
}

HRESULT STDMETHODCALLTYPE getTypeInfoCount(void* p, UINT* count) {
  return com::typeInfoCount(self(p)->table->typeInfo.get(), count);
}

HRESULT STDMETHODCALLTYPE getTypeInfo(void* p, UINT index, LCID, ITypeInfo** out) {
  return com::typeInfoAt(self(p)->table->typeInfo.get(), index, out);
}

HRESULT STDMETHODCALLTYPE getIDsOfNames(void* p, REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  return com::idsOfNames(self(p)->table->typeInfo.get(), names, count, ids);
}

HRESULT STDMETHODCALLTYPE invoke(void* p, DISPID dispid, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                 VARIANT* result, EXCEPINFO* excep, UINT* argErr) {
  return com::invokeThrough(p, self(p)->table->typeInfo.get(), dispid, riid, flags, params, result, excep,
                            argErr);
}

template <std::size_t I>
HRESULT STDMETHODCALLTYPE putDouble(void* p, double v) {
  self(p)->values[I] = Value(v);
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE getDouble(void* p, double* out) {
  if (!out) return E_POINTER;
  *out = self(p)->values[I].dbl();
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE putString(void* p, BSTR v) {
  self(p)->values[I] = Value(com::fromBstr(v));
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE getString(void* p, BSTR* out) {
  if (!out) return E_POINTER;
  *out = com::Bstr::fromUtf8(self(p)->values[I].str()).detach();
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE putInteger(void* p, short v) {
  self(p)->values[I] = Value(static_cast<std::int16_t>(v));
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE getInteger(void* p, short* out) {
  if (!out) return E_POINTER;
  *out = self(p)->values[I].integer();
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE putDate(void* p, DATE v) {
  self(p)->values[I] = Value(VbDate{v});
  return S_OK;
}
template <std::size_t I>
HRESULT STDMETHODCALLTYPE getDate(void* p, DATE* out) {
  if (!out) return E_POINTER;
  *out = self(p)->values[I].date().serial;
  return S_OK;
}

// The put and get slots of property I for each of the four property types.
using SlotPair = std::array<Slot, 2>;
struct PropertySlots {
  SlotPair byType[4];
};

template <class F>
Slot slot(F f) {
  return reinterpret_cast<Slot>(f);
}

template <std::size_t I>
PropertySlots slotsFor() {
  return PropertySlots{{{slot(&putDouble<I>), slot(&getDouble<I>)},
                        {slot(&putString<I>), slot(&getString<I>)},
                        {slot(&putInteger<I>), slot(&getInteger<I>)},
                        {slot(&putDate<I>), slot(&getDate<I>)}}};
}

constexpr std::size_t kMaxProperties = 64;

template <std::size_t... I>
std::array<PropertySlots, sizeof...(I)> allSlots(std::index_sequence<I...>) {
  return {slotsFor<I>()...};
}

std::size_t typeIndex(PropertyType type) {
  switch (type) {
    case PropertyType::Double:
      return 0;
    case PropertyType::String:
      return 1;
    case PropertyType::Integer:
      return 2;
    case PropertyType::Date:
      return 3;
  }
  return 0;
}

const ClassTable& tableOf(const EntityClass& cls) {
  static std::mutex mutex;
  static std::vector<std::unique_ptr<ClassTable>> tables;
  static const auto slots = allSlots(std::make_index_sequence<kMaxProperties>());
  std::lock_guard lock(mutex);
  for (const auto& t : tables)
    if (t->cls == &cls) return *t;
  auto table = std::make_unique<ClassTable>();
  table->cls = &cls;
  table->iid = com::guidOf(cls.iid);
  table->typeInfo = com::moduleTypeInfo(table->iid);
  table->vtable = {slot(&queryInterface), slot(&addRef),        slot(&release), slot(&getTypeInfoCount),
                   slot(&getTypeInfo),    slot(&getIDsOfNames), slot(&invoke)};
  if (cls.properties.size() > kMaxProperties) throw VbError(E_UNEXPECTED, "too many properties");
  for (std::size_t i = 0; i < cls.properties.size(); ++i) {
    const SlotPair& pair = slots[i].byType[typeIndex(cls.properties[i].type)];
    table->vtable.push_back(pair[0]);
    table->vtable.push_back(pair[1]);
  }
  tables.push_back(std::move(table));
  return *tables.back();
}

}  // namespace

HRESULT createEntity(const EntityClass& cls, REFIID riid, void** out) {
  try {
    const ClassTable& table = tableOf(cls);
    auto object = std::make_unique<EntityObject>();
    object->vtable = table.vtable.data();
    object->table = &table;
    object->values.reserve(cls.properties.size());
    for (const PropertyInfo& p : cls.properties) object->values.push_back(initialValue(p.type));
    void* p = object.release();
    HRESULT hr = queryInterface(p, riid, out);
    release(p);
    return hr;
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace tovrand::velmora
