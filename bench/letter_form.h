// The form the reading benchmarks read: a one-page letter form of 200 bubbles (two columns of 20
// questions by 5 choices).
#pragma once

#include <memory>

#include "xun/xun.h"

namespace xunbench {

inline std::shared_ptr<xun::clsXUNTemplate> LetterForm() {
  auto form = xun::clsXUNTemplate::Create();
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = xun::clsXUNPage::Create();
  form->Pages()->Add(page);
  for (int column = 0; column < 2; ++column) {
    auto field = xun::clsXUNField::Create();
    field->FieldName(column ? "Right" : "Left");
    field->RecognitionType(xun::xunRecogTypeOMR);
    field->FieldType(xun::xunFieldTypeOMRMult);
    field->Orient(xun::xunOrientationTypeOMRRow);
    field->NumRows(20);
    field->NumCols(5);
    field->Left(static_cast<int16_t>(150 + 350 * column));
    field->Top(150);
    field->Right(static_cast<int16_t>(350 + 350 * column));
    field->Bottom(750);
    field->StartCol(10);
    field->StartRow(8);
    field->ColGap(40);
    field->RowGap(30);
    page->Fields()->Add(field);
    field->Questions()->Update();
  }
  return form;
}

}  // namespace xunbench
