// The template-file routines: reading, writing, batches and value cleaning.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun::basTemplate {

// Reads a template file into `oTemplate`; bForEdit relaxes the validity rule.
XUN_API bool ReadTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate,
                          bool bForEdit);
// Writes `oTemplate` to a template file.
XUN_API bool SaveTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate,
                          bool bVerbose, bool* bInvalid, bool bRegister);
// Reads a batch file and merges its members into `oTemplate`.
XUN_API bool ReadBatch(clsXUNTemplate& oTemplate, const std::string& sBatchFile,
                       const std::string& sDefaultTemplateDir);
// Writes a batch file naming the form template and its header templates.
XUN_API bool SaveBatch(const std::string& sBatchTemplate, const std::string& sTemplate,
                       const std::vector<std::string>& vHeaderTemplates);
// Merges the members (headers first, the form last) into `oTarget`.
XUN_API bool MergeTemplates(const std::vector<std::shared_ptr<clsXUNTemplate>>& oTemplates,
                            clsXUNTemplate& oTarget);

// Trims the value, turns tabs (when asked) and line breaks into blanks, and removes every
// character whose code is in the comma-separated list `sStripCharacters`.
XUN_API std::string CleanTemplateValues(const std::string& sValue, bool bStripTabs,
                                        const std::string& sStripCharacters);

}  // namespace xun::basTemplate
