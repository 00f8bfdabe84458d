#include "entities/Entity.h"

#include <memory>

#include "vb/Text.h"
#include "vb/VbError.h"

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

Value convertTo(PropertyType type, Value v) {
  // A value of the property's own type is what the conversion would give: it is handed on as it is.
  switch (type) {
    case PropertyType::Double:
      return v.type() == Value::Type::Double ? v : Value(CDbl(v));
    case PropertyType::String:
      return v.type() == Value::Type::String ? v : Value(CStr(v));
    case PropertyType::Integer:
      return v.type() == Value::Type::Integer ? v : Value(CInt(v));
    case PropertyType::Date:
      return v.type() == Value::Type::Date ? v : Value(CDate(v));
  }
  return v;
}

NativeStore::NativeStore(const EntityClass& cls) : cls_(cls) {}

NativeStore::~NativeStore() {
  for (std::size_t i = 0; i < fewCount_; ++i) std::destroy_at(&few_[i].value);
}

Value NativeStore::get(std::size_t index) {
  if (!values_) {
    for (std::size_t i = 0; i < fewCount_; ++i)
      if (fewIndex_[i] == index) return few_[i].value;
    return initialValue(cls_.properties[index].type);
  }
  const Value& held = values_[index];
  if (held.isEmpty() && !initialized_) return initialValue(cls_.properties[index].type);
  return held;
}

void NativeStore::put(std::size_t index, Value v) {
  if (!values_) {
    if (!v.isEmpty()) {
      for (std::size_t i = 0; i < fewCount_; ++i) {
        if (fewIndex_[i] == index) {
          few_[i].value = std::move(v);
          return;
        }
      }
      if (fewCount_ < kFewProperties) {
        std::construct_at(&few_[fewCount_].value, std::move(v));
        fewIndex_[fewCount_++] = index;
        return;
      }
    }
    spread();
  }
  if (v.isEmpty() && !initialized_) {
    // Empty now stands for itself: every property not yet assigned takes its initial value first.
    for (std::size_t i = 0; i < cls_.properties.size(); ++i) {
      if (values_[i].isEmpty()) values_[i] = initialValue(cls_.properties[i].type);
    }
    initialized_ = true;
  }
  values_[index] = std::move(v);
}

void NativeStore::spread() {
  values_ = std::make_unique<Value[]>(cls_.properties.size());
  for (std::size_t i = 0; i < fewCount_; ++i) {
    values_[fewIndex_[i]] = std::move(few_[i].value);
    std::destroy_at(&few_[i].value);
  }
  fewCount_ = 0;
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
