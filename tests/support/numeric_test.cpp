#include <gtest/gtest.h>

#include "common/test_support.h"

#include <cmath>

#include "xun/support/numeric.h"

namespace xun {
namespace {

using testing::RaisedError;

TEST(Numeric, ValTakesTheLeadingNumberOnly) {
  EXPECT_EQ(Val("12abc"), 12);
  EXPECT_EQ(Val("  \t-3.5x"), -3.5);
  EXPECT_EQ(Val("x12"), 0);
  EXPECT_EQ(Val(""), 0);
  EXPECT_EQ(Val(".5"), 0.5);
  EXPECT_EQ(Val("1e3"), 1000);
  EXPECT_EQ(Val("1e"), 1);  // an exponent without digits is not part of the number
  EXPECT_EQ(Val("2D2"), 200);
  EXPECT_EQ(Val("+7"), 7);
  EXPECT_EQ(Val("1e-400"), 0);
  EXPECT_EQ(RaisedError([] { Val("1e400"); }), kErrOverflow);
}

// Whole numbers take a shorter path than the rest; both must read alike at its edges.
TEST(Numeric, WholeNumbersReadAsTheGeneralConversionReadsThem) {
  EXPECT_TRUE(std::signbit(Val("-0")));
  EXPECT_FALSE(std::signbit(Val("+0")));
  EXPECT_EQ(Val("-32768"), -32768);
  EXPECT_EQ(Val("0012"), 12);
  EXPECT_EQ(Val("-"), 0);
  EXPECT_EQ(Val("9007199254740993"), 9007199254740992.0);  // rounds to the nearest double
  EXPECT_EQ(Val("9007199254740993.0"), 9007199254740992.0);
  EXPECT_EQ(Val("12345678901234567890"), 12345678901234567890.0);
  EXPECT_EQ(Val("7d"), 7);
}

TEST(Numeric, NumericTextIsTheWholeTextBlanksAside) {
  EXPECT_TRUE(IsNumericText(" 12.5 "));
  EXPECT_TRUE(IsNumericText("-1E+3"));
  EXPECT_FALSE(IsNumericText("12abc"));
  EXPECT_FALSE(IsNumericText(""));
  EXPECT_FALSE(IsNumericText("."));
}

TEST(Numeric, ConversionsRoundHalvesToEven) {
  EXPECT_EQ(CInt(2.5), 2);
  EXPECT_EQ(CInt(3.5), 4);
  EXPECT_EQ(CInt(-2.5), -2);
  EXPECT_EQ(CInt(-32768.4), -32768);
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_EQ(RaisedError([] { CInt(32767.5); }), kErrOverflow);  // rounds to 32768
  EXPECT_EQ(RaisedError([] { CInt(-32768.6); }), kErrOverflow);
  EXPECT_EQ(RaisedError([] { CLng(2147483648.0); }), kErrOverflow);
  EXPECT_EQ(CLng(-2147483648.0), INT32_MIN);
}

TEST(Numeric, SixteenBitArithmeticReportsOverflow) {
  EXPECT_EQ(Add16(32766, 1), 32767);
  EXPECT_EQ(RaisedError([] { Add16(32767, 1); }), kErrOverflow);
  EXPECT_EQ(RaisedError([] { Sub16(-32768, 1); }), kErrOverflow);
  EXPECT_EQ(Mul16(-128, 256), -32768);
  EXPECT_EQ(RaisedError([] { Mul16(300, 200); }), kErrOverflow);
  EXPECT_EQ(RaisedError([] { To16(40000); }), kErrOverflow);
}

TEST(Numeric, ClassicNumberText) {
  EXPECT_EQ(FormatNumber(0.1), "0.1");
  EXPECT_EQ(FormatNumber(123456789012345.0), "123456789012345");
  EXPECT_EQ(FormatNumber(1e15), "1E+15");
  EXPECT_EQ(FormatNumber(0.0001), "0.0001");
  EXPECT_EQ(FormatNumber(0.00001), "1E-05");
  EXPECT_EQ(FormatNumber(-2.5), "-2.5");
  EXPECT_EQ(FormatNumber(1.0 / 3.0), "0.333333333333333");
  EXPECT_EQ(FormatNumber(0.1f, 7), "0.1");
}

}  // namespace
}  // namespace xun
