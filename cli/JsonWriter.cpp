#include "cli/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "entities/Collection.h"

namespace tovrand::cli {

namespace {

// The whole numbers numberToJson writes without a fraction.
constexpr double kExactWholeLimit = 9007199254740992.0;

void writeInteger(std::string& out, std::int64_t v) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, v).ptr;
  out.append(digits, end);
}

// Strict UTF-8 (no overlong forms, no surrogates, nothing beyond U+10FFFF), the same bytes the Json
// dump takes as they are. Anything else it replaces, which is left to it.
bool isValidUtf8(std::string_view s) {
  const auto* p = reinterpret_cast<const unsigned char*>(s.data());
  const auto* end = p + s.size();
  auto continuation = [](unsigned char c) { return (c & 0xC0) == 0x80; };
  while (p < end) {
    const unsigned char c = *p;
    if (c < 0x80) {
      ++p;
      continue;
    }
    std::size_t length = 0;
    unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      if (c == 0xE0) low = 0xA0;
      if (c == 0xED) high = 0x9F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      if (c == 0xF0) low = 0x90;
      if (c == 0xF4) high = 0x8F;
    } else {
      return false;
    }
    if (static_cast<std::size_t>(end - p) < length) return false;
    if (p[1] < low || p[1] > high) return false;
    for (std::size_t i = 2; i < length; ++i)
      if (!continuation(p[i])) return false;
    p += length;
  }
  return true;
}

void writeTwoDigits(std::string& out, int v) {
  out += static_cast<char>('0' + v / 10);
  out += static_cast<char>('0' + v % 10);
}

}  // namespace

void writeString(std::string& out, std::string_view text) {
  bool plain = true;
  bool ascii = true;
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 0x80)
      ascii = false;
    else if (c < 0x20 || c == '"' || c == '\\')
      plain = false;
  }
  if (!ascii && !isValidUtf8(text)) {
    writeJson(out, Json(std::string(text)));
    return;
  }
  out += '"';
  if (plain) {
    out += text;
  } else {
    for (const char ch : text) {
      const auto c = static_cast<unsigned char>(ch);
      switch (c) {
        case '"':
          out += "\\\"";
          break;
        case '\\':
          out += "\\\\";
          break;
        case '\b':
          out += "\\b";
          break;
        case '\f':
          out += "\\f";
          break;
        case '\n':
          out += "\\n";
          break;
        case '\r':
          out += "\\r";
          break;
        case '\t':
          out += "\\t";
          break;
        default:
          if (c < 0x20) {
            static constexpr char kHex[] = "0123456789abcdef";
            out += "\\u00";
            out += kHex[c >> 4];
            out += kHex[c & 0xF];
          } else {
            out += ch;
          }
      }
    }
  }
  out += '"';
}

void writeNumber(std::string& out, double v) {
  if (std::isfinite(v) && v == std::trunc(v) && std::fabs(v) <= kExactWholeLimit) {
    writeInteger(out, v == 0 ? 0 : static_cast<std::int64_t>(v));
    return;
  }
  if (!std::isfinite(v)) {
    out += "null";
    return;
  }
  // The shortest text that reads back as the same double, in the Json dump's own notation.
  char digits[64];
  const char* end = nlohmann::detail::to_chars(digits, digits + sizeof digits, v);
  out.append(digits, static_cast<std::size_t>(end - digits));
}

void writeDate(std::string& out, VbDate date) {
  const DateParts p = dateParts(date);
  if (p.year < 0 || p.year > 9999 || p.month < 0 || p.month > 99 || p.day < 0 || p.day > 99 || p.hour < 0 ||
      p.hour > 99 || p.minute < 0 || p.minute > 99 || p.second < 0 || p.second > 99) {
    writeString(out, formatDate(date));
    return;
  }
  out += '"';
  writeTwoDigits(out, p.year / 100);
  writeTwoDigits(out, p.year % 100);
  out += '-';
  writeTwoDigits(out, p.month);
  out += '-';
  writeTwoDigits(out, p.day);
  out += ' ';
  writeTwoDigits(out, p.hour);
  out += ':';
  writeTwoDigits(out, p.minute);
  out += ':';
  writeTwoDigits(out, p.second);
  out += '"';
}

void writeValue(std::string& out, const Value& v) {
  switch (v.type()) {
    case Value::Type::Empty:
    case Value::Type::Null:
      out += "null";
      return;
    case Value::Type::Integer:
      writeInteger(out, v.integer());
      return;
    case Value::Type::Long:
      writeInteger(out, v.longValue());
      return;
    case Value::Type::Double:
      writeNumber(out, v.dbl());
      return;
    case Value::Type::String:
      writeString(out, v.str());
      return;
    case Value::Type::Date:
      writeDate(out, v.date());
      return;
    case Value::Type::Boolean:
      out += v.boolean() ? "true" : "false";
      return;
  }
  out += "null";
}

void writeEntity(std::string& out, const Entity& entity, bool withClass) {
  if (entity.isNothing()) {
    out += "null";
    return;
  }
  const EntityClass& cls = entity.entityClass();
  out += '{';
  bool first = true;
  if (withClass) {
    out += "\"$class\":";
    writeString(out, cls.name);
    first = false;
  }
  for (std::size_t i = 0; i < cls.properties.size(); ++i) {
    if (!first) out += ',';
    first = false;
    writeString(out, cls.properties[i].name);
    out += ':';
    writeValue(out, entity.getAt(i));
  }
  out += '}';
}

void writeCollection(std::string& out, const Collection& collection, const EntityClass& cls) {
  out += '[';
  for (std::int32_t i = 1; i <= collection.Count(); ++i) {
    if (i > 1) out += ',';
    const Entity item = collection.Item(i);
    writeEntity(out, item, !item.isNothing() && &item.entityClass() != &cls);
  }
  out += ']';
}

void writeArgument(std::string& out, const Argument& arg, const ParamInfo& param) {
  if (const auto* v = std::get_if<Value>(&arg)) {
    writeValue(out, *v);
  } else if (const auto* e = std::get_if<Entity>(&arg)) {
    writeEntity(out, *e, !e->isNothing() && &e->entityClass() != &parameterClass(param));
  } else if (const auto* c = std::get_if<std::shared_ptr<Collection>>(&arg)) {
    if (*c)
      writeCollection(out, **c, parameterClass(param));
    else
      out += "null";
  } else {
    out += '[';
    bool first = true;
    for (double d : std::get<std::vector<double>>(arg)) {
      if (!first) out += ',';
      first = false;
      writeNumber(out, d);
    }
    out += ']';
  }
}

void writeJson(std::string& out, const Json& j) {
  out += j.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace tovrand::cli
