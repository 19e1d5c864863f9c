// Which form, which page and whose: a form read with its identification questions is flagged
// when it is another form or holds another form's page, put in order when its pages came in
// another order, and carries its respondent.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/identified_sheet.h"
#include "common/sheet_scans.h"
#include "xun/reading/form_reader.h"
#include "xun/reading/identification.h"

namespace xun::reading {
namespace {

namespace ss = xun::synthscan;
using testing::MarkAnswers;
using testing::MarkDigits;

class IdentificationTest : public ::testing::Test {
 protected:
  void TearDown() override { form_->Free(); }

  ss::MarkPlan Page1(const std::string& form_id = "42", const std::string& page_id = "1") {
    ss::MarkPlan plan;
    MarkDigits(plan, "PageID", page_id);
    MarkDigits(plan, "FormID", form_id);
    MarkDigits(plan, "Respondent", "307");
    MarkAnswers(plan, "ABCDEABCDE");
    return plan;
  }
  ss::MarkPlan Page2(const std::string& page_id = "2") {
    ss::MarkPlan plan;
    MarkDigits(plan, "PageID", page_id);
    MarkAnswers(plan, "EDCBAEDCBA");
    return plan;
  }
  static std::string Answer(const FormRecord& record, const std::string& name) {
    for (const ItemAnswer& a : record.answers)
      if (a.name == name) return a.value;
    return "(none)";
  }
  static std::string Reasons(const FormRecord& record) {
    std::string all;
    for (const ReviewReason& r : record.review)
      all += "[" + std::to_string(r.page) + " " + r.name + ": " + r.why + "]";
    return all;
  }

