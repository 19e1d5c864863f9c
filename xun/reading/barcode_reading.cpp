#include "xun/reading/barcode_reading.h"

// The text as UTF-8, as the record keeps it.
#define ZX_USE_UTF8 1
#include <ZXing/BarcodeFormat.h>
#include <ZXing/DecodeHints.h>
#include <ZXing/ImageView.h>
#include <ZXing/ReadBarcode.h>
#include <ZXing/Result.h>

#include <algorithm>
#include <optional>

#include "imaging/barcode_formats.h"

namespace xun::reading::detail {
namespace {

// The symbologies a region of `type` is read as; None for a type that is not read.
ZXing::BarcodeFormats FormatsOf(xunFieldType type) {
  ZXing::BarcodeFormats formats;
  if (type == xunFieldTypeBarcodeAuto) {
    for (const auto& [format, region_type] : imaging::kBarcodeFormats)
      formats |= format;
    return formats;
  }
  if (type == xunFieldTypeBarcodeUcc128) return ZXing::BarcodeFormat::Code128;
  if (type == xunFieldTypeBarcodeCode39Extended) return ZXing::BarcodeFormat::Code39;
  for (const auto& [format, region_type] : imaging::kBarcodeFormats)
    if (region_type == type) formats |= format;
  return formats;
}

bool TwoDimensional(ZXing::BarcodeFormat format) {
  return format == ZXing::BarcodeFormat::QRCode || format == ZXing::BarcodeFormat::DataMatrix ||
         format == ZXing::BarcodeFormat::PDF417;
}

// How sure the reading is: a matrix symbol carries its own error correction; a linear one is
// surer the more scan lines across it agreed (ZXing wants two at least).
double ConfidenceOf(const ZXing::Result& result) {
  if (TwoDimensional(result.format())) return 1.0;
  return std::min(1.0, 0.5 + 0.1 * result.lineCount());
}

// What one symbol gives: its text, unless it is damaged or of the wrong length.
RegionValue ValueOf(const ZXing::Result& result, const RegionPlan& region) {
  if (!result.isValid())
    return RegionValue::Unread(AnswerStatus::Doubtful,
                               "a barcode that cannot be read: " + ZXing::ToString(result.error()));
  std::string text = result.text();
  if (region.length > 0 && static_cast<int64_t>(text.size()) != region.length)
    return RegionValue::Unread(AnswerStatus::Doubtful, "the barcode reads \"" + text + "\", " +
                                                           std::to_string(text.size()) +
                                                           " characters where the region wants " +
                                                           std::to_string(region.length));
  return RegionValue::Of(std::move(text), ConfidenceOf(result));
}

}  // namespace

std::vector<RegionValue> ReadBarcodes(const RegionCut& cut, const RegionPlan& region) {
  const size_t parts = static_cast<size_t>(std::max(1, region.parts));
  const ZXing::BarcodeFormats formats = FormatsOf(region.type);
  if (formats.empty())
    return std::vector<RegionValue>(
        parts,
        RegionValue::Unread(AnswerStatus::Error,
                            "barcodes of type " + std::to_string(region.type) + " are not read"));
  ZXing::DecodeHints hints;
  hints.setFormats(formats);
  hints.setTryHarder(true);
  hints.setTryRotate(true);
  hints.setReturnErrors(true);
  hints.setTryCode39ExtendedMode(region.type == xunFieldTypeBarcodeCode39Extended);
  const cv::Mat& image = cut.image;
  ZXing::Results results = ZXing::ReadBarcodes(
      ZXing::ImageView(image.data, image.cols, image.rows, ZXing::ImageFormat::Lum,
                       static_cast<int>(image.step[0])),
      hints);
  // A damaged reading of a symbol that was also read whole is not another symbol.
  const auto box = [](const ZXing::Result& r) {
    cv::Rect2d b(r.position()[0].x, r.position()[0].y, 0, 0);
    for (const ZXing::PointI& corner : r.position())
      b |= cv::Rect2d(corner.x, corner.y, 1, 1);
    return b;
  };
  std::erase_if(results, [&](const ZXing::Result& damaged) {
    return !damaged.isValid() && std::any_of(results.begin(), results.end(), [&](const auto& r) {
      return r.isValid() && (box(r) & box(damaged)).area() > 0;
    });
  });
  if (results.empty()) return std::vector<RegionValue>(parts, RegionValue::Blank());

  // The column of the region each symbol's middle stands in; left to right.
  struct Found {
    size_t column;
    double x;
    const ZXing::Result* result;
  };
  std::vector<Found> found;
  const double column_width = region.area.width / static_cast<double>(parts);
  for (const ZXing::Result& r : results) {
    double mx = 0;
    for (const ZXing::PointI& corner : r.position())
      mx += corner.x / 4.0;
    const double x = cut.origin.x + mx / cut.pixels_per_unit - region.area.x;
    const double column = std::clamp(x / column_width, 0.0, static_cast<double>(parts - 1));
    found.push_back({static_cast<size_t>(column), mx, &r});
  }
  std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
    return a.column != b.column ? a.column < b.column : a.x < b.x;
  });

  if (parts == 1) {
    if (found.size() == 1) return {ValueOf(*found[0].result, region)};
    if (region.delimiter.empty())
      return {RegionValue::Several(std::to_string(found.size()) +
                                   " barcodes where the region holds one")};
    // Several barcodes, one value: joined, each as it must be.
    RegionValue joined = RegionValue::Of({});
    for (size_t i = 0; i < found.size(); ++i) {
      RegionValue one = ValueOf(*found[i].result, region);
      if (one.kind != RegionValue::Kind::Text) {
        one.why = "barcode " + std::to_string(i + 1) + ": " + one.why;
        return {one};
      }
      joined.text += (i ? region.delimiter : std::string()) + one.text;
      joined.confidence = std::min(joined.confidence, one.confidence);
    }
    return {joined};
  }

  std::vector<RegionValue> values(parts, RegionValue::Blank());
  std::vector<int> in_column(parts, 0);
  for (const Found& f : found)
    ++in_column[f.column];
  for (const Found& f : found) {
    if (in_column[f.column] > 1)
      values[f.column] = RegionValue::Several(std::to_string(in_column[f.column]) +
                                              " barcodes in one column of the region");
    else
      values[f.column] = ValueOf(*f.result, region);
  }
  return values;
}

}  // namespace xun::reading::detail
