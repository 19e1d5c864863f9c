// What reading a barcode, OCR or image-clip region needs of the template, taken once: where it
// lies, what the blank form prints inside it, and its settings.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <string>
#include <vector>

#include "xun/model/enums.h"
#include "xun/model/fwd.h"
#include "xun/printing/page_layout.h"

namespace xun::reading::detail {

struct RegionPlan {
  std::string name;
  xunRecogType kind = xunRecogTypeBarcode;
  xunFieldType type = xunFieldTypeOMRNone;
  cv::Rect2d area;  // page units
  // What the blank form prints inside the region (its outline, its name): not the respondent's.
  std::vector<printing::PrintedShape> printed;
  int32_t parts = 1;  // the values it gives: one for each of its questions

  // Barcode regions.
  std::string delimiter;
  int16_t length = 0;    // the characters every barcode must have; 0 for any
  int16_t distance = 0;  // page units the symbol may reach past the region

  // OCR regions.
  int16_t threshold = 70;  // the confidence, in percent, below which a person looks
  std::string whitelist;   // the characters the text may hold; empty for any

  // Image-clip regions.
  xunImageClipType clip_type = xunImageClipTypeUnknown;
  xunImageClipCompression clip_compression = xunImageClipCompressionUnknown;
  std::string clip_file;  // the file name pattern
  bool add_column = false;
};

// Whether a region of this kind is read by the image (a barcode, text or a clip).
bool ReadFromImage(xunRecogType kind);

// The plan of `field`, a region ReadFromImage reads, with the shapes of its page's layout.
RegionPlan RegionPlanOf(const clsXUNField& field, const printing::PageLayout& layout);

}  // namespace xun::reading::detail
