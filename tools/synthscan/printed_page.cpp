#include "synthscan/printed_page.h"

#include <cmath>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "synthscan/image_files.h"

#if __has_include("xun/printing/print_page.h")
#include "xun/printing/print_page.h"
#define SYNTHSCAN_HAS_PRINT_PAGE 1
#else
#include <opencv2/imgproc.hpp>

#include "synthscan/page_bubbles.h"
#endif

namespace xun::synthscan {
namespace {

#ifndef SYNTHSCAN_HAS_PRINT_PAGE
// Until the library prints pages: timing marks black, bubbles outlined on their rectangles.
bool PrintPage(const clsXUNTemplate& form, int32_t page, const std::string& file, int32_t dpi) {
  const auto printed = form.Pages() ? form.Pages()->Item(page) : nullptr;
  if (!printed) return false;
  cv::Mat grey(PageSizeAt(form, dpi), CV_8UC1, cv::Scalar(255));
  const double k = dpi / 100.0;
  if (printed->TimingMarks())
    for (const auto& mark : *printed->TimingMarks())
      cv::rectangle(
          grey,
          cv::Rect(cv::Point(static_cast<int>(std::lround(mark->Left() * k)),
                             static_cast<int>(std::lround(mark->Top() * k))),
                   cv::Point(static_cast<int>(std::lround((mark->Left() + mark->Width()) * k)),
                             static_cast<int>(std::lround((mark->Top() + mark->Height()) * k)))),
          cv::Scalar(0), cv::FILLED);
  const int stroke = std::max(1, dpi / 150);
  for (const OmrRegion& region : OmrRegionsOf(*printed))
    for (int r = 1; r <= region.grid.NumRows(); ++r)
      for (int c = 1; c <= region.grid.NumCols(); ++c) {
        const BubbleRect b = region.grid.Bubble(r, c);
        const cv::RotatedRect path(cv::Point2f(static_cast<float>((b.Left + b.Right) * k / 2),
                                               static_cast<float>((b.Top + b.Bottom) * k / 2)),
                                   cv::Size2f(static_cast<float>((b.Right - b.Left) * k - stroke),
                                              static_cast<float>((b.Bottom - b.Top) * k - stroke)),
                                   0);
        cv::ellipse(grey, path, cv::Scalar(0), stroke, cv::LINE_8);
      }
  WriteGreyImage(file, grey, dpi, false, 0);
  return true;
}
#endif

// A file of our own in the temporary folder, removed when done with.
class TemporaryFile {
 public:
  TemporaryFile() {
    std::random_device seed;
    path_ = (std::filesystem::temp_directory_path() /
             ("synthscan-" + std::to_string(seed()) + std::to_string(seed()) + ".png"))
                .string();
  }
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

cv::Size PageSizeAt(const clsXUNTemplate& form, int dpi) {
  return {static_cast<int>(std::lround(form.PageWidth() * dpi)),
          static_cast<int>(std::lround(form.PageHeight() * dpi))};
}

cv::Mat PrintedPage(const clsXUNTemplate& form, int page, int dpi) {
  TemporaryFile file;
  if (!PrintPage(form, page, file.Path(), dpi))
    throw std::runtime_error("page " + std::to_string(page) + " cannot be printed at " +
                             std::to_string(dpi) + " dpi");
  return PrintedPageFile(file.Path(), form, dpi);
}

cv::Mat PrintedPageFile(const std::string& file, const clsXUNTemplate& form, int dpi) {
  int density = 0;
  cv::Mat grey = ReadGreyImage(file, density);
  const cv::Size expected = PageSizeAt(form, dpi);
  if (grey.size() != expected)
    throw std::runtime_error(file + ": " + std::to_string(grey.cols) + " x " +
                             std::to_string(grey.rows) + " pixels is not the page at " +
                             std::to_string(dpi) + " dpi (" + std::to_string(expected.width) +
                             " x " + std::to_string(expected.height) + ")");
  return grey;
}

}  // namespace xun::synthscan
