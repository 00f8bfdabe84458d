// The engine's reading of the driver's DATE, DATETIME and TIME texts, on texts no server sends too.
#include <gtest/gtest.h>

#include "engine/TemporalText.h"

namespace tovrand::test {
namespace {

using engine::parseTemporal;

constexpr double kSecondsPerDay = 86400.0;

TEST(TemporalText, TheLongestTimesATimeColumnHoldsReadWhole) {
  EXPECT_DOUBLE_EQ(parseTemporal("838:59:59").serial, (838 * 3600 + 59 * 60 + 59) / kSecondsPerDay);
  EXPECT_DOUBLE_EQ(parseTemporal("-838:59:59").serial, -(838 * 3600 + 59 * 60 + 59) / kSecondsPerDay);
}

TEST(TemporalText, HourDigitsBeyondWhatATimeHoldsAreLeftUnread) {
  // Read whole, these digits overflowed the hour count (fuzz/regressions/date_text/time-hours-overflow).
  EXPECT_DOUBLE_EQ(parseTemporal("9537033703").serial, 953 * 3600 / kSecondsPerDay);
  EXPECT_DOUBLE_EQ(parseTemporal("2026-11-22 99999999999:00:00").serial,
                   makeDate({2026, 11, 22, 999, 0, 0}).serial);
}

TEST(TemporalText, ADatetimeAndItsZeroFormsRead) {
  EXPECT_EQ(parseTemporal("2008-05-15 10:30:00"), makeDate({2008, 5, 15, 10, 30, 0}));
  EXPECT_EQ(parseTemporal("2008-05-15"), makeDate({2008, 5, 15}));
  EXPECT_EQ(parseTemporal("0000-00-00 00:00:00"), VbDate{});
  EXPECT_DOUBLE_EQ(parseTemporal("0000-00-00 12:00:00").serial, 0.5);
}

}  // namespace
}  // namespace tovrand::test
