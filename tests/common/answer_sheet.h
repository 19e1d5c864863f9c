// The answer sheet the tests print, mark and scan: one page, 10 timing marks down the left edge
// and a region "Answers" of 20 questions by 5 choices, bubbles of 20 by 15 units 40 by 30 apart
// (the first at 160, 108), each in the middle of its cell of the region (150, 100 to 350, 700).
#pragma once

#include <memory>
#include <string>

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
  auto field = clsXUNField::Create();
  field->FieldName("Answers");
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->DataType(xunDataTypeText);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(20);
  field->NumCols(5);
  // Bubbles of 20 by 15 units, 40 by 30 apart.
  field->Left(150);
  field->Top(100);
  field->Right(350);
  field->Bottom(700);
  field->StartCol(10);
  field->StartRow(8);
  field->ColGap(40);
  field->RowGap(30);
  page->Fields()->Add(field);
  field->Questions()->Update();
  return form;
}

}  // namespace xun::testing
