// Where a page decoded straight to grey goes: the caller's own buffer, asked for once the page's
// size is known and checked, so the decoder holds no second copy of the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace xun::imagefile {

struct GreyRows {
  uint8_t* first = nullptr;  // the top row
  std::size_t stride = 0;    // bytes from one row to the next
};

// Called once with the page's width and height; returns where its rows go.
using GreyTarget = std::function<GreyRows(int32_t width, int32_t height)>;

}  // namespace xun::imagefile
