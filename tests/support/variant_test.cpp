#include <gtest/gtest.h>

#include "common/test_support.h"

#include "xun/support/dictionary.h"
#include "xun/support/variant.h"

namespace xun {
namespace {

using testing::RaisedError;

TEST(Variant, KindsAndMissing) {
  EXPECT_TRUE(Variant().IsEmpty());
  EXPECT_TRUE(Variant::Null().IsNull());
  EXPECT_TRUE(Variant::Missing().IsMissing());
  EXPECT_TRUE(Variant::Missing().IsError());
  EXPECT_FALSE(Variant(ErrorValue{5}).IsMissing());
  EXPECT_EQ(Variant(int16_t{1}).Kind(), VariantKind::Integer);
  EXPECT_EQ(Variant(1).Kind(), VariantKind::Long);
  EXPECT_EQ(Variant(1.0f).Kind(), VariantKind::Single);
  EXPECT_EQ(Variant("x").Kind(), VariantKind::String);
  EXPECT_EQ(Variant(nullptr).Kind(), VariantKind::Object);
  EXPECT_EQ(Variant(VariantArray(0, {Variant(1)})).Kind(), VariantKind::Array);
  // Same value of another kind is another variant.
  EXPECT_NE(Variant(int16_t{1}), Variant(1));
}

TEST(Variant, TextForms) {
  EXPECT_EQ(Variant().ToText(), "");
  EXPECT_EQ(Variant(true).ToText(), "True");
  EXPECT_EQ(Variant(int16_t{-5}).ToText(), "-5");
  EXPECT_EQ(Variant(uint8_t{255}).ToText(), "255");
  EXPECT_EQ(Variant(2.5).ToText(), "2.5");
  EXPECT_EQ(Variant(Currency::FromDouble(-1.5)).ToText(), "-1.5");
  EXPECT_EQ(Variant(Currency{12345}).ToText(), "1.2345");
  EXPECT_EQ(Variant(Decimal{12345, 0, 3, true}).ToText(), "-12.345");
  EXPECT_EQ(Variant(Decimal{5, 0, 3, false}).ToText(), "0.005");
  EXPECT_EQ(Variant(Decimal{0, 1, 0, false}).ToText(), "18446744073709551616");
  EXPECT_EQ(RaisedError([] { Variant::Null().ToText(); }), kErrInvalidUseOfNull);
  EXPECT_EQ(RaisedError([] { Variant::Missing().ToText(); }), kErrTypeMismatch);
  EXPECT_EQ(RaisedError([] { Variant(Dictionary::Create()).ToText(); }), kErrTypeMismatch);
}

TEST(Variant, GeneralDate) {
  // Day 1 of the serial is 31 December 1899.
  EXPECT_EQ(FormatGeneralDate(Date{1.0}), "12/31/1899");
  EXPECT_EQ(FormatGeneralDate(Date{46348.5}), "11/22/2026 12:00:00 PM");
  EXPECT_EQ(FormatGeneralDate(Date{46348.0 + 10.0 / 24 + 49.0 / 1440 + 21.0 / 86400}),
            "11/22/2026 10:49:21 AM");
  EXPECT_EQ(FormatGeneralDate(Date{0.25}), "6:00:00 AM");
  EXPECT_EQ(FormatGeneralDate(Date{0.0}), "12:00:00 AM");
}

TEST(Variant, NumberConversions) {
  EXPECT_EQ(Variant(" 12 ").ToDouble(), 12);
  EXPECT_EQ(Variant("true").ToDouble(), -1);
  EXPECT_EQ(Variant(true).ToInteger(), -1);
  EXPECT_EQ(Variant(2.5).ToInteger(), 2);
  EXPECT_EQ(Variant("3.5").ToLong(), 4);
  EXPECT_EQ(RaisedError([] { Variant("12abc").ToDouble(); }), kErrTypeMismatch);
  EXPECT_EQ(RaisedError([] { Variant(40000).ToInteger(); }), kErrOverflow);
  EXPECT_EQ(RaisedError([] { Variant::Missing().ToDouble(); }), kErrTypeMismatch);
  EXPECT_TRUE(Variant("-1").ToBoolean());
  EXPECT_FALSE(Variant("False").ToBoolean());
  EXPECT_EQ(RaisedError([] { Variant("yes").ToBoolean(); }), kErrTypeMismatch);
}

TEST(Variant, ObjectsAreSharedNotCopied) {
  auto dictionary = Dictionary::Create();
  Variant v(dictionary);
  EXPECT_EQ(v.GetObject<Dictionary>(), dictionary);
  EXPECT_EQ(Variant(v), v);
  EXPECT_EQ(Variant(nullptr).GetObject<Dictionary>(), nullptr);
}

TEST(BoundedArray, BoundsAndUnallocatedState) {
  BoundedArray<int> none;
  EXPECT_FALSE(none.IsAllocated());
  EXPECT_EQ(RaisedError([&] { none.LBound(); }), kErrSubscript);
  BoundedArray<int> empty(0, {});
  EXPECT_TRUE(empty.IsAllocated());
  EXPECT_EQ(empty.UBound(), -1);
  BoundedArray<int> a(5, {10, 20, 30});
  EXPECT_EQ(a.LBound(), 5);
  EXPECT_EQ(a.UBound(), 7);
  EXPECT_EQ(a[6], 20);
  EXPECT_EQ(RaisedError([&] { (void)a[4]; }), kErrSubscript);
  EXPECT_EQ(RaisedError([&] { (void)a[8]; }), kErrSubscript);
  EXPECT_EQ(RaisedError([] { BoundedArray<int>(INT32_MAX, {1, 2}); }), kErrOverflow);
}

}  // namespace
}  // namespace xun
