#include "xun/reading/region_reading.h"

#include <algorithm>
#include <exception>
#include <limits>

#include "xun/reading/barcode_reading.h"
#include "xun/reading/region_image.h"
#include "xun/reading/text_reading.h"

namespace xun::reading::detail {
namespace {

// How far, in page units, the fit may put a printed outline or name from where it is: what is
// erased round them.
constexpr double kPrintedSlack = 2.0;

// An OCR answer a person should check: its clip, as printed and written, saved beside the
// others when there is a folder for them.
void SaveForReview(RegionValue& value, const RegionCut& cut, const RegionPlan& region,
                   const ReadOptions& options, const ClipNames& names, int32_t item) {
  if (options.clip_folder.empty()) return;
  const ClipFormat png{{"PNG", imagefile::CutFormat::Compression::kDefault, false}, ".png"};
  try {
    value.clip =
        WriteClip(cut, png, options.clip_folder,
                  ClipFileName("{form}_{region}", names, region.name, item, png.extension));
  } catch (const std::exception& e) {
    value.why += "; its clip was not saved: " + std::string(e.what());
  }
}

std::vector<RegionValue> ReadRegion(const RegionPlan& region, const cv::Mat& grey,
                                    const PageFit& fit, const ReadOptions& options,
                                    const ClipNames& names, int32_t item) {
  const size_t parts = static_cast<size_t>(std::max(1, region.parts));
  const bool barcode = region.kind == xunRecogTypeBarcode, text = region.kind == xunRecogTypeOCR;
  std::string why;
  RegionCut cut = CutRegion(grey, fit, region.area, barcode ? region.distance : 0,
                            text ? kTextPixelsPerUnit : 0, why);
  if (cut.image.empty())
    return std::vector<RegionValue>(parts, RegionValue::Unread(AnswerStatus::Error, why));
  if (region.kind == xunRecogTypeImage)
    return ClipRegion(cut, region, names, item, options.clip_folder);

  const RegionCut as_scanned{cut.image.clone(), cut.origin, cut.pixels_per_unit};
  if (barcode) {
    // The outline only: a name printed above a symbol is no bar, and a symbol may fill the box.
    std::vector<printing::PrintedShape> outlines;
    for (const auto& shape : region.printed)
      if (shape.kind == printing::PrintedShape::Kind::Box) outlines.push_back(shape);
    ErasePrinted(cut, outlines, kPrintedSlack);
    return ReadBarcodes(cut, region);
  }
  ErasePrinted(cut, region.printed, kPrintedSlack);
  RegionValue value = TextValue(ReadText(cut, region.whitelist, options.ocr_language), region);
  if (value.status == AnswerStatus::Doubtful)
    SaveForReview(value, as_scanned, region, options, names, item);
  return std::vector<RegionValue>(parts, value);
}

}  // namespace

std::vector<std::vector<RegionValue>> ReadRegions(const PagePlan& plan, const cv::Mat& grey,
                                                  const PageFit& fit, const ReadOptions& options,
                                                  const ClipNames& names) {
  std::vector<std::vector<RegionValue>> values;
  for (size_t r = 0; r < plan.image_regions.size(); ++r) {
    const RegionPlan& region = plan.image_regions[r];
    int32_t first_item = std::numeric_limits<int32_t>::max();
    for (const ItemPlan& item : plan.items)
      if (item.image_region == static_cast<int>(r)) first_item = std::min(first_item, item.item);
    if (first_item == std::numeric_limits<int32_t>::max()) {
      // No item of it is returned: nothing to read.
      values.emplace_back();
      continue;
    }
    try {
      values.push_back(ReadRegion(region, grey, fit, options, names, first_item));
    } catch (const std::exception& e) {
      values.emplace_back(static_cast<size_t>(std::max(1, region.parts)),
                          RegionValue::Unread(AnswerStatus::Error, e.what()));
    }
  }
  return values;
}

}  // namespace xun::reading::detail
