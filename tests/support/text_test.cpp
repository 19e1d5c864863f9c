#include <gtest/gtest.h>

#include <random>
#include <string>

#include "xun/support/text.h"

namespace xun::text {
namespace {

TEST(Text, Windows1252RoundTripsEveryByte) {
  std::string all;
  for (int b = 0; b < 256; ++b)
    all.push_back(static_cast<char>(b));
  const std::string utf8 = Windows1252ToUtf8(all);
  bool lossless = false;
  EXPECT_EQ(Utf8ToWindows1252(utf8, &lossless), all);
  EXPECT_TRUE(lossless);
  EXPECT_EQ(Windows1252ToUtf8("\x80\x81\x9F"), "\u20AC\u0081\u0178");
}

TEST(Text, Windows1252ToUtf8EveryByteOfTheUpperHalf) {
  // 0x80 to 0x9F: the code page's own characters, and the five unassigned bytes as C1 controls.
  const char16_t c1[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                           0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
  for (int b = 0x80; b <= 0xFF; ++b) {
    const char16_t expected = b < 0xA0 ? c1[b - 0x80] : static_cast<char16_t>(b);
    EXPECT_EQ(Windows1252ToUtf8(std::string(1, static_cast<char>(b)) + "a"),
              Utf16ToUtf8(std::u16string{expected, u'a'}))
        << b;
  }
}

// The one-pass byte decoder against the code-unit one, on units of every kind: ASCII, two- and
// three-byte characters, pairs, and lone or reversed surrogates.
TEST(Text, Utf16BytesDecodeAsTheirCodeUnits) {
  std::mt19937 random(42);
  const char16_t kinds[] = {u'a', 0x00E9, 0x6771, 0xD83D, 0xDE00, 0xFFFD, 0x0000};
  for (int round = 0; round < 200; ++round) {
    std::u16string units;
    for (size_t n = random() % 12; n > 0; --n)
      units.push_back(kinds[random() % std::size(kinds)]);
    std::string le, be;
    for (const char16_t u : units) {
      le += {static_cast<char>(u & 0xFF), static_cast<char>(u >> 8)};
      be += {static_cast<char>(u >> 8), static_cast<char>(u & 0xFF)};
    }
    bool odd = true;
    EXPECT_EQ(Utf16BytesToUtf8(le, false, &odd), Utf16ToUtf8(units));
    EXPECT_FALSE(odd);
    EXPECT_EQ(Utf16BytesToUtf8(be, true), Utf16ToUtf8(units));
    EXPECT_EQ(Utf16BytesToUtf8(be + "x", true, &odd), Utf16ToUtf8(units));
    EXPECT_TRUE(odd);
  }
}

TEST(Text, Windows1252MarksWhatItCannotHold) {
  bool lossless = true;
  EXPECT_EQ(Utf8ToWindows1252("a東b?", &lossless), "a?b?");
  EXPECT_FALSE(lossless);
  EXPECT_TRUE(FitsWindows1252("Grüße €"));
  EXPECT_FALSE(FitsWindows1252("Ω"));
  EXPECT_FALSE(FitsWindows1252("😀"));
}

TEST(Text, Utf16NeverFailsOnMalformedInput) {
  // A lone surrogate, a surrogate pair, and a bad UTF-8 byte.
  EXPECT_EQ(Utf16ToUtf8(std::u16string{u'a', char16_t(0xD800), u'b'}), "a\uFFFDb");
  EXPECT_EQ(Utf16ToUtf8(u"\U0001F600"), "\U0001F600");
  EXPECT_EQ(Utf8ToUtf16("a\xFFz"), u"a\uFFFDz");
  bool odd = false;
  EXPECT_EQ(Utf16LEBytesToUtf8(std::string("A\0B\0C", 5), &odd), "AB");
  EXPECT_TRUE(odd);
  EXPECT_EQ(Utf8ToUtf16LEBytes("A€"), std::string("A\0\xAC\x20", 4));
  EXPECT_EQ(Utf16Length("a€😀"), 4u);
}

TEST(Text, CaseInsensitiveComparison) {
  EXPECT_TRUE(EqualsText("Straße", "STRASSE"));
  EXPECT_TRUE(EqualsText("ÆGIR", "ægir"));
  EXPECT_FALSE(EqualsText("a", "á"));
  EXPECT_LT(CompareText("apple", "Banana"), 0);
  EXPECT_EQ(ToUpper("[form] ä"), "[FORM] Ä");
  EXPECT_EQ(Trim("  a b \t "), "a b \t");  // the classic Trim removes spaces only
  EXPECT_EQ(ReplaceAll("a\r\nb\r\n", "\r\n", "<>"), "a<>b<>");
}

}  // namespace
}  // namespace xun::text
