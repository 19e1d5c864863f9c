// One printed timing mark along a page edge.
#pragma once

#include <cstdint>
#include <memory>

#include "xun/export.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNTimingMark : public Object {
 public:
  static std::shared_ptr<clsXUNTimingMark> Create();

  int16_t Left() const { return left_; }
  void Left(int16_t value) { left_ = value; }
  int16_t Width() const { return width_; }
  void Width(int16_t value) { width_ = value; }
  int16_t Top() const { return top_; }
  void Top(int16_t value) { top_ = value; }
  int16_t Height() const { return height_; }
  void Height(int16_t value) { height_ = value; }
  std::shared_ptr<clsXUNTimingMark> Copy() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNTimingMark() = default;
  int16_t left_ = 0, width_ = 0, top_ = 0, height_ = 0;
};

}  // namespace xun
