#include "xun/reading/region_plan.h"

#include <algorithm>
#include <set>

#include "xun/model/field.h"
#include "xun/model/question.h"
#include "xun/model/questions.h"
#include "xun/model/string_items.h"

namespace xun::reading::detail {
namespace {

// The characters a question's text may hold: those of its codes when it lists any, digits for a
// numeric region, else any.
std::string WhitelistOf(const clsXUNField& field) {
  std::set<char> chars;
  if (field.Questions())
    for (const auto& question : *field.Questions())
      if (question->Codes())
        for (const std::string& code : *question->Codes())
          chars.insert(code.begin(), code.end());
  if (chars.empty() && field.DataType() == xunDataTypeNumeric) return "0123456789";
  // A space between words is not a character to recognise.
  chars.erase(' ');
  return std::string(chars.begin(), chars.end());
}

}  // namespace

bool ReadFromImage(xunRecogType kind) {
  return kind == xunRecogTypeImage || kind == xunRecogTypeBarcode || kind == xunRecogTypeOCR;
}

RegionPlan RegionPlanOf(const clsXUNField& field, const printing::PageLayout& layout) {
  RegionPlan plan;
  plan.name = field.FieldName();
  plan.kind = field.RecognitionType();
  plan.type = field.FieldType();
  const double left = std::min(field.Left(), field.Right()),
               right = std::max(field.Left(), field.Right()),
               top = std::min(field.Top(), field.Bottom()),
               bottom = std::max(field.Top(), field.Bottom());
  plan.area = cv::Rect2d(left, top, right - left, bottom - top);
  for (const printing::PrintedShape& shape : layout.shapes) {
    const bool inside = shape.left >= left - 1 && shape.right <= right + 1 &&
                        shape.top >= top - 1 && shape.bottom <= bottom + 1;
    if (inside && (shape.kind == printing::PrintedShape::Kind::Box ||
                   shape.kind == printing::PrintedShape::Kind::Label))
      plan.printed.push_back(shape);
  }
  plan.parts = field.Questions() ? std::max(1, field.Questions()->Count()) : 1;
  plan.delimiter = field.BarcodeDelimiter();
  plan.length = field.BarcodeLength();
  plan.distance = std::max<int16_t>(0, field.BarcodeDistance());
  plan.threshold = field.Threshold();
  plan.whitelist = WhitelistOf(field);
  plan.clip_type = field.ImageClipType();
  plan.clip_compression = field.ImageClipCompression();
  plan.clip_file = field.ImageClipFile();
  plan.add_column = field.ImageClipAddColumn();
  return plan;
}

}  // namespace xun::reading::detail
