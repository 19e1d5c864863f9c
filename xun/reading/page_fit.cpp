#include "xun/reading/page_fit.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "engine/blobs.h"

namespace xun::reading::detail {
namespace {

constexpr double kPi = 3.14159265358979323846;
// A printed bubble is found when a bubble-shaped blob lies within this share of its width.
constexpr double kMatchShare = 0.35;
// At least this share of the printed bubbles must be found for the page to be this form. A page
// of this form shows nearly all (the fewest seen on the generator's scans: 98.8%); a long grid
// placed a few rows off, as a page fed upside down or another form may be, still finds 75%.
constexpr double kFoundShare = 0.85;
// Scales tried between the nominal and the largest change.
constexpr int kScaleSteps = 2;
// How far a turn of the page about a point other than its middle moves it, in page units: up to
// half a page's diagonal times the largest turn's sine, and the largest scale change.
constexpr double kPivotShift = 50;
// Peaks of the shift votes looked at for each turn and scale.
constexpr size_t kPeaksTried = 6;

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

// Blobs sorted into square cells, for the blobs near a point: a dense table of cells over the
// blobs' bounds, each cell's blobs one after another.
class Buckets {
 public:
  Buckets(const std::vector<cv::Point2d>& points, double cell) : points_(points), cell_(cell) {
    if (points.empty()) return;
    cv::Point2d low = points[0], high = points[0];
    for (const cv::Point2d& p : points) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    x0_ = static_cast<int>(std::floor(low.x / cell_));
    y0_ = static_cast<int>(std::floor(low.y / cell_));
    columns_ = static_cast<int>(std::floor(high.x / cell_)) - x0_ + 1;
    rows_ = static_cast<int>(std::floor(high.y / cell_)) - y0_ + 1;
    starts_.assign(static_cast<size_t>(columns_) * static_cast<size_t>(rows_) + 1, 0);
    for (const cv::Point2d& p : points)
      ++starts_[Index(p) + 1];
    for (size_t i = 1; i < starts_.size(); ++i)
      starts_[i] += starts_[i - 1];
    members_.resize(points.size());
    std::vector<int> filled(starts_.begin(), starts_.end() - 1);
    for (size_t i = 0; i < points.size(); ++i)
      members_[static_cast<size_t>(filled[Index(points[i])]++)] = static_cast<int>(i);
  }
  template <class F>
  void Near(const cv::Point2d& p, double radius, F&& visit) const {
    if (members_.empty()) return;
    const int reach = static_cast<int>(std::ceil(radius / cell_));
    const int cx = static_cast<int>(std::floor(p.x / cell_)) - x0_;
    const int cy = static_cast<int>(std::floor(p.y / cell_)) - y0_;
    for (int y = std::max(0, cy - reach); y <= std::min(rows_ - 1, cy + reach); ++y)
      for (int x = std::max(0, cx - reach); x <= std::min(columns_ - 1, cx + reach); ++x) {
        const size_t cell =
            static_cast<size_t>(y) * static_cast<size_t>(columns_) + static_cast<size_t>(x);
        for (int k = starts_[cell]; k < starts_[cell + 1]; ++k) {
          const int i = members_[static_cast<size_t>(k)];
          if (cv::norm(points_[static_cast<size_t>(i)] - p) <= radius) visit(i);
        }
      }
  }
  // The nearest point within `radius`, -1 when none.
  int Nearest(const cv::Point2d& p, double radius) const {
    int best = -1;
    double best_d = radius;
    Near(p, radius, [&](int i) {
      const double d = cv::norm(points_[static_cast<size_t>(i)] - p);
      if (d <= best_d) {
        best_d = d;
        best = i;
      }
    });
    return best;
  }

