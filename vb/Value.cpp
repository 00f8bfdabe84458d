#include "vb/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "vb/RegionalSettings.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// 100-01-01 and 9999-12-31, the range of an OLE automation date.
constexpr std::int64_t kFirstDay = -657434;
constexpr std::int64_t kLastDay = 2958465;

// Days since 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's days_from_civil).
std::int64_t daysFromCivil(std::int64_t y, std::int64_t m, std::int64_t d) {
  y -= m <= 2 ? 1 : 0;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void civilFromDays(std::int64_t z, int& year, int& month, int& day) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const std::int64_t d = doy - (153 * mp + 2) / 5 + 1;
  const std::int64_t m = mp < 10 ? mp + 3 : mp - 9;
  year = static_cast<int>(yoe + era * 400 + (m <= 2 ? 1 : 0));
  month = static_cast<int>(m);
  day = static_cast<int>(d);
}

// 1899-12-30 relative to 1970-01-01.
const std::int64_t kZeroDateEpochDays = daysFromCivil(1899, 12, 30);

// The serial of a day number and a time of day: OLE keeps the time as a positive fraction even
// for days before the zero date (-1.25 is 1899-12-29 06:00).
double serialOf(std::int64_t day, std::int64_t secondsOfDay) {
  const double fraction = static_cast<double>(secondsOfDay) / kSecondsPerDay;
  return day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
}

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// What Val passes over wherever it stands, as VB's Val does. A carriage return is not among them
// (unlike the blanks CDbl trims): it ends the number, so "12" & vbCr & "3" reads as 12.
bool isSkippedByVal(char c) {
  return c == ' ' || c == '\t' || c == '\n';
}

std::string_view trimBlanks(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A hex or octal literal takes the smallest of Integer and Long its bits fit, as VB's &H literals do
// (&HFFFF is -1).
double fromHexOctBits(std::uint64_t bits) {
  if (bits <= 0xFFFF) return static_cast<double>(static_cast<std::int16_t>(static_cast<std::uint16_t>(bits)));
  if (bits <= 0xFFFFFFFF)
    return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
  return static_cast<double>(bits);
}

// Parses the digits of a &H/&O literal (after the prefix); nullopt when there is none or it overflows
// 64 bits.
std::optional<std::uint64_t> parseRadixDigits(std::string_view digits, int radix, std::size_t& used) {
  std::uint64_t bits = 0;
  used = 0;
  while (used < digits.size()) {
    const int d = hexDigit(digits[used]);
    if (d < 0 || d >= radix) break;
    if (bits > (std::numeric_limits<std::uint64_t>::max() >> (radix == 16 ? 4 : 3))) return std::nullopt;
    bits = bits * static_cast<std::uint64_t>(radix) + static_cast<std::uint64_t>(d);
    ++used;
  }
  if (used == 0) return std::nullopt;
  return bits;
}

double parseDecimal(const std::string& cleaned) {
  double result = 0.0;
  const auto [ptr, ec] = std::from_chars(cleaned.data(), cleaned.data() + cleaned.size(), result);
  (void)ptr;
  if (ec == std::errc::result_out_of_range) {
    // Underflow reads as zero; overflow is VB's error 6.
    bool nonZeroMantissa = false;
    for (char c : cleaned) {
      if (c == 'e' || c == 'E') break;
      if (c >= '1' && c <= '9') nonZeroMantissa = true;
    }
    const auto e = cleaned.find_first_of("eE");
    const bool negativeExponent = e != std::string::npos && e + 1 < cleaned.size() && cleaned[e + 1] == '-';
    if (!nonZeroMantissa || negativeExponent) return 0.0;
    throw VbError::of(vberr::kOverflow);
  }
  return result;
}

// The whole text as a number, as CDbl/CInt/CLng read it: blanks around, a sign, digits with a decimal
// point, an exponent, or a &H/&O literal. nullopt when the text is not a number.
std::optional<double> parseNumberText(std::string_view text) {
  std::string_view s = trimBlanks(text);
  if (s.size() >= 2 && s[0] == '&') {
    const char prefix = s[1];
    const int radix = (prefix == 'H' || prefix == 'h') ? 16 : (prefix == 'O' || prefix == 'o') ? 8 : 0;
    if (radix == 0) return std::nullopt;
    std::size_t used = 0;
    const auto bits = parseRadixDigits(s.substr(2), radix, used);
    if (!bits || used != s.size() - 2) return std::nullopt;
    return fromHexOctBits(*bits);
  }
  std::string cleaned;
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
    if (s[i] == '-') cleaned.push_back('-');
    ++i;
  }
  bool digits = false;
  while (i < s.size() && isDigit(s[i])) {
    cleaned.push_back(s[i++]);
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    cleaned.push_back('.');
    ++i;
    while (i < s.size() && isDigit(s[i])) {
      cleaned.push_back(s[i++]);
      digits = true;
    }
  }
  if (!digits) return std::nullopt;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    cleaned.push_back('e');
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) cleaned.push_back(s[i++]);
    bool exponentDigits = false;
    while (i < s.size() && isDigit(s[i])) {
      cleaned.push_back(s[i++]);
      exponentDigits = true;
    }
    if (!exponentDigits) return std::nullopt;
  }
  if (i != s.size()) return std::nullopt;
  return parseDecimal(cleaned);
}

