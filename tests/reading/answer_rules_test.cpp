// From marks to values: each field type, and the question settings for blanks, several marks
// and duplicates.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xun/reading/answer_rules.h"
#include "xun/xun.h"

namespace xun::reading {
namespace {

using Lines = std::vector<std::vector<BubbleRead>>;

constexpr BubbleRead kEmpty{MarkState::Unmarked, 0, 1.0};
constexpr BubbleRead kMark{MarkState::Marked, 80, 1.0};
constexpr BubbleRead kFaint{MarkState::Doubtful, 25, 0.2};

BubbleRead MarkOf(int16_t fill) {
  return {MarkState::Marked, fill, 1.0};
}

QuestionRules Rules(xunFieldType type, std::vector<std::string> codes) {
  QuestionRules rules;
  rules.type = type;
  rules.codes = std::move(codes);
  rules.mults_return = "MULT";
  rules.blanks_return = "BLANK";
  rules.duplicate_return = "DUP";
  rules.error_return = "ERROR #";
  return rules;
}

TEST(AnswerRules, MultipleChoiceLineUnderEachMarkPolicy) {
  QuestionRules rules = Rules(xunFieldTypeOMRMult, {"A", "B", "C", "D"});
  EXPECT_EQ(AnswerOf(rules, {{kEmpty, kMark, kEmpty, kEmpty}}).value, "B");
  const AnswerValue blank = AnswerOf(rules, {{kEmpty, kEmpty, kEmpty, kEmpty}});
  EXPECT_EQ(blank.value, "BLANK");
  EXPECT_EQ(blank.status, AnswerStatus::Blank);
  const AnswerValue two = AnswerOf(rules, {{kMark, kEmpty, kMark, kEmpty}});
  EXPECT_EQ(two.value, "MULT");
  EXPECT_EQ(two.status, AnswerStatus::Multiple);

  rules.mults_allowed = xunOMRMultsAllowAll;
  EXPECT_EQ(AnswerOf(rules, {{kMark, kEmpty, kMark, kMark}}).value, "ACD");
  rules.mults_allowed = 2;
  EXPECT_EQ(AnswerOf(rules, {{kMark, kEmpty, kMark, kEmpty}}).value, "AC");
  EXPECT_EQ(AnswerOf(rules, {{kMark, kMark, kMark, kEmpty}}).value, "MULT");

  // The best mark wins only by a clear lead.
  rules.mults_allowed = xunOMRMultsSelectBest;
  EXPECT_EQ(AnswerOf(rules, {{MarkOf(40), kEmpty, MarkOf(90), kEmpty}}).value, "C");
  const AnswerValue close = AnswerOf(rules, {{MarkOf(70), kEmpty, MarkOf(90), kEmpty}});
  EXPECT_EQ(close.value, "MULT");
  EXPECT_EQ(close.status, AnswerStatus::Multiple);
}

TEST(AnswerRules, ADoubtfulMarkCountsAsEmptyAndFlagsTheAnswer) {
  const QuestionRules rules = Rules(xunFieldTypeOMRMult, {"A", "B", "C"});
  const AnswerValue answer = AnswerOf(rules, {{kMark, kFaint, kEmpty}});
  EXPECT_EQ(answer.value, "A");
  EXPECT_EQ(answer.status, AnswerStatus::Doubtful);
  EXPECT_DOUBLE_EQ(answer.confidence, 0.2);
  EXPECT_FALSE(answer.why.empty());
  EXPECT_EQ(AnswerOf(rules, {{kEmpty, kFaint, kEmpty}}).value, "BLANK");
  EXPECT_EQ(AnswerOf(rules, {{kEmpty, kFaint, kEmpty}}).status, AnswerStatus::Doubtful);
}

TEST(AnswerRules, GridBlanksAsTheBlanksFlagSays) {
  QuestionRules rules = Rules(xunFieldTypeOMRGrid, {"0", "1", "2"});
  // Columns: blank, 1, blank, 2, blank.
  const Lines lines = {{kEmpty, kEmpty, kEmpty},
                       {kEmpty, kMark, kEmpty},
                       {kEmpty, kEmpty, kEmpty},
                       {kEmpty, kEmpty, kMark},
                       {kEmpty, kEmpty, kEmpty}};
  const std::pair<xunBlanksFlag, std::string> expected[] = {
      {xunBlanksFlagAll, " 1 2 "},           {xunBlanksFlagIgnoreLeadingTrailing, "1 2"},
      {xunBlanksFlagIgnoreAll, "12"},        {xunBlanksFlagIgnoreLeading, "1 2 "},
      {xunBlanksFlagIgnoreTrailing, " 1 2"},
  };
  for (const auto& [flag, value] : expected) {
    rules.blanks_flag = flag;
    EXPECT_EQ(AnswerOf(rules, lines).value, value) << flag;
  }
  const Lines empty(3, std::vector<BubbleRead>(3, kEmpty));
  EXPECT_EQ(AnswerOf(rules, empty).value, "BLANK");
  EXPECT_EQ(AnswerOf(rules, empty).status, AnswerStatus::Blank);
  const Lines twice = {{kMark, kMark, kEmpty}, {kEmpty, kMark, kEmpty}};
  EXPECT_EQ(AnswerOf(rules, twice).value, "MULT");
  EXPECT_EQ(AnswerOf(rules, twice).status, AnswerStatus::Multiple);
}

TEST(AnswerRules, AddBinaryAndListCountEveryMarkInReadingOrder) {
  const Lines lines = {{kEmpty, kMark}, {kMark, kMark}};
  EXPECT_EQ(AnswerOf(Rules(xunFieldTypeOMRAdd, {"1", "2.5"}), lines).value, "6");
  EXPECT_EQ(AnswerOf(Rules(xunFieldTypeOMRAdd, {"0.5", "1.25"}), lines).value, "3");
  EXPECT_EQ(AnswerOf(Rules(xunFieldTypeOMRAdd, {"0.5", "0.25"}), {{kMark, kMark}}).value, "0.75");
  // Bits 0 1 1 1, the first bubble the highest.
  EXPECT_EQ(AnswerOf(Rules(xunFieldTypeOMRBinary, {"", ""}), lines).value, "7");
  EXPECT_EQ(
      AnswerOf(Rules(xunFieldTypeOMRBinary, {"", ""}), {{kMark, kEmpty}, {kEmpty, kEmpty}}).value,
      "8");
  EXPECT_EQ(AnswerOf(Rules(xunFieldTypeOMRList, {"x", "y"}), lines).value, "yxy");
  for (const xunFieldType type : {xunFieldTypeOMRAdd, xunFieldTypeOMRBinary, xunFieldTypeOMRList})
    EXPECT_EQ(AnswerOf(Rules(type, {"1", "2"}), {{kEmpty, kEmpty}}).status, AnswerStatus::Blank);
}

TEST(AnswerRules, DuplicateRanksAndErrors) {
  const QuestionRules rank = Rules(xunFieldTypeOMRRank, {"1", "2", "3"});
  const std::vector<QuestionRules> rules(3, rank);
  std::vector<AnswerValue> answers = {AnswerOf(rank, {{kMark, kEmpty, kEmpty}}),
                                      AnswerOf(rank, {{kEmpty, kMark, kEmpty}}),
                                      AnswerOf(rank, {{kMark, kEmpty, kEmpty}})};
  MarkDuplicateRanks(rules, answers);
  EXPECT_EQ(answers[0].value, "DUP");
  EXPECT_EQ(answers[1].value, "2");
  EXPECT_EQ(answers[2].value, "DUP");
  EXPECT_NE(answers[2].why.find("2 times"), std::string::npos);

  const AnswerValue error = ErrorAnswer(rank, "the page was not registered");
  EXPECT_EQ(error.value, "ERROR #");
  EXPECT_EQ(error.status, AnswerStatus::Error);
  EXPECT_STREQ(StatusName(error.status), "error");
}

TEST(AnswerRules, RulesComeFromTheQuestion) {
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr"));
  std::shared_ptr<clsXUNQuestion> question;
  for (const auto& field : *form->Pages()->Item(1)->Fields())
    if (field->FieldName() == "Answers") question = field->Questions()->Item(2);
  ASSERT_NE(question, nullptr);
  question->MultsAllowed(xunOMRMultsAllowAll);
  const QuestionRules rules = QuestionRules::Of(*question);
  EXPECT_EQ(rules.type, xunFieldTypeOMRMult);
  EXPECT_EQ(rules.codes, (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_EQ(rules.mults_allowed, xunOMRMultsAllowAll);
  EXPECT_EQ(rules.blanks_return, "BLANK");
  EXPECT_EQ(rules.mults_return, "MULT");
  form->Free();
}

}  // namespace
}  // namespace xun::reading
