#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "vb/Value.h"

namespace tovrand {

// The types an entity property has across the interface.
enum class PropertyType { Double, String, Integer, Date };

struct PropertyInfo {
  std::string_view name;
  PropertyType type;
};

// What is known of one Velmora entity class: its name, ProgID, interface IID (where the
// installed Velmora fixes it) and its properties in member order.
struct EntityClass {
  std::string_view name;
  std::string_view progId;
  std::string_view iid;  // "{...}"
  std::span<const PropertyInfo> properties;

  // Index of a property, matched without regard to case (as VB binds names).
  std::optional<std::size_t> find(std::string_view property) const;
};

// The value a property holds before anything is assigned (0, "", the zero date).
Value initialValue(PropertyType type);
// The conversion VB applies when a value is assigned to a property of the type (CDbl, CStr, CInt,
// CDate), raising 13, 94 or 6 as VB does.
Value convertTo(PropertyType type, Value v);

// Where an entity's property values live: in this process, or in a caller's COM object.
class EntityStore {
 public:
  virtual ~EntityStore() = default;
  virtual const EntityClass& entityClass() const = 0;
  // Whether the object can be used as an entity of `cls` (VB's Set to a variable of that class).
  // A store reached through COM may learn its class here.
  virtual bool conformsTo(const EntityClass& cls) { return &entityClass() == &cls; }
  virtual Value get(std::size_t index) = 0;
  // `v` is already converted to the property's type.
  virtual void put(std::size_t index, Value v) = 0;
};

// An in-process store, starting at the type's initial values. A list fills thousands of entities and
// assigns one or two properties of each, so the first few assigned values are held beside their
// indexes and everything else reads as its initial value; a fifth property, or Empty assigned to one
// (a copy of a caller's object), gives every property its own place.
class NativeStore final : public EntityStore {
 public:
  explicit NativeStore(const EntityClass& cls);
  ~NativeStore() override;
  NativeStore(const NativeStore&) = delete;
  NativeStore& operator=(const NativeStore&) = delete;
  const EntityClass& entityClass() const override { return cls_; }
  Value get(std::size_t index) override;
  void put(std::size_t index, Value v) override;

 private:
  static constexpr std::size_t kFewProperties = 4;
  // A value constructed only when its slot is taken: a new entity writes nothing but its header.
  union Slot {
    Slot() {}
    ~Slot() {}
    Value value;
  };
  // Gives every property its place, the few assigned so far included.
  void spread();

  const EntityClass& cls_;
  std::size_t fewCount_ = 0;
  std::array<std::size_t, kFewProperties> fewIndex_;  // the property of each slot taken
  std::array<Slot, kFewProperties> few_;
  std::unique_ptr<Value[]> values_;  // null while the few hold every assignment
  bool initialized_ = false;         // every property holds its value, Empty included
};

// A reference to an entity object (as a VB object variable is): copies refer to the same object.
class Entity {
 public:
  Entity() = default;
  explicit Entity(std::shared_ptr<EntityStore> store) : store_(std::move(store)) {}

  bool isNothing() const { return store_ == nullptr; }
  const EntityClass& entityClass() const;
  const std::shared_ptr<EntityStore>& store() const { return store_; }

  // Late-bound property access by name; 438 for a name the class does not have.
  Value get(std::string_view property) const;
  void put(std::string_view property, const Value& v);

  // Raw access by index (reflection).
  Value getAt(std::size_t index) const;
  void putAt(std::size_t index, const Value& v);

 protected:
  // For the typed views: the store, checked to exist (91 when the reference is Nothing).
  EntityStore& checkedStore() const;

 private:
  std::shared_ptr<EntityStore> store_;
};

// A new entity of the class, stored in this process.
Entity newNativeEntity(const EntityClass& cls);

}  // namespace tovrand
