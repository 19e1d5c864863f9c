#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/field_extra.h"

namespace xun {
namespace {

using Values = std::vector<int16_t>;
using Strings = std::vector<std::string>;

class FieldExtra : public ::testing::Test {
 protected:
  Values Entries() const { return {list_->begin(), list_->end()}; }
  Strings Reported() const { return handler_.LocationsAndNumbers(); }

  testing::ScopedHandler handler_;
  std::shared_ptr<clsXUNFieldExtra> list_ = clsXUNFieldExtra::Create();
};

TEST_F(FieldExtra, PiecesAreReadAsNumbersRoundedHalfToEven) {
  EXPECT_TRUE(list_->AddDelimitedString("1, 2.5,3.5,x", ","));
  EXPECT_TRUE(list_->AddDelimitedString("12abc,,-2.5,-32768.5,32767", ","));
  EXPECT_TRUE(list_->AddDelimitedString(""));
  EXPECT_TRUE(list_->AddDelimitedString("7,8", ""));  // one piece, read as far as it is a number
  EXPECT_EQ(Entries(), (Values{1, 2, 4, 0, 12, 0, -2, -32768, 32767, 7}));
  EXPECT_TRUE(Reported().empty());

  list_->RemoveAll();
  EXPECT_FALSE(list_->AddDelimitedString("5,40000,6", ","));
  EXPECT_FALSE(list_->AddDelimitedString("32767.5"));  // rounds up to 32768
  EXPECT_EQ(Entries(), Values{5});
  EXPECT_EQ(Reported(), (Strings{"clsXUNFieldExtra.AddDelimitedString #6",
                                 "clsXUNFieldExtra.AddDelimitedString #6"}));
}

TEST_F(FieldExtra, JoinWritesPlainDecimalAndRoundTrips) {
  EXPECT_EQ(list_->AsString(), "");
  for (int16_t value : {-5, 0, 32767, -32768})
    list_->Add(value);
  EXPECT_EQ(list_->AsString(), "-5\t0\t32767\t-32768");
  auto back = clsXUNFieldExtra::Create();
  EXPECT_TRUE(back->AddDelimitedString(list_->AsString(", "), ", "));
  EXPECT_EQ(Values(back->begin(), back->end()), Entries());
}

TEST_F(FieldExtra, MutatorsAnswerWhetherTheyRanToTheEnd) {
  EXPECT_TRUE(list_->Add(3, "K"));
  EXPECT_TRUE(list_->Add(1, std::nullopt, "k"));
  EXPECT_TRUE(list_->Add(2, std::nullopt, std::nullopt, 1));
  EXPECT_FALSE(list_->Add(4, "K"));
  EXPECT_FALSE(list_->Remove(9));  // the string list ignores this; here it is a failure
  EXPECT_FALSE(list_->AddArray(BoundedArray<int16_t>()));  // fails without a report
  EXPECT_EQ(list_->Item(9), 0);
  list_->Item(9, 7);
  EXPECT_EQ(Entries(), (Values{1, 2, 3}));
  EXPECT_EQ(Reported(), (Strings{"clsXUNFieldExtra.Add #457", "clsXUNFieldExtra.Remove #9"}));

  list_->Item("K", 30);  // the assigned entry loses its key
  EXPECT_FALSE(list_->Exists("K"));
  EXPECT_EQ(Entries(), (Values{1, 2, 30}));
  EXPECT_TRUE(list_->RemoveAll());
  EXPECT_EQ(list_->Count(), 0);
}

TEST_F(FieldExtra, ArraysStartAtZeroByDefault) {
  EXPECT_FALSE(list_->AsArray().IsAllocated());
  EXPECT_TRUE(list_->AddArray(BoundedArray<int16_t>(-1, {4, 5, 6})));
  const BoundedArray<int16_t> zero = list_->AsArray();
  EXPECT_EQ(zero.LBound(), 0);
  EXPECT_EQ(zero.UBound(), 2);
  EXPECT_EQ(zero.Elements(), Entries());
  EXPECT_FALSE(list_->AsArray(std::numeric_limits<int32_t>::max()).IsAllocated());
  EXPECT_EQ(Reported(), Strings{"clsXUNFieldExtra.AsArray #6"});
}

}  // namespace
}  // namespace xun
