#pragma once

#include <string>

#include "vb/Value.h"

namespace tovrand {

// The regional settings dates are written with: a short date pattern and a long time pattern in the
// Windows picture format (yyyy, yy, M, MM, d, dd, H, HH, h, hh, m, mm, s, ss, tt).
// The default is the zh-CN installation the component was built for: "yyyy-M-d" and "H:mm:ss".
struct RegionalSettings {
  std::string shortDate = "yyyy-M-d";
  std::string longTime = "H:mm:ss";

  // General date: time only when the date part is the zero date, date only when there is no time
  // part, else short date, a blank and long time.
  std::string generalDate(VbDate date) const;
  std::string formatShortDate(VbDate date) const;
  std::string formatLongTime(VbDate date) const;

  // The process's settings (what CStr of a date uses). Set once at start-up by the host.
  static const RegionalSettings& current();
  static void setCurrent(RegionalSettings settings);
};

}  // namespace tovrand
