// What the printed blank form of a template page shows, as shapes in page units (1/100 inch):
// the one description a printer draws, whatever it draws on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/fwd.h"

namespace xun::printing {

// Outline widths, in page units. A bubble's outline lies inside its rectangle, so the printed
// bubble's outer edge is the rectangle the grid geometry gives (and registration finds again).
inline constexpr double kBubbleLine = 1.0;
inline constexpr double kRegionLine = 1.0;
// A choice label's height as a share of its bubble's height, and its stroke in page units.
inline constexpr double kLabelShare = 0.5;
inline constexpr double kLabelStroke = 0.6;
// How dark a choice label inside a bubble is printed (1 black): light enough that a reader does
// not take it for a mark, as with the drop-out inks of printed forms, and still plain to read.
inline constexpr double kBubbleLabelInk = 0.22;

struct PrintedShape {
  enum class Kind : uint8_t {
    Solid,    // a filled rectangle: a timing mark
    Box,      // a rectangle's outline: a barcode, OCR, image or identification region
    Bubble,   // an elliptic outline inside the rectangle
    Label,    // text in the rectangle, as large as fits up to its height
    Barcode,  // the symbol of `text` in `barcode` filling the rectangle
  };
  Kind kind = Kind::Box;
  double left = 0, top = 0, right = 0, bottom = 0;
  double line = 0;  // outline or stroke width
  std::string text;
  bool centred = true;  // a label centred in its rectangle, else at its left edge
  double ink = 1.0;     // darkness, from 0 (paper) to 1 (black)
  xunFieldType barcode = xunFieldTypeOMRNone;
};

struct PageLayout {
  double width = 0, height = 0;  // the page, in page units
  std::string image_file;        // the page's own image, printed underneath; empty when none
  int16_t image_xdpi = 0, image_ydpi = 0;  // its resolution; 0 when it is to cover the page
  std::vector<PrintedShape> shapes;
};

// The size of the template's pages in page units: PageWidth x PageHeight inches, turned for a
// landscape form whose size is given upright. Either may be 0 or less when it is not set.
XUN_API void PageSizeOf(const clsXUNTemplate& oTemplate, double& dWidth, double& dHeight);

// The size of the printed page: PageSizeOf, or Letter (850 x 1100) when that is not set.
XUN_API void PrintedPageSize(const clsXUNTemplate& oTemplate, double& dWidth, double& dHeight);

// The blank form of page iPage (1-based, which must exist): its timing marks, every OMR region's
// bubbles where BubbleGrid places them with the choice of each inside, and an outline for every
// other region with its name, on a page of Letter size when the template's size is not set. An
// identification barcode with its ID value is printed as that barcode. Throws RuntimeError 9 for a
// page that does not exist.
XUN_API PageLayout LayoutOf(const clsXUNTemplate& oTemplate, int32_t iPage);

}  // namespace xun::printing
