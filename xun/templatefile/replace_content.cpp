// Read and ReadBatch agree on what "replace" means: afterwards the template is what a new
// template would be after the same read, whatever it held before.
#include "xun/templatefile/replace_content.h"

#include <memory>
#include <string>

#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/batch_file.h"

namespace xun::basTemplate {
namespace {

// The template a read fills before it replaces anything; freed however the read ends, so the
// page images a failed read unpacked go with it.
class FreshTemplate {
 public:
  FreshTemplate() : template_(clsXUNTemplate::Create()) {}
  FreshTemplate(const FreshTemplate&) = delete;
  FreshTemplate& operator=(const FreshTemplate&) = delete;
  ~FreshTemplate() { template_->Free(); }
  clsXUNTemplate& operator*() const { return *template_; }

 private:
  std::shared_ptr<clsXUNTemplate> template_;
};

}  // namespace

namespace detail {

void ReplaceContent(clsXUNTemplate& from, clsXUNTemplate& to) {
  const std::shared_ptr<clsXUNPages> old_pages = to.Pages();
  to.Pages(from.Pages());
  from.Pages(clsXUNPages::Create());
  if (old_pages) old_pages->Free();
  TakeFormSettings(from, to);
  to.HeaderCount(from.HeaderCount());
  to.HeaderPageCount(from.HeaderPageCount());
  to.HeaderItemCount(from.HeaderItemCount());
  xun::detail::TemplateInternals::SetValid(to, from.Valid());
}

}  // namespace detail

bool ReadReplacing(const std::string& sTemplateFile, clsXUNTemplate& oTemplate, bool bForEdit) {
  const FreshTemplate fresh;
  bool read = false;
  try {
    read = ReadTemplate(sTemplateFile, *fresh, bForEdit);
    if (read) detail::ReplaceContent(*fresh, oTemplate);
  } catch (...) {
    // A host's error passing through fails the read as well.
    oTemplate.Clear();
    throw;
  }
  if (!read) oTemplate.Clear();
  return read;
}

}  // namespace xun::basTemplate
