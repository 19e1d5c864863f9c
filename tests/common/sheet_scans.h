// Scans of a template's pages with given marks, written where a reader reads them: the pages are
// printed once a page, turned a little so registration has work to do.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "common/test_support.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/xun.h"

namespace xun::testing {

class SheetScans {
 public:
  explicit SheetScans(std::shared_ptr<clsXUNTemplate> form, int dpi = 150)
      : form_(std::move(form)), dpi_(dpi) {}

  // Page `page` marked by `plan`, written as `name` in the folder; its full path.
  std::string Scan(int page, const synthscan::MarkPlan& plan, const std::string& name,
                   double rotate = 0.7) {
    cv::Mat& printed = printed_[page];
    if (printed.empty()) printed = synthscan::PrintedPage(*form_, page, dpi_);
    synthscan::Distortions d;
    d.rotate = rotate;
    d.shift_x = 10;
    const synthscan::Scan scan = synthscan::MakeScan(*form_, page, printed, dpi_, plan, d, 7);
    synthscan::WriteGreyImage(folder_.File(name), scan.image, dpi_, false, 0);
    return folder_.File(name);
  }
  const TempFolder& folder() const { return folder_; }

 private:
  std::shared_ptr<clsXUNTemplate> form_;
  int dpi_;
  TempFolder folder_;
  std::map<int, cv::Mat> printed_;
};

}  // namespace xun::testing
