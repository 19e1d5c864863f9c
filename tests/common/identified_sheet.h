// A form of several pages that identifies itself, for the identification, grading and review
// tests. Every page has a hidden page ID (a column of ten digit bubbles, "PageID", at 450, 100)
// reading its page number, and ten questions of five choices A to E ("Answers", Q1 to Q10 on
// page 1, Q11 to Q20 on page 2...), graded: 2 points right, -0.5 wrong, 0 blank; the Answers
// region (at 150, 100 on page 1) moves 350 units down a page, so a page does not register as
// another. Page 1 also has
// a hidden form ID of two digits ("FormID", at 550, 100) reading 42 and a respondent tracker of
// three digits that is a data item too ("Respondent", at 650, 100). Bubbles 20 by 15, 40 by 30
// apart, as the answer sheet's.
#pragma once

#include <memory>
#include <string>

#include "common/choice_grid.h"
#include "synthscan/answers.h"
#include "xun/xun.h"

namespace xun::testing {

inline std::shared_ptr<clsXUNField> SheetRegion(clsXUNPage& page, const std::string& name,
                                                xunFieldType type, int rows, int cols, int left,
                                                int top) {
  return AddChoiceGrid(page, name, static_cast<int16_t>(rows), static_cast<int16_t>(cols),
                       static_cast<int16_t>(left), static_cast<int16_t>(top), xunDataTypeText,
                       type);
}

// A grid of digit columns, 0 to 9 down each: one question, of an identification role.
inline void DigitsRegion(clsXUNPage& page, const std::string& name, int digits, int left,
                         xunIDType role, const std::string& value, bool adds_item) {
  auto field = SheetRegion(page, name, xunFieldTypeOMRGrid, 10, digits, left, 100);
  auto question = field->Questions()->Item(1);
  auto codes = clsXUNStringItems::Create();
  codes->AddDelimitedString("0\t1\t2\t3\t4\t5\t6\t7\t8\t9");
  question->Codes(codes);
  question->QuestionName(name);
  question->IDType(role);
  question->IDValue(value);
  question->IDAdd(adds_item);
}

inline std::shared_ptr<clsXUNTemplate> IdentifiedSheet(int pages = 2) {
  auto form = clsXUNTemplate::Create();
  form->Name("Identified sheet");
  form->PageWidth(8.5);
  form->PageHeight(11);
  for (int p = 1; p <= pages; ++p) {
    auto page = clsXUNPage::Create();
    form->Pages()->Add(page);
    DigitsRegion(*page, "PageID", 1, 450, xunIDTypePage, std::to_string(p), false);
    if (p == 1) {
      DigitsRegion(*page, "FormID", 2, 550, xunIDTypeForm, "42", false);
      DigitsRegion(*page, "Respondent", 3, 650, xunIDTypeRespondent, "", true);
    }
    auto answers =
        SheetRegion(*page, "Answers", xunFieldTypeOMRMult, 10, 5, 150, 100 + 350 * (p - 1));
    int n = 10 * (p - 1);
    for (const auto& question : *answers->Questions()) {
      question->QuestionName("Q" + std::to_string(++n));
      question->Grade(true);
      question->Correct(2);
      question->Incorrect(-0.5);
    }
  }
  return form;
}

// Marks that write `digits` down the columns of a digits region.
inline void MarkDigits(synthscan::MarkPlan& plan, const std::string& region,
                       const std::string& digits) {
  for (size_t i = 0; i < digits.size(); ++i)
    plan[{region, digits[i] - '0' + 1, static_cast<int>(i) + 1}] = {synthscan::MarkKind::kFull};
}

// A filled bubble for each answer letter A to E of Answers, question after question from row 1;
// a space leaves a row blank, and several letters in brackets ("[AC]") mark them all.
inline void MarkAnswers(synthscan::MarkPlan& plan, const std::string& letters) {
  int row = 0;
  bool group = false;
  for (const char c : letters) {
    if (c == '[') {
      group = true;
      ++row;
      continue;
    }
    if (c == ']') {
      group = false;
      continue;
    }
    if (!group) ++row;
    if (c != ' ') plan[{"Answers", row, c - 'A' + 1}] = {synthscan::MarkKind::kFull};
  }
}

}  // namespace xun::testing
