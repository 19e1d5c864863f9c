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

namespace xun::reading {

namespace detail {
struct ReadingPlan;
}

// One image read as one page of the form: its registration and bubbles, and the answers of the
// page's items (hidden identification questions too), in the reading plan's order.
struct PageOutcome {
  PageReading page;
  std::vector<ItemAnswer> answers;
};

class XUN_READING_API FormReader {
 public:
  // Takes from the template all that reading needs, once: the reader does not touch the template
  // again, so the template may change or go, and one reader may read on several threads at once.
  explicit FormReader(const clsXUNTemplate& form, MarkThresholds thresholds = {});
  ~FormReader();
  FormReader(const FormReader&) = delete;
  FormReader& operator=(const FormReader&) = delete;

  int32_t NumPages() const;

  // One image file for each page of the template, in page order (when the pages carry page IDs,
  // images in another order are put in order by them). Never throws: a file that cannot be read,
  // a page that cannot be registered, too few or too many images are in the record, its pages and
  // its answers (ErrorReturn, status error); identification is checked and everything a person
  // must look at is in the record's review list.
  FormRecord Read(const std::vector<std::string>& images) const;

 private:
  PageOutcome ReadPage(const std::string* image, size_t page) const;

  std::unique_ptr<const detail::ReadingPlan> plan_;
  MarkThresholds thresholds_;
};

}  // namespace xun::reading
