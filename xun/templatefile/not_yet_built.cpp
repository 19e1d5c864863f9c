// The template-file reader and writer and the batch routines come with their own work; until
// then each refuses with a report, so callers see a clear failure rather than a silent success.
#include "xun/support/error_reporter.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate {
namespace {

bool NotBuilt(const char* location) {
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation,
                        "This operation is not available in this build.", location);
  return false;
}

}  // namespace

bool ReadBatch(clsXUNTemplate&, const std::string&, const std::string&) {
  return NotBuilt("basTemplate.ReadBatch");
}

bool SaveBatch(const std::string&, const std::string&, const std::vector<std::string>&) {
  return NotBuilt("basTemplate.SaveBatch");
}

bool MergeTemplates(const std::vector<std::shared_ptr<clsXUNTemplate>>&, clsXUNTemplate&) {
  return NotBuilt("basTemplate.MergeTemplates");
}

}  // namespace xun::basTemplate
