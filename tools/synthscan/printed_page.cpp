#include "synthscan/printed_page.h"

#include <cmath>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "synthscan/image_files.h"
#include "xun/printing/page_layout.h"
#include "xun/printing/print_page.h"

namespace xun::synthscan {
namespace {

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
  // The page as the library prints it: its layout's size, in whole pixels that cover it.
  const printing::PageLayout layout = printing::LayoutOf(form, 1);
  return {static_cast<int>(std::ceil(layout.width * dpi / 100.0)),
          static_cast<int>(std::ceil(layout.height * dpi / 100.0))};
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
