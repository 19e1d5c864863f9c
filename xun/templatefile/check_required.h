// What a region and a question must have for the reader to take them, and with it what the
// writer calls a valid template: one rule for both sides, so a file saved as valid is always
// read back for reading.
#pragma once

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun::basTemplate {

// True when the region has a name and, for an OMR region, an orientation of 1 or 2 and a grid
// of at least one row and one column.
XUN_API bool CheckRegionRequired(const clsXUNField& oField);
// True unless the question belongs to an OMR region of field type 1 to 7 and its choices or its
// codes are empty. What is merely unusual (counts that differ) is left to warnings.
XUN_API bool CheckQuestionRequired(const clsXUNQuestion& oQuestion);

namespace detail {

// What the writer stores as Valid: the template has pages, regions and items, and every region
// and every question passes the checks above.
bool TemplateIsValid(const clsXUNTemplate& oTemplate);

}  // namespace detail
}  // namespace xun::basTemplate
