// What of a read form a person must look at, as a list of reasons.
#pragma once

#include "xun/reading/form_record.h"

namespace xun::reading::detail {

// Adds to the record's review list the form's own error, every page that was not read, and every
// answer of a read page that is neither clear nor blank (hidden identification questions too),
// then orders the list by page, keeping the order within a page.
void ListForReview(FormRecord& record);

}  // namespace xun::reading::detail
