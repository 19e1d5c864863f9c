#include "engine/grid_check.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "engine/blobs.h"
#include "engine/engine_error.h"
#include "engine/grid_search.h"
#include "engine/xunrec.h"

namespace xunrec {
namespace {

// A bubble fills at least a quarter of its cell either way and at most (a little over) all of it.
constexpr double kMinCellShare = 0.25;
constexpr double kMaxCellShare = 1.1;
constexpr double kSizeTolerance = 0.25;
// Where nothing shows, the bubble is taken as the middle three quarters of its cell.
constexpr double kEvenBubbleShare = 0.75;
// A profile's edge: where it first reaches this share of its peak, from outside in.
constexpr double kEdgeLevel = 0.3;
// A bubble's profiles reach this share of the bubble either way from where the fit put it.
constexpr double kCellReach = 0.65;

struct Axis {
  std::vector<double> centres;
  bool seen = false;
};

// n centres along an axis of `length` pixels from `start`: the clusters when they make exactly n
// evenly spaced positions; otherwise the clusters that show, each put in its cell of an even
// division, and the rest placed on the line through them.
Axis FitAxis(const std::vector<Cluster>& clusters, int n, double start, double length,
             double min_pitch) {
  const std::vector<Cluster> run = EvenRun(clusters, min_pitch);
  if (static_cast<int>(run.size()) > n) throw EngineError(XUNREC_GRID_MISMATCH);
  Axis axis;
  if (static_cast<int>(run.size()) == n) {
    for (const Cluster& c : run)
      axis.centres.push_back(c.centre);
    axis.seen = true;
    return axis;
  }
  const double cell = length / n;
  std::map<int, const Cluster*> by_cell;  // the fullest cluster of each cell
  for (const Cluster& c : clusters) {
    const int index = std::clamp(static_cast<int>(std::floor((c.centre - start) / cell)), 0, n - 1);
    const Cluster*& slot = by_cell[index];
    if (!slot || c.members.size() > slot->members.size()) slot = &c;
  }
  // Least squares of centre on cell index; the even pitch when fewer than two show.
  double a = start + cell / 2, b = cell;
  if (by_cell.size() >= 2) {
    double si = 0, sc = 0, sii = 0, sic = 0;
    for (const auto& [i, c] : by_cell) {
      si += i;
      sc += c->centre;
      sii += static_cast<double>(i) * i;
      sic += i * c->centre;
    }
    const double count = static_cast<double>(by_cell.size());
    b = (count * sic - si * sc) / (count * sii - si * si);
    a = (sc - b * si) / count;
  } else if (by_cell.size() == 1) {
    a = by_cell.begin()->second->centre - b * by_cell.begin()->first;
  }
  for (int i = 0; i < n; ++i) {
    const auto it = by_cell.find(i);
    axis.centres.push_back(it != by_cell.end() ? it->second->centre : a + b * i);
  }
  axis.seen = !by_cell.empty();
  return axis;
}

// The middle of a dark-pixel profile (CV_32S, one value a pixel, starting at pixel `offset`):
// halfway between where it first and last reaches a share of its peak. Nothing when it is empty.
std::optional<double> ProfileMiddle(const cv::Mat& profile, int offset) {
  double peak = 0;
  cv::minMaxLoc(profile, nullptr, &peak);
  if (peak <= 0) return std::nullopt;
  const int32_t* p = profile.ptr<int32_t>();
  int first = 0, last = static_cast<int>(profile.total()) - 1;
  while (p[first] < kEdgeLevel * peak)
    ++first;
  while (p[last] < kEdgeLevel * peak)
    --last;
  return offset + (first + last + 1) / 2.0;
}

// The pixel range around centres[k] that belongs to it: at most kCellReach of a bubble either way,
// never past the middle to a neighbour or out of [low, high).
cv::Range Around(const std::vector<double>& centres, size_t k, double size, int low, int high) {
  double from = std::max<double>(low, centres[k] - kCellReach * size);
  double to = std::min<double>(high, centres[k] + kCellReach * size);
  if (k > 0) from = std::max(from, (centres[k - 1] + centres[k]) / 2);
  if (k + 1 < centres.size()) to = std::min(to, (centres[k] + centres[k + 1]) / 2);
  return cv::Range(static_cast<int>(std::floor(from)), static_cast<int>(std::ceil(to)));
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

// Each bubble's centre from the dark-pixel profiles of its own cell, across and down; the rows
// and columns move to the median of their bubbles, so one heavy mark on a slightly turned scan
// does not pull its whole row. `only_bubbles` holds the rectangle `r` only.
void Refine(const cv::Mat& only_bubbles, const cv::Mat& dark, const cv::Rect& r, Grid& grid,
            bool columns_seen, bool rows_seen) {
  const size_t rows = grid.row_centres.size(), cols = grid.column_centres.size();
  grid.bubble_centres.assign(rows * cols, {});
  std::vector<std::vector<double>> in_column(cols), in_row(rows);
  for (size_t c = 0; c < cols; ++c)
    for (size_t k = 0; k < rows; ++k) {
      const cv::Range xs = Around(grid.column_centres, c, grid.bubble.width, r.x, r.x + r.width);
      const cv::Range ys = Around(grid.row_centres, k, grid.bubble.height, r.y, r.y + r.height);
      cv::Point2d centre(grid.column_centres[c], grid.row_centres[k]);
      if (xs.size() >= 2 && ys.size() >= 2) {
        cv::Mat across, down;
        const cv::Range local_y(ys.start - r.y, ys.end - r.y);
        const cv::Range local_x(xs.start - r.x, xs.end - r.x);
        // The bubble's own blob where it was found; otherwise (an outline broken by noise, a
        // mark of another size) whatever is dark in its cell.
        cv::Mat cell = only_bubbles(local_y, local_x);
        if (cv::countNonZero(cell) == 0) cell = dark(ys, xs);
        cv::reduce(cell, across, 0, cv::REDUCE_SUM, CV_32S);
        cv::reduce(cell, down, 1, cv::REDUCE_SUM, CV_32S);
        const std::optional<double> x = ProfileMiddle(across, xs.start);
        const std::optional<double> y = ProfileMiddle(down.reshape(1, 1), ys.start);
        if (x && columns_seen) {
          centre.x = *x;
          in_column[c].push_back(*x);
        }
        if (y && rows_seen) {
          centre.y = *y;
          in_row[k].push_back(*y);
        }
      }
      grid.bubble_centres[c * rows + k] = centre;
    }
  for (size_t c = 0; c < cols; ++c)
    if (!in_column[c].empty()) grid.column_centres[c] = Median(in_column[c]);
  for (size_t k = 0; k < rows; ++k)
    if (!in_row[k].empty()) grid.row_centres[k] = Median(in_row[k]);
}

}  // namespace

Grid CheckGrid(const PageImage& page, const UnitRect& rect, int rows, int cols) {
  const cv::Rect r = page.Pixels(rect);
  if (rows <= 0 || cols <= 0 || static_cast<int64_t>(rows) * cols > kMaxBubbles)
    throw EngineError(XUNREC_BAD_ARGUMENT);
  const cv::Size2d cell(static_cast<double>(r.width) / cols, static_cast<double>(r.height) / rows);
  if (cell.width < 1 || cell.height < 1) throw EngineError(XUNREC_NO_GRID);

  const std::vector<Blob> shaped =
      BubbleShaped(Components(page.Dark(), r),
                   cv::Size2d(std::max(2.0, kMinCellShare * cell.width),
                              std::max(2.0, kMinCellShare * cell.height)),
                   cv::Size2d(kMaxCellShare * cell.width, kMaxCellShare * cell.height));
  const std::optional<cv::Size2d> size = ModalSize(shaped);
  Grid grid;
  grid.bubble = cell * kEvenBubbleShare;
  Axis columns, rows_axis;
  std::vector<Blob> bubbles;
  if (size) {
    bubbles = OfSize(shaped, *size, kSizeTolerance);
    std::vector<double> xs, ys;
    for (const Blob& b : bubbles) {
      xs.push_back(b.Centre().x);
      ys.push_back(b.Centre().y);
    }
    columns = FitAxis(ClusterAxis(xs, size->width / 2), cols, r.x, r.width, 0.8 * size->width);
    rows_axis = FitAxis(ClusterAxis(ys, size->height / 2), rows, r.y, r.height, 0.8 * size->height);
  } else {
    columns = FitAxis({}, cols, r.x, r.width, 1);
    rows_axis = FitAxis({}, rows, r.y, r.height, 1);
  }
  if (columns.seen) grid.bubble.width = size->width;
  if (rows_axis.seen) grid.bubble.height = size->height;

  grid.column_centres = std::move(columns.centres);
  grid.row_centres = std::move(rows_axis.centres);
  grid.columns_seen = columns.seen;
  grid.rows_seen = rows_axis.seen;
  // The profiles see only the bubbles' own boxes: the region's printed frame, a rule or a label
  // beside an edge bubble would pull it off centre.
  cv::Mat only_bubbles = cv::Mat::zeros(r.size(), CV_8UC1);
  for (const Blob& b : bubbles)
    page.Dark()(b.box).copyTo(only_bubbles(b.box - r.tl()));
  Refine(only_bubbles, page.Dark(), r, grid, columns.seen, rows_axis.seen);
  return grid;
}

GridUnits ToUnits(const PageImage& page, const UnitRect& rect, const Grid& grid) {
  const auto round16 = [](double v) {
    const long n = std::lround(v);
    if (n < INT16_MIN || n > INT16_MAX) throw EngineError(XUNREC_BAD_RECTANGLE);
    return static_cast<int16_t>(n);
  };
  GridUnits units;
  units.width = static_cast<int16_t>(
      std::clamp<int>(round16(page.XUnits(grid.bubble.width)), 1, rect.right - rect.left));
  units.height = static_cast<int16_t>(
      std::clamp<int>(round16(page.YUnits(grid.bubble.height)), 1, rect.bottom - rect.top));
  // Rounding may put an edge bubble a unit over the rectangle; it is kept inside.
  for (const double x : grid.column_centres)
    units.lefts.push_back(static_cast<int16_t>(std::clamp<int>(
        round16(page.XUnits(x - grid.bubble.width / 2)), rect.left, rect.right - units.width)));
  for (const double y : grid.row_centres)
    units.tops.push_back(static_cast<int16_t>(std::clamp<int>(
        round16(page.YUnits(y - grid.bubble.height / 2)), rect.top, rect.bottom - units.height)));
  return units;
}

}  // namespace xunrec
