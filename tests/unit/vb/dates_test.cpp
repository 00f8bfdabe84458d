#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "tests/support/ExpectVbError.h"
#include "vb/RegionalSettings.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand {
namespace {

DateParts parts(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  DateParts p;
  p.year = year;
  p.month = month;
  p.day = day;
  p.hour = hour;
  p.minute = minute;
  p.second = second;
  return p;
}

void expectParts(const DateParts& actual, const DateParts& expected) {
  EXPECT_EQ(actual.year, expected.year);
  EXPECT_EQ(actual.month, expected.month);
  EXPECT_EQ(actual.day, expected.day);
  EXPECT_EQ(actual.hour, expected.hour);
  EXPECT_EQ(actual.minute, expected.minute);
  EXPECT_EQ(actual.second, expected.second);
}

// Installs other regional settings for one test and puts the previous ones back.
class RegionalSettingsOverride {
 public:
  explicit RegionalSettingsOverride(RegionalSettings settings) : saved_(RegionalSettings::current()) {
    RegionalSettings::setCurrent(std::move(settings));
  }
  ~RegionalSettingsOverride() { RegionalSettings::setCurrent(saved_); }
  RegionalSettingsOverride(const RegionalSettingsOverride&) = delete;
  RegionalSettingsOverride& operator=(const RegionalSettingsOverride&) = delete;

