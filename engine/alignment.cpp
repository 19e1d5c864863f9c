#include "engine/alignment.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

#include "engine/blobs.h"
#include "engine/engine_error.h"
#include "engine/grid_check.h"
#include "engine/xunrec.h"

namespace xunrec {
namespace {

constexpr double kMinCellShare = 0.25;
constexpr double kMaxCellShare = 1.1;
constexpr double kSizeTolerance = 0.25;
// At the best place at least this share of the grid's bubbles must be found (net of the
// bubbles in the border).
constexpr double kWeakShare = 0.6;
// The best place must beat every other by half a row or column of bubbles (whichever is shorter).
constexpr double kAmbiguousLines = 0.5;
// A bubble's centre is marked by a disc of this share of its size (in page units, at least 1).
constexpr double kDiscShare = 0.25;
// The largest area searched, in square page units (40 by 40 inches).
constexpr int64_t kMaxWindowUnits = 16'000'000;

}  // namespace

UnitRect AlignGrid(const PageImage& page, const UnitRect& rect, int rows, int cols, int distance) {
  if (rows <= 0 || cols <= 0 || distance < 0) throw EngineError(XUNREC_BAD_ARGUMENT);
  page.Pixels(rect);  // the rectangle must be real and touch the image
  const int width = rect.right - rect.left, height = rect.bottom - rect.top;
  // Bounds on the work: a grid no larger than the image, a distance no longer than the image.
  const int image_width = static_cast<int>(std::ceil(page.XUnits(page.Size().width)));
  const int image_height = static_cast<int>(std::ceil(page.YUnits(page.Size().height)));
  if (width > image_width + 2 || height > image_height + 2) throw EngineError(XUNREC_BAD_RECTANGLE);
  if (static_cast<int64_t>(rows) * cols > kMaxBubbles) throw EngineError(XUNREC_BAD_ARGUMENT);
  distance = std::min(distance, std::max(image_width, image_height));
  const cv::Size2d cell(static_cast<double>(width) / cols, static_cast<double>(height) / rows);
  if (cell.width < 1 || cell.height < 1) throw EngineError(XUNREC_NO_GRID);
  // Looked at a little beyond the distance, so a grid just beyond it is told apart from one
  // that is not there.
  const int slack = distance + static_cast<int>(std::ceil(std::min(cell.width, cell.height) / 2));
  const cv::Point border(static_cast<int>(std::ceil(cell.width)),
                         static_cast<int>(std::ceil(cell.height)));
  const UnitRect window{rect.left - border.x - slack, rect.top - border.y - slack,
                        rect.right + border.x + slack, rect.bottom + border.y + slack};
  if (static_cast<int64_t>(window.right - window.left) * (window.bottom - window.top) >
      kMaxWindowUnits)
    throw EngineError(XUNREC_BAD_RECTANGLE);

  // The bubbles around: blobs of the most common size that fits a cell.
  const cv::Rect window_pixels =
      page.UnclippedPixels(window) & cv::Rect(cv::Point(0, 0), page.Size());
  const cv::Size2d cell_pixels(page.XPixels(cell.width), page.YPixels(cell.height));
  const std::vector<Blob> shaped =
      BubbleShaped(Components(page.Dark(), window_pixels),
                   cv::Size2d(std::max(2.0, kMinCellShare * cell_pixels.width),
                              std::max(2.0, kMinCellShare * cell_pixels.height)),
                   cell_pixels * kMaxCellShare);
  const std::optional<cv::Size2d> size = ModalSize(shaped);
  if (!size) throw EngineError(XUNREC_ALIGN_WEAK);
  const std::vector<Blob> bubbles = OfSize(shaped, *size, kSizeTolerance);

  // Matched in page units: a disc at every bubble's centre, against the grid's discs with the
  // border counting against.
  const int radius =
      std::max(1, static_cast<int>(std::lround(
                      kDiscShare * std::min(page.XUnits(size->width), page.YUnits(size->height)))));
  cv::Mat found = cv::Mat::zeros(window.bottom - window.top, window.right - window.left, CV_32F);
  std::vector<cv::Point2d> centres;  // page units, sorted by x below
  for (const Blob& b : bubbles) {
    const cv::Point2d c(page.XUnits(b.Centre().x), page.YUnits(b.Centre().y));
    centres.push_back(c);
    cv::circle(found,
               cv::Point(static_cast<int>(std::lround(c.x)) - window.left,
                         static_cast<int>(std::lround(c.y)) - window.top),
               radius, cv::Scalar(1), cv::FILLED);
  }
  std::sort(centres.begin(), centres.end(),
            [](const cv::Point2d& a, const cv::Point2d& b) { return a.x < b.x; });
  cv::Mat grid(height + 2 * border.y, width + 2 * border.x, CV_32F, cv::Scalar(-1));
  grid(cv::Rect(border.x, border.y, width, height)) = 0;
  const auto lattice = [&](int r, int c) {
    return cv::Point2d(rect.left + (c + 0.5) * cell.width, rect.top + (r + 0.5) * cell.height);
  };
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) {
      const cv::Point2d p = lattice(r, c);
      cv::circle(grid,
                 cv::Point(static_cast<int>(std::lround(p.x)) - rect.left + border.x,
                           static_cast<int>(std::lround(p.y)) - rect.top + border.y),
                 radius, cv::Scalar(1), cv::FILLED);
    }
  cv::Mat disc = cv::Mat::zeros(2 * radius + 1, 2 * radius + 1, CV_8U);
  cv::circle(disc, cv::Point(radius, radius), radius, cv::Scalar(1), cv::FILLED);
  const double per_bubble = cv::countNonZero(disc);

