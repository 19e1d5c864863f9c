#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/bubbles.h"

namespace xun {
namespace {

TEST(Bubble, SpansAndFill) {
  const struct {
    int16_t low, high, span;
  } cases[] = {{40, 50, 10}, {50, 40, 0}, {40, 40, 0}, {-30000, 30000, 32767}};
  for (const auto& c : cases) {
    auto bubble = clsXUNBubble::Create();
    bubble->Left(c.low);
    bubble->Top(c.low);
    bubble->Right(c.high);
    bubble->Bottom(c.high);
    EXPECT_EQ(bubble->Width(), c.span) << c.low << ".." << c.high;  // no plus one
    EXPECT_EQ(bubble->Height(), c.span) << c.low << ".." << c.high;
  }

  auto bubble = clsXUNBubble::Create();
  bubble->PercentFilled(55);
  for (int16_t ignored : {101, -1})
    bubble->PercentFilled(ignored);
  EXPECT_EQ(bubble->PercentFilled(), 55);
  bubble->PercentFilled(100);
  EXPECT_EQ(bubble->Copy()->PercentFilled(), 100);
  bubble->PercentFilled(0);
  EXPECT_EQ(bubble->PercentFilled(), 0);
}

TEST(Bubbles, BackReferenceFollowsAddAndRemove) {
  testing::ScopedHandler handler;
  auto list = clsXUNBubbles::Create();
  auto first = clsXUNBubble::Create();
  auto second = clsXUNBubble::Create();
  EXPECT_TRUE(list->Add(first, "a"));
  EXPECT_TRUE(list->Add(second, "b", "A"));  // before the bubble keyed "a"
  EXPECT_EQ(first->Bubbles(), list);
  EXPECT_EQ(list->Item(1), second);
  EXPECT_EQ(first->Copy()->Bubbles(), nullptr);

  // A missing index gives an Empty result, not False, and no report.
  for (const Index& missing : {Index(3), Index(0), Index("zz")}) {
    EXPECT_TRUE(list->Remove(missing).IsEmpty());
    EXPECT_EQ(list->Item(missing), nullptr);
  }
  EXPECT_EQ(list->Remove("a"), Variant(true));
  EXPECT_EQ(first->Bubbles(), nullptr);
  EXPECT_TRUE(handler.reports().empty());

  auto refused = clsXUNBubble::Create();
  EXPECT_FALSE(list->Add(refused, "B"));
  EXPECT_EQ(handler.Locations(), (std::vector<std::string>{"clsXUNBubbles.Add"}));
  EXPECT_EQ(refused->Bubbles(), list);  // deliberate: set before the add was refused
}

TEST(Bubbles, FreeClearsEveryBackReference) {
  auto list = clsXUNBubbles::Create();
  std::vector<std::shared_ptr<clsXUNBubble>> bubbles(3);
  for (auto& bubble : bubbles)
    list->Add(bubble = clsXUNBubble::Create());
  list->Free();
  list->Free();  // nothing left to do
  EXPECT_EQ(list->Count(), 0);
  for (const auto& bubble : bubbles)
    EXPECT_EQ(bubble->Bubbles(), nullptr);

  // Without Free the reference is weak: dropping the list leaves no owner behind.
  list->Add(bubbles[0]);
  list.reset();
  EXPECT_EQ(bubbles[0]->Bubbles(), nullptr);
}

}  // namespace
}  // namespace xun
