#include <gtest/gtest.h>

#include <string>

#include "vb/Text.h"

namespace tovrand {
namespace {

// "生产订单" (production order) and U+1F600 as UTF-8 bytes.
const std::string kChinese = "\xE7\x94\x9F\xE4\xBA\xA7\xE8\xAE\xA2\xE5\x8D\x95";
const std::string kEmoji = "\xF0\x9F\x98\x80";

TEST(EqualsIgnoreCase, MatchesAsciiLettersOfEitherCase) {
  EXPECT_TRUE(equalsIgnoreCase("F_ProdNo", "f_prodno"));
  EXPECT_TRUE(equalsIgnoreCase("F_PRODNO", "F_ProdNo"));
  EXPECT_TRUE(equalsIgnoreCase("", ""));
  EXPECT_FALSE(equalsIgnoreCase("F_ProdNo", "F_ProdNo2"));
  EXPECT_FALSE(equalsIgnoreCase("F_ProdNo", "F_ItemNo"));
  EXPECT_FALSE(equalsIgnoreCase("a[", "A{"));  // only letters fold
}

TEST(EqualsIgnoreCase, NonAsciiBytesMustMatchExactly) {
  EXPECT_TRUE(equalsIgnoreCase(kChinese, kChinese));
  EXPECT_FALSE(equalsIgnoreCase("\xC3\xA9", "\xC3\x89"));  // é and É are not folded
}

TEST(ToLowerAscii, LowersOnlyAsciiLetters) {
  EXPECT_EQ(toLowerAscii("F_ProdNo 12 ABC"), "f_prodno 12 abc");
  EXPECT_EQ(toLowerAscii("\xC3\x89" + kChinese), "\xC3\x89" + kChinese);
}

TEST(Utf16, AsciiMapsUnitForUnit) {
  EXPECT_EQ(toUtf16("abc"), u"abc");
}

TEST(Utf16, ChineseTextRoundTrips) {
  EXPECT_EQ(toUtf16(kChinese), u"\u751F\u4EA7\u8BA2\u5355");
  EXPECT_EQ(toUtf8(toUtf16(kChinese)), kChinese);
}

TEST(Utf16, EmojiBecomesASurrogatePairAndBack) {
  const std::u16string wide = toUtf16(kEmoji);
  ASSERT_EQ(wide.size(), 2u);
  EXPECT_EQ(wide[0], 0xD83D);
  EXPECT_EQ(wide[1], 0xDE00);
  EXPECT_EQ(toUtf8(wide), kEmoji);
}

TEST(Utf16, MixedTextRoundTrips) {
  const std::string mixed = "F_ItemNo='" + kChinese + kEmoji + "\xC3\xA9'";
  EXPECT_EQ(toUtf8(toUtf16(mixed)), mixed);
  EXPECT_EQ(toUtf16(mixed).size(), 10u + 4u + 2u + 1u + 1u);
}

TEST(Utf16, TwoAndThreeByteBoundaries) {
  EXPECT_EQ(toUtf16("\xC2\x80"), std::u16string(1, u'\u0080'));
  EXPECT_EQ(toUtf16("\xDF\xBF"), std::u16string(1, u'\u07FF'));
  EXPECT_EQ(toUtf16("\xEF\xBF\xBF"), std::u16string(1, u'\uFFFF'));
  EXPECT_EQ(toUtf16("\xF4\x8F\xBF\xBF"), u"\U0010FFFF");
}

TEST(Utf16, InvalidUtf8BecomesReplacementCharacters) {
  EXPECT_EQ(toUtf16("a\xFF"
                    "b"),
            u"a\uFFFDb");
  EXPECT_EQ(toUtf16("\x80"), u"\uFFFD");                                // stray continuation byte
  EXPECT_EQ(toUtf16("\xC0\xAF"), u"\uFFFD\uFFFD");                      // overlong form
  EXPECT_EQ(toUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");            // encoded surrogate
  EXPECT_EQ(toUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");  // beyond U+10FFFF
  EXPECT_EQ(toUtf16("x\xE7\x94"), u"x\uFFFD\uFFFD");                    // truncated at the end
}

TEST(Utf8, LoneSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(toUtf8(std::u16string(1, char16_t{0xD83D})), "\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(std::u16string{char16_t{0xDE00}, u'a'}),
            "\xEF\xBF\xBD"
            "a");
}

TEST(CharacterCount, CountsCodePointsNotBytes) {
  EXPECT_EQ(characterCount(""), 0u);
  EXPECT_EQ(characterCount("abc"), 3u);
  EXPECT_EQ(characterCount(kChinese), 4u);
  EXPECT_EQ(characterCount(kEmoji), 1u);
  EXPECT_EQ(characterCount("A" + kChinese + kEmoji), 6u);
}

TEST(CharacterCount, EachInvalidByteCountsAsOneCharacter) {
  EXPECT_EQ(characterCount("a\xFF\x80"
                           "b"),
            4u);
}

}  // namespace
}  // namespace tovrand
