// The template-file routines: reading, writing, batches and value cleaning.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun::basTemplate {

// Reads a template file into `oTemplate`; bForEdit relaxes the validity rule.
XUN_API bool ReadTemplate(const std::string& sTemplateFile, clsXUNTemplate& oTemplate,
                          bool bForEdit);

// What made the last ReadTemplate of this thread fail: the title and text shown, and the
// 1-based line of the section header that failed (0 when the failure belongs to no section,
// such as a load error or the checks on the whole template). Empty after a successful read.
struct ReadDiagnostic {
  std::string title;
  std::string text;
  int32_t line = 0;
};
XUN_API ReadDiagnostic LastReadDiagnostic();

// Where the sections of the last ReadTemplate of this thread begin: the 1-based line of every
// [Page], [Field], [Question] and [Link]/[Join] header it read, in file order (of the template
// inside an archive). After a successful read the k-th region of the template is the one whose
// header stands at `regions[k]`, and so on; a failed read leaves the sections it got to.
struct ReadSectionLines {
  std::vector<int32_t> pages, regions, questions, links;
};
XUN_API ReadSectionLines LastReadSectionLines();

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

// Links the selected OMR regions of `oPage` into a new link group after checking that they can
// be linked; a refused link is shown (when bVerbose) and reported, and changes nothing.
XUN_API bool LinkOMR(clsXUNPage& oPage, const std::vector<std::shared_ptr<clsXUNField>>& oFields,
                     bool bVerbose = true);
// The lowest link group number above 0 that no region of the template uses.
XUN_API int16_t NextLink(const clsXUNTemplate& oTemplate);
// The same for a region of `oPage`: over its template, or over the page alone when it is in none.
XUN_API int16_t NextLink(const clsXUNPage& oPage);
// Renumbers the codes of the group's questions so that they continue from region to region
// (the rule is in docs/linking.md).
XUN_API bool ResetCodes(clsXUNPage& oPage, int16_t iLinkGroup);
// The number of regions of `oPage` in the link group.
XUN_API int16_t LinkCount(const clsXUNPage& oPage, int16_t iLinkGroup);

// Makes `list` hold exactly `count` items: empty items are appended, surplus items removed from
// the end.
XUN_API void ForceNumItems(const std::shared_ptr<clsXUNStringItems>& list, int32_t count);
// Moves the region's rectangle by whole offsets; a coordinate leaving the 16-bit range is error 6
// and leaves the region unchanged.
XUN_API void ApplyOffsets(clsXUNField& oField, int16_t iLeft, int16_t iTop, int16_t iRight,
                          int16_t iBottom);
// Stores a barcode delimiter given in file form ("<--@CRLF-->", "<--@CR-->", "<--@LF-->",
// "<--@TAB-->" tokens) as the control characters it stands for.
XUN_API void SetBarcodeDelimiter(clsXUNField& oField, const std::string& sDelimiter);
// The region's barcode delimiter in file form, control characters replaced by their tokens.
XUN_API std::string GetBarcodeDelimiter(const clsXUNField& oField);

// Trims the value, turns tabs (when asked) and line breaks into blanks, and removes every
// character whose code is in the comma-separated list `sStripCharacters`.
XUN_API std::string CleanTemplateValues(const std::string& sValue, bool bStripTabs,
                                        const std::string& sStripCharacters);

}  // namespace xun::basTemplate