// Rounds half to even (the default rounding mode), as VB's CInt/CLng do.
template <typename Int>
Int toInteger(double v) {
  if (std::isnan(v)) throw VbError::of(vberr::kOverflow);
  const double r = std::nearbyint(v);
  if (r < static_cast<double>(std::numeric_limits<Int>::min()) ||
      r > static_cast<double>(std::numeric_limits<Int>::max()))
    throw VbError::of(vberr::kOverflow);
  return static_cast<Int>(r);
}

double numberOf(const Value& v) {
  switch (v.type()) {
    case Value::Type::Empty:
      return 0.0;
    case Value::Type::Null:
      throw VbError::of(vberr::kInvalidUseOfNull);
    case Value::Type::Integer:
      return v.integer();
    case Value::Type::Long:
      return v.longValue();
    case Value::Type::Double:
      return v.dbl();
    case Value::Type::String: {
      const auto n = parseNumberText(v.str());
      if (!n) throw VbError::of(vberr::kTypeMismatch);
      return *n;
    }
    case Value::Type::Date:
      return v.date().serial;
    case Value::Type::Boolean:
      return v.boolean() ? -1.0 : 0.0;
  }
  throw VbError::of(vberr::kTypeMismatch);
}

// Reads an unsigned decimal field of 1..maxDigits digits at `i`.
bool readField(std::string_view s, std::size_t& i, int maxDigits, int& out) {
  int n = 0;
  int count = 0;
  while (i < s.size() && isDigit(s[i]) && count < maxDigits) {
    n = n * 10 + (s[i] - '0');
    ++i;
    ++count;
  }
  if (count == 0 || (i < s.size() && isDigit(s[i]))) return false;
  out = n;
  return true;
}

bool parseTime(std::string_view s, DateParts& parts) {
  std::size_t i = 0;
  if (!readField(s, i, 2, parts.hour)) return false;
  if (i >= s.size() || s[i] != ':') return false;
  ++i;
  if (!readField(s, i, 2, parts.minute)) return false;
  parts.second = 0;
  if (i < s.size() && s[i] == ':') {
    ++i;
    if (!readField(s, i, 2, parts.second)) return false;
  }
  if (i != s.size()) return false;
  return parts.hour <= 23 && parts.minute <= 59 && parts.second <= 59;
}

int daysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

bool parseDate(std::string_view s, DateParts& parts) {
  std::size_t i = 0;
  if (!readField(s, i, 4, parts.year)) return false;
  if (i >= s.size() || (s[i] != '-' && s[i] != '/')) return false;
  const char separator = s[i++];
  if (!readField(s, i, 2, parts.month)) return false;
  if (i >= s.size() || s[i] != separator) return false;
  ++i;
  if (!readField(s, i, 2, parts.day)) return false;
  if (i != s.size()) return false;
  if (parts.year < 100 || parts.year > 9999 || parts.month < 1 || parts.month > 12) return false;
  return parts.day >= 1 && parts.day <= daysInMonth(parts.year, parts.month);
}

}  // namespace

