// The value cleaner's list of character codes: every code point is a character, and a code that
// names none removes nothing without spoiling the rest of the value.
#include <gtest/gtest.h>

#include <string>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

std::string Clean(const std::string& value, const std::string& codes) {
  return basTemplate::CleanTemplateValues(value, true, codes);
}

TEST(CleanValues, CodesAreCodePoints) {
  testing::ScopedHandler handler;
  // Beyond the 16-bit signed range, the last of the Basic Multilingual Plane, and beyond it.
  EXPECT_EQ(Clean("a\u8000b\u8000", "32768"), "ab");
  EXPECT_EQ(Clean("a\uFFFFb", "65535"), "ab");
  EXPECT_EQ(Clean("smile \U0001F600!", "128512"), "smile !");
  EXPECT_EQ(Clean("x\U00010000y\U0010FFFFz", "65536,1114111"), "xyz");
  // Mixed with ASCII codes, all in one list, blanks around the codes allowed.
  EXPECT_EQ(Clean("(\u00E9t\u00E9).", " 40 , 41,233,46"), "t");
  // Through the template's own member too.
  EXPECT_EQ(clsXUNTemplate::Create()->CleanValues("\u9000x", true, "36864").ToText(), "x");
  EXPECT_TRUE(handler.reports().empty());
}

TEST(CleanValues, CodesThatNameNoCharacterRemoveNothing) {
  testing::ScopedHandler handler;
  for (const char* codes : {"-1", "55296", "57343", "1114112", "99999999999", "1e400"}) {
    SCOPED_TRACE(codes);
    EXPECT_EQ(Clean("keep (this)", std::string(codes) + ",40,41"), "keep this");
  }
  EXPECT_TRUE(handler.reports().empty()) << "nothing to report: the list just names nothing";
}

}  // namespace
}  // namespace xun
