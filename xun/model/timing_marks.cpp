#include "xun/model/timing_marks.h"

#include <string_view>
#include <utility>
#include <vector>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun {
namespace {

// Marks are counted in 16 bits, as the stored forms always were: beyond 32767 is an overflow.
void CheckLoopBound(int64_t upper_bound) {
  To16(upper_bound);
}

// A number of a mark text: its leading number, rounded halves to even, as a 16-bit value.
int16_t MarkValue(std::string_view piece) {
  return CInt(Val(piece));
}

}  // namespace

std::shared_ptr<clsXUNTimingMarks> clsXUNTimingMarks::Create() {
  return MakeObject<clsXUNTimingMarks>();
}

BoundedArray<xunReadArea> clsXUNTimingMarks::AsArray(int32_t lLowerBound) const {
  return Trap("clsXUNTimingMarks.AsArray", BoundedArray<xunReadArea>(), [&] {
    if (items_.Count() < 1) return BoundedArray<xunReadArea>();
    std::vector<xunReadArea> areas;
    areas.reserve(static_cast<size_t>(items_.Count()));
    for (const std::shared_ptr<clsXUNTimingMark>& mark : items_)
      areas.push_back({mark->Left(), mark->Top(), mark->Width(), mark->Height()});
    return BoundedArray<xunReadArea>(lLowerBound, std::move(areas));
  });
}

std::string clsXUNTimingMarks::AsString(const std::string& sMarkDelimiter,
                                        const std::string& sPropertyDelimiter) const {
  return Trap("clsXUNTimingMarks.AsString", std::string(), [&] {
    if (items_.Count() < 1) return std::string();
    CheckLoopBound(items_.Count());
    std::string joined;
    for (const std::shared_ptr<clsXUNTimingMark>& mark : items_) {
      // Record order (left, top, width, height), not the order of the mark's own properties.
      joined += std::to_string(mark->Left()) + sPropertyDelimiter + std::to_string(mark->Top()) +
                sPropertyDelimiter + std::to_string(mark->Width()) + sPropertyDelimiter +
                std::to_string(mark->Height()) + sMarkDelimiter;
    }
    return basPublic::RemoveTrailingDelimiter(joined, sMarkDelimiter, 1);
  });
}

bool clsXUNTimingMarks::AddDelimitedString(const std::string& sMarks,
                                           const std::string& sMarkDelimiter,
                                           const std::string& sPropertyDelimiter) {
  return Trap("clsXUNTimingMarks.AddDelimitedString", false, [&] {
    const std::vector<std::string_view> marks = text::Split(sMarks, sMarkDelimiter);
    if (!marks.empty()) CheckLoopBound(static_cast<int64_t>(marks.size()) - 1);
    for (std::string_view mark : marks) {
      const std::vector<std::string_view> pieces = text::Split(mark, sPropertyDelimiter);
      // A mark text with fewer than four numbers is skipped; numbers after the fourth are not
      // read.
      if (pieces.size() < 4) continue;
      const int16_t left = MarkValue(pieces[0]);
      const int16_t top = MarkValue(pieces[1]);
      const int16_t width = MarkValue(pieces[2]);
      const int16_t height = MarkValue(pieces[3]);
      AddMark(left, top, width, height);
    }
    return true;
  });
}

bool clsXUNTimingMarks::AddArray(const BoundedArray<xunReadArea>& oMarkArr) {
  // Untrapped by design: a failure (an unallocated array, bounds beyond 16 bits) ends it with
  // False and no report.
  try {
    const int16_t lower = To16(oMarkArr.LBound());
    const int16_t upper = To16(oMarkArr.UBound());
    for (int32_t i = lower; i <= upper; ++i) {
      const xunReadArea& area = oMarkArr[i];
      // Deliberate: a record of width 0 ends the array, whatever follows it.
      if (area.Width == 0) return true;
      if (!AddMark(area.Left, area.Top, area.Width, area.Height)) return false;
    }
    return true;
  } catch (const HostError&) {
    throw;
  } catch (...) {
    return false;
  }
}

bool clsXUNTimingMarks::AddMark(int16_t iLeft, int16_t iTop, int16_t iWidth, int16_t iHeight,
                                std::optional<std::string> Key) {
  return Trap("clsXUNTimingMarks.Add", false, [&] {
    std::shared_ptr<clsXUNTimingMark> mark = clsXUNTimingMark::Create();
    mark->Left(iLeft);
    mark->Top(iTop);
    mark->Width(iWidth);
    mark->Height(iHeight);
    items_.Add(std::move(mark), std::move(Key));
    return true;
  });
}

bool clsXUNTimingMarks::Add(const std::shared_ptr<clsXUNTimingMark>& oMark,
                            std::optional<std::string> Key) {
  return Trap("clsXUNTimingMarks.Add", false, [&] {
    if (!oMark) Raise(kErrObjectNotSet);
    items_.Add(oMark, std::move(Key));
    return true;
  });
}

Variant clsXUNTimingMarks::Remove(const Index& index) {
  return Trap("clsXUNTimingMarks.Remove", Variant(), [&] {
    if (!Exists(index)) return Variant();
    items_.Remove(index);
    return Variant(true);
  });
}

std::shared_ptr<clsXUNTimingMark> clsXUNTimingMarks::Item(const Index& index) const {
  return Trap("clsXUNTimingMarks.Item", std::shared_ptr<clsXUNTimingMark>(), [&] {
    const std::shared_ptr<clsXUNTimingMark>* found = items_.Find(index);
    return found ? *found : nullptr;
  });
}

bool clsXUNTimingMarks::Exists(const Index& index) const noexcept {
  const std::shared_ptr<clsXUNTimingMark>* found = items_.Find(index);
  return found && *found;
}

bool clsXUNTimingMarks::RemoveAll() {
  return Trap("clsXUNTimingMarks.RemoveAll", false, [&] {
    for (int32_t position = items_.Count(); position >= 1; --position)
      Remove(position);
    return items_.Count() == 0;
  });
}

}  // namespace xun
