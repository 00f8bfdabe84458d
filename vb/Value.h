#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tovrand {

// A VB Date: days since 1899-12-30 00:00:00 (the zero date), the time as the fraction of a day.
struct VbDate {
  double serial = 0.0;
  auto operator<=>(const VbDate&) const = default;
};

struct DateParts {
  int year = 1899, month = 12, day = 30;
  int hour = 0, minute = 0, second = 0;
};

// The date of the given calendar parts; raises 5 for a date outside 100-01-01 .. 9999-12-31.
VbDate makeDate(const DateParts& parts);
DateParts dateParts(VbDate date);
// The date part only (time dropped), as VB's DateSerial / Int(date).
VbDate dateOnly(VbDate date);

// The Variant: Empty, Null, Integer (16-bit), Long (32-bit), Double, String, Date, Boolean.
class Value {
 public:
  enum class Type { Empty, Null, Integer, Long, Double, String, Date, Boolean };

  Value() = default;
  Value(std::int16_t v) : data_(v) {}
  Value(std::int32_t v) : data_(v) {}
  Value(double v) : data_(v) {}
  Value(std::string v) : data_(std::move(v)) {}
  Value(std::string_view v) : data_(std::string(v)) {}
  Value(const char* v) : data_(std::string(v)) {}
  Value(VbDate v) : data_(v) {}
  Value(bool v) : data_(v) {}
  static Value null() { return Value(NullTag{}); }

  Type type() const { return static_cast<Type>(data_.index()); }
  bool isNull() const { return type() == Type::Null; }
  bool isEmpty() const { return type() == Type::Empty; }

  // The stored alternative; only valid for the matching type().
  std::int16_t integer() const { return std::get<std::int16_t>(data_); }
  std::int32_t longValue() const { return std::get<std::int32_t>(data_); }
  double dbl() const { return std::get<double>(data_); }
  const std::string& str() const { return std::get<std::string>(data_); }
  VbDate date() const { return std::get<VbDate>(data_); }
  bool boolean() const { return std::get<bool>(data_); }

  bool operator==(const Value&) const = default;

 private:
  struct EmptyTag {
    bool operator==(const EmptyTag&) const = default;
  };
  struct NullTag {
    bool operator==(const NullTag&) const = default;
  };
  explicit Value(NullTag t) : data_(t) {}

  std::variant<EmptyTag, NullTag, std::int16_t, std::int32_t, double, std::string, VbDate, bool> data_;
};

bool IsNull(const Value& v);
bool IsEmpty(const Value& v);

// The VB conversion functions, with VB's errors (13 Type mismatch, 94 Invalid use of Null, 6 Overflow).
// Date-to-text uses the process's RegionalSettings.
std::string CStr(const Value& v);
double CDbl(const Value& v);
std::int16_t CInt(const Value& v);  // rounds half to even
std::int32_t CLng(const Value& v);  // rounds half to even
VbDate CDate(const Value& v);
// The date a text names in the forms CDate reads ("yyyy-M-d", "yyyy/M/d", either followed by
// "H:mm" or "H:mm:ss", or a time alone); nullopt for any other text or a date out of range.
std::optional<VbDate> parseDateText(std::string_view text);
bool CBool(const Value& v);

// Val: the leading numeric part of a text (blanks, tabs and line feeds skipped anywhere, a carriage
// return ending the number like any other character; &H and &O prefixes; 0 when there is none).
// Never raises.
double Val(std::string_view text);

// The text forms VB gives when a value is concatenated into a string.
std::string CStr(double v);  // %.15G form, "-0" printed as "0"
std::string CStr(std::int16_t v);
std::string CStr(std::int32_t v);
std::string CStr(VbDate v);  // general date form of the RegionalSettings
inline std::string CStr(const std::string& v) {
  return v;
}
inline std::string CStr(const char* v) {
  return v;
}

// IIf(IsNull(v), fallback, v): the NULL-default reading of a column.
inline Value IIfNull(const Value& v, const Value& fallback) {
  return v.isNull() ? fallback : v;
}

// A readable form for diagnostics and the command-line protocol ("Empty", "Null", or the CStr text).
std::string describe(const Value& v);

}  // namespace tovrand
