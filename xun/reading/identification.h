// Which form and which page a scan is, and whose: the identification questions of a read form
// (form ID, page ID, respondent tracker, read-head check) against what the template expects.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "xun/reading/export.h"
#include "xun/reading/form_record.h"

namespace xun::reading::detail {

// The image of each page, when the images came in another order than the pages: `page_ids` are
// the pages' page ID values, `read_id(image, page)` the page ID an image reads as that page
// (nothing when it does not register or the ID is not clear). Each image is read as its own page
// first, then as each other page until it registers with a clear ID; it is the page that ID
// names if it reads so as that page too. Empty unless that gives every page exactly one image
// and another order than the one given.
XUN_READING_API std::vector<size_t> PageOrder(
    const std::vector<std::string>& page_ids,
    const std::function<std::optional<std::string>(size_t image, size_t page)>& read_id);

// Checks the record's identification readings and adds what is wrong to its review list: a form
// ID that is not the template's ("wrong form"), a page ID of another page or of no page of this
// form, a read-head check that read other than it should; the respondent tracker's value goes
// into `respondent` (trackers on several pages that disagree are for review).
void Identify(FormRecord& record);

}  // namespace xun::reading::detail
