#include "engine/blobs.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <map>

namespace xunrec {
namespace {

// Sizes are binned on a logarithmic scale, 10% a bin; two bins either way make "about 20%".
constexpr double kBinRatio = 1.1;
constexpr int kNeighbourBins = 2;
constexpr size_t kMaxCandidates = 20000;

int Bin(double size) {
  return static_cast<int>(std::floor(std::log(std::max(size, 1.0)) / std::log(kBinRatio)));
}

bool Inside(const cv::Rect& inner, const cv::Rect& outer) {
  return inner != outer && (inner & outer) == inner;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

}  // namespace

std::vector<Blob> Components(const cv::Mat& dark, const cv::Rect& region) {
  const cv::Rect r = region & cv::Rect(0, 0, dark.cols, dark.rows);
  std::vector<Blob> blobs;
  if (r.empty()) return blobs;
  cv::Mat labels, stats, centroids;
  const int count = cv::connectedComponentsWithStats(dark(r), labels, stats, centroids, 8, CV_32S);
  blobs.reserve(static_cast<size_t>(std::max(count - 1, 0)));
  for (int i = 1; i < count; ++i) {  // 0 is the paper
    const int* s = stats.ptr<int>(i);
    blobs.push_back({cv::Rect(s[cv::CC_STAT_LEFT] + r.x, s[cv::CC_STAT_TOP] + r.y,
                              s[cv::CC_STAT_WIDTH], s[cv::CC_STAT_HEIGHT]),
                     s[cv::CC_STAT_AREA]});
  }
  return blobs;
}

std::vector<Blob> ComponentsUpTo(const cv::Mat& dark, const cv::Rect& region, int max_height) {
  const cv::Rect r = region & cv::Rect(0, 0, dark.cols, dark.rows);
  const int overlap = std::max(max_height, 1) + 1;
  // Each band owns the components whose top lies in its own rows and reads `overlap` rows on
  // either side. A component that touches a band's cut edge goes on beyond the band: it is
  // either taller than `max_height` or found whole by the band that owns it.
  const int step = std::max(256, 2 * overlap);
  std::vector<Blob> blobs;
  for (int top = r.y; top < r.br().y; top += step) {
    const int from = std::max(r.y, top - overlap), to = std::min(r.br().y, top + step + overlap);
    for (const Blob& b : Components(dark, cv::Rect(r.x, from, r.width, to - from))) {
      const bool cut = (b.box.y == from && from > r.y) || (b.box.br().y == to && to < r.br().y);
      if (!cut && b.box.y >= top && b.box.y < top + step && b.box.height <= max_height)
        blobs.push_back(b);
    }
  }
  return blobs;
}

std::vector<Blob> BubbleShaped(const std::vector<Blob>& blobs, cv::Size2d min, cv::Size2d max) {
  std::vector<Blob> sized;
  for (const Blob& b : blobs)
    if (b.box.width >= min.width && b.box.height >= min.height && b.box.width <= max.width &&
        b.box.height <= max.height)
      sized.push_back(b);
  // A region with more bubble-sized specks than this is noise, not a form (and would cost
  // quadratic time below).
  if (sized.size() > kMaxCandidates) return {};
  // Sorted by left edge, a blob's possible containers are the ones at most the widest blob's
  // width before it.
  std::sort(sized.begin(), sized.end(),
            [](const Blob& a, const Blob& b) { return a.box.x < b.box.x; });
  int widest = 0;
  for (const Blob& b : sized)
    widest = std::max(widest, b.box.width);
  std::vector<Blob> kept;
  for (size_t j = 0; j < sized.size(); ++j) {
    bool contained = false;
    for (size_t i = j; i-- > 0 && sized[i].box.x >= sized[j].box.x - widest;)
      if (Inside(sized[j].box, sized[i].box)) {
        contained = true;
        break;
      }
    for (size_t i = j + 1; !contained && i < sized.size() && sized[i].box.x == sized[j].box.x; ++i)
      contained = Inside(sized[j].box, sized[i].box);
    if (!contained) kept.push_back(sized[j]);
  }
  return kept;
}

std::optional<cv::Size2d> ModalSize(const std::vector<Blob>& blobs) {
  if (blobs.empty()) return std::nullopt;
  std::map<std::pair<int, int>, int> bins;
  for (const Blob& b : blobs)
    ++bins[{Bin(b.box.width), Bin(b.box.height)}];
  // The bin whose neighbourhood holds the most blobs; larger sizes win ties (a bubble is larger
  // than the marks and letters around it).
  std::pair<int, int> best{};
  int best_count = -1;
  for (const auto& [bin, count] : bins) {
    int around = 0;
    for (int dw = -kNeighbourBins; dw <= kNeighbourBins; ++dw)
      for (int dh = -kNeighbourBins; dh <= kNeighbourBins; ++dh) {
        const auto it = bins.find({bin.first + dw, bin.second + dh});
        if (it != bins.end()) around += it->second;
      }
    if (around > best_count || (around == best_count && bin > best)) {
      best = bin;
      best_count = around;
    }
  }
  std::vector<double> widths, heights;
  for (const Blob& b : blobs)
    if (std::abs(Bin(b.box.width) - best.first) <= kNeighbourBins &&
        std::abs(Bin(b.box.height) - best.second) <= kNeighbourBins) {
      widths.push_back(b.box.width);
      heights.push_back(b.box.height);
    }
  return cv::Size2d(Median(widths), Median(heights));
}

std::vector<Blob> OfSize(const std::vector<Blob>& blobs, cv::Size2d size, double tolerance) {
  std::vector<Blob> of_size;
  for (const Blob& b : blobs)
    if (std::abs(b.box.width - size.width) <= tolerance * size.width &&
        std::abs(b.box.height - size.height) <= tolerance * size.height)
      of_size.push_back(b);
  return of_size;
}

}  // namespace xunrec
