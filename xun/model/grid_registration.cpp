#include "xun/model/grid_registration.h"

#include <string>
#include <utility>

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
  std::vector<int16_t> values;
  for (int32_t position = 1; position <= extra->Count(); ++position)
    if (!extra->KeyOf(position)) values.push_back(extra->Item(position));
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
  std::vector<std::pair<std::string, int16_t>> named;
  for (int32_t position = 1; position <= extra.Count(); ++position)
    if (std::optional<std::string> key = extra.KeyOf(position))
      named.emplace_back(std::move(*key), extra.Item(position));
  std::vector<int16_t> values = {registration.rows, registration.cols, registration.width,
                                 registration.height};
  for (const std::vector<int16_t>* part :
       {&registration.lefts, &registration.tops, &registration.fills})
    values.insert(values.end(), part->begin(), part->end());
  if (!extra.RemoveAll()) Raise(kErrInvalidCall);
  for (const int16_t value : values)
    if (!extra.Add(value)) Raise(kErrInvalidCall);
  for (auto& [key, value] : named)
    if (!extra.Add(value, std::move(key))) Raise(kErrInvalidCall);
}

}  // namespace xun::detail
