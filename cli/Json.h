#pragma once

// The JSON forms of the values a late-bound call takes and gives back: plain values, entities,
// Collections and arrays of doubles, as the `tovrand run` lines carry them.

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "entities/Entity.h"
#include "frame/Members.h"
#include "vb/Value.h"

namespace tovrand::cli {

// Objects keep their keys in the order they were written: entities list their properties in
// member order, answers their fields in protocol order.
using Json = nlohmann::ordered_json;

// A request that cannot be carried out as written (unknown name, wrong kind, bad text). Its text
// is the error line's message.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// "YYYY-MM-DD HH:MM:SS"; the zero date is "1899-12-30 00:00:00".
std::string formatDate(VbDate date);
// "YYYY-MM-DD", "YYYY-MM-DD HH:MM" or "YYYY-MM-DD HH:MM:SS" (a "T" may stand for the blank); nullopt
// for any other text or a day that does not exist.
std::optional<VbDate> parseDate(std::string_view text);

// A number as JSON: whole doubles that a double holds exactly become JSON integers, so a production
// number such as 2008050001 reads back as written.
Json numberToJson(double v);
// A Variant as JSON: Empty and Null are null, numbers are numbers, dates are date texts.
Json valueToJson(const Value& v);

// The value of a property or plain parameter of `type` read from JSON; `where` names it in errors.
Value propertyFromJson(const Json& j, PropertyType type, std::string_view where);

// An entity as a JSON object: every property of its class, in member order. With `withClass`, a
// leading "$class" names the class. Nothing is null.
Json entityToJson(const Entity& entity, bool withClass = false);
// A new in-process entity of `cls` filled from a JSON object (property names matched without regard
// to case; properties not given keep their initial value). A "$class" member must name `cls` unless
// `anyClass`, in which case it chooses the class. null is an empty entity of `cls`.
Entity entityFromJson(const Json& j, const EntityClass& cls, std::string_view where, bool anyClass = false);

// A Collection as a JSON array of entities; elements of another class than `cls` carry "$class".
Json collectionToJson(const Collection& collection, const EntityClass& cls);
// A new Collection from a JSON array of entity objects (elements default to `cls`, "$class" picks
// another). null is an empty Collection.
std::shared_ptr<Collection> collectionFromJson(const Json& j, const EntityClass& cls, std::string_view where);

// The argument of a parameter from its JSON (null or absent: the empty value of its kind).
Argument argumentFromJson(const Json* j, const ParamInfo& param);
// An argument after the call, as JSON.
Json argumentToJson(const Argument& arg, const ParamInfo& param);

// The entity class a parameter names; ProtocolError when the member table names an unknown one.
const EntityClass& parameterClass(const ParamInfo& param);
// An entity class by name, without regard to case.
const EntityClass* findEntityClassIgnoreCase(std::string_view name);

}  // namespace tovrand::cli