VbDate makeDate(const DateParts& parts) {
  // Out-of-range months, days and times carry over as DateSerial and TimeSerial do.
  std::int64_t monthIndex = static_cast<std::int64_t>(parts.year) * 12 + (parts.month - 1);
  const std::int64_t year = monthIndex >= 0 ? monthIndex / 12 : (monthIndex - 11) / 12;
  const std::int64_t month = monthIndex - year * 12 + 1;
  std::int64_t day = daysFromCivil(year, month, 1) + (parts.day - 1) - kZeroDateEpochDays;
  std::int64_t seconds = static_cast<std::int64_t>(parts.hour) * 3600 +
                         static_cast<std::int64_t>(parts.minute) * 60 + parts.second;
  day += seconds >= 0 ? seconds / 86400 : (seconds - 86399) / 86400;
  seconds -= (seconds >= 0 ? seconds / 86400 : (seconds - 86399) / 86400) * 86400;
  if (day < kFirstDay || day > kLastDay) throw VbError::of(vberr::kInvalidProcedureCall);
  return VbDate{serialOf(day, seconds)};
}

DateParts dateParts(VbDate date) {
  // A serial no VB date can hold (CDate and makeDate refuse them) is pinned to the range ends so
  // that splitting it stays defined.
  double serial = date.serial;
  if (std::isnan(serial)) serial = 0.0;
  constexpr double kLastSecond = 86399.4 / kSecondsPerDay;
  serial = std::clamp(serial, static_cast<double>(kFirstDay) - kLastSecond,
                      static_cast<double>(kLastDay) + kLastSecond);
  const double whole = std::trunc(serial);
  const double fraction = std::fabs(serial - whole);
  auto day = static_cast<std::int64_t>(whole);
  auto seconds = static_cast<std::int64_t>(std::llround(fraction * kSecondsPerDay));
  if (seconds >= 86400) {
    seconds -= 86400;
    ++day;
  }
  DateParts parts;
  civilFromDays(day + kZeroDateEpochDays, parts.year, parts.month, parts.day);
  parts.hour = static_cast<int>(seconds / 3600);
  parts.minute = static_cast<int>(seconds / 60 % 60);
  parts.second = static_cast<int>(seconds % 60);
  return parts;
}

VbDate dateOnly(VbDate date) {
  const DateParts parts = dateParts(date);
  const std::int64_t day = daysFromCivil(parts.year, parts.month, parts.day) - kZeroDateEpochDays;
  return VbDate{static_cast<double>(day)};
}

bool IsNull(const Value& v) {
  return v.isNull();
}
bool IsEmpty(const Value& v) {
  return v.isEmpty();
}

std::string CStr(double v) {
  if (v == 0.0) return "0";
  // A whole number of at most 15 digits is its digits under %.15G (no exponent, no point): production
  // numbers and quantities, read row after row, skip the general formatter.
  if (std::fabs(v) < 1e15 && v == std::trunc(v)) {
    std::array<char, 24> digits;
    const auto [end, ec] =
        std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<long long>(v));
    (void)ec;
    return std::string(digits.data(), end);
  }
  std::array<char, 64> buffer;
  const int n = std::snprintf(buffer.data(), buffer.size(), "%.15G", v);
  return std::string(buffer.data(), static_cast<std::size_t>(n));
}

std::string CStr(std::int16_t v) {
  return std::to_string(v);
}
std::string CStr(std::int32_t v) {
  return std::to_string(v);
}
std::string CStr(VbDate v) {
  return RegionalSettings::current().generalDate(v);
}

std::string CStr(const Value& v) {
  switch (v.type()) {
    case Value::Type::Empty:
      return {};
    case Value::Type::Null:
      throw VbError::of(vberr::kInvalidUseOfNull);
    case Value::Type::Integer:
      return CStr(v.integer());
    case Value::Type::Long:
      return CStr(v.longValue());
    case Value::Type::Double:
      return CStr(v.dbl());
    case Value::Type::String:
      return v.str();
    case Value::Type::Date:
      return CStr(v.date());
    case Value::Type::Boolean:
      return v.boolean() ? "True" : "False";
  }
  return {};
}

double CDbl(const Value& v) {
  return numberOf(v);
}

std::int16_t CInt(const Value& v) {
  return toInteger<std::int16_t>(numberOf(v));
}

