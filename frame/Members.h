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

class DataObject;
class DispatchObject;
class Host;

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

// An argument of a late-bound call: a plain value, an entity, a Collection or an array of doubles.
// By-reference arguments are written back into it.
using Argument = std::variant<Value, Entity, std::shared_ptr<Collection>, std::vector<double>>;

// Calls the member on an object of its own class with the arguments in interface order.
using Invoker = Value (*)(DataObject& object, std::span<Argument> args);

struct MemberInfo {
  std::string_view name;
  std::int32_t dispid;
  std::span<const ParamInfo> params;
  ReturnKind returns = ReturnKind::Status;
  // Also the member's identity for code that names it by its method (memberOf in frame/Invoke.h).
  Invoker invoke = nullptr;
};

// One creatable class: its ProgID, CLSID, default interface and members in interface order.
struct ClassInfo {
  std::string_view name;
  std::string_view progId;
  std::string_view clsid;
  std::string_view interfaceName;
  std::string_view iid;
  std::span<const MemberInfo> members;
  // A new object of the class on `host`; creation opens the connection, and its failure propagates.
  std::unique_ptr<DispatchObject> (*create)(std::shared_ptr<Host> host) = nullptr;

  const MemberInfo* find(std::string_view member) const;  // without regard to case, as VB binds
  const MemberInfo* findDispid(std::int32_t dispid) const;
  bool owns(const MemberInfo& member) const;
};

// The type library.
inline constexpr std::string_view kTypeLibraryId = "{4FD5198C-BAAD-412F-AA92-87DCD734261F}";
inline constexpr int kTypeLibraryMajor = 27;
inline constexpr int kTypeLibraryMinor = 0;

// An object of one of the four classes, called through its member table (the command line and the COM
// shell bind through this). Arguments are given in interface order, already of their parameter's kind.
class DispatchObject {
 public:
  virtual ~DispatchObject() = default;
  virtual const ClassInfo& classInfo() const = 0;
  // `member` must be an entry of classInfo()'s table.
  virtual Value invoke(const MemberInfo& member, std::span<Argument> args) = 0;
};

}  // namespace tovrand
