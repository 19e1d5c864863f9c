#include "engine/grid_search.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/engine_error.h"
#include "engine/xunrec.h"

namespace xunrec {
namespace {

// A step of a run may differ from the pitch by this share of it.
constexpr double kPitchTolerance = 0.2;
// Runs are started from pairs of clusters at most this many apart (clutter may sit between).
constexpr size_t kPairReach = 4;
constexpr size_t kMaxClusters = 300;
// Blobs within this share of the modal size belong to the grid.
constexpr double kSizeTolerance = 0.25;
// The smallest bubble, in page units either way.
constexpr double kMinBubbleUnits = 4;

double Centre(const Cluster& c, const std::vector<double>& values) {
  double sum = 0;
  for (const int m : c.members)
    sum += values[static_cast<size_t>(m)];
  return sum / static_cast<double>(c.members.size());
}

// The blobs of the clusters, in their order.
std::vector<Blob> Keep(const std::vector<Blob>& blobs, const std::vector<Cluster>& clusters) {
  std::vector<Blob> kept;
  for (const Cluster& c : clusters)
    for (const int m : c.members)
      kept.push_back(blobs[static_cast<size_t>(m)]);
  return kept;
}

// Clusters with fewer than half the blobs of the fullest are clutter, not a row or column.
std::vector<Cluster> Supported(std::vector<Cluster> clusters) {
  size_t most = 0;
  for (const Cluster& c : clusters)
    most = std::max(most, c.members.size());
  std::erase_if(clusters, [&](const Cluster& c) { return 2 * c.members.size() < most; });
  return clusters;
}

}  // namespace

std::vector<Cluster> ClusterAxis(const std::vector<double>& values, double gap) {
  std::vector<int> order(values.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return values[static_cast<size_t>(a)] < values[static_cast<size_t>(b)];
  });
  std::vector<Cluster> clusters;
  double last = 0;
  for (const int i : order) {
    const double v = values[static_cast<size_t>(i)];
    if (clusters.empty() || v - last > gap) clusters.emplace_back();
    clusters.back().members.push_back(i);
    last = v;
  }
  for (Cluster& c : clusters)
    c.centre = Centre(c, values);
  return clusters;
}

std::vector<Cluster> EvenRun(const std::vector<Cluster>& all, double min_pitch) {
  std::vector<Cluster> clusters = all;
  if (clusters.size() > kMaxClusters) {
    std::sort(clusters.begin(), clusters.end(), [](const Cluster& a, const Cluster& b) {
      return a.members.size() > b.members.size();
    });
    clusters.resize(kMaxClusters);
    std::sort(clusters.begin(), clusters.end(),
              [](const Cluster& a, const Cluster& b) { return a.centre < b.centre; });
  }
  if (clusters.empty()) return {};
  // The nearest cluster to `expected` within the tolerance, searching from `from` in `step`.
  const auto near = [&](size_t from, int step, double expected, double pitch) -> long {
    long best = -1;
    for (long k = static_cast<long>(from) + step; k >= 0 && k < static_cast<long>(clusters.size());
         k += step) {
      const double d = std::abs(clusters[static_cast<size_t>(k)].centre - expected);
      if (d <= kPitchTolerance * pitch &&
          (best < 0 || d < std::abs(clusters[static_cast<size_t>(best)].centre - expected)))
        best = k;
      if ((clusters[static_cast<size_t>(k)].centre - expected) * step > kPitchTolerance * pitch)
        break;
    }
    return best;
  };
  std::vector<size_t> best_run;
  size_t best_members = 0;
  const auto consider = [&](std::vector<size_t> run) {
    size_t members = 0;
    for (const size_t k : run)
      members += clusters[k].members.size();
    if (run.size() > best_run.size() || (run.size() == best_run.size() && members > best_members)) {
      best_run = std::move(run);
      best_members = members;
    }
  };
  for (size_t i = 0; i < clusters.size(); ++i) {
    consider({i});
    for (size_t j = i + 1; j < clusters.size() && j <= i + kPairReach; ++j) {
      const double pitch = clusters[j].centre - clusters[i].centre;
      if (pitch < min_pitch) continue;
      std::vector<size_t> run{i, j};
      for (long k; (k = near(run.back(), 1, clusters[run.back()].centre + pitch, pitch)) >= 0;)
        run.push_back(static_cast<size_t>(k));
      std::vector<size_t> before;
      for (size_t first = i;;) {
        const long k = near(first, -1, clusters[first].centre - pitch, pitch);
        if (k < 0) break;
        first = static_cast<size_t>(k);
        before.push_back(first);
      }
      run.insert(run.begin(), before.rbegin(), before.rend());
      consider(std::move(run));
    }
  }
  std::vector<Cluster> run;
  for (const size_t k : best_run)
    run.push_back(clusters[k]);
  return run;
}

GridCounts SearchGrid(const PageImage& page, const UnitRect& rect, int rows_hint, int cols_hint) {
  const cv::Rect r = page.Pixels(rect);
  const cv::Size2d min(std::max(2.0, page.XPixels(kMinBubbleUnits)),
                       std::max(2.0, page.YPixels(kMinBubbleUnits)));
  // Without hints a bubble is at most an inch; with them at most its cell.
  cv::Size2d max(std::min<double>(r.width, page.XPixels(100)),
                 std::min<double>(r.height, page.YPixels(100)));
  if (cols_hint > 0) max.width = std::min(max.width, 1.15 * r.width / cols_hint);
  if (rows_hint > 0) max.height = std::min(max.height, 1.15 * r.height / rows_hint);

  const std::vector<Blob> shaped = BubbleShaped(Components(page.Dark(), r), min, max);
  const std::optional<cv::Size2d> size = ModalSize(shaped);
  if (!size) throw EngineError(XUNREC_NO_GRID);
  std::vector<Blob> bubbles = OfSize(shaped, *size, kSizeTolerance);
  std::vector<Cluster> columns, rows;
  // Twice: clutter that made a row of its own is gone once the columns are known, and back.
  for (int pass = 0; pass < 2; ++pass) {
    std::vector<double> xs, ys;
    for (const Blob& b : bubbles)
      xs.push_back(b.Centre().x);
    columns = EvenRun(Supported(ClusterAxis(xs, size->width / 2)), 0.9 * size->width);
    bubbles = Keep(bubbles, columns);
    for (const Blob& b : bubbles)
      ys.push_back(b.Centre().y);
    rows = EvenRun(Supported(ClusterAxis(ys, size->height / 2)), 0.9 * size->height);
    bubbles = Keep(bubbles, rows);
  }
  // A grid is mostly there: at least half of its bubbles show.
  if (rows.empty() || columns.empty() || 2 * bubbles.size() < rows.size() * columns.size())
    throw EngineError(XUNREC_NO_GRID);
  return {static_cast<int>(rows.size()), static_cast<int>(columns.size())};
}

}  // namespace xunrec
