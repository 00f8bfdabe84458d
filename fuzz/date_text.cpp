// Date texts, wherever the component reads them: CDate's text forms (parseDateText), the engine's
// reading of the driver's DATE, DATETIME and TIME texts (parseTemporal) and the command line's date
// arguments (parseDate). None of them may do anything undefined on any text, each gives a date a VB
// Date can hold, and the forms they share agree.

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/Json.h"
#include "engine/TemporalText.h"
#include "fuzz/FuzzCheck.h"
#include "vb/RegionalSettings.h"
#include "vb/Value.h"

using namespace tovrand;
using tovrand::fuzz::require;

namespace {

// 100-01-01 00:00:00 and 9999-12-31 23:59:59 as serials.
constexpr double kFirstSerial = -657434.0;
constexpr double kLastSerial = 2958465.0 + 86399.0 / 86400.0;

bool holdable(VbDate date) {
  return std::isfinite(date.serial) && date.serial >= kFirstSerial - 1.0 && date.serial <= kLastSerial;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  const VbDate fromDriver = engine::parseTemporal(text);
  require(holdable(fromDriver), "parseTemporal gives a date a VB Date can hold");

  if (const auto date = parseDateText(text)) {
    require(holdable(*date), "parseDateText gives a date a VB Date can hold");
    // What the command line writes for it reads back the same, there and through the engine.
    const std::string written = cli::formatDate(*date);
    const auto again = cli::parseDate(written);
    require(again && *again == *date, "parseDate reads back what formatDate writes");
    require(engine::parseTemporal(written) == *date, "parseTemporal reads a DATETIME text as written");
    require(parseDateText(CStr(*date)) == *date, "parseDateText reads back what CStr writes");
  }

  if (const auto date = cli::parseDate(text)) {
    require(holdable(*date), "parseDate gives a date a VB Date can hold");
    const std::string written = cli::formatDate(*date);
    require(engine::parseTemporal(written) == *date, "parseTemporal reads a DATETIME text as written");
    require(parseDateText(written) == *date, "parseDateText reads the command line's date text");
    // The date part alone, as the driver gives a DATE column.
    require(engine::parseTemporal(std::string_view(written).substr(0, 10)) == dateOnly(*date),
            "parseTemporal reads a DATE text as its midnight");
  }
  return 0;
}
