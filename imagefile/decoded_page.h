// One decoded page of an image file, and its pixels as grey or colour.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace xun::imagefile {

// A rectangle of pixels: [left, left + width) x [top, top + height).
struct PixelRect {
  int32_t left = 0, top = 0, width = 0, height = 0;
};

class DecodedPage {
 public:
  struct Frames;
  explicit DecodedPage(std::unique_ptr<Frames> frames);
  ~DecodedPage();
  DecodedPage(DecodedPage&&) noexcept;
  DecodedPage& operator=(DecodedPage&&) noexcept;

  int32_t Width() const noexcept;
  int32_t Height() const noexcept;
  // Dots per inch the file states (pixels per centimetre converted), 0 when it states none.
  double XDpi() const noexcept;
  double YDpi() const noexcept;

  // The rectangle (which must lie on the page, else std::invalid_argument) as 8 bits a pixel,
  // row by row, each row `stride` bytes after the one before. Transparent parts are white paper.
  // Grey is the luminance 0.299 R + 0.587 G + 0.114 B, 0 black; colour is red, green, blue.
  // The page's colour pixels are read a strip at a time, never for the whole page at once.
  void ReadGrey(const PixelRect& rect, uint8_t* out, std::size_t stride) const;
  void ReadRgb(const PixelRect& rect, uint8_t* out, std::size_t stride) const;

 private:
  std::unique_ptr<Frames> frames_;
};

}  // namespace xun::imagefile
