// Scoring against a key: each result's points, several right answers, test versions, the key
// file's faults at their lines, and a key read from a filled key sheet.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "common/identified_sheet.h"
#include "common/sheet_scans.h"
#include "xun/reading/form_reader.h"
#include "xun/reading/grading.h"

namespace xun::reading {
namespace {

// A record as the reader gives it for the answers of the identified sheet's page 1: Q1 to Q10,
// items 2 to 11 (the respondent tracker is item 1).
FormRecord RecordOf(const std::vector<std::pair<std::string, AnswerStatus>>& answers) {
  FormRecord record;
  int32_t item = 1;
  for (const auto& [value, status] : answers) {
    ItemAnswer a;
    a.item = ++item;
    a.name = "Q" + std::to_string(item - 1);
    a.value = value;
    a.status = status;
    record.answers.push_back(a);
  }
  return record;
}

std::string Results(const FormRecord& record) {
  std::string all;
  for (const ItemScore& s : record.score.items)
    all += s.name + "=" + s.result + (s.provisional ? "?" : "") + " ";
  return all;
}

class GradingTest : public ::testing::Test {
 protected:
  void TearDown() override { form_->Free(); }
  std::shared_ptr<clsXUNQuestion> Question(int n) {
    for (const auto& field : *form_->Pages()->Item(1)->Fields())
      if (field->FieldName() == "Answers") return field->Questions()->Item(n);
    return nullptr;
  }
  std::shared_ptr<clsXUNTemplate> form_ = testing::IdentifiedSheet(1);
};

TEST_F(GradingTest, EachAnswerScoresByItsStatusAndValue) {
  const Grader grader(*form_, AnswerKey::FromCsvText("Q1,A\nQ2,B\nQ3,C\nQ4,D\nQ5,E\n"
                                                     "Q6,A,B\nQ7,A\nQ8,A\nQ9,A\nQ10,A\n",
                                                     "key.csv"));
  using S = AnswerStatus;
  FormRecord record = RecordOf({{"A", S::Clear},
                                {"C", S::Clear},
                                {"BLANK", S::Blank},
                                {"MULT", S::Multiple},
                                {"D", S::Doubtful},  // a doubtful mark beside a clear wrong one
                                {"B", S::Clear},     // the second of two right answers
                                {"A", S::Doubtful},  // right, from the clear marks
                                {"BLANK", S::Doubtful},
                                {"ERROR #", S::Error},
                                {"AB", S::Clear}});  // several marks allowed: not the key's
  grader.Score(record);
  EXPECT_TRUE(record.score.scored);
  EXPECT_EQ(Results(record),
            "Q1=correct Q2=incorrect Q3=no response Q4=incorrect? Q5=incorrect? Q6=correct "
            "Q7=correct? Q8=no response? Q9=incorrect? Q10=incorrect ");
  // 3 right at 2, 5 wrong at -0.5, 2 blank at 0.
  EXPECT_DOUBLE_EQ(record.score.total, 3.5);
  EXPECT_DOUBLE_EQ(record.score.possible, 20);
  EXPECT_TRUE(record.review.empty());  // unclear answers are listed by the reader, not again
}

TEST_F(GradingTest, ExtraCreditAndOtherPointsComeFromTheTemplate) {
  Question(1)->ExtraCredit(true);
  Question(2)->Correct(5);
  Question(3)->NoResponse(-1);
  Question(4)->Grade(false);  // not graded: no key, no score
  const Grader grader(*form_, AnswerKey::FromCsvText("Q1,A\nQ2,A\nQ3,A\n", "key.csv"));
  // Q5 to Q10 are graded but have no key: said once, not scored.
  EXPECT_EQ(grader.Notes().size(), 6u);
  EXPECT_EQ(grader.Notes()[0], "no key for question 'Q5': not scored");
  FormRecord record = RecordOf({{"A", AnswerStatus::Clear},
                                {"A", AnswerStatus::Clear},
                                {"BLANK", AnswerStatus::Blank},
                                {"A", AnswerStatus::Clear}});
  grader.Score(record);
  EXPECT_EQ(Results(record), "Q1=correct Q2=correct Q3=no response ");
  EXPECT_TRUE(record.score.items[0].extra_credit);
  EXPECT_DOUBLE_EQ(record.score.total, 2 + 5 - 1);
  EXPECT_DOUBLE_EQ(record.score.possible, 5 + 2);  // the extra credit is not possible points

  EXPECT_THROW(Grader(*form_, AnswerKey::FromCsvText("Q4,A\n", "key.csv")), std::runtime_error);
}

TEST_F(GradingTest, AKeyForEachTestVersion) {
  // Q10 tells the version.
  auto q10 = Question(10);
  q10->Grade(false);
  q10->TestVersionID(true);
  const Grader grader(*form_, AnswerKey::FromCsvText("Version,Question,Answer\n"
                                                     "A,Q1,A\nB,Q1,B\n",
                                                     "key.csv"));
  const auto score = [&](const std::string& version, AnswerStatus status) {
    std::vector<std::pair<std::string, AnswerStatus>> answers(9, {"B", AnswerStatus::Clear});
    answers.push_back({version, status});
    FormRecord record = RecordOf(answers);
    grader.Score(record);
    return record;
  };
  FormRecord a = score("A", AnswerStatus::Clear), b = score("B", AnswerStatus::Clear);
  EXPECT_EQ(a.score.version, "A");
  EXPECT_EQ(Results(a), "Q1=incorrect ");
  EXPECT_EQ(Results(b), "Q1=correct ");
  for (const auto& [record, why] :
       {std::pair{score("C", AnswerStatus::Clear), "no key for test version 'C': not scored"},
        std::pair{score("MULT", AnswerStatus::Multiple),
                  "the test version is not clear: not scored"}}) {
    EXPECT_FALSE(record.score.scored);
    EXPECT_EQ(record.score.error, why);
    ASSERT_EQ(record.review.size(), 1u);
    EXPECT_EQ(record.review[0].why, why);
    EXPECT_EQ(record.review[0].name, "Q10");
  }
  // A key by version for a template without a version question is refused.
  q10->TestVersionID(false);
  EXPECT_THROW(Grader(*form_, AnswerKey::FromCsvText("version,question\nA,Q1,A\n", "k.csv")),
               std::runtime_error);
}

TEST(AnswerKeyTest, ReadsEveryFormOfTheFile) {
  const AnswerKey plain = AnswerKey::FromCsvText(
      "\xEF\xBB\xBF# the key\r\nQ1, A\r\n\r\n\"Q,2\",\"B\"\"\",C,,\r\nGrid,1234\r\n", "k.csv");
  ASSERT_EQ(plain.versions.size(), 1u);
  const auto& key = plain.versions.at("");
  EXPECT_EQ(key.at("Q1").values, (std::vector<std::string>{"A"}));
  EXPECT_EQ(key.at("Q1").line, 2);
  EXPECT_EQ(key.at("Q,2").values, (std::vector<std::string>{"B\"", "C"}));
  EXPECT_EQ(key.at("Grid").values, (std::vector<std::string>{"1234"}));
  const AnswerKey headed = AnswerKey::FromCsvText("question,answer\nQ1,A\n", "k.csv");
  EXPECT_EQ(headed.versions.at("").size(), 1u);
  const AnswerKey versions = AnswerKey::FromCsvText("VERSION,Question\n1,Q1,A\n2,Q1,B,C\n", "k");
  EXPECT_EQ(versions.versions.at("2").at("Q1").values, (std::vector<std::string>{"B", "C"}));
}

TEST(AnswerKeyTest, AFaultNamesItsLine) {
  const auto fault = [](const std::string& text) {
    try {
      AnswerKey::FromCsvText(text, "key.csv");
    } catch (const std::runtime_error& e) {
      return std::string(e.what());
    }
    return std::string("no fault");
  };
  EXPECT_EQ(fault("Q1,A\n\nQ2\n"), "key.csv:3: question 'Q2' has no right answer");
  EXPECT_EQ(fault("Q1,A\n,B\n"), "key.csv:2: no question name");
  EXPECT_EQ(fault("Q1,A\nQ2,B\nQ1,C\n"),
            "key.csv:3: question 'Q1' is given again (first on line 1)");
  EXPECT_EQ(fault("version,question\nA,Q1,A\n,Q2,B\n"), "key.csv:3: no test version");
  EXPECT_EQ(fault("version,answer\n"),
            "key.csv:1: a key by version has the columns version, question, answer...");
  EXPECT_EQ(fault("Q1,\"A\n"), "key.csv:1: a quote is not closed");
  EXPECT_EQ(fault("# nothing\n\n"), "key.csv: no answers in the key");
  EXPECT_EQ(fault("question,answer\n"), "key.csv: no answers in the key");
  // Against the template: a question it does not have.
  auto form = testing::IdentifiedSheet(1);
  try {
    Grader(*form, AnswerKey::FromCsvText("Q1,A\nQ99,B\n", "key.csv"));
    ADD_FAILURE() << "a key for a question the template does not have";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "key.csv:2: the template has no question 'Q99'");
  }
  form->Free();
}

TEST_F(GradingTest, AFilledKeySheetGivesItsClearAnswersAndReportsTheRest) {
  testing::SheetScans scans(form_);
  synthscan::MarkPlan marks;
  testing::MarkDigits(marks, "PageID", "1");
  testing::MarkDigits(marks, "FormID", "42");
  // Q9 left blank, Q10 marked twice.
  testing::MarkAnswers(marks, "ABCDEABC [DE]");
  const FormReader reader(*form_);
  std::vector<std::string> problems;
  const AnswerKey key =
      AnswerKey::FromSheets(*form_, reader, {{scans.Scan(1, marks, "key.png")}}, problems);
  const auto& questions = key.versions.at("");
  ASSERT_EQ(questions.size(), 8u);
  EXPECT_EQ(questions.at("Q5").values, (std::vector<std::string>{"E"}));
  EXPECT_EQ(questions.at("Q8").values, (std::vector<std::string>{"C"}));
  ASSERT_EQ(problems.size(), 2u);
  EXPECT_EQ(problems[0], scans.folder().File("key.png") + ": Q9: blank: left out of the key");
  EXPECT_EQ(problems[1].rfind(scans.folder().File("key.png") + ": Q10: multiple", 0), 0u)
      << problems[1];

  // A form read and scored with it: the key sheet's own answers are all right.
  const Grader grader(*form_, key);
  FormRecord record = reader.Read({scans.Scan(1, marks, "form.png", -0.4)});
  grader.Score(record);
  EXPECT_EQ(record.score.items.size(), 8u);
  EXPECT_DOUBLE_EQ(record.score.total, 16);
}

}  // namespace
}  // namespace xun::reading
