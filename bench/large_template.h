// The template of a large real form, shared by the benchmarks: 20 pages x 50 regions x 30
// questions of five choices each (30,000 questions and items).
#pragma once

#include <memory>
#include <string>

#include "xun/xun.h"

namespace xun::bench {

constexpr int kPages = 20, kRegions = 50, kQuestions = 30;

// A question text long enough to bring the saved file to about 17 MB, short enough that every
// line stays under inih's 200-byte line limit.
inline std::string LargeQuestionText(int p, int r, int q) {
  constexpr size_t kLength = 80;
  std::string text = "Page " + std::to_string(p) + ", region " + std::to_string(r) + ", question " +
                     std::to_string(q) + ": ";
  static const std::string kFiller =
      "Which of the following statements best describes how often you used the service during "
      "the last twelve months, counting every visit in person, by phone or online? ";
  return text + kFiller.substr(0, kLength - text.size());
}

// With `question_texts` every question also gets its text, as a saved form has.
inline std::shared_ptr<clsXUNTemplate> BuildLargeTemplate(bool question_texts) {
  auto t = clsXUNTemplate::Create();
  for (int p = 1; p <= kPages; ++p) {
    auto page = clsXUNPage::Create();
    for (int r = 1; r <= kRegions; ++r) {
      auto field = clsXUNField::Create();
      field->FieldName("P" + std::to_string(p) + "R" + std::to_string(r));
      field->RecognitionType(xunRecogTypeOMR);
      field->FieldType(xunFieldTypeOMRMult);
      field->Orient(xunOrientationTypeOMRRow);
      field->NumRows(kQuestions);
      field->NumCols(5);
      field->Questions()->Update();  // one question per row
      for (int q = 1; q <= kQuestions; ++q) {
        const auto question = field->Questions()->Item(q);
        question->QuestionName(field->FieldName() + "Q" + std::to_string(q));
        if (question_texts) question->QuestionText(LargeQuestionText(p, r, q));
        question->Choices()->RemoveAll();
        question->Choices()->AddDelimitedString(
            question_texts ? "Never\tRarely\tSometimes\tOften\tAlways" : "A\tB\tC\tD\tE");
        question->Codes()->RemoveAll();
        question->Codes()->AddDelimitedString("1\t2\t3\t4\t5");
      }
      page->Fields()->Add(field);
    }
    t->Pages()->Add(page);
  }
  return t;
}

}  // namespace xun::bench
