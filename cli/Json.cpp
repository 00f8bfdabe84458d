#include "cli/Json.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <regex>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand::cli {

namespace {

// Doubles hold every whole number up to 2^53 exactly; beyond that a JSON integer could claim
// digits the value does not have.
constexpr double kExactWholeLimit = 9007199254740992.0;

// The start of a value's JSON text, stopped once it is longer than `limit`. Each level of nesting
// writes a bracket before it goes deeper, so the walk never goes deeper than `limit`, however
// deeply the value nests (dumping it whole would recurse once per level).
void writePreview(const Json& j, std::string& out, std::size_t limit) {
  if (j.is_array() || j.is_object()) {
    out += j.is_array() ? '[' : '{';
    bool first = true;
    for (auto it = j.begin(); it != j.end() && out.size() <= limit; ++it) {
      if (!first) out += ',';
      first = false;
      if (j.is_object()) out += Json(it.key()).dump(-1, ' ', false, Json::error_handler_t::replace) + ':';
      writePreview(it.value(), out, limit);
    }
    out += j.is_array() ? ']' : '}';
  } else {
    out += j.dump(-1, ' ', false, Json::error_handler_t::replace);
  }
}

std::string shown(const Json& j) {
  std::string text;
  writePreview(j, text, 60);
  if (text.size() > 60) {
    // Cut before a character, never inside one: the error line must stay whole UTF-8.
    std::size_t cut = 57;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    text = text.substr(0, cut) + "...";
  }
  return text;
}

[[noreturn]] void wrongKind(std::string_view where, std::string_view expected, const Json& got) {
  throw ProtocolError(std::string(where) + ": expected " + std::string(expected) + ", got " + shown(got));
}

bool isLeapYear(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int daysInMonth(int y, int m) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && isLeapYear(y) ? 29 : kDays[m - 1];
}

PropertyType plainType(ParamKind kind) {
  switch (kind) {
    case ParamKind::Double:
      return PropertyType::Double;
    case ParamKind::String:
      return PropertyType::String;
    case ParamKind::Integer:
      return PropertyType::Integer;
    case ParamKind::Date:
      return PropertyType::Date;
    default:
      break;
  }
  throw std::logic_error("not a plain parameter kind");
}

}  // namespace

std::string formatDate(VbDate date) {
  const DateParts p = dateParts(date);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute,
                p.second);
  return text;
}

std::optional<VbDate> parseDate(std::string_view text) {
  static const std::regex kForm(R"((\d{4})-(\d{1,2})-(\d{1,2})(?:[ T](\d{1,2}):(\d{1,2})(?::(\d{1,2}))?)?)");
  std::match_results<std::string_view::const_iterator> m;
  if (!std::regex_match(text.begin(), text.end(), m, kForm)) return std::nullopt;
  auto number = [&](int i) { return m[i].matched ? std::stoi(m[i].str()) : 0; };
  DateParts p{number(1), number(2), number(3), number(4), number(5), number(6)};
  if (p.year < 100 || p.month < 1 || p.month > 12 || p.day < 1 || p.day > daysInMonth(p.year, p.month))
    return std::nullopt;
  if (p.hour > 23 || p.minute > 59 || p.second > 59) return std::nullopt;
  return makeDate(p);
}

Json numberToJson(double v) {
  if (std::isfinite(v) && v == std::trunc(v) && std::fabs(v) <= kExactWholeLimit) {
    if (v == 0) return 0;  // -0 too
    return static_cast<std::int64_t>(v);
  }
  return v;
}

Json valueToJson(const Value& v) {
  switch (v.type()) {
    case Value::Type::Empty:
    case Value::Type::Null:
      return nullptr;
    case Value::Type::Integer:
      return v.integer();
    case Value::Type::Long:
      return v.longValue();
    case Value::Type::Double:
      return numberToJson(v.dbl());
    case Value::Type::String:
      return v.str();
    case Value::Type::Date:
      return formatDate(v.date());
    case Value::Type::Boolean:
      return v.boolean();
  }
  return nullptr;
}

Value propertyFromJson(const Json& j, PropertyType type, std::string_view where) {
  switch (type) {
    case PropertyType::Double:
      if (!j.is_number()) wrongKind(where, "a number", j);
      return Value(j.get<double>());
    case PropertyType::String:
      if (!j.is_string()) wrongKind(where, "a string", j);
      return Value(j.get<std::string>());
    case PropertyType::Integer: {
      if (!j.is_number()) wrongKind(where, "a 16-bit integer", j);
      const double d = j.get<double>();
      if (d != std::trunc(d) || d < std::numeric_limits<std::int16_t>::min() ||
          d > std::numeric_limits<std::int16_t>::max())
        wrongKind(where, "a 16-bit integer", j);
      return Value(static_cast<std::int16_t>(d));
    }
    case PropertyType::Date: {
      std::optional<VbDate> date;
      if (j.is_string()) date = parseDate(j.get_ref<const std::string&>());
      if (!date) wrongKind(where, "a date \"YYYY-MM-DD\" or \"YYYY-MM-DD HH:MM:SS\"", j);
      return Value(*date);
    }
  }
  throw std::logic_error("unknown property type");
}

const EntityClass* findEntityClassIgnoreCase(std::string_view name) {
  for (const EntityClass* cls : entityClasses())
    if (equalsIgnoreCase(cls->name, name)) return cls;
  return nullptr;
}

