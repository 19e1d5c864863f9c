// Reading one respondent's form: the scanned images of its pages, with a template, into a
// FormRecord (docs/reading.md).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "xun/model/fwd.h"
#include "xun/reading/export.h"
#include "xun/reading/form_record.h"
#include "xun/reading/mark_judgement.h"
#include "xun/reading/read_options.h"
#include "xun/reading/scan_pages.h"

namespace xun::reading {

namespace detail {
struct ReadingPlan;
}

// How many threads the image work of one form may use (OpenCV's own; 0 for its default, every
// core). A host that reads several forms at once, one a thread, sets 1: the forms keep the cores
// busy, and a form's work split over them as well only makes the threads wait for each other.
XUN_READING_API void SetImageThreads(int threads);

// One scanned page read as one page of the form: its registration and bubbles, and the answers
// of the page's items (hidden identification questions too), in the reading plan's order.
struct PageOutcome {
  PageReading page;
  std::vector<ItemAnswer> answers;
};

class XUN_READING_API FormReader {
 public:
  // Takes from the template all that reading needs, once: the reader does not touch the template
  // again, so the template may change or go, and one reader may read on several threads at once.
  explicit FormReader(const clsXUNTemplate& form, MarkThresholds thresholds = {},
                      ReadOptions options = {});
  ~FormReader();
  FormReader(const FormReader&) = delete;
  FormReader& operator=(const FormReader&) = delete;

  int32_t NumPages() const;

  // One scanned page for each page of the template, in page order (when the pages carry page
  // IDs, pages in another order are put in order by them). Never throws: a file that cannot be
  // read, a page that cannot be registered, too few or too many pages are in the record, its
  // pages and its answers (ErrorReturn, status error); identification is checked and everything
  // a person must look at is in the record's review list.
  FormRecord ReadPages(const std::vector<ScanPage>& pages) const;
  // The same for the pages of these files (PagesOf): an image file a page, or a multi-page TIFF.
  FormRecord Read(const std::vector<std::string>& images) const;

 private:
  PageOutcome ReadPage(const ScanPage* scan, size_t page, const std::string& clip_stem) const;

  std::unique_ptr<const detail::ReadingPlan> plan_;
  MarkThresholds thresholds_;
  ReadOptions options_;
};

}  // namespace xun::reading
