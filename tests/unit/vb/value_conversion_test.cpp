#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "tests/support/ExpectVbError.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand {
namespace {

// Runs `statement` and checks it raises the VB run-time error with this number and description.

constexpr const char* kTypeMismatch = "Type mismatch";
constexpr const char* kInvalidUseOfNull = "Invalid use of Null";
constexpr const char* kOverflow = "Overflow";

// --- VB's run-time error descriptions

TEST(VbErrorDescriptions, StandardNumbersCarryTheRunTimeTexts) {
  EXPECT_EQ(VbError::of(5).description(), "Invalid procedure call or argument");
  EXPECT_EQ(VbError::of(6).description(), "Overflow");
  EXPECT_EQ(VbError::of(9).description(), "Subscript out of range");
  EXPECT_EQ(VbError::of(11).description(), "Division by zero");
  EXPECT_EQ(VbError::of(13).description(), "Type mismatch");
  EXPECT_EQ(VbError::of(91).description(), "Object variable or With block variable not set");
  EXPECT_EQ(VbError::of(94).description(), "Invalid use of Null");
  EXPECT_EQ(VbError::of(424).description(), "Object required");
  EXPECT_EQ(VbError::of(13).number(), 13);
  EXPECT_STREQ(VbError::of(6).what(), "Overflow");
}

// --- Double to text

TEST(CStrOfDouble, WholeNumberBelowFifteenDigitsIsPlain) {
  EXPECT_EQ(CStr(2008050001.0), "2008050001");
}

TEST(CStrOfDouble, FractionKeepsItsDigits) {
  EXPECT_EQ(CStr(2008050001.5), "2008050001.5");
}

TEST(CStrOfDouble, TenToTheFourteenIsPlain) {
  EXPECT_EQ(CStr(1E+14), "100000000000000");
}

TEST(CStrOfDouble, TenToTheFifteenUsesExponent) {
  EXPECT_EQ(CStr(1E+15), "1E+15");
}

TEST(CStrOfDouble, WholeNumbersUpToFifteenDigitsArePlainDigits) {
  EXPECT_EQ(CStr(999999999999999.0), "999999999999999");
  EXPECT_EQ(CStr(-999999999999999.0), "-999999999999999");
  EXPECT_EQ(CStr(2026110001.0), "2026110001");
  EXPECT_EQ(CStr(-7.0), "-7");
  EXPECT_EQ(CStr(-0.0), "0");
}

TEST(CStrOfDouble, WholeNumbersBeyondFifteenDigitsUseExponent) {
  EXPECT_EQ(CStr(-1E+15), "-1E+15");
  EXPECT_EQ(CStr(1234567890123456.0), "1.23456789012346E+15");
}

TEST(CStrOfDouble, TenToTheMinusFourIsPlain) {
  EXPECT_EQ(CStr(0.0001), "0.0001");
}

TEST(CStrOfDouble, TenToTheMinusFiveUsesTwoDigitExponent) {
  EXPECT_EQ(CStr(0.00001), "1E-05");
}

TEST(CStrOfDouble, OneThirdHasFifteenSignificantDigits) {
  EXPECT_EQ(CStr(1.0 / 3.0), "0.333333333333333");
}

TEST(CStrOfDouble, EighteenDigitNumberRoundsToFifteenInExponentForm) {
  EXPECT_EQ(CStr(123456789012345678.0), "1.23456789012346E+17");
}

TEST(CStrOfDouble, NegativeZeroPrintsZero) {
  EXPECT_EQ(CStr(-0.0), "0");
  EXPECT_EQ(CStr(0.0), "0");
}

TEST(CStrOfDouble, NegativeNumbersAndNoGrouping) {
  EXPECT_EQ(CStr(-1.5), "-1.5");
  EXPECT_EQ(CStr(1234567.0), "1234567");
  EXPECT_EQ(CStr(-0.00001), "-1E-05");
  EXPECT_EQ(CStr(1.5E+300), "1.5E+300");
}

TEST(CStrOfDouble, FloatingNoiseIsRoundedAway) {
  EXPECT_EQ(CStr(0.1 + 0.2), "0.3");
}

// --- Other types to text

TEST(CStrOfValue, IntegerAndLongAreDecimal) {
  EXPECT_EQ(CStr(Value(std::int16_t{-32768})), "-32768");
  EXPECT_EQ(CStr(Value(std::int32_t{2147483647})), "2147483647");
  EXPECT_EQ(CStr(std::int16_t{42}), "42");
  EXPECT_EQ(CStr(std::int32_t{-7}), "-7");
}

TEST(CStrOfValue, BooleanIsTrueOrFalse) {
  EXPECT_EQ(CStr(Value(true)), "True");
  EXPECT_EQ(CStr(Value(false)), "False");
}

TEST(CStrOfValue, EmptyIsEmptyText) {
  EXPECT_EQ(CStr(Value()), "");
}

TEST(CStrOfValue, NullRaisesInvalidUseOfNull) {
  EXPECT_VB_ERROR(CStr(Value::null()), 94, kInvalidUseOfNull);
}

TEST(CStrOfValue, DoubleAndTextAsThemselves) {
  EXPECT_EQ(CStr(Value(1E+15)), "1E+15");
  EXPECT_EQ(CStr(Value("abc")), "abc");
}

// --- Text and other values to Double

TEST(CDblOfText, EmptyTextIsTypeMismatch) {
  EXPECT_VB_ERROR(CDbl(Value("")), 13, kTypeMismatch);
}

TEST(CDblOfText, BlanksOnlyIsTypeMismatch) {
  EXPECT_VB_ERROR(CDbl(Value("   ")), 13, kTypeMismatch);
}

TEST(CDblOfText, ZeroTextIsZero) {
  EXPECT_EQ(CDbl(Value("0")), 0.0);
}

TEST(CDblOfText, NonNumericTextIsTypeMismatch) {
  EXPECT_VB_ERROR(CDbl(Value("abc")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("12abc")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("1 2")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("-")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value(".")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("1e")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("&H")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CDbl(Value("&HG")), 13, kTypeMismatch);
}

TEST(CDblOfText, DateTextIsTypeMismatch) {
  EXPECT_VB_ERROR(CDbl(Value("2008-5-15")), 13, kTypeMismatch);
}

TEST(CDblOfText, BlanksSignPointAndExponentAreRead) {
  EXPECT_EQ(CDbl(Value("  12.5  ")), 12.5);
  EXPECT_EQ(CDbl(Value("-1.5e3")), -1500.0);
  EXPECT_EQ(CDbl(Value("+2E-2")), 0.02);
  EXPECT_EQ(CDbl(Value(".5")), 0.5);
  EXPECT_EQ(CDbl(Value("7.")), 7.0);
  EXPECT_EQ(CDbl(Value("\t3\r\n")), 3.0);
  EXPECT_EQ(CDbl(Value("2008050001")), 2008050001.0);
}

TEST(CDblOfText, HexAndOctalPrefixes) {
  EXPECT_EQ(CDbl(Value("&H1F")), 31.0);
  EXPECT_EQ(CDbl(Value("&h10")), 16.0);
  EXPECT_EQ(CDbl(Value("&O17")), 15.0);
  EXPECT_EQ(CDbl(Value("&HFFFF")), -1.0);  // the 16-bit literal, as VB reads &HFFFF
  EXPECT_EQ(CDbl(Value("&H10000")), 65536.0);
}

TEST(CDblOfText, HugeExponentIsOverflow) {
  EXPECT_VB_ERROR(CDbl(Value("1e400")), 6, kOverflow);
}

TEST(CDblOfText, TinyExponentIsZero) {
  EXPECT_EQ(CDbl(Value("1e-400")), 0.0);
}

TEST(CDblOfValue, NullRaisesInvalidUseOfNull) {
  EXPECT_VB_ERROR(CDbl(Value::null()), 94, kInvalidUseOfNull);
}

TEST(CDblOfValue, EmptyIsZero) {
  EXPECT_EQ(CDbl(Value()), 0.0);
}

TEST(CDblOfValue, BooleansAreMinusOneAndZero) {
  EXPECT_EQ(CDbl(Value(true)), -1.0);
  EXPECT_EQ(CDbl(Value(false)), 0.0);
}

TEST(CDblOfValue, DateIsItsSerial) {
  EXPECT_EQ(CDbl(Value(VbDate{39583.4375})), 39583.4375);
}

TEST(CDblOfValue, IntegerAndLongWiden) {
  EXPECT_EQ(CDbl(Value(std::int16_t{-5})), -5.0);
  EXPECT_EQ(CDbl(Value(std::int32_t{100000})), 100000.0);
}

// --- CInt

TEST(CIntRounding, HalvesGoToTheEvenNeighbour) {
  EXPECT_EQ(CInt(Value(2.5)), 2);
  EXPECT_EQ(CInt(Value(3.5)), 4);
  EXPECT_EQ(CInt(Value(-2.5)), -2);
  EXPECT_EQ(CInt(Value(-3.5)), -4);
  EXPECT_EQ(CInt(Value(0.5)), 0);
  EXPECT_EQ(CInt(Value(1.5)), 2);
}

TEST(CIntRounding, OtherFractionsGoToTheNearest) {
  EXPECT_EQ(CInt(Value(2.4999)), 2);
  EXPECT_EQ(CInt(Value(2.5001)), 3);
  EXPECT_EQ(CInt(Value(-2.7)), -3);
}

TEST(CIntRange, BoundariesAreAccepted) {
  EXPECT_EQ(CInt(Value(32767.0)), 32767);
  EXPECT_EQ(CInt(Value(-32768.0)), -32768);
  EXPECT_EQ(CInt(Value(32767.49)), 32767);
  EXPECT_EQ(CInt(Value(-32768.5)), -32768);  // half to even stays inside
}

TEST(CIntRange, BeyondTheBoundariesIsOverflow) {
  EXPECT_VB_ERROR(CInt(Value(32767.5)), 6, kOverflow);  // rounds to 32768
  EXPECT_VB_ERROR(CInt(Value(32768.0)), 6, kOverflow);
  EXPECT_VB_ERROR(CInt(Value(-32769.0)), 6, kOverflow);
  EXPECT_VB_ERROR(CInt(Value(-32768.51)), 6, kOverflow);
  EXPECT_VB_ERROR(CInt(Value(std::int32_t{40000})), 6, kOverflow);
  EXPECT_VB_ERROR(CInt(Value("32768")), 6, kOverflow);
  EXPECT_VB_ERROR(CInt(Value(1e300)), 6, kOverflow);
}

TEST(CIntOfText, ReadsAndRounds) {
  EXPECT_EQ(CInt(Value("2.5")), 2);
  EXPECT_EQ(CInt(Value(" -17 ")), -17);
  EXPECT_EQ(CInt(Value("&HFFFF")), -1);
  EXPECT_EQ(CInt(Value("0")), 0);
}

TEST(CIntOfText, EmptyAndNonNumericAreTypeMismatch) {
  EXPECT_VB_ERROR(CInt(Value("")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CInt(Value(" ")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CInt(Value("x1")), 13, kTypeMismatch);
}

TEST(CIntOfValue, NullEmptyBooleanAndDate) {
  EXPECT_VB_ERROR(CInt(Value::null()), 94, kInvalidUseOfNull);
  EXPECT_EQ(CInt(Value()), 0);
  EXPECT_EQ(CInt(Value(true)), -1);
  EXPECT_EQ(CInt(Value(VbDate{2.5})), 2);
}

// --- CLng

TEST(CLngRange, BoundariesAndOverflow) {
  EXPECT_EQ(CLng(Value(2147483647.0)), 2147483647);
  EXPECT_EQ(CLng(Value(-2147483648.0)), std::numeric_limits<std::int32_t>::min());
  EXPECT_VB_ERROR(CLng(Value(2147483647.5)), 6, kOverflow);
  EXPECT_VB_ERROR(CLng(Value(-2147483649.0)), 6, kOverflow);
  EXPECT_VB_ERROR(CLng(Value("1e10")), 6, kOverflow);
}

TEST(CLngRounding, HalvesGoToTheEvenNeighbour) {
  EXPECT_EQ(CLng(Value(2.5)), 2);
  EXPECT_EQ(CLng(Value(3.5)), 4);
  EXPECT_EQ(CLng(Value(-2.5)), -2);
  EXPECT_EQ(CLng(Value(100000.5)), 100000);
}

TEST(CLngOfValue, TextNullEmptyAndBoolean) {
  EXPECT_EQ(CLng(Value("1e3")), 1000);
  EXPECT_EQ(CLng(Value("2008050001")), 2008050001);
  EXPECT_VB_ERROR(CLng(Value("")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CLng(Value::null()), 94, kInvalidUseOfNull);
  EXPECT_EQ(CLng(Value()), 0);
  EXPECT_EQ(CLng(Value(true)), -1);
}

// --- CBool

TEST(CBoolOfValue, NumbersAreFalseOnlyWhenZero) {
  EXPECT_FALSE(CBool(Value(0.0)));
  EXPECT_TRUE(CBool(Value(0.5)));
  EXPECT_TRUE(CBool(Value(std::int16_t{-1})));
  EXPECT_FALSE(CBool(Value(std::int32_t{0})));
  EXPECT_FALSE(CBool(Value()));
  EXPECT_TRUE(CBool(Value(true)));
}

TEST(CBoolOfText, TrueAndFalseInAnyCase) {
  EXPECT_TRUE(CBool(Value("True")));
  EXPECT_TRUE(CBool(Value("TRUE")));
  EXPECT_FALSE(CBool(Value("false")));
  EXPECT_FALSE(CBool(Value("False")));
}

TEST(CBoolOfText, NumericText) {
  EXPECT_TRUE(CBool(Value("1")));
  EXPECT_TRUE(CBool(Value("-2.5")));
  EXPECT_FALSE(CBool(Value("0")));
}

TEST(CBoolOfText, OtherTextIsTypeMismatch) {
  EXPECT_VB_ERROR(CBool(Value("yes")), 13, kTypeMismatch);
  EXPECT_VB_ERROR(CBool(Value("")), 13, kTypeMismatch);
}

TEST(CBoolOfValue, NullRaisesInvalidUseOfNull) {
  EXPECT_VB_ERROR(CBool(Value::null()), 94, kInvalidUseOfNull);
}

// --- Val

TEST(ValOfText, StopsAtTheFirstNonNumericCharacter) {
  EXPECT_EQ(Val("12abc"), 12.0);
}

TEST(ValOfText, TextWithoutNumberIsZero) {
  EXPECT_EQ(Val("abc"), 0.0);
}

TEST(ValOfText, EmptyTextIsZero) {
  EXPECT_EQ(Val(""), 0.0);
}

TEST(ValOfText, BlanksInsideTheNumberAreSkipped) {
  EXPECT_EQ(Val(" 1 2 3"), 123.0);
}

TEST(ValOfText, ExponentIsRead) {
  EXPECT_EQ(Val("1e3"), 1000.0);
}

TEST(ValOfText, NegativeFractionBeforeJunk) {
  EXPECT_EQ(Val("-1.5x"), -1.5);
}

TEST(ValOfText, DIsAnExponentToo) {
  EXPECT_EQ(Val("1d2"), 100.0);
}

TEST(ValOfText, HexPrefix) {
  EXPECT_EQ(Val("&H1F"), 31.0);
  EXPECT_EQ(Val("&HFFFF"), -1.0);
  EXPECT_EQ(Val("&H1Fzz"), 31.0);
}

TEST(ValOfText, OctalPrefix) {
  EXPECT_EQ(Val("&O17"), 15.0);
}

TEST(ValOfText, TabsAndLineFeedsAreSkipped) {
  EXPECT_EQ(Val("\t1\n2.\n5"), 12.5);
  EXPECT_EQ(Val("1\t2\n\n3"), 123.0);
}

TEST(ValOfText, CarriageReturnEndsTheNumber) {
  EXPECT_EQ(Val("12\r3"), 12.0);
  EXPECT_EQ(Val("\t1\r\n2.\n5"), 1.0);
  EXPECT_EQ(Val("1.5\r"), 1.5);
  EXPECT_EQ(Val("1e\r3"), 1.0);
}

TEST(ValOfText, LeadingCarriageReturnLeavesNoNumber) {
  EXPECT_EQ(Val("\r12"), 0.0);
  EXPECT_EQ(Val(" \r\n12"), 0.0);
  EXPECT_EQ(Val("-\r4"), 0.0);
  EXPECT_EQ(Val("&H\r1F"), 0.0);
}

TEST(ValOfText, CarriageReturnEndsAHexadecimalLiteral) {
  EXPECT_EQ(Val("&H1\rF"), 1.0);
}

TEST(ValOfText, CDblStillTrimsCarriageReturnsAroundANumber) {
  EXPECT_EQ(CDbl(Value("\r\n12\r\n")), 12.0);
  EXPECT_EQ(Val("12\r\n"), 12.0);
}

TEST(ValOfText, SecondDecimalPointEndsTheNumber) {
  EXPECT_EQ(Val("1.2.3"), 1.2);
}

TEST(ValOfText, ExponentLetterWithoutDigitsEndsTheNumber) {
  EXPECT_EQ(Val("1e"), 1.0);
  EXPECT_EQ(Val("2ex"), 2.0);
  EXPECT_EQ(Val("3e-"), 3.0);
}

TEST(ValOfText, SignsAndLeadingPoint) {
  EXPECT_EQ(Val("+3"), 3.0);
  EXPECT_EQ(Val(".5"), 0.5);
  EXPECT_EQ(Val("- 4"), -4.0);
  EXPECT_EQ(Val("--4"), 0.0);
  EXPECT_EQ(Val("1,000"), 1.0);
}

TEST(ValOfText, NeverRaises) {
  EXPECT_NO_THROW(Val("1e400"));
  EXPECT_NO_THROW(Val("&H"));
  EXPECT_EQ(Val("&H"), 0.0);
  EXPECT_EQ(Val("&"), 0.0);
}

// --- describe, IsNull, IIfNull

TEST(Describe, EmptyNullAndTextForms) {
  EXPECT_EQ(describe(Value()), "Empty");
  EXPECT_EQ(describe(Value::null()), "Null");
  EXPECT_EQ(describe(Value(1.5)), "1.5");
  EXPECT_EQ(describe(Value("Null")), "Null");
  EXPECT_EQ(describe(Value(std::int16_t{3})), "3");
  EXPECT_EQ(describe(Value(true)), "True");
  EXPECT_EQ(describe(Value(VbDate{39583.4375})), "2008-5-15 10:30:00");
}

TEST(NullTests, IsNullAndIsEmptyTellTheTwoApart) {
  EXPECT_TRUE(IsNull(Value::null()));
  EXPECT_FALSE(IsNull(Value()));
  EXPECT_TRUE(IsEmpty(Value()));
  EXPECT_FALSE(IsEmpty(Value("")));
}

TEST(NullDefaults, NullReadsAsTheDefault) {
  EXPECT_EQ(IIfNull(Value::null(), Value(0.0)), Value(0.0));
  EXPECT_EQ(IIfNull(Value(2.0), Value(0.0)), Value(2.0));
}

TEST(NullDefaults, EmptyTextDefaultInANumberIsTypeMismatch) {
  EXPECT_VB_ERROR(CDbl(IIfNull(Value::null(), Value(""))), 13, kTypeMismatch);
}

TEST(ValueTypes, EachConstructorKeepsItsType) {
  EXPECT_EQ(Value().type(), Value::Type::Empty);
  EXPECT_EQ(Value::null().type(), Value::Type::Null);
  EXPECT_EQ(Value(std::int16_t{1}).type(), Value::Type::Integer);
  EXPECT_EQ(Value(std::int32_t{1}).type(), Value::Type::Long);
  EXPECT_EQ(Value(1.0).type(), Value::Type::Double);
  EXPECT_EQ(Value("x").type(), Value::Type::String);
  EXPECT_EQ(Value(VbDate{}).type(), Value::Type::Date);
  EXPECT_EQ(Value(false).type(), Value::Type::Boolean);
}

}  // namespace
}  // namespace tovrand
