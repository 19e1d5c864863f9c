#include <cstdint>
#include <limits>

#include "xun/model/field.h"
#include "xun/model/string_items.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate {
namespace {

int16_t Offset16(int16_t value, int16_t offset) {
  const int32_t sum = int32_t{value} + int32_t{offset};
  if (sum < std::numeric_limits<int16_t>::min() || sum > std::numeric_limits<int16_t>::max())
    Raise(kErrOverflow);
  return static_cast<int16_t>(sum);
}

}  // namespace

void ForceNumItems(const std::shared_ptr<clsXUNStringItems>& list, int32_t count) {
  Trap("basTemplate.ForceNumItems", [&] {
    if (!list) Raise(kErrObjectNotSet);
    if (count < 0) Raise(kErrInvalidCall);
    while (list->Count() > count)
      list->Remove(list->Count());
    while (list->Count() < count)
      list->Add(std::string());
  });
}

void ApplyOffsets(clsXUNField& oField, int16_t iLeft, int16_t iTop, int16_t iRight,
                  int16_t iBottom) {
  Trap("basTemplate.ApplyOffsets", [&] {
    // Every sum is checked before any is stored, so an overflow moves nothing.
    const int16_t left = Offset16(oField.Left(), iLeft);
    const int16_t top = Offset16(oField.Top(), iTop);
    const int16_t right = Offset16(oField.Right(), iRight);
    const int16_t bottom = Offset16(oField.Bottom(), iBottom);
    oField.Left(left);
    oField.Top(top);
    oField.Right(right);
    oField.Bottom(bottom);
  });
}

}  // namespace xun::basTemplate
