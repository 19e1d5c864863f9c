#include <gtest/gtest.h>

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