  std::shared_ptr<clsXUNTemplate> form_ = testing::IdentifiedSheet(2);
  testing::SheetScans scans_{form_};
};

TEST_F(IdentificationTest, TheRightFormReadsCleanWithItsRespondentAndNoHiddenItems) {
  const FormReader reader(*form_);
  const FormRecord record =
      reader.Read({scans_.Scan(1, Page1(), "p1.png"), scans_.Scan(2, Page2(), "p2.png")});
  EXPECT_FALSE(record.NeedsReview()) << Reasons(record);
  EXPECT_EQ(record.respondent, "307");
  // The hidden form and page IDs identify but give no data item; the tracker is one.
  ASSERT_EQ(record.answers.size(), 21u);
  EXPECT_EQ(record.answers[0].name, "Respondent");
  EXPECT_EQ(Answer(record, "Q1"), "A");
  EXPECT_EQ(Answer(record, "Q20"), "A");
  ASSERT_EQ(record.identification.size(), 4u);
  for (const IdentificationReading& id : record.identification) {
    EXPECT_EQ(id.answer.status, AnswerStatus::Clear) << id.answer.name;
    EXPECT_EQ(id.adds_item, id.role == xunIDTypeRespondent);
    EXPECT_EQ(id.answer.item == 0, !id.adds_item);
  }
  // Every bubble lies on the image where it was printed: page 1's form ID "4" bubble, at
  // (560 + 10, 100 + 8 + 4 * 30 + 7.5) units, turned 0.7 degrees about the middle and shifted.
  const auto& bubbles = record.pages[0].bubbles;
  const auto four = std::find_if(bubbles.begin(), bubbles.end(), [](const BubbleReading& b) {
    return b.region == "FormID" && b.row == 5 && b.col == 1;
  });
  ASSERT_NE(four, bubbles.end());
  EXPECT_EQ(four->state, MarkState::Marked);
  EXPECT_NEAR(four->width, 20 * 1.5, 1.5);
  EXPECT_NEAR(four->height, 15 * 1.5, 1.5);
  EXPECT_EQ(four->item, 0);
  const auto q1 = std::find_if(bubbles.begin(), bubbles.end(),
                               [](const BubbleReading& b) { return b.region == "Answers"; });
  ASSERT_NE(q1, bubbles.end());
  EXPECT_EQ(q1->item, 2);  // the respondent tracker is item 1
}

TEST_F(IdentificationTest, AnotherFormIDIsAWrongForm) {
  const FormReader reader(*form_);
  const FormRecord record =
      reader.Read({scans_.Scan(1, Page1("17"), "p1.png"), scans_.Scan(2, Page2(), "p2.png")});
  ASSERT_EQ(record.review.size(), 1u) << Reasons(record);
  EXPECT_EQ(record.review[0].page, 1);
  EXPECT_EQ(record.review[0].item, 0);
  EXPECT_EQ(record.review[0].name, "FormID");
  EXPECT_EQ(record.review[0].region, "FormID");
  EXPECT_EQ(record.review[0].why, "wrong form: read '17', expected '42'");
}

TEST_F(IdentificationTest, PagesThatCameInAnotherOrderArePutInOrder) {
  const FormReader reader(*form_);
  const std::string p1 = scans_.Scan(1, Page1(), "p1.png"), p2 = scans_.Scan(2, Page2(), "p2.png");
  const FormRecord record = reader.Read({p2, p1});
  EXPECT_FALSE(record.NeedsReview()) << Reasons(record);
  EXPECT_EQ(record.images, (std::vector<std::string>{p2, p1}));  // as given
  EXPECT_EQ(record.pages[0].image, p1);
  EXPECT_EQ(record.pages[1].image, p2);
  EXPECT_EQ(Answer(record, "Q1"), "A");
  EXPECT_EQ(Answer(record, "Q11"), "E");
  EXPECT_EQ(record.respondent, "307");
}

TEST_F(IdentificationTest, APageOfAnotherFormOrTwoCopiesOfOnePageAreFlagged) {
  const FormReader reader(*form_);
  const std::string p1 = scans_.Scan(1, Page1(), "p1.png");
  // Page 2's layout with the page ID of no page of this form.
  FormRecord record = reader.Read({p1, scans_.Scan(2, Page2("7"), "foreign.png")});
  ASSERT_EQ(record.review.size(), 1u) << Reasons(record);
  EXPECT_EQ(record.review[0].page, 2);
  EXPECT_EQ(record.review[0].why, "a page of another form: page ID reads '7', expected '2'");
  EXPECT_EQ(record.pages[1].image, scans_.folder().File("foreign.png"));

  // Page 1 twice: the second is read as page 2 and does not register; as page 1 it names page 1,
  // which has its image already. Nothing is moved and page 2 is not read.
  record = reader.Read({p1, scans_.Scan(1, Page1(), "p1-again.png", -0.5)});
  EXPECT_EQ(record.pages[0].image, p1);
  EXPECT_FALSE(record.pages[1].registered);
  ASSERT_FALSE(record.review.empty());
  EXPECT_EQ(record.review[0].page, 2);
  EXPECT_NE(record.review[0].why.find("not registered"), std::string::npos);
}

TEST(PageOrderTest, TakesEachImageAsThePageItsIDNames) {
  // read[image][page]: what the image reads as that page; "" for not registered.
  const auto order = [](std::vector<std::vector<std::string>> read) {
    int calls = 0;
    auto result = detail::PageOrder({"1", "2", "3"}, [&](size_t image, size_t page) {
      ++calls;
      const std::string& id = read[image][page];
      return id.empty() ? std::nullopt : std::optional(id);
    });
    return std::pair{result, calls};
  };
  // In order: one reading an image, nothing moved.
  auto [same, calls] = order({{"1", "", ""}, {"", "2", ""}, {"", "", "3"}});
  EXPECT_TRUE(same.empty());
  EXPECT_EQ(calls, 3);
  // Images 3, 1, 2 of pages 1, 2, 3, each registering only as its own page.
  EXPECT_EQ(order({{"", "", "3"}, {"1", "", ""}, {"", "2", ""}}).first,
            (std::vector<size_t>{1, 2, 0}));
  // Same layout on every page: an image read as another page names its own.
  EXPECT_EQ(order({{"2", "2", "2"}, {"1", "1", "1"}, {"3", "3", "3"}}).first,
            (std::vector<size_t>{1, 0, 2}));
  // Two images of page 1, or an image of no page of the form: the order given stands.
  EXPECT_TRUE(order({{"1", "1", "1"}, {"1", "1", "1"}, {"", "", "3"}}).first.empty());
  EXPECT_TRUE(order({{"", "", "9"}, {"1", "", ""}, {"", "2", ""}}).first.empty());
}

}  // namespace
}  // namespace xun::reading
