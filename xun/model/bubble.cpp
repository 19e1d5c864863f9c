#include "xun/model/bubble.h"

#include <algorithm>
#include <limits>

#include "xun/support/trap.h"

namespace xun {
namespace {

// The span from `low` to `high`, 0 when they are in the wrong order; held to 16 bits because
// the accessors never fail.
int16_t Span(int16_t low, int16_t high) noexcept {
  if (high <= low) return 0;
  return static_cast<int16_t>(
      std::min<int32_t>(int32_t{high} - low, std::numeric_limits<int16_t>::max()));
}

}  // namespace

std::shared_ptr<clsXUNBubble> clsXUNBubble::Create() {
  return MakeObject<clsXUNBubble>();
}

int16_t clsXUNBubble::Width() const {
  return Span(left_, right_);
}

int16_t clsXUNBubble::Height() const {
  return Span(top_, bottom_);
}

void clsXUNBubble::PercentFilled(int16_t value) {
  if (value >= 0 && value <= 100) percent_filled_ = value;
}

std::shared_ptr<clsXUNBubble> clsXUNBubble::Copy() const {
  return Trap("clsXUNBubble.Copy", std::shared_ptr<clsXUNBubble>(), [&] {
    std::shared_ptr<clsXUNBubble> copy = Create();
    copy->Bottom(bottom_);
    copy->Left(left_);
    copy->PercentFilled(percent_filled_);
    copy->Right(right_);
    copy->Top(top_);
    return copy;
  });
}

}  // namespace xun
