// The engine's C entry points: argument checks, the current image, and the codes. Nothing
// thrown inside crosses the C boundary.
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

#include "engine/alignment.h"
#include "engine/bubble_fill.h"
#include "engine/engine_error.h"
#include "engine/grid_check.h"
#include "engine/grid_search.h"
#include "engine/page_image.h"
#include "engine/timing_marks.h"
#include "engine/xunrec.h"

namespace xunrec {
namespace {

// The result array: rows and columns found, bubble width and height, then how the edges were
// found (ours: 1 columns seen on the image, 2 rows seen; 0 an even division), then the left edge
// of each column and the top edge of each row.
constexpr int kResultHeader = 5;
constexpr int16_t kColumnsSeen = 1;
constexpr int16_t kRowsSeen = 2;

// One image per process. The lock keeps two threads' calls from running at once; it does not
// keep one thread's load from replacing another's image between calls.
std::mutex engine_lock;
std::unique_ptr<PageImage> current;

template <class Work>
int16_t Guard(Work&& work) noexcept {
  try {
    const std::lock_guard lock(engine_lock);
    work();
    return XUNREC_OK;
  } catch (const EngineError& e) {
    return e.Code();
  } catch (const std::bad_alloc&) {
    return XUNREC_OUT_OF_MEMORY;
  } catch (...) {
    return XUNREC_INTERNAL_ERROR;
  }
}

const PageImage& Current() {
  if (!current) throw EngineError(XUNREC_NO_IMAGE);
  return *current;
}

void Require(bool condition) {
  if (!condition) throw EngineError(XUNREC_BAD_ARGUMENT);
}

UnitRect Rect(int16_t left, int16_t top, int16_t right, int16_t bottom) {
  if (right <= left || bottom <= top) throw EngineError(XUNREC_BAD_RECTANGLE);
  return {left, top, right, bottom};
}

// Checks a grid and writes the result array; the grid for the fill values.
Grid CheckInto(int16_t rows, int16_t cols, const UnitRect& rect, int16_t* results) {
  Require(results != nullptr && rows > 0 && cols > 0);
  const PageImage& page = Current();
  const Grid grid = CheckGrid(page, rect, rows, cols);
  const GridUnits units = ToUnits(page, rect, grid);
  results[0] = rows;
  results[1] = cols;
  results[2] = units.width;
  results[3] = units.height;
  results[4] = static_cast<int16_t>((grid.columns_seen ? kColumnsSeen : 0) |
                                    (grid.rows_seen ? kRowsSeen : 0));
  std::memcpy(results + kResultHeader, units.lefts.data(), units.lefts.size() * sizeof(int16_t));
  std::memcpy(results + kResultHeader + cols, units.tops.data(),
              units.tops.size() * sizeof(int16_t));
  return grid;
}

}  // namespace
}  // namespace xunrec

using namespace xunrec;

extern "C" {

XUNREC_API int16_t XUNREC_CALL XUNREC_load_image(const char* file, int32_t reserved, int16_t xdpi,
                                                 int16_t ydpi, int16_t width, int16_t height) {
  return Guard([&] {
    // A new load always ends the old image, also when it fails.
    current.reset();
    Require(file != nullptr && reserved == 0);
    current = PageImage::Load(file, xdpi, ydpi, width, height);
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_unload_image(void) {
  return Guard([] {
    Current();
    current.reset();
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_search_omr_field(int16_t left, int16_t top, int16_t right,
                                                       int16_t bottom, int16_t* rows,
                                                       int16_t* cols) {
  return Guard([&] {
    Require(rows != nullptr && cols != nullptr && *rows >= 0 && *cols >= 0);
    const GridCounts found = SearchGrid(Current(), Rect(left, top, right, bottom), *rows, *cols);
    *rows = static_cast<int16_t>(found.rows);
    *cols = static_cast<int16_t>(found.cols);
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_check_omr_field(int16_t rows, int16_t cols, int16_t left,
                                                      int16_t top, int16_t right, int16_t bottom,
                                                      int16_t* results) {
  return Guard([&] { CheckInto(rows, cols, Rect(left, top, right, bottom), results); });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_check_omr_field_fill(int16_t rows, int16_t cols, int16_t left,
                                                           int16_t top, int16_t right,
                                                           int16_t bottom, int16_t* results,
                                                           int16_t* fill) {
  return Guard([&] {
    Require(results != nullptr && fill != nullptr);
    const UnitRect rect = Rect(left, top, right, bottom);
    // Checked into a copy first, so a failure leaves the caller's arrays as they were.
    std::vector<int16_t> checked(static_cast<size_t>(rows > 0 && cols > 0 ? rows + cols : 0) +
                                 kResultHeader);
    const Grid grid = CheckInto(rows, cols, rect, checked.data());
    const std::vector<int16_t> percents = FillPercents(Current(), grid);
    std::memcpy(results, checked.data(), checked.size() * sizeof(int16_t));
    std::memcpy(fill, percents.data(), percents.size() * sizeof(int16_t));
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_check_image_field(int16_t left, int16_t top, int16_t right,
                                                        int16_t bottom, int32_t* filled_pixels) {
  return Guard([&] {
    Require(filled_pixels != nullptr);
    const PageImage& page = Current();
    *filled_pixels =
        static_cast<int32_t>(page.DarkCount(page.Pixels(Rect(left, top, right, bottom))));
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_align_omr_field(int16_t left, int16_t top, int16_t right,
                                                      int16_t bottom, int16_t rows, int16_t cols,
                                                      int16_t search_distance, int16_t* new_left,
                                                      int16_t* new_top, int16_t* new_right,
                                                      int16_t* new_bottom) {
  return Guard([&] {
    Require(new_left && new_top && new_right && new_bottom);
    const UnitRect moved =
        AlignGrid(Current(), Rect(left, top, right, bottom), rows, cols, search_distance);
    *new_left = static_cast<int16_t>(moved.left);
    *new_top = static_cast<int16_t>(moved.top);
    *new_right = static_cast<int16_t>(moved.right);
    *new_bottom = static_cast<int16_t>(moved.bottom);
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_get_mark_areas(int16_t left, int16_t top, int16_t right,
                                                     int16_t bottom, int16_t min_width,
                                                     int16_t min_height, int16_t max_marks,
                                                     int16_t* num_marks, void* marks) {
  return Guard([&] {
    Require(num_marks != nullptr && marks != nullptr && max_marks > 0 && min_width >= 0 &&
            min_height >= 0);
    const std::vector<XUNREC_MarkArea> found =
        FindTimingMarks(Current(), Rect(left, top, right, bottom), min_width, min_height);
    if (found.empty()) throw EngineError(XUNREC_NO_MARKS);
    const size_t written = std::min<size_t>(found.size(), static_cast<size_t>(max_marks));
    std::memcpy(marks, found.data(), written * sizeof(XUNREC_MarkArea));
    *num_marks = static_cast<int16_t>(written);
    if (found.size() > written) throw EngineError(XUNREC_TOO_MANY_MARKS);
  });
}

XUNREC_API int16_t XUNREC_CALL XUNREC_find_classic(void) {
  return XUNREC_NOT_SUPPORTED;
}

XUNREC_API int16_t XUNREC_CALL XUNREC_read_classic(void) {
  return XUNREC_NOT_SUPPORTED;
}

}  // extern "C"
