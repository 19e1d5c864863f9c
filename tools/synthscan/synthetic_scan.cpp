#include "synthscan/synthetic_scan.h"

#include <random>
#include <stdexcept>

#include "synthscan/printed_page.h"

namespace xun::synthscan {
namespace {

// Separate streams for the hand and the scanner, so that changing a distortion leaves the marks
// as they were.
uint32_t Stream(uint32_t seed, uint32_t which) {
  std::seed_seq sequence{seed, which};
  uint32_t value = 0;
  sequence.generate(&value, &value + 1);
  return value;
}

}  // namespace

Scan MakeScan(const clsXUNTemplate& form, int page, const cv::Mat& printed, int dpi,
              const MarkPlan& plan, const Distortions& distortions, uint32_t seed) {
  const auto on_form = form.Pages() ? form.Pages()->Item(page) : nullptr;
  if (!on_form) throw std::invalid_argument("the template has no page " + std::to_string(page));
  if (printed.type() != CV_8UC1 || printed.size() != PageSizeAt(form, dpi))
    throw std::invalid_argument("the printed page is not the template's page at " +
                                std::to_string(dpi) + " dpi");
  const std::string refusal = Refusal(distortions);
  if (!refusal.empty()) throw std::invalid_argument(refusal);

  Scan scan;
  scan.page = page;
  scan.dpi = dpi;
  scan.seed = seed;
  scan.distortions = distortions;
  scan.page_to_pixels = PageToPixels(distortions, printed.size(), dpi);

  cv::Mat marked = printed.clone();
  std::mt19937 hand(Stream(seed, 1));
  size_t planned = 0;
  for (const OmrRegion& region : OmrRegionsOf(*on_form))
    for (int r = 1; r <= region.grid.NumRows(); ++r)
      for (int c = 1; c <= region.grid.NumCols(); ++c) {
        BubbleTruth bubble{{region.name, r, c}, {}, Truth::kUnmarked, region.grid.Bubble(r, c)};
        const auto mark = plan.find(bubble.at);
        if (mark != plan.end()) {
          bubble.mark = mark->second;
          ++planned;
        }
        bubble.truth = TruthOf(bubble.mark);
        DrawMark(marked, dpi, bubble.rect, bubble.mark, hand);
        scan.bubbles.push_back(std::move(bubble));
      }
  if (planned != plan.size())
    throw std::invalid_argument("the marks name bubbles that are not on page " +
                                std::to_string(page));
  scan.image = Distort(marked, distortions, dpi, Stream(seed, 2));
  return scan;
}

cv::Point2d OnScan(const Scan& scan, double x, double y) {
  const cv::Matx23d& m = scan.page_to_pixels;
  return {m(0, 0) * x + m(0, 1) * y + m(0, 2), m(1, 0) * x + m(1, 1) * y + m(1, 2)};
}

}  // namespace xun::synthscan