 private:
  RegionalSettings saved_;
};

RegionalSettings dayFirstTwelveHour() {
  RegionalSettings s;
  s.shortDate = "dd/MM/yyyy";
  s.longTime = "hh:mm:ss tt";
  return s;
}

// --- Serial dates

TEST(MakeDate, ZeroDateIsSerialZero) {
  EXPECT_EQ(makeDate(parts(1899, 12, 30)).serial, 0.0);
}

TEST(MakeDate, KnownSerials) {
  EXPECT_EQ(makeDate(parts(1900, 1, 1)).serial, 2.0);
  EXPECT_EQ(makeDate(parts(2008, 1, 1)).serial, 39448.0);
  EXPECT_EQ(makeDate(parts(2008, 5, 15)).serial, 39583.0);
  EXPECT_EQ(makeDate(parts(2008, 5, 15, 10, 30, 0)).serial, 39583.4375);
  EXPECT_EQ(makeDate(parts(1899, 12, 30, 18, 0, 0)).serial, 0.75);
}

TEST(MakeDate, DaysBeforeTheZeroDateKeepThePositiveTimeFraction) {
  EXPECT_EQ(makeDate(parts(1899, 12, 29, 6, 0, 0)).serial, -1.25);
  EXPECT_EQ(makeDate(parts(1899, 12, 28, 12, 0, 0)).serial, -2.5);
}

TEST(MakeDate, RangeEnds) {
  EXPECT_EQ(makeDate(parts(100, 1, 1)).serial, -657434.0);
  EXPECT_EQ(makeDate(parts(9999, 12, 31)).serial, 2958465.0);
}

TEST(MakeDate, OutsideTheRangeIsInvalidProcedureCall) {
  EXPECT_VB_ERROR(makeDate(parts(99, 12, 31)), 5, "Invalid procedure call or argument");
  EXPECT_VB_ERROR(makeDate(parts(10000, 1, 1)), 5, "Invalid procedure call or argument");
}

TEST(MakeDate, OverflowingFieldsCarryAsDateSerialDoes) {
  EXPECT_EQ(makeDate(parts(2008, 13, 1)).serial, makeDate(parts(2009, 1, 1)).serial);
  EXPECT_EQ(makeDate(parts(2008, 2, 30)).serial, makeDate(parts(2008, 3, 1)).serial);
  EXPECT_EQ(makeDate(parts(2008, 5, 15, 24, 0, 0)).serial, makeDate(parts(2008, 5, 16)).serial);
}

TEST(DateParts, SplitsSerialIntoCalendarAndClock) {
  expectParts(dateParts(VbDate{39583.4375}), parts(2008, 5, 15, 10, 30, 0));
  expectParts(dateParts(VbDate{0.0}), parts(1899, 12, 30));
  expectParts(dateParts(VbDate{-1.25}), parts(1899, 12, 29, 6, 0, 0));
  expectParts(dateParts(VbDate{60.0}), parts(1900, 2, 28));
  expectParts(dateParts(VbDate{61.0}), parts(1900, 3, 1));
  expectParts(dateParts(VbDate{makeDate(parts(2000, 2, 29)).serial}), parts(2000, 2, 29));
}

TEST(DateParts, TimesRoundToTheNearestSecond) {
  const double second = 1.0 / 86400.0;
  expectParts(dateParts(VbDate{39583.4375 + 0.4 * second}), parts(2008, 5, 15, 10, 30, 0));
  expectParts(dateParts(VbDate{39583.4375 + 0.6 * second}), parts(2008, 5, 15, 10, 30, 1));
  expectParts(dateParts(VbDate{39583.4375 - 0.4 * second}), parts(2008, 5, 15, 10, 30, 0));
}

TEST(DateParts, RoundingUpAtMidnightMovesToTheNextDay) {
  const double second = 1.0 / 86400.0;
  expectParts(dateParts(VbDate{39584.0 - 0.3 * second}), parts(2008, 5, 16));
  expectParts(dateParts(VbDate{-1.0 - (1.0 - 0.3 * second)}), parts(1899, 12, 30));
}

TEST(DateParts, RoundTripsThroughMakeDate) {
  for (int year : {100, 1899, 1900, 1999, 2000, 2008, 2024, 9999}) {
    for (int month = 1; month <= 12; ++month) {
      for (int day : {1, 15, 28}) {
        for (auto [hour, minute, second] :
             {std::tuple{0, 0, 0}, std::tuple{10, 30, 0}, std::tuple{23, 59, 59}, std::tuple{6, 0, 1},
              std::tuple{12, 0, 0}}) {
          const DateParts original = parts(year, month, day, hour, minute, second);
          expectParts(dateParts(makeDate(original)), original);
        }
      }
    }
  }
}

TEST(DateParts, SerialsNoDateCanHoldArePinnedToTheRangeEnds) {
  EXPECT_EQ(dateParts(VbDate{1e300}).year, 9999);
  EXPECT_EQ(dateParts(VbDate{-1e300}).year, 100);
}

TEST(DateOnly, DropsTheTime) {
  EXPECT_EQ(dateOnly(VbDate{39583.4375}).serial, 39583.0);
  EXPECT_EQ(dateOnly(VbDate{0.75}).serial, 0.0);
  EXPECT_EQ(dateOnly(VbDate{-1.25}).serial, -1.0);
  EXPECT_EQ(dateOnly(VbDate{39583.0}).serial, 39583.0);
}

// --- CDate

TEST(CDateOfValue, DoubleIsTheDateOfThatSerial) {
  EXPECT_EQ(CDate(Value(39583.4375)).serial, 39583.4375);
  EXPECT_EQ(CDate(Value(std::int16_t{2})).serial, 2.0);
  EXPECT_EQ(CDate(Value(std::int32_t{39583})).serial, 39583.0);
}

TEST(CDateOfValue, NullRaisesInvalidUseOfNull) {
  EXPECT_VB_ERROR(CDate(Value::null()), 94, "Invalid use of Null");
}

TEST(CDateOfValue, EmptyIsTheZeroDate) {
  EXPECT_EQ(CDate(Value()).serial, 0.0);
}

TEST(CDateOfValue, DateIsItself) {
  EXPECT_EQ(CDate(Value(VbDate{-1.25})).serial, -1.25);
}

TEST(CDateOfValue, NumberBeyondTheDateRangeIsOverflow) {
  EXPECT_VB_ERROR(CDate(Value(2958466.0)), 6, "Overflow");
  EXPECT_VB_ERROR(CDate(Value(-657435.0)), 6, "Overflow");
  EXPECT_EQ(CDate(Value(2958465.5)).serial, 2958465.5);
}

TEST(CDateOfText, DateWithoutLeadingZeros) {
  EXPECT_EQ(CDate(Value("2008-5-15")).serial, 39583.0);
}

TEST(CDateOfText, DateWithLeadingZeros) {
  EXPECT_EQ(CDate(Value("2008-05-15")).serial, 39583.0);
}

TEST(CDateOfText, DateAndTimeWithSeconds) {
  EXPECT_EQ(CDate(Value("2008-5-15 10:30:00")).serial, 39583.4375);
}

TEST(CDateOfText, DateAndTimeWithoutSeconds) {
  EXPECT_EQ(CDate(Value("2008-5-15 10:30")).serial, 39583.4375);
}

TEST(CDateOfText, TimeOnlyHasIntegerPartZero) {
  EXPECT_EQ(CDate(Value("10:30:00")).serial, 0.4375);
  EXPECT_EQ(CDate(Value("0:00:00")).serial, 0.0);
  EXPECT_EQ(CDate(Value("18:00")).serial, 0.75);
}

TEST(CDateOfText, SlashSeparatedDate) {
  EXPECT_EQ(CDate(Value("2008/5/15")).serial, 39583.0);
  EXPECT_EQ(CDate(Value("2008/05/15 10:30:00")).serial, 39583.4375);
}

TEST(CDateOfText, SurroundingBlanksAreIgnored) {
  EXPECT_EQ(CDate(Value("  2008-5-15  ")).serial, 39583.0);
}

TEST(CDateOfText, OtherTextIsTypeMismatch) {
  for (const char* text : {"", "   ", "abc", "2008-13-1", "2008-2-30", "2007-2-29", "2008-5-15 25:00:00",
                           "2008-5-15 10:60", "2008-5-15 10:30:00 x", "2008-5/15", "39583", "2008-5", "10",
                           "10:30:61", "0000-00-00 00:00:00", "10000-1-1", "99-1-1"}) {
    EXPECT_VB_ERROR(CDate(Value(text)), 13, "Type mismatch");
  }
}

TEST(CDateOfText, LeapDayIsAccepted) {
  EXPECT_EQ(CDate(Value("2008-2-29")).serial, makeDate(parts(2008, 2, 29)).serial);
}

TEST(CDateOfText, RoundTripsThroughItsGeneralDateText) {
  for (double serial : {39583.4375, 39583.0, 0.4375, 2.0, 45000.999988425923, -1.0}) {
    const VbDate date{serial};
    EXPECT_EQ(CStr(CDate(Value(CStr(date)))), CStr(date)) << serial;
  }
}

TEST(ParseDateText, ReportsWhatItCannotRead) {
  EXPECT_FALSE(parseDateText("tomorrow").has_value());
  ASSERT_TRUE(parseDateText("2008-5-15").has_value());
  EXPECT_EQ(parseDateText("2008-5-15")->serial, 39583.0);
}

// --- General date text with the default (zh-CN) settings

TEST(GeneralDate, DateAndTime) {
  EXPECT_EQ(CStr(VbDate{39583.4375}), "2008-5-15 10:30:00");
}

TEST(GeneralDate, MidnightShowsTheDateOnly) {
  EXPECT_EQ(CStr(VbDate{39583.0}), "2008-5-15");
}

TEST(GeneralDate, ZeroDateShowsMidnightTime) {
  EXPECT_EQ(CStr(VbDate{0.0}), "0:00:00");
}

TEST(GeneralDate, TimeOnlyValueShowsTheTimeOnly) {
  EXPECT_EQ(CStr(VbDate{0.4375}), "10:30:00");
  EXPECT_EQ(CStr(VbDate{0.75}), "18:00:00");
}

TEST(GeneralDate, DateBeforeTheZeroDate) {
  EXPECT_EQ(CStr(VbDate{-1.25}), "1899-12-29 6:00:00");
}

TEST(GeneralDate, SingleDigitFieldsAreNotPadded) {
  EXPECT_EQ(CStr(makeDate(parts(2009, 1, 2, 3, 4, 5))), "2009-1-2 3:04:05");
}

TEST(GeneralDate, CStrOfDateValueUsesIt) {
  EXPECT_EQ(CStr(Value(VbDate{39583.4375})), "2008-5-15 10:30:00");
  EXPECT_EQ(CStr(Value(VbDate{0.0})), "0:00:00");
}

TEST(RegionalSettingsDefault, IsTheZhCnInstallation) {
  EXPECT_EQ(RegionalSettings::current().shortDate, "yyyy-M-d");
  EXPECT_EQ(RegionalSettings::current().longTime, "H:mm:ss");
  const RegionalSettings fresh;
  EXPECT_EQ(fresh.shortDate, "yyyy-M-d");
  EXPECT_EQ(fresh.longTime, "H:mm:ss");
}

TEST(RegionalSettingsDefault, ShortDateAndLongTimeSeparately) {
  const RegionalSettings& s = RegionalSettings::current();
  EXPECT_EQ(s.formatShortDate(VbDate{39583.4375}), "2008-5-15");
  EXPECT_EQ(s.formatLongTime(VbDate{39583.4375}), "10:30:00");
  EXPECT_EQ(s.formatShortDate(VbDate{0.0}), "1899-12-30");
}

// --- Other regional settings

TEST(RegionalSettingsPatterns, DayFirstTwelveHourClock) {
  const RegionalSettings s = dayFirstTwelveHour();
  const VbDate afternoon = makeDate(parts(2008, 5, 15, 14, 5, 9));
  EXPECT_EQ(s.generalDate(afternoon), "15/05/2008 02:05:09 PM");
  EXPECT_EQ(s.generalDate(makeDate(parts(2008, 5, 15, 0, 30, 0))), "15/05/2008 12:30:00 AM");
  EXPECT_EQ(s.generalDate(makeDate(parts(2008, 5, 15, 12, 0, 0))), "15/05/2008 12:00:00 PM");
  EXPECT_EQ(s.generalDate(makeDate(parts(2008, 5, 15))), "15/05/2008");
  EXPECT_EQ(s.generalDate(VbDate{0.0}), "12:00:00 AM");
}

TEST(RegionalSettingsPatterns, EveryPictureField) {
  RegionalSettings s;
  const VbDate date = makeDate(parts(2008, 3, 4, 5, 6, 7));
  s.shortDate = "yy.MM.dd|yyyy-M-d|y";
  EXPECT_EQ(s.formatShortDate(date), "08.03.04|2008-3-4|8");
  s.longTime = "HH:mm:ss|H:m:s|hh h t tt";
  EXPECT_EQ(s.formatLongTime(date), "05:06:07|5:6:7|05 5 A AM");
}

TEST(RegionalSettingsPatterns, QuotedTextIsLiteral) {
  RegionalSettings s;
  s.shortDate = "yyyy'y'M'm'd'd'";
  EXPECT_EQ(s.formatShortDate(makeDate(parts(2008, 5, 15))), "2008y5m15d");
}

TEST(RegionalSettingsPatterns, NonAsciiSeparatorsAreKept) {
  RegionalSettings s;
  s.shortDate = "yyyy年M月d日";
  EXPECT_EQ(s.formatShortDate(makeDate(parts(2008, 5, 15))), "2008年5月15日");
}

TEST(RegionalSettingsCurrent, CStrOfDateFollowsTheProcessSettings) {
  {
    RegionalSettingsOverride override(dayFirstTwelveHour());
    EXPECT_EQ(RegionalSettings::current().shortDate, "dd/MM/yyyy");
    EXPECT_EQ(CStr(VbDate{39583.4375}), "15/05/2008 10:30:00 AM");
    EXPECT_EQ(CStr(Value(VbDate{39583.0})), "15/05/2008");
  }
  EXPECT_EQ(CStr(VbDate{39583.4375}), "2008-5-15 10:30:00");
}

}  // namespace
}  // namespace tovrand
