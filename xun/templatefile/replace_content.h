// A template's content replaced by what was read from files: by Read (one template file) and by
// ReadBatch (the merge of a batch's members).
#pragma once

#include <string>

#include "xun/model/fwd.h"

namespace xun::basTemplate {

// Read as the template's Read does it: the file is read into a new template, which on success
// replaces the whole content of `oTemplate` (ReplaceContent below). After a failure `oTemplate`
// is as Clear leaves it, and nothing of the failed read stays behind.
bool ReadReplacing(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit);

namespace detail {

// Gives `to` the whole content of `from`: its pages (the old pages of `to` are freed, which
// deletes their image files as Clear deletes them), its form-level settings (TakeFormSettings),
// header counts and Valid. `from` is left with an empty page list. oState and Editable, which
// no file holds, are not touched.
void ReplaceContent(clsXUNTemplate& from, clsXUNTemplate& to);

}  // namespace detail
}  // namespace xun::basTemplate
