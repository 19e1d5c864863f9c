#include "xun/model/question_bubbles.h"

#include "xun/model/field.h"

namespace xun::detail {

std::optional<int32_t> BubblesPerQuestion(const clsXUNField& field) {
  if (field.FieldType() == xunFieldTypeOMRBoolean) return 1;
  if (field.Orient() == xunOrientationTypeOMRRow) return field.NumCols();
  if (field.Orient() == xunOrientationTypeOMRCol) return field.NumRows();
  return std::nullopt;
}

}  // namespace xun::detail
