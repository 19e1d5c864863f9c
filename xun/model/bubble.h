// One answer mark position of an OMR region: a rectangle in page pixels and how full it was.
#pragma once

#include <cstdint>
#include <memory>

#include "xun/export.h"
#include "xun/model/fwd.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNBubble : public Object {
 public:
  static std::shared_ptr<clsXUNBubble> Create();

  // The list that holds this bubble; empty when it is in none.
  std::shared_ptr<clsXUNBubbles> Bubbles() const { return bubbles_.lock(); }
  void Bubbles(const std::shared_ptr<clsXUNBubbles>& value) { bubbles_ = value; }
  int16_t Left() const { return left_; }
  void Left(int16_t value) { left_ = value; }
  int16_t Right() const { return right_; }
  void Right(int16_t value) { right_ = value; }
  int16_t Top() const { return top_; }
  void Top(int16_t value) { top_ = value; }
  int16_t Bottom() const { return bottom_; }
  void Bottom(int16_t value) { bottom_ = value; }
  // Right - Left when Right is greater, else 0; never stored. A span wider than 32767 pixels
  // gives 32767 rather than failing, since these accessors never fail.
  int16_t Width() const;
  int16_t Height() const;
  // Fill level in percent; a value outside 0..100 is ignored.
  int16_t PercentFilled() const { return percent_filled_; }
  void PercentFilled(int16_t value);
  // A new bubble with the same edges and fill, in no list.
  std::shared_ptr<clsXUNBubble> Copy() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNBubble() = default;
  std::weak_ptr<clsXUNBubbles> bubbles_;
  int16_t left_ = 0, right_ = 0, top_ = 0, bottom_ = 0, percent_filled_ = 0;
};

}  // namespace xun
