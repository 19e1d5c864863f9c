// The review pictures of `read --review DIR`.
#pragma once

#include <string>
#include <vector>

#include "xun/reading/form_record.h"

namespace xuntool {

// The file name of each form's review picture: its first image's name without the extension,
// then ".svg"; a name taken already gets "-2", "-3"... before the extension. In the order given.
std::vector<std::string> ReviewNames(const std::vector<xun::reading::FormRecord>& records);

// Writes into `dir` (made when missing) the review picture of every form that needs review.
// Returns how many were written.
size_t WriteReviewPictures(const std::string& dir,
                           const std::vector<xun::reading::FormRecord>& records);

}  // namespace xuntool
