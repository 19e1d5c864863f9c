// The image module: decoding page images (GraphicsMagick) and reading barcodes (ZXing-cpp). It
// is a library of its own, libXUNImaging91.so, loaded at the first call that needs it, so a host
// that only reads and writes templates never loads an image library. Both sides are built from
// this header: the module fills the table, the template library calls through it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "xun/model/enums.h"
#include "xun/printing/page_layout.h"

namespace xun::detail {

// How a colour image becomes black and white (see docs/recognition.md).
struct DropOutRule {
  bool drop_colour = false;  // false for Office templates: their forms carry no drop-out ink
  xunTemplateDropOutColor colour = xunTemplateDropOutColorNone;
  int16_t threshold = 20;  // percent
};

// A page image turned into a black-and-white PCX file.
struct ImportedPage {
  std::string pcx;  // the file's bytes
  int16_t xdpi = 0, ydpi = 0, width = 0, height = 0;
};

// A barcode found in a rectangle: its type as a region's barcode field type, and the direction
// its bars read in, in degrees.
struct FoundBarcode {
  xunFieldType type = xunFieldTypeOMRNone;
  int32_t degrees = 0;
};

// The module's calls. Failures are RuntimeErrors, thrown across the boundary (both sides share
// the template library's error type).
struct ImagingModule {
  // Raised by the module when the table's layout changes; the loader refuses another.
  static constexpr int32_t kVersion = 2;
  int32_t version = kVersion;

  // Reads page `page_index` (1-based) of an image file and converts it. An image without a
  // resolution of its own is taken to cover a page of page_width by page_height inches (100 dots
  // per inch when those are not positive). Errors: 53 no such file, 9 no such page, 481 not an
  // image, 6 too large.
  ImportedPage (*import_page)(const std::string& file, int32_t page_index, const DropOutRule& rule,
                              double page_width, double page_height) = nullptr;

  // Reads the barcode in the pixel rectangle [left, right) x [top, bottom) of the first image in
  // a file, trying harder and rotated; nothing when there is none of a type a region can have.
  // Error 5 when the rectangle lies outside the image.
  std::optional<FoundBarcode> (*read_barcode)(const std::string& file, int32_t left, int32_t top,
                                              int32_t right, int32_t bottom) = nullptr;

  // The page drawn at `dpi` dots per inch as the bytes of a grey PNG file. Errors: 6 too large,
  // 481 when the page image underneath cannot be read.
  std::string (*print_page)(const printing::PageLayout& layout, int32_t dpi) = nullptr;
};

// The module's library name, opened beside the template library first.
inline constexpr const char* kImagingLibraryName = "libXUNImaging91.so";
// The one symbol the module exports: its table.
inline constexpr const char* kImagingEntryPoint = "XUNIMG_module";

// The loaded module, opened at the first call. Error 53 "File not found: libXUNImaging91.so"
// when it cannot be opened, 453 when it is not such a module (no table, or another version).
const ImagingModule& Imaging();

}  // namespace xun::detail