  cv::Mat score;
  cv::matchTemplate(found, grid, score, cv::TM_CCORR);
  score /= per_bubble;  // in bubbles
  double best = 0;
  cv::Point at;
  cv::minMaxLoc(score, nullptr, &best, nullptr, &at);
  if (best < kWeakShare * rows * cols) throw EngineError(XUNREC_ALIGN_WEAK);
  const int apart = std::max(3, static_cast<int>(std::min(cell.width, cell.height) / 2));
  cv::Mat others = score.clone();
  cv::circle(others, at, apart, cv::Scalar(-1e9), cv::FILLED);
  double second = 0;
  cv::minMaxLoc(others, nullptr, &second);
  if (best - second < kAmbiguousLines * std::min(rows, cols))
    throw EngineError(XUNREC_ALIGN_AMBIGUOUS);

  // To a fraction of a unit: the mean offset of the bubbles found at the grid's places.
  cv::Point2d offset(at.x - slack, at.y - slack);
  cv::Point2d sum(0, 0);
  int matched = 0;
  const double reach = 0.4 * std::min(cell.width, cell.height);
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) {
      const cv::Point2d expected = lattice(r, c) + offset;
      const cv::Point2d* nearest = nullptr;
      const auto from = std::lower_bound(centres.begin(), centres.end(), expected.x - reach,
                                         [](const cv::Point2d& p, double x) { return p.x < x; });
      for (auto p = from; p != centres.end() && p->x <= expected.x + reach; ++p)
        if (cv::norm(*p - expected) <= reach &&
            (!nearest || cv::norm(*p - expected) < cv::norm(*nearest - expected)))
          nearest = &*p;
      if (nearest) {
        sum += *nearest - expected;
        ++matched;
      }
    }
  if (matched > 0) offset += sum / matched;
  const int dx = static_cast<int>(std::lround(offset.x)),
            dy = static_cast<int>(std::lround(offset.y));
  if (std::abs(dx) > distance || std::abs(dy) > distance) throw EngineError(XUNREC_ALIGN_TOO_FAR);
  const UnitRect moved{rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
  for (const int v : {moved.left, moved.top, moved.right, moved.bottom})
    if (v < INT16_MIN || v > INT16_MAX) throw EngineError(XUNREC_ALIGN_TOO_FAR);
  return moved;
}

}  // namespace xunrec
