#include "xun/model/timing_mark.h"

#include "xun/support/trap.h"

namespace xun {

std::shared_ptr<clsXUNTimingMark> clsXUNTimingMark::Create() {
  return MakeObject<clsXUNTimingMark>();
}

std::shared_ptr<clsXUNTimingMark> clsXUNTimingMark::Copy() const {
  return Trap("clsXUNTimingMark.Copy", std::shared_ptr<clsXUNTimingMark>(), [&] {
    std::shared_ptr<clsXUNTimingMark> copy = Create();
    copy->Height(height_);
    copy->Left(left_);
    copy->Width(width_);
    copy->Top(top_);
    return copy;
  });
}

}  // namespace xun
