#include "xun/model/grid_registration.h"

#include "xun/model/field.h"
#include "xun/model/field_extra.h"
#include "xun/support/runtime_error.h"

namespace xun::detail {
namespace {

// Rows, columns, bubble width and height come before the edges and the fills.
constexpr size_t kHeader = 4;

}  // namespace

std::optional<GridRegistration> ReadRegistration(const clsXUNField& field) {
  const std::shared_ptr<clsXUNFieldExtra> extra = field.Extra();
  const int32_t rows = field.NumRows(), cols = field.NumCols();
  if (!extra || field.RecognitionType() != xunRecogTypeOMR || rows < 1 || cols < 1)
    return std::nullopt;
  const std::vector<int16_t> values = extra->UnnamedValues();
  const size_t r = static_cast<size_t>(rows), c = static_cast<size_t>(cols);
  if (values.size() != kHeader + c + r + r * c || values[0] != rows || values[1] != cols ||
      values[2] <= 0 || values[3] <= 0)
    return std::nullopt;
  GridRegistration found;
  found.rows = values[0];
  found.cols = values[1];
  found.width = values[2];
  found.height = values[3];
  const auto at = values.begin() + kHeader;
  found.lefts.assign(at, at + cols);
  found.tops.assign(at + cols, at + cols + rows);
  found.fills.assign(at + cols + rows, values.end());
  return found;
}

void WriteRegistration(clsXUNFieldExtra& extra, const GridRegistration& registration) {
  std::vector<int16_t> values = {registration.rows, registration.cols, registration.width,
                                 registration.height};
  for (const std::vector<int16_t>* part :
       {&registration.lefts, &registration.tops, &registration.fills})
    values.insert(values.end(), part->begin(), part->end());
  // Named values (older region settings) stay as they are.
  if (!extra.ReplaceUnnamedValues(values)) Raise(kErrInvalidCall);
}

}  // namespace xun::detail
