#include "xun/reading/page_registration.h"

#include "xun/reading/region_image.h"

namespace xun::reading::detail {

std::optional<Registration> RegisterPage(const ScannedPage& page, double xdpi, double ydpi,
                                         const PagePlan& plan, std::string& why) {
  const bool by_bubbles = !plan.drop_out && !plan.printed.centres.empty();
  const PrintedBubbles& shapes = by_bubbles ? plan.printed : plan.marks;
  FitLimits limits;
  if (!by_bubbles) {
    // A page of only barcodes or text, and no timing marks: the scan is taken as the whole page.
    if (!plan.drop_out && shapes.centres.size() < 3)
      return Registration{WholePageFit(xdpi, ydpi), "the whole scan"};
    if (shapes.centres.size() < 3) {
      why = plan.drop_out ? "its bubbles are printed in drop-out ink and it has fewer than 3 "
                            "timing marks to register it by"
                          : "it has neither bubbles nor 3 timing marks to register it by";
      return std::nullopt;
    }
    // One timing mark may be missing or smudged; the others place the page.
    limits.found_share =
        static_cast<double>(shapes.centres.size() - 1) / static_cast<double>(shapes.centres.size());
  }
  // The shapes are found on the small copy; the fit is then taken to the whole page.
  const int f = page.Factor();
  auto fit = FitPage(page.SmallDark(), xdpi / f, ydpi / f, shapes, limits, why);
  if (!fit) return std::nullopt;
  fit->transform = cv::Matx33d(f, 0, 0, 0, f, 0, 0, 0, 1) * fit->transform;
  return Registration{*fit, by_bubbles ? "bubbles" : "timing marks"};
}

}  // namespace xun::reading::detail
