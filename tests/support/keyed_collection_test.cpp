#include <gtest/gtest.h>

#include "common/test_support.h"

#include <string>
#include <vector>

#include "xun/support/dictionary.h"
#include "xun/support/keyed_collection.h"

namespace xun {
namespace {

using testing::RaisedError;

using Collection = OrderedKeyedCollection<std::string>;

std::vector<std::string> Items(const Collection& c) {
  return {c.begin(), c.end()};
}

// Checks every entry is found at its position and under its key; positions are kept as offsets,
// so this catches any renumbering slip.
void ExpectConsistent(const Collection& c) {
  for (int32_t p = 1; p <= c.Count(); ++p) {
    const auto& key = c.KeyOf(p);
    if (key) {
      EXPECT_EQ(c.PositionOf(*key), p) << *key;
      EXPECT_EQ(&c.Item(*key), &c.Item(p));
    }
  }
}

TEST(KeyedCollection, InsertBeforeAndAfterByPositionOrKey) {
  Collection c;
  c.Add("b", "B");
  c.Add("d", "D");
  c.Add("a", "A", Index(1));           // before position 1
  c.Add("c", "C", std::nullopt, "b");  // after key b
  c.Add("e", std::nullopt, std::nullopt, Index(4));
  EXPECT_EQ(Items(c), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
  ExpectConsistent(c);
  EXPECT_EQ(c.PositionOf("D"), 4);
  EXPECT_FALSE(c.KeyOf(5).has_value());
}

TEST(KeyedCollection, ClassicErrors) {
  Collection c;
  c.Add("x", "K");
  EXPECT_EQ(RaisedError([&] { c.Add("y", "k"); }), kErrDuplicateKey);  // keys ignore case
  EXPECT_EQ(RaisedError([&] { c.Add("y", std::nullopt, Index(5)); }), kErrInvalidCall);
  EXPECT_EQ(RaisedError([&] { c.Add("y", std::nullopt, "nope"); }), kErrInvalidCall);
  EXPECT_EQ(RaisedError([&] { c.Add("y", std::nullopt, Index(1), Index(1)); }), kErrInvalidCall);
  EXPECT_EQ(RaisedError([&] { c.Item(2); }), kErrSubscript);
  EXPECT_EQ(RaisedError([&] { c.Item(0); }), kErrSubscript);
  EXPECT_EQ(RaisedError([&] { c.Item("nope"); }), kErrInvalidCall);
  EXPECT_EQ(RaisedError([&] { c.Remove(2); }), kErrSubscript);
  EXPECT_EQ(c.Count(), 1);  // nothing was added by the failures
  EXPECT_FALSE(c.Exists(-1));
  EXPECT_FALSE(c.Exists(""));
}

TEST(KeyedCollection, KeysIgnoreCaseBeyondAscii) {
  Collection c;
  c.Add("1", "Äpfel");
  c.Add("2", "ΣΟΦΙΑ");
  EXPECT_TRUE(c.Exists("äPFEL"));
  EXPECT_TRUE(c.Exists("σοφια"));
  EXPECT_FALSE(c.Exists("ΣΟΦΊΑ"));  // an accented letter is another letter
}

TEST(KeyedCollection, RemovalShiftsPositionsFromEitherSide) {
  Collection c;
  for (int i = 1; i <= 9; ++i)
    c.Add(std::to_string(i), "K" + std::to_string(i));
  c.Remove(1);     // front
  c.Remove("K9");  // back
  c.Remove(2);     // inside, near the front: K3
  c.Remove(5);     // inside, near the back: K7
  EXPECT_EQ(Items(c), (std::vector<std::string>{"2", "4", "5", "6", "8"}));
  ExpectConsistent(c);
  c.Add("x", "KX", Index(2));  // inside, near the front
  c.Add("y", "KY", Index(5));  // inside, near the back
  EXPECT_EQ(Items(c), (std::vector<std::string>{"2", "x", "4", "5", "y", "6", "8"}));
  ExpectConsistent(c);
  c.Remove("k4");
  EXPECT_FALSE(c.Exists("K4"));
  ExpectConsistent(c);
  c.Add("again", "K3");  // a removed key is free again
  EXPECT_EQ(c.PositionOf("K3"), 7);
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  EXPECT_FALSE(c.Exists("K2"));
}

TEST(Dictionary, CaseSensitiveKeysInInsertionOrder) {
  auto d = Dictionary::Create();
  d->Add("b", Variant(1));
  d->Add("B", Variant("two"));
  d->Item("a", Variant(true));  // let on a new key appends
  EXPECT_EQ(d->Keys(), (std::vector<std::string>{"b", "B", "a"}));
  EXPECT_EQ(d->Item("B"), Variant("two"));
  EXPECT_TRUE(d->Item("missing").IsEmpty());
  EXPECT_FALSE(d->Exists("missing"));  // reading does not add
  d->Item("b", Variant(2));
  EXPECT_EQ(d->Items()[0], Variant(2));
  EXPECT_EQ(RaisedError([&] { d->Add("b", Variant()); }), kErrDuplicateKey);
  EXPECT_EQ(RaisedError([&] { d->Remove("x"); }), kErrElementNotFound);
  d->Remove("b");
  EXPECT_EQ(d->Keys(), (std::vector<std::string>{"B", "a"}));
  d->RemoveAll();
  EXPECT_EQ(d->Count(), 0);
}

}  // namespace
}  // namespace xun
