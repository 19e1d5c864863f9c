#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/support/value_helpers.h"

namespace {

using xun::Dictionary;
using xun::DictionaryPtr;
using xun::Variant;
using xun::testing::ScopedHandler;
namespace bp = xun::basPublic;
using Keys = std::vector<std::string>;

// Exactly one report, with this error number, at this location; clears the reports.
::testing::AssertionResult ReportedOnce(ScopedHandler& handler, int32_t number,
                                        const std::string& location) {
  const auto reports = handler.reports();
  const auto locations = handler.Locations();
  handler->reports.clear();
  if (reports.size() != 1) return ::testing::AssertionFailure() << reports.size() << " reports";
  if (locations[0] != location || !(reports[0].number == Variant(number)))
    return ::testing::AssertionFailure() << reports[0].number.ToText() << " at " << locations[0];
  return ::testing::AssertionSuccess();
}

TEST(ValueHelpersHex, RoundTripsAndOddInput) {
  ScopedHandler handler;
  for (const std::string text : {"", "AB", "Grüße", "東京", "mixed Ä 😀"})
    EXPECT_EQ(bp::HexToUnicode(bp::UnicodeToHex(text)), text);
  EXPECT_EQ(bp::UnicodeToHex("AB"), "41004200");
  EXPECT_EQ(bp::UnicodeToHex("😀"), "3DD800DE");  // the surrogate pair D83D DE00
  EXPECT_EQ(bp::HexToUnicode("é"), "");          // one character, though two bytes of UTF-8
  EXPECT_EQ(bp::HexToUnicode("4a006200"), "Jb");
  // An odd byte count keeps the last byte as a unit; an odd digit count makes it a byte.
  EXPECT_EQ(bp::HexToUnicode("410042"), "AB");
  EXPECT_EQ(bp::HexToUnicode("4100420"), "AB");
  EXPECT_EQ(bp::HexToUnicode("41004"), "A\x04");
  EXPECT_TRUE(handler.reports().empty());

  for (const std::string hex : {"4G00", " 4100", "4100\xC3\xA9"}) {
    EXPECT_EQ(bp::HexToUnicode(hex), "");
    EXPECT_TRUE(ReportedOnce(handler, 13, "basPublic.HexToUnicode")) << hex;
  }
}

TEST(ValueHelpersDictionary, ToStringWritesValuesOnly) {
  ScopedHandler handler;
  DictionaryPtr d = Dictionary::Create();
  d->Add("a", int16_t{1});
  d->Add("obj", Dictionary::Create());
  d->Add("b", "x y");
  d->Add("", "no key");
  d->Add("t", true);
  d->Add("e", Variant());
  d->Add("n", Variant::Null());
  d->Add("d", 2.5);
  EXPECT_EQ(bp::DictionaryToString(d, ";", "=", false), "a=1;b=x y;t=True;d=2.5");
  EXPECT_EQ(bp::DictionaryToString(d, "||", ":", true), "a||obj||b||t||e||n||d");
  d->RemoveAll();
  d->Add("o", Dictionary::Create());
  EXPECT_EQ(bp::DictionaryToString(d, ";", "=", false), "");
  EXPECT_TRUE(handler.reports().empty());

  EXPECT_EQ(bp::DictionaryToString(nullptr, ";", "=", false), "");
  EXPECT_TRUE(ReportedOnce(handler, 91, "basPublic.DictionaryToString"));
}

TEST(ValueHelpersDictionary, FromStringReplacesTheDictionary) {
  ScopedHandler handler;
  DictionaryPtr d = Dictionary::Create();
  const DictionaryPtr original = d;
  bp::StringToDictionary("a=1;b;c=2=3;", d, ";", "=");
  ASSERT_NE(d, original);
  EXPECT_EQ(d->Keys(), (Keys{"a", "c"}));
  EXPECT_EQ(d->Items(), (std::vector<Variant>{"1", "2=3"}));
  bp::StringToDictionary("k:=v||x:=", d, "||", ":=");
  EXPECT_EQ(d->Keys(), (Keys{"k", "x"}));

  // Not set, empty text, or a duplicate key: the caller's dictionary stays as it was.
  DictionaryPtr none;
  bp::StringToDictionary("a=1", none, ";", "=");
  EXPECT_EQ(none, nullptr);
  const DictionaryPtr kept = d;
  bp::StringToDictionary("", d, ";", "=");
  EXPECT_TRUE(handler.reports().empty());
  bp::StringToDictionary("a=1;a=2", d, ";", "=");
  EXPECT_TRUE(ReportedOnce(handler, 457, "basPublic.StringToDictionary"));
  EXPECT_EQ(d, kept);
  EXPECT_EQ(d->Keys(), (Keys{"k", "x"}));
}

TEST(ValueHelpersDictionary, CopySharesObjectsAndCopiesValues) {
  ScopedHandler handler;
  DictionaryPtr inner = Dictionary::Create();
  DictionaryPtr source = Dictionary::Create();
  source->Add("z", "text");
  source->Add("obj", inner);
  source->Add("a", 7);
  DictionaryPtr copy = bp::CopyDictionary(source);
  ASSERT_TRUE(copy && copy != source);
  EXPECT_EQ(copy->Keys(), source->Keys());
  EXPECT_EQ(copy->Item("obj").GetObject<Dictionary>(), inner);
  copy->Item("z", "changed");
  EXPECT_EQ(source->Item("z"), Variant("text"));

  EXPECT_EQ(bp::CopyDictionary(nullptr), nullptr);
  EXPECT_TRUE(ReportedOnce(handler, 91, "basPublic.CopyDictionary"));
}

TEST(ValueHelpersText, RemoveTrailingDelimiter) {
  EXPECT_EQ(bp::RemoveTrailingDelimiter("x,,,", ",", 2), "x,");
  EXPECT_EQ(bp::RemoveTrailingDelimiter("x,,,", ",", 0), "x");
  EXPECT_EQ(bp::RemoveTrailingDelimiter("x,,,", "", 3), "x,,,");
  EXPECT_EQ(bp::RemoveTrailingDelimiter(",", ",,", 1), ",");
  EXPECT_EQ(bp::RemoveTrailingDelimiter("a<>b<><>", "<>", 5), "a<>b");
  EXPECT_EQ(bp::RemoveTrailingDelimiter("xAB", "ab", 1), "xAB");
}

TEST(ValueHelpersText, CBooleanNeverFails) {
  ScopedHandler handler;
  const std::vector<Variant> truthy{"TRUE", "2abc", " -1 ", " 0.5 ", "1e999", int16_t{3}, true};
  const std::vector<Variant> falsy{
      " yes ", "0", "false",         "", Variant(), Variant::Null(), Variant::Missing(),
      nullptr, 0.0, xun::Currency{0}};
  EXPECT_FALSE(bp::CBoolean(Dictionary::Create()));
  for (size_t i = 0; i < truthy.size(); ++i)
    EXPECT_TRUE(bp::CBoolean(truthy[i])) << i;
  for (size_t i = 0; i < falsy.size(); ++i)
    EXPECT_FALSE(bp::CBoolean(falsy[i])) << i;
  EXPECT_TRUE(handler.reports().empty());
}

const std::string kKey1 = "Key1-abc", kKey2 = "zweiter!", kKey3 = "Grüße!!!";

TEST(ValueHelpersCipher, RoundTripsThroughHexInWholeBlocks) {
  ScopedHandler handler;
  bool hex = false;
  const std::string cipher = bp::Encrypt("abc", kKey1, kKey2, kKey3, hex);
  EXPECT_TRUE(hex);
  EXPECT_EQ(cipher.size(), 32u);  // 12 hex digits and 4 spaces: two blocks
  EXPECT_EQ(cipher.find_first_not_of("0123456789ABCDEF"), std::string::npos);
  EXPECT_EQ(bp::Decrypt(cipher, kKey1, kKey2, kKey3), "610062006300");
  EXPECT_EQ(bp::Decrypt(xun::text::FoldCase(cipher), kKey1, kKey2, kKey3), "610062006300");

  for (const std::string text : {"ab", "Grüße 東京 😀", "  spaced  "}) {
    const std::string c = bp::Encrypt(text, kKey1, kKey2, kKey3, hex);
    EXPECT_EQ(c.size() % 16, 0u);
    EXPECT_EQ(bp::HexToUnicode(bp::Decrypt(c, kKey1, kKey2, kKey3)), text);
  }
  // Every key and their order matter.
  EXPECT_NE(bp::Encrypt("abc", "Key1-abd", kKey2, kKey3, hex), cipher);
  EXPECT_NE(bp::Encrypt("abc", kKey1, kKey2, "Grüße!!?", hex), cipher);
  EXPECT_NE(bp::Encrypt("abc", kKey3, kKey2, kKey1, hex), cipher);
  EXPECT_TRUE(handler.reports().empty());
}

TEST(ValueHelpersCipher, EmptyValueAndBadInputs) {
  ScopedHandler handler;
  bool hex = false;
  EXPECT_EQ(bp::Encrypt("", kKey1, kKey2, kKey3, hex), "");
  EXPECT_FALSE(hex);
  EXPECT_EQ(bp::Decrypt("", kKey1, kKey2, kKey3), "");
  EXPECT_TRUE(handler.reports().empty());

  for (const std::string key : {"short", "nine chars", "東京東京東京東京"}) {
    EXPECT_EQ(bp::Encrypt("abc", kKey1, key, kKey3, hex), "");
    EXPECT_TRUE(ReportedOnce(handler, 5, "basPublic.Encrypt")) << key;
  }
  for (const std::string cipher : {"XYZ", "0123456789ABCDEF01", "0123456789ABCDEG"}) {
    EXPECT_EQ(bp::Decrypt(cipher, kKey1, kKey2, kKey3), "");
    EXPECT_TRUE(ReportedOnce(handler, 5, "basPublic.Decrypt")) << cipher;
  }
}

}  // namespace
