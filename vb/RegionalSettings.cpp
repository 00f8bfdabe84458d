#include "vb/RegionalSettings.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tovrand {

namespace {

std::string padded(int value, std::size_t width) {
  std::string digits = std::to_string(value);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

// Expands a Windows date/time picture: runs of y, M, d, H, h, m, s and t are fields, text in single
// quotes and every other character are copied as they are.
std::string formatPicture(const std::string& picture, const DateParts& parts) {
  std::string out;
  std::size_t i = 0;
  while (i < picture.size()) {
    const char c = picture[i];
    if (c == '\'') {
      const std::size_t close = picture.find('\'', i + 1);
      const std::size_t end = close == std::string::npos ? picture.size() : close;
      out.append(picture, i + 1, end - i - 1);
      i = end == picture.size() ? end : end + 1;
      continue;
    }
    std::size_t run = 1;
    while (i + run < picture.size() && picture[i + run] == c) ++run;
    switch (c) {
      case 'y':
        if (run >= 3)
          out += padded(parts.year, 4);
        else
          out += padded(parts.year % 100, run);
        break;
      case 'M':
        out += padded(parts.month, run >= 2 ? 2 : 1);
        break;
      case 'd':
        out += padded(parts.day, run >= 2 ? 2 : 1);
        break;
      case 'H':
        out += padded(parts.hour, run >= 2 ? 2 : 1);
        break;
      case 'h': {
        const int hour12 = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
        out += padded(hour12, run >= 2 ? 2 : 1);
        break;
      }
      case 'm':
        out += padded(parts.minute, run >= 2 ? 2 : 1);
        break;
      case 's':
        out += padded(parts.second, run >= 2 ? 2 : 1);
        break;
      case 't': {
        const std::string marker = parts.hour < 12 ? "AM" : "PM";
        out += run >= 2 ? marker : marker.substr(0, 1);
        break;
      }
      default:
        out.append(run, c);
        break;
    }
    i += run;
  }
  return out;
}

std::mutex& settingsMutex() {
  static std::mutex mutex;
  return mutex;
}

// Replaced as a whole so that a reference handed out by current() stays valid while readers use it.
std::shared_ptr<const RegionalSettings>& settingsSlot() {
  static std::shared_ptr<const RegionalSettings> slot = std::make_shared<const RegionalSettings>();
  return slot;
}

}  // namespace

std::string RegionalSettings::formatShortDate(VbDate date) const {
  return formatPicture(shortDate, dateParts(date));
}

std::string RegionalSettings::formatLongTime(VbDate date) const {
  return formatPicture(longTime, dateParts(date));
}

std::string RegionalSettings::generalDate(VbDate date) const {
  const DateParts parts = dateParts(date);
  const bool zeroDay = parts.year == 1899 && parts.month == 12 && parts.day == 30;
  if (zeroDay) return formatPicture(longTime, parts);
  if (parts.hour == 0 && parts.minute == 0 && parts.second == 0) return formatPicture(shortDate, parts);
  return formatPicture(shortDate, parts) + " " + formatPicture(longTime, parts);
}

const RegionalSettings& RegionalSettings::current() {
  std::lock_guard lock(settingsMutex());
  return *settingsSlot();
}

void RegionalSettings::setCurrent(RegionalSettings settings) {
  auto replacement = std::make_shared<const RegionalSettings>(std::move(settings));
  std::lock_guard lock(settingsMutex());
  // The settings replaced are kept alive: references returned by current() may still be in use.
  static std::vector<std::shared_ptr<const RegionalSettings>> retired;
  retired.push_back(std::move(settingsSlot()));
  settingsSlot() = std::move(replacement);
}

}  // namespace tovrand