std::int32_t CLng(const Value& v) {
  return toInteger<std::int32_t>(numberOf(v));
}

VbDate CDate(const Value& v) {
  switch (v.type()) {
    case Value::Type::Empty:
      return VbDate{};
    case Value::Type::Null:
      throw VbError::of(vberr::kInvalidUseOfNull);
    case Value::Type::Date:
      return v.date();
    case Value::Type::String: {
      const auto date = parseDateText(v.str());
      if (!date) throw VbError::of(vberr::kTypeMismatch);
      return *date;
    }
    default: {
      const double serial = numberOf(v);
      // Beyond the representable dates VB reports an overflow of the conversion.
      if (!(serial > static_cast<double>(kFirstDay - 1) && serial < static_cast<double>(kLastDay + 1)))
        throw VbError::of(vberr::kOverflow);
      return VbDate{serial};
    }
  }
}

std::optional<VbDate> parseDateText(std::string_view text) {
  const std::string_view s = trimBlanks(text);
  if (s.empty()) return std::nullopt;
  DateParts parts;
  // One pass finds both what makes the text a date and where its time starts: lists convert a text
  // to a date row after row.
  bool dated = false;
  std::size_t blank = std::string_view::npos;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char c = s[i];
    if (c == '-' || c == '/') {
      dated = true;
    } else if ((c == ' ' || c == '\t') && blank == std::string_view::npos) {
      blank = i;
    }
  }
  if (!dated) {
    if (!parseTime(s, parts)) return std::nullopt;
    return VbDate{static_cast<double>(parts.hour * 3600 + parts.minute * 60 + parts.second) / kSecondsPerDay};
  }
  const std::string_view datePart = s.substr(0, blank);
  if (!parseDate(datePart, parts)) return std::nullopt;
  if (blank != std::string_view::npos && !parseTime(trimBlanks(s.substr(blank)), parts)) return std::nullopt;
  return makeDate(parts);
}

bool CBool(const Value& v) {
  if (v.type() == Value::Type::Boolean) return v.boolean();
  if (v.type() == Value::Type::String) {
    const std::string_view s = trimBlanks(v.str());
    if (equalsIgnoreCase(s, "True")) return true;
    if (equalsIgnoreCase(s, "False")) return false;
  }
  return numberOf(v) != 0.0;
}

double Val(std::string_view text) {
  // Blanks, tabs and line feeds are skipped everywhere, so the text is read as if they were not there.
  std::string s;
  s.reserve(text.size());
  for (char c : text)
    if (!isSkippedByVal(c)) s.push_back(c);

  if (s.size() >= 2 && s[0] == '&') {
    const char prefix = s[1];
    const int radix = (prefix == 'H' || prefix == 'h') ? 16 : (prefix == 'O' || prefix == 'o') ? 8 : 0;
    if (radix == 0) return 0.0;
    std::size_t used = 0;
    const auto bits = parseRadixDigits(std::string_view(s).substr(2), radix, used);
    if (!bits) return 0.0;
    return fromHexOctBits(*bits);
  }

  std::string cleaned;
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
    if (s[i] == '-') cleaned.push_back('-');
    ++i;
  }
  bool digits = false;
  while (i < s.size() && isDigit(s[i])) {
    cleaned.push_back(s[i++]);
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    ++i;
    cleaned.push_back('.');
    while (i < s.size() && isDigit(s[i])) {
      cleaned.push_back(s[i++]);
      digits = true;
    }
  }
  if (!digits) return 0.0;
  // VB reads D as an exponent too; an exponent letter without digits ends the number before it.
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    std::size_t j = i + 1;
    std::string exponent = "e";
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) exponent.push_back(s[j++]);
    bool exponentDigits = false;
    while (j < s.size() && isDigit(s[j])) {
      exponent.push_back(s[j++]);
      exponentDigits = true;
    }
    if (exponentDigits) cleaned += exponent;
  }
  try {
    return parseDecimal(cleaned);
  } catch (const VbError&) {
    return cleaned.front() == '-' ? -std::numeric_limits<double>::max() : std::numeric_limits<double>::max();
  }
}

std::string describe(const Value& v) {
  if (v.isEmpty()) return "Empty";
  if (v.isNull()) return "Null";
  return CStr(v);
}

}  // namespace tovrand
