// The answer sheet the tests print, mark and scan: one page, 10 timing marks down the left edge
// and a region "Answers" of 20 questions by 5 choices, bubbles of 20 by 15 units 40 by 30 apart
// (the first at 160, 108), each in the middle of its cell of the region (150, 100 to 350, 700).
#pragma once

#include <memory>
#include <string>

#include "common/choice_grid.h"
#include "xun/xun.h"

namespace xun::testing {

inline std::shared_ptr<clsXUNTemplate> AnswerSheet(double width_inches = 8.5,
                                                   double height_inches = 11) {
  auto form = clsXUNTemplate::Create();
  form->Name("Answer sheet");
  form->PageWidth(width_inches);
  form->PageHeight(height_inches);
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  std::string marks;
  for (int i = 0; i < 10; ++i)
    marks += (i ? "\t" : "") + std::string("20,") + std::to_string(100 + i * 65) + ",30,12";
  page->TimingMarks()->AddDelimitedString(marks);
  AddChoiceGrid(*page, "Answers", 20, 5, 150, 100, xunDataTypeText);
  return form;
}

}  // namespace xun::testing