 private:
  size_t Index(const cv::Point2d& p) const {
    const int x = static_cast<int>(std::floor(p.x / cell_)) - x0_;
    const int y = static_cast<int>(std::floor(p.y / cell_)) - y0_;
    return static_cast<size_t>(y) * static_cast<size_t>(columns_) + static_cast<size_t>(x);
  }
  const std::vector<cv::Point2d>& points_;
  double cell_;
  int x0_ = 0, y0_ = 0, columns_ = 0, rows_ = 0;
  std::vector<int> starts_;   // of each cell's members; one more at the end
  std::vector<int> members_;  // point indexes, cell by cell
};

// The centres of the bubble-shaped blobs in the printed areas, grown by how far the page may
// have moved.
std::vector<cv::Point2d> Candidates(const cv::Mat& dark, cv::Point2d scale,
                                    const PrintedBubbles& printed, const FitLimits& limits) {
  double min_w = 1e9, min_h = 1e9, max_w = 0, max_h = 0;
  for (const cv::Size2d& s : printed.sizes) {
    min_w = std::min(min_w, s.width);
    min_h = std::min(min_h, s.height);
    max_w = std::max(max_w, s.width);
    max_h = std::max(max_h, s.height);
  }
  const double grow = limits.max_shift_units + 1100 * std::sin(limits.max_degrees * kPi / 180);
  // One rectangle round all the regions: the regions of a form lie close together, and one pass
  // over it costs less than a mask of the page.
  cv::Rect2d all;
  for (const cv::Rect2d& a : printed.areas)
    all = all.area() > 0 ? (all | a) : a;
  const cv::Rect image(0, 0, dark.cols, dark.rows);
  const cv::Rect looked =
      cv::Rect(cv::Point(static_cast<int>((all.x - grow) * scale.x),
                         static_cast<int>((all.y - grow) * scale.y)),
               cv::Point(static_cast<int>(std::ceil((all.br().x + grow) * scale.x)),
                         static_cast<int>(std::ceil((all.br().y + grow) * scale.y)))) &
      image;
  if (looked.empty()) return {};
  const cv::Size2d largest(1.6 * max_w * scale.x, 1.6 * max_h * scale.y);
  const std::vector<xunrec::Blob> blobs = xunrec::BubbleShaped(
      xunrec::ComponentsUpTo(dark, looked, static_cast<int>(std::ceil(largest.height))),
      cv::Size2d(std::max(2.0, 0.6 * min_w * scale.x), std::max(2.0, 0.6 * min_h * scale.y)),
      largest);
  std::vector<cv::Point2d> centres;
  centres.reserve(blobs.size());
  for (const xunrec::Blob& b : blobs)
    centres.push_back(b.Centre());
  return centres;
}

// The turn of the rows of blobs: the median direction from each blob to its nearest neighbour
// on the right.
double RowAngle(const std::vector<cv::Point2d>& blobs, const Buckets& buckets, double reach) {
  std::vector<double> angles;
  for (const cv::Point2d& p : blobs) {
    double best = reach, angle = 0;
    bool found = false;
    buckets.Near(p, reach, [&](int i) {
      const cv::Point2d d = blobs[i] - p;
      if (d.x <= 0 || std::abs(d.y) > 0.5 * d.x) return;
      const double length = cv::norm(d);
      if (length < best) {
        best = length;
        angle = std::atan2(d.y, d.x);
        found = true;
      }
    });
    if (found) angles.push_back(angle);
  }
  return angles.size() >= 3 ? Median(angles) : 0.0;
}

struct Placement {
  cv::Matx33d transform = cv::Matx33d::eye();
  int found = 0;
};

cv::Matx33d Similarity(double angle, double k, cv::Point2d scale, cv::Point2d centre_units,
                       cv::Point2d offset) {
  // Pixels = centre (in pixels) + offset + k * R * S * (units - centre).
  const double c = std::cos(angle), s = std::sin(angle);
  const cv::Matx22d m(k * c * scale.x, -k * s * scale.y, k * s * scale.x, k * c * scale.y);
  const cv::Point2d centre_px(centre_units.x * scale.x, centre_units.y * scale.y);
  const cv::Vec2d t = cv::Vec2d(centre_px.x + offset.x, centre_px.y + offset.y) -
                      m * cv::Vec2d(centre_units.x, centre_units.y);
  return cv::Matx33d(m(0, 0), m(0, 1), t[0], m(1, 0), m(1, 1), t[1], 0, 0, 1);
}

cv::Point2d Apply(const cv::Matx33d& h, const cv::Point2d& p) {
  const cv::Vec3d v = h * cv::Vec3d(p.x, p.y, 1);
  return {v[0] / v[2], v[1] / v[2]};
}

// For each printed bubble, the blob found where the transform puts it (-1 when none).
std::vector<int> Match(const cv::Matx33d& transform, const PrintedBubbles& printed,
                       const Buckets& buckets, cv::Point2d scale) {
  std::vector<int> matches(printed.centres.size(), -1);
  for (size_t i = 0; i < printed.centres.size(); ++i)
    matches[i] = buckets.Nearest(Apply(transform, printed.centres[i]),
                                 kMatchShare * printed.sizes[i].width * scale.x);
  return matches;
}

int Count(const std::vector<int>& matches) {
  return static_cast<int>(
      std::count_if(matches.begin(), matches.end(), [](int m) { return m >= 0; }));
}

// The placement of the printed bubbles, turned by `angle` and scaled by `k`, whose shift puts
// the most of them on blobs: every printed bubble votes for the shifts that would put it on a
// blob near it.
Placement BestShift(double angle, double k, cv::Point2d scale, cv::Point2d centre_units,
                    const PrintedBubbles& printed, const std::vector<cv::Point2d>& blobs,
                    const Buckets& buckets, double reach_px, double bin_px) {
  const int half = static_cast<int>(std::ceil(reach_px / bin_px));
  const int side = 2 * half + 1;
  std::vector<int> votes(static_cast<size_t>(side) * side, 0);
  const cv::Matx33d unshifted = Similarity(angle, k, scale, centre_units, {0, 0});
  // A sample of the printed bubbles is enough to find the peak.
  const size_t step = std::max<size_t>(1, printed.centres.size() / 200);
  for (size_t i = 0; i < printed.centres.size(); i += step) {
    const cv::Point2d p = Apply(unshifted, printed.centres[i]);
    buckets.Near(p, reach_px, [&](int b) {
      const cv::Point2d d = blobs[b] - p;
      const int x = static_cast<int>(std::lround(d.x / bin_px)) + half;
      const int y = static_cast<int>(std::lround(d.y / bin_px)) + half;
      if (x >= 0 && x < side && y >= 0 && y < side) ++votes[static_cast<size_t>(y) * side + x];
    });
  }
  // Sums over 3 x 3 bins, and the highest few local peaks: a grid matches itself shifted by one
  // pitch almost as well as in place, so the peaks are told apart by how many bubbles each
  // finds, not by their votes.
  std::vector<int> around(votes.size(), 0);
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
          if (x + dx >= 0 && x + dx < side && y + dy >= 0 && y + dy < side)
            around[static_cast<size_t>(y) * side + x] +=
                votes[static_cast<size_t>(y + dy) * side + x + dx];
  std::vector<std::pair<int, int>> peaks;  // (votes, bin)
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const int v = around[static_cast<size_t>(y) * side + x];
      if (v <= 0) continue;
      bool highest = true;
      for (int dy = -1; dy <= 1 && highest; ++dy)
        for (int dx = -1; dx <= 1 && highest; ++dx)
          if ((dx || dy) && x + dx >= 0 && x + dx < side && y + dy >= 0 && y + dy < side)
            highest = around[static_cast<size_t>(y + dy) * side + x + dx] <= v;
      if (highest) peaks.push_back({v, y * side + x});
    }
  std::sort(peaks.begin(), peaks.end(), std::greater<>());
  if (peaks.size() > kPeaksTried) peaks.resize(kPeaksTried);

