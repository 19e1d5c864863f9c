// The answer key of `read --key`: a CSV file, or filled key sheets read like the forms.
#pragma once

#include <string>
#include <vector>

#include "xun/reading/form_reader.h"
#include "xun/reading/grading.h"
#include "xun/xun.h"

namespace xuntool {

// One CSV file (named .csv), or key sheet images, one a page, sheet after sheet (one sheet a
// test version). What is left out of the key and the graded questions without a key are
// warnings on standard error; a key that cannot be used throws.
xun::reading::Grader GraderFor(const xun::clsXUNTemplate& form,
                               const xun::reading::FormReader& reader,
                               const std::vector<std::string>& keys);

}  // namespace xuntool
