#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "entities/Collection.h"
#include "entities/Entity.h"
#include "vb/Value.h"

namespace tovrand {

// The kinds of parameter the interfaces use.
enum class ParamKind { Entity, Collection, Double, String, Integer, Date, DoubleArray };
// Every member returns the 16-bit status, except two that return a Variant.
enum class ReturnKind { Status, Variant };

struct ParamInfo {
  std::string_view name;  // as in the interface
  ParamKind kind;
  std::string_view entityClass = {};  // Entity: its class; Collection: the class of the elements it holds
  bool byRef = true;                  // VB passes ByRef unless the interface says ByVal
};

struct MemberInfo {
  std::string_view name;
  std::int32_t dispid;
  std::span<const ParamInfo> params;
  ReturnKind returns = ReturnKind::Status;
};

// One creatable class: its ProgID, CLSID, default interface and members in interface order.
struct ClassInfo {
  std::string_view name;
  std::string_view progId;
  std::string_view clsid;
  std::string_view interfaceName;
  std::string_view iid;
  std::span<const MemberInfo> members;

  const MemberInfo* find(std::string_view member) const;  // without regard to case, as VB binds
};

// The four classes in the order of the type library.
std::span<const ClassInfo> componentClasses();
const ClassInfo* findComponentClass(std::string_view name);

// The type library.
inline constexpr std::string_view kTypeLibraryId = "{4FD5198C-BAAD-412F-AA92-87DCD734261F}";
inline constexpr int kTypeLibraryMajor = 27;
inline constexpr int kTypeLibraryMinor = 0;

// An argument of a late-bound call: a plain value, an entity, a Collection or an array of doubles.
// By-reference arguments are written back into it.
using Argument = std::variant<Value, Entity, std::shared_ptr<Collection>, std::vector<double>>;

// A late-bound call that the core has no method for yet.
class NotImplemented : public std::exception {
 public:
  const char* what() const noexcept override { return "member not implemented"; }
};

// An object of one of the four classes, called by member name (the command line and the COM shell
// bind through this). Arguments are given in interface order, already of their parameter's kind.
class DispatchObject {
 public:
  virtual ~DispatchObject() = default;
  virtual const ClassInfo& classInfo() const = 0;
  // Raises NotImplemented for a member without a core method.
  virtual Value invoke(const MemberInfo& member, std::span<Argument> args) = 0;
};

}  // namespace tovrand
