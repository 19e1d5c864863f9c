// Timing marks found on a page image, and hybrid registration that starts from them.
#include <algorithm>
#include <optional>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/timing_marks.h"
#include "xun/recognition/bas_externs.h"
#include "xun/recognition/image_session.h"
#include "xun/support/bounded_array.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

// Marks smaller than a twentieth of an inch either way are specks, not timing marks; a page
// edge holds far fewer than the buffer.
constexpr int16_t kMinMarkWidth = 5;
constexpr int16_t kMinMarkHeight = 5;
constexpr int16_t kMaxMarks = 512;

// The marks the engine finds on the loaded page image, in reading order (by top, then left);
// nothing when it finds none.
std::optional<std::shared_ptr<clsXUNTimingMarks>> FindMarks(const clsXUNPage& page) {
  const int16_t right = detail::PageRight(page), bottom = detail::PageBottom(page);
  std::vector<xunReadArea> found(kMaxMarks);
  int16_t count = 0;
  if (basExterns::CGetMarksAreas(1, 1, right, bottom, kMinMarkWidth, kMinMarkHeight, kMaxMarks,
                                 count, found.data()) != 0)
    return std::nullopt;
  found.resize(static_cast<size_t>(std::clamp<int16_t>(count, 0, kMaxMarks)));
  // Records the engine could not have meant (no size, off the page) are left out.
  std::erase_if(found, [&](const xunReadArea& m) {
    return m.Width <= 0 || m.Height <= 0 || m.Left < 0 || m.Top < 0 || m.Left > right ||
           m.Top > bottom;
  });
  if (found.empty()) return std::nullopt;
  std::stable_sort(found.begin(), found.end(), [](const xunReadArea& a, const xunReadArea& b) {
    return a.Top != b.Top ? a.Top < b.Top : a.Left < b.Left;
  });
  std::shared_ptr<clsXUNTimingMarks> marks = clsXUNTimingMarks::Create();
  BoundedArray<xunReadArea> array(1, std::move(found));
  if (!marks->AddArray(array)) Raise(kErrInternal);
  return marks;
}

}  // namespace

bool clsXUNPage::FindTimingMarks() {
  return Trap("clsXUNPage.FindTimingMarks", false, [&] {
    detail::RequirePageImage(*this);
    detail::ImageSession session(*this);
    session.RequireLoaded();
    // The page keeps its list when nothing is found.
    std::optional<std::shared_ptr<clsXUNTimingMarks>> marks = FindMarks(*this);
    if (!marks) return false;
    timing_marks_ = std::move(*marks);
    return true;
  });
}

bool clsXUNPage::RegisterHybrid() {
  return Trap("clsXUNPage.RegisterHybrid", false, [&] {
    detail::RequirePageImage(*this);
    detail::ImageSession session(*this);
    session.RequireLoaded();
    // The timing marks place the grids on a hybrid form: without them nothing is registered.
    std::optional<std::shared_ptr<clsXUNTimingMarks>> marks = FindMarks(*this);
    if (!marks) return false;
    timing_marks_ = std::move(*marks);
    bool all = true;
    if (fields_)
      for (const std::shared_ptr<clsXUNField>& field : *fields_)
        all = detail::RegisterOnLoadedImage(*field, *this) == 0 && all;
    return all;
  });
}

}  // namespace xun