  Placement best;
  double best_shift = 0;
  for (const auto& [peak_votes, bin] : peaks) {
    const cv::Point2d shift((bin % side - half) * bin_px, (bin / side - half) * bin_px);
    Placement placement;
    placement.transform = Similarity(angle, k, scale, centre_units, shift);
    // The shift from the blobs themselves: the mean offset of the bubbles matched.
    const std::vector<int> matches = Match(placement.transform, printed, buckets, scale);
    cv::Point2d sum(0, 0);
    int n = 0;
    for (size_t i = 0; i < matches.size(); ++i)
      if (matches[i] >= 0) {
        sum +=
            blobs[static_cast<size_t>(matches[i])] - Apply(placement.transform, printed.centres[i]);
        ++n;
      }
    const cv::Point2d refined = n > 0 ? shift + sum * (1.0 / n) : shift;
    placement.transform = Similarity(angle, k, scale, centre_units, refined);
    placement.found = Count(Match(placement.transform, printed, buckets, scale));
    const double length = cv::norm(refined);
    if (placement.found > best.found || (placement.found == best.found && length < best_shift)) {
      best = placement;
      best_shift = length;
    }
  }
  return best;
}

double RmsUnits(const cv::Matx33d& transform, const std::vector<cv::Point2d>& from,
                const std::vector<cv::Point2d>& to, cv::Point2d scale) {
  if (from.empty()) return 0;
  double sum = 0;
  for (size_t i = 0; i < from.size(); ++i) {
    const cv::Point2d d = Apply(transform, from[i]) - to[i];
    sum += (d.x / scale.x) * (d.x / scale.x) + (d.y / scale.y) * (d.y / scale.y);
  }
  return std::sqrt(sum / static_cast<double>(from.size()));
}

cv::Matx33d Lift(const cv::Mat& affine) {
  cv::Matx33d h = cv::Matx33d::eye();
  for (int r = 0; r < 2; ++r)
    for (int c = 0; c < 3; ++c)
      h(r, c) = affine.at<double>(r, c);
  return h;
}

}  // namespace

cv::Point2d PageFit::Map(const cv::Point2d& units) const {
  return Apply(transform, units);
}

cv::Size2d PageFit::ScaleAt(const cv::Point2d& units) const {
  const cv::Point2d p = Apply(transform, units);
  return {cv::norm(Apply(transform, units + cv::Point2d(1, 0)) - p),
          cv::norm(Apply(transform, units + cv::Point2d(0, 1)) - p)};
}