const EntityClass& parameterClass(const ParamInfo& param) {
  if (const EntityClass* cls = findEntityClassIgnoreCase(param.entityClass)) return *cls;
  throw ProtocolError(std::string(param.name) + ": unknown entity class " + std::string(param.entityClass));
}

Json entityToJson(const Entity& entity, bool withClass) {
  if (entity.isNothing()) return nullptr;
  const EntityClass& cls = entity.entityClass();
  Json j = Json::object();
  // A class's property names are distinct: appending skips the ordered map's search for each key, which
  // a list of a hundred entities otherwise pays some two thousand times per answer.
  auto& fields = j.get_ref<Json::object_t&>();
  fields.reserve(cls.properties.size() + (withClass ? 1 : 0));
  if (withClass) fields.emplace_back("$class", cls.name);
  for (std::size_t i = 0; i < cls.properties.size(); ++i)
    fields.emplace_back(std::string(cls.properties[i].name), valueToJson(entity.getAt(i)));
  return j;
}

Entity entityFromJson(const Json& j, const EntityClass& cls, std::string_view where, bool anyClass) {
  if (j.is_null()) return newNativeEntity(cls);
  if (!j.is_object()) wrongKind(where, std::string("an object (") + std::string(cls.name) + ")", j);
  const EntityClass* chosen = &cls;
  if (auto it = j.find("$class"); it != j.end()) {
    if (!it->is_string()) wrongKind(std::string(where) + ".$class", "an entity class name", *it);
    const std::string& name = it->get_ref<const std::string&>();
    const EntityClass* named = findEntityClassIgnoreCase(name);
    if (!named) throw ProtocolError(std::string(where) + ": unknown entity class " + name);
    if (named != &cls && !anyClass)
      throw ProtocolError(std::string(where) + ": expected an entity of " + std::string(cls.name) + ", got " +
                          std::string(named->name));
    chosen = named;
  }
  Entity entity = newNativeEntity(*chosen);
  std::vector<bool> seen(chosen->properties.size());
  for (auto it = j.begin(); it != j.end(); ++it) {
    if (it.key() == "$class") continue;
    const std::optional<std::size_t> index = chosen->find(it.key());
    if (!index)
      throw ProtocolError(std::string(where) + ": " + std::string(chosen->name) + " has no property " +
                          it.key());
    const PropertyInfo& property = chosen->properties[*index];
    if (seen[*index])
      throw ProtocolError(std::string(where) + ": property " + std::string(property.name) + " given twice");
    seen[*index] = true;
    entity.putAt(*index, propertyFromJson(it.value(), property.type,
                                          std::string(where) + "." + std::string(property.name)));
  }
  return entity;
}

Json collectionToJson(const Collection& collection, const EntityClass& cls) {
  Json j = Json::array();
  j.get_ref<Json::array_t&>().reserve(static_cast<std::size_t>(std::max(collection.Count(), 0)));
  for (std::int32_t i = 1; i <= collection.Count(); ++i) {
    const Entity item = collection.Item(i);
    j.push_back(entityToJson(item, !item.isNothing() && &item.entityClass() != &cls));
  }
  return j;
}

std::shared_ptr<Collection> collectionFromJson(const Json& j, const EntityClass& cls,
                                               std::string_view where) {
  auto collection = std::make_shared<Collection>();
  if (j.is_null()) return collection;
  if (!j.is_array()) wrongKind(where, std::string("an array of ") + std::string(cls.name), j);
  for (std::size_t i = 0; i < j.size(); ++i)
    collection->Add(entityFromJson(j[i], cls, std::string(where) + "[" + std::to_string(i) + "]", true));
  return collection;
}

Argument argumentFromJson(const Json* j, const ParamInfo& param) {
  static const Json kNull;
  const Json& given = j ? *j : kNull;
  const std::string where(param.name);
  switch (param.kind) {
    case ParamKind::Entity:
      return entityFromJson(given, parameterClass(param), where);
    case ParamKind::Collection:
      return collectionFromJson(given, parameterClass(param), where);
    case ParamKind::DoubleArray: {
      std::vector<double> values;
      if (given.is_null()) return values;
      if (!given.is_array()) wrongKind(where, "an array of numbers", given);
      for (std::size_t i = 0; i < given.size(); ++i) {
        if (!given[i].is_number()) wrongKind(where + "[" + std::to_string(i) + "]", "a number", given[i]);
        values.push_back(given[i].get<double>());
      }
      return values;
    }
    default: {
      const PropertyType type = plainType(param.kind);
      if (given.is_null()) return initialValue(type);
      return propertyFromJson(given, type, where);
    }
  }
}

Json argumentToJson(const Argument& arg, const ParamInfo& param) {
  if (const auto* v = std::get_if<Value>(&arg)) return valueToJson(*v);
  if (const auto* e = std::get_if<Entity>(&arg)) {
    return entityToJson(*e, !e->isNothing() && &e->entityClass() != &parameterClass(param));
  }
  if (const auto* c = std::get_if<std::shared_ptr<Collection>>(&arg))
    return *c ? collectionToJson(**c, parameterClass(param)) : Json(nullptr);
  Json j = Json::array();
  for (double d : std::get<std::vector<double>>(arg)) j.push_back(numberToJson(d));
  return j;
}

}  // namespace tovrand::cli
