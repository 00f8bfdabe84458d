// The VB conversions on any Variant: CStr, CDbl, CInt, CLng, CDate, CBool and Val never do anything
// but answer or raise one of VB's conversion errors, and agree with one another where VB says they
// must.
//
// Input: a first byte 0x01..0x07 picks the Variant's type and the bytes after it its value (Double,
// Integer, Long, Date serial, Boolean, Empty, Null); any other input is a String of its own bytes.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "fuzz/FuzzCheck.h"
#include "vb/Value.h"

using namespace tovrand;
using tovrand::fuzz::attempt;
using tovrand::fuzz::require;

namespace {

template <class T>
T bytesAs(const std::uint8_t* data, std::size_t size) {
  T v{};
  std::memcpy(&v, data, std::min(size, sizeof v));
  return v;
}

// CDbl trims carriage returns around a number with the other blanks; Val stops at one. The two
// readings part only where a carriage return stands before the number.
bool carriageReturnBeforeNumber(std::string_view text) {
  const std::string_view lead = text.substr(0, text.find_first_not_of(" \t\r\n"));
  return lead.find('\r') != std::string_view::npos;
}

Value variantOf(const std::uint8_t* data, std::size_t size) {
  if (size > 0 && data[0] >= 0x01 && data[0] <= 0x07) {
    const std::uint8_t* rest = data + 1;
    const std::size_t n = size - 1;
    switch (data[0]) {
      case 0x01:
        return Value(bytesAs<double>(rest, n));
      case 0x02:
        return Value(bytesAs<std::int16_t>(rest, n));
      case 0x03:
        return Value(bytesAs<std::int32_t>(rest, n));
      case 0x04:
        return Value(VbDate{bytesAs<double>(rest, n)});
      case 0x05:
        return Value(n > 0 && rest[0] % 2 == 1);
      case 0x06:
        return Value();
      default:
        return Value::null();
    }
  }
  return Value(std::string(reinterpret_cast<const char*>(data), size));
}

bool isConversionError(std::int32_t number) {
  return number == vberr::kTypeMismatch || number == vberr::kInvalidUseOfNull || number == vberr::kOverflow ||
         number == vberr::kInvalidProcedureCall;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Value v = variantOf(data, size);
  std::int32_t number = 0;
  auto raised = [&] { return number == 0 || isConversionError(number); };

  const auto text = attempt([&] { return CStr(v); }, &number);
  require(raised(), "CStr raises only VB's conversion errors");
  const auto dbl = attempt([&] { return CDbl(v); }, &number);
  require(raised(), "CDbl raises only VB's conversion errors");
  const auto integer = attempt([&] { return CInt(v); }, &number);
  require(raised(), "CInt raises only VB's conversion errors");
  const auto lng = attempt([&] { return CLng(v); }, &number);
  require(raised(), "CLng raises only VB's conversion errors");
  const auto date = attempt([&] { return CDate(v); }, &number);
  require(raised(), "CDate raises only VB's conversion errors");
  attempt([&] { return CBool(v); }, &number);
  require(raised(), "CBool raises only VB's conversion errors");
  (void)describe(v);

  require(v.isNull() == !text, "CStr fails on Null and on nothing else");
  if (integer) {
    require(lng && *lng == *integer, "CLng reads whatever CInt reads, as the same number");
    require(dbl && std::nearbyint(*dbl) == *integer, "CInt is CDbl rounded half to even");
  }
  if (lng) require(dbl && std::nearbyint(*dbl) == *lng, "CLng is CDbl rounded half to even");
  // The largest number whose fifteen digits do not round past the largest double: beyond it CStr
  // writes a text such as 1.79769313486232E+308, which CDbl reads as an overflow, as VB does.
  constexpr double kLargestWrittenBack = 1.79769313486231e308;
  if (dbl && std::fabs(*dbl) <= kLargestWrittenBack && v.type() != Value::Type::Date) {
    // The text CStr writes for a number reads back as that number (to its fifteen digits).
    const auto back = attempt([&] { return CDbl(Value(CStr(*dbl))); });
    require(back.has_value(), "CDbl reads the text CStr writes for a number");
    require(std::fabs(*back - *dbl) <= std::fabs(*dbl) * 1e-14 ||
                std::fabs(*dbl) < std::numeric_limits<double>::min(),
            "a number written by CStr reads back to its fifteen digits");
  }
  if (date) {
    // Every date CDate gives can be written and read back as text.
    const std::string written = CStr(*date);
    const auto reread = parseDateText(written);
    require(reread.has_value(), "parseDateText reads every date CStr writes");
    if (v.type() == Value::Type::String)
      require(*reread == *date, "a date read from text is written and read back unchanged");
  }

  if (v.type() == Value::Type::String) {
    // Val never raises, and reads every text CDbl reads as the same number, but for one that a
    // carriage return opens: Val finds no number there.
    const double val = Val(v.str());
    if (dbl) {
      if (carriageReturnBeforeNumber(v.str()))
        require(val == 0.0, "Val finds no number after a carriage return");
      else
        require(val == *dbl, "Val reads a number text as CDbl does");
    }
    const auto parsed = parseDateText(v.str());
    require(parsed.has_value() == date.has_value(), "CDate of a text is parseDateText");
    if (parsed) require(*parsed == *date, "CDate of a text is parseDateText");
  }
  return 0;
}
