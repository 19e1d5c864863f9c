// The engine's entry points as the tests call them: a loaded image for the length of a scope,
// and a grid check with its result and fill arrays.
#pragma once

#include <string>
#include <vector>

#include "engine/synthetic_page.h"
#include "engine/xunrec.h"

namespace xun::testing {

class LoadedImage {
 public:
  LoadedImage(const std::string& file, int dpi)
      : code_(XUNREC_load_image(file.c_str(), 0, static_cast<int16_t>(dpi),
                                static_cast<int16_t>(dpi), 0, 0)) {}
  ~LoadedImage() { XUNREC_unload_image(); }
  LoadedImage(const LoadedImage&) = delete;
  LoadedImage& operator=(const LoadedImage&) = delete;
  int16_t Code() const { return code_; }

 private:
  int16_t code_;
};

struct CheckedGrid {
  int16_t code = -1;
  std::vector<int16_t> results, fill;
  int16_t Left(int col) const { return results[5 + static_cast<size_t>(col)]; }
  int16_t Top(int row, int cols) const { return results[5 + static_cast<size_t>(cols + row)]; }
  // The fill array has the row index running fastest.
  int16_t Fill(int row, int col, int rows) const {
    return fill[static_cast<size_t>(col * rows + row)];
  }
};

inline CheckedGrid CheckGrid(const GridSpec& grid) {
  CheckedGrid checked;
  checked.results.assign(static_cast<size_t>(grid.rows + grid.cols + 5), -1);
  checked.fill.assign(static_cast<size_t>(grid.rows * grid.cols), -1);
  checked.code = XUNREC_check_omr_field_fill(
      static_cast<int16_t>(grid.rows), static_cast<int16_t>(grid.cols),
      static_cast<int16_t>(grid.left), static_cast<int16_t>(grid.top), grid.Right(), grid.Bottom(),
      checked.results.data(), checked.fill.data());
  return checked;
}

}  // namespace xun::testing
