// The answers a generated scan must read as, from the generator's truth: shared by the reading
// tests and the accuracy benchmark.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "synthscan/synthetic_scan.h"
#include "xun/reading/answer_rules.h"
#include "xun/xun.h"

namespace xun::testing {

namespace ss = xun::synthscan;

// What the truth of the marks says each item must read: the library's own rules applied to the
// bubbles as a careful person judges them (ambiguous ones doubtful). Items with an ambiguous
// bubble may read either way and are left out.
inline std::map<std::string, std::string> ExpectedAnswers(const clsXUNTemplate& form,
                                                          const ss::Scan& scan) {
  std::map<ss::BubbleAt, ss::Truth> truth;
  for (const ss::BubbleTruth& b : scan.bubbles)
    truth[b.at] = b.truth;
  std::map<std::string, std::string> expected;
  for (const auto& field : *form.Pages()->Item(scan.page)->Fields()) {
    if (field->RecognitionType() != xunRecogTypeOMR) continue;
    const bool by_rows = field->Orient() == xunOrientationTypeOMRRow;
    for (const auto& question : *field->Questions()) {
      if (question->ReturnIndex(true) <= 0) continue;
      int16_t r0 = 0, r1 = 0, c0 = 0, c1 = 0;
      if (!question->Plot(r0, r1, c0, c1)) continue;
      std::vector<std::vector<reading::BubbleRead>> lines;
      bool ambiguous = false;
      for (int a = by_rows ? r0 : c0; a <= (by_rows ? r1 : c1); ++a) {
        auto& line = lines.emplace_back();
        for (int b = by_rows ? c0 : r0; b <= (by_rows ? c1 : r1); ++b) {
          const ss::Truth t = truth[{field->FieldName(), by_rows ? a : b, by_rows ? b : a}];
          ambiguous = ambiguous || t == ss::Truth::kAmbiguous;
          line.push_back(
              {t == ss::Truth::kMarked ? reading::MarkState::Marked : reading::MarkState::Unmarked,
               static_cast<int16_t>(t == ss::Truth::kMarked ? 90 : 0), 1.0});
        }
      }
      if (!ambiguous)
        expected[question->QuestionName()] =
            reading::AnswerOf(reading::QuestionRules::Of(*question), lines).value;
    }
  }
  return expected;
}

}  // namespace xun::testing