std::optional<PageFit> FitPage(const cv::Mat& dark, double xdpi, double ydpi,
                               const PrintedBubbles& printed, const FitLimits& limits,
                               std::string& why) {
  if (printed.centres.empty()) {
    why = "the page has no bubbles to register it by";
    return std::nullopt;
  }
  const cv::Point2d scale(xdpi / 100.0, ydpi / 100.0);
  const std::vector<cv::Point2d> blobs = Candidates(dark, scale, printed, limits);
  const int needed = std::max(3, static_cast<int>(std::ceil(kFoundShare * printed.centres.size())));
  if (static_cast<int>(blobs.size()) < needed) {
    why = "only " + std::to_string(blobs.size()) + " bubble-like marks where the form has " +
          std::to_string(printed.centres.size()) + " bubbles: not this form, or a blank page";
    return std::nullopt;
  }
  std::vector<double> heights;
  for (const cv::Size2d& s : printed.sizes)
    heights.push_back(s.height);
  const double bubble_px = Median(heights) * scale.y;
  // Turned and scaled about the middle of the page; a scanner turns it about some other point,
  // which moves it besides, by up to kPivotShift across a page.
  const double reach_px = (limits.max_shift_units + kPivotShift) * std::max(scale.x, scale.y);
  const Buckets buckets(blobs, std::max(4.0, bubble_px * 2));

  const cv::Point2d centre(dark.cols / scale.x / 2, dark.rows / scale.y / 2);

  // The turn, from the rows of blobs; then every scale in the limits, each with its best shift.
  const double max_angle = limits.max_degrees * kPi / 180;
  const double row_angle =
      std::clamp(RowAngle(blobs, buckets, 4 * bubble_px * 2), -max_angle, max_angle);
  Placement best;
  for (const double angle : {row_angle, 0.0}) {
    for (int step = -kScaleSteps; step <= kScaleSteps; ++step) {
      const double k = 1 + limits.max_scale_change * step / kScaleSteps;
      const Placement placement = BestShift(angle, k, scale, centre, printed, blobs, buckets,
                                            reach_px, std::max(1.0, bubble_px / 2));
      if (placement.found > best.found) best = placement;
    }
    if (row_angle == 0.0) break;
  }
  if (best.found < needed) {
    why = "only " + std::to_string(best.found) + " of the form's " +
          std::to_string(printed.centres.size()) +
          " bubbles lie where any placement of the page puts them: not this form, or a page of "
          "another one";
    return std::nullopt;
  }

  // Refined on every bubble found: a similarity, an affine and a perspective fit, each robust to
  // blobs that are not the bubble (a mark beside it, a smudge); the simplest that fits as well.
  PageFit fit;
  fit.printed = static_cast<int>(printed.centres.size());
  fit.transform = best.transform;
  fit.model = "similarity";
  for (int round = 0; round < 2; ++round) {
    const std::vector<int> matches = Match(fit.transform, printed, buckets, scale);
    std::vector<cv::Point2d> from, to;
    for (size_t i = 0; i < matches.size(); ++i)
      if (matches[i] >= 0) {
        from.push_back(printed.centres[i]);
        to.push_back(blobs[matches[i]]);
      }
    if (from.size() < 4) break;
    const double threshold = std::max(1.0, 0.25 * bubble_px);
    struct Candidate {
      cv::Matx33d h;
      const char* model;
    };
    std::vector<Candidate> fits;
    if (cv::Mat m = cv::estimateAffinePartial2D(from, to, cv::noArray(), cv::RANSAC, threshold);
        !m.empty())
      fits.push_back({Lift(m), "similarity"});
    if (cv::Mat m = cv::estimateAffine2D(from, to, cv::noArray(), cv::RANSAC, threshold);
        !m.empty())
      fits.push_back({Lift(m), "affine"});
    if (from.size() >= 12)
      if (cv::Mat m = cv::findHomography(from, to, cv::RANSAC, threshold); !m.empty())
        fits.push_back({cv::Matx33d(m), "perspective"});
    double best_error = 1e300;
    for (const Candidate& c : fits) {
      // A richer model must earn its freedom: a tenth less error than the simpler one.
      const double error = RmsUnits(c.h, from, to, scale);
      if (error < 0.9 * best_error) {
        best_error = error;
        fit.transform = c.h;
        fit.model = c.model;
      }
    }
  }
  const std::vector<int> matches = Match(fit.transform, printed, buckets, scale);
  std::vector<cv::Point2d> from, to;
  for (size_t i = 0; i < matches.size(); ++i)
    if (matches[i] >= 0) {
      from.push_back(printed.centres[i]);
      to.push_back(blobs[matches[i]]);
    }
  fit.found = static_cast<int>(from.size());
  fit.error = RmsUnits(fit.transform, from, to, scale);
  if (fit.found < needed) {
    why = "the page could not be fitted: only " + std::to_string(fit.found) + " of " +
          std::to_string(fit.printed) + " bubbles where the fit puts them";
    return std::nullopt;
  }
  return fit;
}

}  // namespace xun::reading::detail
