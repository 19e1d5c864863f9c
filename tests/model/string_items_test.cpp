#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/string_items.h"

namespace xun {
namespace {

using Strings = std::vector<std::string>;

class StringItems : public ::testing::Test {
 protected:
  Strings Entries() const { return {list_->begin(), list_->end()}; }
  Strings Reported() const { return handler_.LocationsAndNumbers(); }

  testing::ScopedHandler handler_;
  std::shared_ptr<clsXUNStringItems> list_ = clsXUNStringItems::Create();
};

TEST_F(StringItems, SplitKeepsEveryPieceAsIs) {
  const struct {
    std::string items, delimiter;
    Strings pieces;
  } cases[] = {
      {"a,,b,", ",", {"a", "", "b", ""}},
      {"", ",", {}},
      {" a , b ", ",", {" a ", " b "}},
      {"a,b", "", {"a,b"}},
      {",", ",", {"", ""}},
      {"aXXbxxc", "XX", {"a", "bxxc"}},
  };
  for (const auto& c : cases) {
    auto list = clsXUNStringItems::Create();
    list->AddDelimitedString(c.items, c.delimiter);
    EXPECT_EQ(Strings(list->begin(), list->end()), c.pieces) << '"' << c.items << '"';
  }
  list_->AddDelimitedString("x\ty");  // tab by default, appended to what is there
  list_->AddDelimitedString("z");
  EXPECT_EQ(Entries(), (Strings{"x", "y", "z"}));
}

TEST_F(StringItems, JoinAndRoundTrip) {
  EXPECT_EQ(list_->AsString(","), "");
  list_->Add("");
  EXPECT_EQ(list_->AsString(","), "");
  auto back = clsXUNStringItems::Create();
  back->AddDelimitedString(list_->AsString());  // a lone empty string comes back as nothing
  EXPECT_EQ(back->Count(), 0);

  list_->Add("a", std::nullopt, 1);
  list_->Add("b");
  EXPECT_EQ(list_->AsString(","), "a,,b");
  EXPECT_EQ(list_->AsString("--"), "a----b");
  EXPECT_EQ(list_->AsString(""), "ab");
  back->AddDelimitedString(list_->AsString());
  EXPECT_EQ(Strings(back->begin(), back->end()), (Strings{"a", "", "b"}));
}

TEST_F(StringItems, AbsentIndexIsReadAsEmptyAndIgnored) {
  for (const char* item : {"a", "b", "c"})
    list_->Add(item);
  for (const Index& absent : {Index(5), Index(0), Index("nokey")}) {
    EXPECT_EQ(list_->Item(absent), "");
    list_->Item(absent, "z");
    list_->Remove(absent);
  }
  EXPECT_EQ(Entries(), (Strings{"a", "b", "c"}));
  list_->RemoveAll();
  EXPECT_EQ(list_->Count(), 0);
  EXPECT_TRUE(Reported().empty());
}

TEST_F(StringItems, AssignmentKeepsThePositionButDropsTheKey) {
  list_->Add("a");
  list_->Add("x", "K");
  list_->Add("c", "L");
  list_->Item("K", "y");
  list_->Item(3, "d");
  EXPECT_FALSE(list_->Exists("K"));
  EXPECT_FALSE(list_->Exists("L"));
  EXPECT_EQ(Entries(), (Strings{"a", "y", "d"}));
}

TEST_F(StringItems, AddByPositionOrKeyWithCaseBlindKeys) {
  list_->Add("c", "ÄBC");
  list_->Add("a", std::nullopt, 1);
  list_->Add("d", std::nullopt, std::nullopt, "äbc");
  list_->Add("b", "Straße", "ÄbC");
  EXPECT_EQ(Entries(), (Strings{"a", "b", "c", "d"}));
  EXPECT_EQ(list_->Item("STRASSE"), "b");  // full case folding: ß matches SS
  EXPECT_TRUE(Reported().empty());

  list_->Add("dup", "äbc");
  list_->Add("y", std::nullopt, 9);
  list_->Add("y", std::nullopt, std::nullopt, "nokey");
  EXPECT_EQ(list_->Count(), 4);
  EXPECT_EQ(Reported(), (Strings{"clsXUNStringItems.Add #457", "clsXUNStringItems.Add #5",
                                 "clsXUNStringItems.Add #5"}));
}

TEST_F(StringItems, LocateFindsTheFirstMatchUnderTheMode) {
  for (const char* item : {"a", "A", "ä", "A"})
    list_->Add(item);
  EXPECT_EQ(list_->Locate("A", 0), 2);
  EXPECT_EQ(list_->Locate("A"), 1);
  EXPECT_EQ(list_->Locate("Ä"), 3);
  EXPECT_EQ(list_->Locate("Ä", 0), 0);
  EXPECT_TRUE(Reported().empty());
  EXPECT_EQ(list_->Locate("a", 2), 0);
  EXPECT_EQ(Reported(), Strings{"clsXUNStringItems.Locate #5"});
}

TEST_F(StringItems, ArraysInAndOut) {
  list_->AddArray(BoundedArray<std::string>());
  EXPECT_FALSE(list_->AsArray().IsAllocated());
  list_->AddArray(BoundedArray<std::string>(-2, {"a", "b", "c"}));
  const BoundedArray<std::string> one = list_->AsArray();
  EXPECT_EQ(one.LBound(), 1);
  EXPECT_EQ(one[3], "c");
  EXPECT_EQ(list_->AsArray(0).UBound(), 2);
  EXPECT_TRUE(Reported().empty());

  list_->Remove(3);
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  EXPECT_FALSE(list_->AsArray(kMax).IsAllocated());
  EXPECT_EQ(Reported(), Strings{"clsXUNStringItems.AsArray #6"});
}

TEST_F(StringItems, CopyHasTheStringsButNoKeys) {
  list_->Add("x", "K");
  list_->Add("");
  auto copy = list_->Copy();
  list_->Item(1, "changed");
  EXPECT_EQ(Strings(copy->begin(), copy->end()), (Strings{"x", ""}));
  EXPECT_FALSE(copy->Exists("K"));
}

}  // namespace
}  // namespace xun
