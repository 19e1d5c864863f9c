// An OMR region as the tests and benchmarks draw their sheets: bubbles of 20 by 15 units 40 by 30
// apart, each in the middle of its cell; multiple choice read by rows (one question a row), any
// other type by columns.
#pragma once

#include <memory>
#include <string>

#include "xun/xun.h"

namespace xun::testing {

inline std::shared_ptr<clsXUNField> AddChoiceGrid(clsXUNPage& page, const std::string& name,
                                                  int16_t rows, int16_t cols, int16_t left,
                                                  int16_t top,
                                                  xunDataType data_type = xunDataType{},
                                                  xunFieldType type = xunFieldTypeOMRMult) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(type);
  if (data_type != xunDataType{}) field->DataType(data_type);
  field->Orient(type == xunFieldTypeOMRMult ? xunOrientationTypeOMRRow : xunOrientationTypeOMRCol);
  field->NumRows(rows);
  field->NumCols(cols);
  field->Left(left);
  field->Top(top);
  field->Right(static_cast<int16_t>(left + 40 * cols));
  field->Bottom(static_cast<int16_t>(top + 30 * rows));
  field->StartCol(10);
  field->StartRow(8);
  field->ColGap(40);
  field->RowGap(30);
  page.Fields()->Add(field);
  field->Questions()->Update();
  return field;
}

}  // namespace xun::testing
