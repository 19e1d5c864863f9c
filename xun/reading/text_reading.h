// OCR regions: machine-printed text on a region's cut, read with Tesseract.
#pragma once

#include <string>

#include "xun/reading/region_image.h"
#include "xun/reading/region_plan.h"
#include "xun/reading/region_value.h"

namespace xun::reading::detail {

// The cut's resolution Tesseract reads best at: text of 10 points is then 40 pixels high.
inline constexpr double kTextPixelsPerUnit = 3.0;

struct TextRead {
  std::string text;    // its lines joined by spaces, without surrounding space
  int confidence = 0;  // Tesseract's mean word confidence, 0 to 100
  std::string error;   // why nothing could be read (the language's data is missing); else empty
};

// The text on `cut` in `language` (Tesseract's name, "eng"), of the characters of `whitelist`
// (any when empty). Each thread keeps its own Tesseract, set up at its first call.
TextRead ReadText(const RegionCut& cut, const std::string& whitelist, const std::string& language);

// The region's value from what was read: blank, clear, or doubtful below its threshold.
RegionValue TextValue(const TextRead& read, const RegionPlan& region);

}  // namespace xun::reading::detail
