// The form the reading benchmarks read: a one-page letter form of 200 bubbles (two columns of 20
// questions by 5 choices).
#pragma once

#include <memory>

#include "common/choice_grid.h"
#include "xun/xun.h"

namespace xunbench {

inline std::shared_ptr<xun::clsXUNTemplate> LetterForm() {
  auto form = xun::clsXUNTemplate::Create();
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = xun::clsXUNPage::Create();
  form->Pages()->Add(page);
  for (int16_t column = 0; column < 2; ++column)
    xun::testing::AddChoiceGrid(*page, column ? "Right" : "Left", 20, 5,
                                static_cast<int16_t>(150 + 350 * column), 150);
  return form;
}

}  // namespace xunbench
