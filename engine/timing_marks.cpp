#include "engine/timing_marks.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/blobs.h"
#include "engine/engine_error.h"

namespace xunrec {
namespace {

// A solid rectangle covers nearly all of its box (a filled ellipse covers 79%).
constexpr double kMinSolidity = 0.85;
// Marks of one track differ in size by at most this share.
constexpr double kSizeTolerance = 0.25;
// Neighbours in a track are at most this many mark sizes apart.
constexpr double kReach = 4;
// Each step of a track is within this share of the track's usual step.
constexpr double kStepTolerance = 0.25;
constexpr size_t kMinTrack = 3;
// Nothing larger than this is a mark (page units).
constexpr double kMaxMarkUnits = 150;

bool SameSize(const Blob& a, const Blob& b) {
  return std::abs(a.box.width - b.box.width) <=
             kSizeTolerance * std::max(a.box.width, b.box.width) &&
         std::abs(a.box.height - b.box.height) <=
             kSizeTolerance * std::max(a.box.height, b.box.height);
}

int Find(std::vector<int>& parent, int i) {
  while (parent[static_cast<size_t>(i)] != i)
    i = parent[static_cast<size_t>(i)] =
        parent[static_cast<size_t>(parent[static_cast<size_t>(i)])];
  return i;
}

// Marks the members of evenly spaced tracks along one axis (`along` gives a mark's position on
// it, `across` its position and `thickness` its size across it).
template <class Along, class Across, class Thickness>
void MarkTracks(const std::vector<Blob>& marks, std::vector<bool>& in_track, Along along,
                Across across, Thickness thickness) {
  const int n = static_cast<int>(marks.size());
  std::vector<int> order(static_cast<size_t>(n));
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return along(marks[static_cast<size_t>(a)]) < along(marks[static_cast<size_t>(b)]);
  });
  // Link each mark to the marks of its size just ahead of it in line with it.
  std::vector<int> parent(order);
  std::iota(parent.begin(), parent.end(), 0);
  for (size_t i = 0; i < order.size(); ++i) {
    const Blob& a = marks[static_cast<size_t>(order[i])];
    const double reach = kReach * std::max(a.box.width, a.box.height);
    for (size_t j = i + 1; j < order.size(); ++j) {
      const Blob& b = marks[static_cast<size_t>(order[j])];
      if (along(b) - along(a) > reach) break;
      if (SameSize(a, b) &&
          std::abs(across(a) - across(b)) <= 0.5 * std::max(thickness(a), thickness(b)))
        parent[static_cast<size_t>(Find(parent, order[i]))] = Find(parent, order[j]);
    }
  }
  std::vector<std::vector<int>> groups(static_cast<size_t>(n));
  for (const int i : order)  // in order along the axis
    groups[static_cast<size_t>(Find(parent, i))].push_back(i);
  for (const std::vector<int>& group : groups) {
    if (group.size() < kMinTrack) continue;
    std::vector<double> steps;
    for (size_t k = 1; k < group.size(); ++k)
      steps.push_back(along(marks[static_cast<size_t>(group[k])]) -
                      along(marks[static_cast<size_t>(group[k - 1])]));
    std::vector<double> sorted = steps;
    std::nth_element(sorted.begin(), sorted.begin() + sorted.size() / 2, sorted.end());
    const double usual = sorted[sorted.size() / 2];
    // Runs of steps close to the usual one; a run of three marks or more is a track.
    size_t start = 0;
    for (size_t k = 0; k <= steps.size(); ++k) {
      const bool even =
          k < steps.size() && usual > 0 && std::abs(steps[k] - usual) <= kStepTolerance * usual;
      if (even) continue;
      if (k + 1 - start >= kMinTrack)
        for (size_t m = start; m <= k; ++m)
          in_track[static_cast<size_t>(group[m])] = true;
      start = k + 1;
    }
  }
}

}  // namespace

std::vector<XUNREC_MarkArea> FindTimingMarks(const PageImage& page, const UnitRect& rect,
                                             int min_width, int min_height) {
  const cv::Rect r = page.Pixels(rect);
  const double min_w = std::max(2.0, page.XPixels(min_width));
  const double min_h = std::max(2.0, page.YPixels(min_height));
  const double max_w = page.XPixels(kMaxMarkUnits), max_h = page.YPixels(kMaxMarkUnits);
  std::vector<Blob> solid;
  for (const Blob& b : Components(page.Dark(), r))
    if (b.box.width >= min_w && b.box.height >= min_h && b.box.width <= max_w &&
        b.box.height <= max_h && b.area >= kMinSolidity * b.box.area())
      solid.push_back(b);

  std::vector<bool> in_track(solid.size(), false);
  MarkTracks(
      solid, in_track, [](const Blob& b) { return b.Centre().y; },
      [](const Blob& b) { return b.Centre().x; }, [](const Blob& b) { return b.box.width; });
  MarkTracks(
      solid, in_track, [](const Blob& b) { return b.Centre().x; },
      [](const Blob& b) { return b.Centre().y; }, [](const Blob& b) { return b.box.height; });

  std::vector<XUNREC_MarkArea> marks;
  const auto units = [](double v) {
    return static_cast<int16_t>(std::clamp<long>(std::lround(v), INT16_MIN, INT16_MAX));
  };
  for (size_t i = 0; i < solid.size(); ++i) {
    if (!in_track[i]) continue;
    const cv::Rect& box = solid[i].box;
    const int16_t left = units(page.XUnits(box.x)), top = units(page.YUnits(box.y));
    marks.push_back({left, top, static_cast<int16_t>(units(page.XUnits(box.x + box.width)) - left),
                     static_cast<int16_t>(units(page.YUnits(box.y + box.height)) - top)});
  }
  std::sort(marks.begin(), marks.end(), [](const XUNREC_MarkArea& a, const XUNREC_MarkArea& b) {
    return a.top != b.top ? a.top < b.top : a.left < b.left;
  });
  return marks;
}

}  // namespace xunrec
