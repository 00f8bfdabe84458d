#include "entities/Entity.h"

#include "frame/Text.h"
#include "frame/VbError.h"

namespace tovrand {

std::optional<std::size_t> EntityClass::find(std::string_view property) const {
  for (std::size_t i = 0; i < properties.size(); ++i)
    if (equalsIgnoreCase(properties[i].name, property)) return i;
  return std::nullopt;
}

Value initialValue(PropertyType type) {
  switch (type) {
    case PropertyType::Double:
      return Value(0.0);
    case PropertyType::String:
      return Value(std::string());
    case PropertyType::Integer:
      return Value(std::int16_t{0});
    case PropertyType::Date:
      return Value(VbDate{});
  }
  return Value();
}

Value convertTo(PropertyType type, const Value& v) {
  switch (type) {
    case PropertyType::Double:
      return Value(CDbl(v));
    case PropertyType::String:
      return Value(CStr(v));
    case PropertyType::Integer:
      return Value(CInt(v));
    case PropertyType::Date:
      return Value(CDate(v));
  }
  return v;
}

NativeStore::NativeStore(const EntityClass& cls)
    : cls_(cls), values_(std::make_unique<Value[]>(cls.properties.size())) {}

Value NativeStore::get(std::size_t index) {
  const Value& held = values_[index];
  if (held.isEmpty() && !initialized_) return initialValue(cls_.properties[index].type);
  return held;
}

void NativeStore::put(std::size_t index, const Value& v) {
  if (v.isEmpty() && !initialized_) {
    // Empty now stands for itself: every property not yet assigned takes its initial value first.
    for (std::size_t i = 0; i < cls_.properties.size(); ++i) {
      if (values_[i].isEmpty()) values_[i] = initialValue(cls_.properties[i].type);
    }
    initialized_ = true;
  }
  values_[index] = v;
}

const EntityClass& Entity::entityClass() const {
  return checkedStore().entityClass();
}

EntityStore& Entity::checkedStore() const {
  if (!store_) throw VbError::of(vberr::kObjectNotSet);
  return *store_;
}

namespace {
std::size_t indexOf(const EntityClass& cls, std::string_view property) {
  if (auto index = cls.find(property)) return *index;
  throw VbError(438, "Object doesn't support this property or method");
}
}  // namespace

Value Entity::get(std::string_view property) const {
  EntityStore& store = checkedStore();
  return store.get(indexOf(store.entityClass(), property));
}

void Entity::put(std::string_view property, const Value& v) {
  EntityStore& store = checkedStore();
  std::size_t index = indexOf(store.entityClass(), property);
  store.put(index, convertTo(store.entityClass().properties[index].type, v));
}

Value Entity::getAt(std::size_t index) const {
  return checkedStore().get(index);
}

void Entity::putAt(std::size_t index, const Value& v) {
  EntityStore& store = checkedStore();
  store.put(index, convertTo(store.entityClass().properties[index].type, v));
}

Entity newNativeEntity(const EntityClass& cls) {
  return Entity(std::make_shared<NativeStore>(cls));
}

}  // namespace tovrand
