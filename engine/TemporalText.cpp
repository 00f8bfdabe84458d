#include "engine/TemporalText.h"

#include <cstddef>

#include "vb/VbError.h"

namespace tovrand::engine {

namespace {

int digitsAt(std::string_view text, std::size_t at, std::size_t count) {
  int v = 0;
  for (std::size_t i = at; i < at + count && i < text.size(); ++i) v = v * 10 + (text[i] - '0');
  return v;
}

}  // namespace

VbDate parseTemporal(std::string_view text) {
  auto isDigit = [&](std::size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
  DateParts parts;
  bool zeroDate = false;
  std::size_t timeAt = std::string_view::npos;
  if (text.size() >= 10 && text[4] == '-' && text[7] == '-') {
    parts.year = digitsAt(text, 0, 4);
    parts.month = digitsAt(text, 5, 2);
    parts.day = digitsAt(text, 8, 2);
    zeroDate = parts.year == 0 || parts.month == 0 || parts.day == 0;
    if (text.size() > 11) timeAt = 11;
  } else {
    timeAt = 0;
    zeroDate = true;
  }
  double seconds = 0;
  if (timeAt != std::string_view::npos) {
    bool negative = timeAt < text.size() && text[timeAt] == '-';
    std::size_t i = timeAt + (negative ? 1 : 0);
    // A TIME holds at most 838 hours: more digits than that are no hours a driver gives, and are
    // left unread rather than let the count overflow.
    int h = 0;
    for (int digits = 0; digits < 3 && isDigit(i); ++digits) h = h * 10 + (text[i++] - '0');
    int m = 0, s = 0;
    if (i < text.size() && text[i] == ':') {
      m = digitsAt(text, i + 1, 2);
      i += 3;
    }
    if (i < text.size() && text[i] == ':') s = digitsAt(text, i + 1, 2);
    seconds = (h * 3600.0 + m * 60.0 + s) * (negative ? -1 : 1);
    if (!zeroDate) {
      parts.hour = h;
      parts.minute = m;
      parts.second = s;
    }
  }
  if (zeroDate) return VbDate{seconds / 86400.0};
  try {
    return makeDate(parts);
  } catch (const VbError&) {
    // Outside the years a VB date can hold (before 100): read as the zero date.
    return VbDate{0.0};
  }
}

}  // namespace tovrand::engine
