// The batch file (".rbf"): the names of a batch's member templates, and the messages the batch
// routines show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "xun/model/fwd.h"

namespace xun::basTemplate::detail {

// What a batch file names, paths as written.
struct BatchMembers {
  std::string form;                  // the first path of [Template]; empty when there is none
  std::vector<std::string> headers;  // the paths of [Headers], in file order
};

// Reads the decoded text of a batch file.
BatchMembers ParseBatchText(std::string_view text);

// The text of a batch file (UTF-8, CR LF line ends) naming these paths.
std::string BatchFileText(const std::string& form, const std::vector<std::string>& headers);

// Gives `to` the form-level settings of `from`: its attributes (a copy), names, description,
// page size and orientation, read type, layout grid, versions and flags. The header counts,
// pages, Valid and Editable are not among them.
void TakeFormSettings(const clsXUNTemplate& from, clsXUNTemplate& to);

// Shows a batch message with its "&OK" button and reports it at `location`.
void ShowBatchMessage(const std::string& title, const std::string& text, const char* location);

}  // namespace xun::basTemplate::detail
