// Merging templates into one: header templates first, the form template last. Every check runs
// before anything is changed, so a refused merge leaves the target as it was.
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/batch_file.h"
#include "xun/templatefile/link_groups.h"

namespace xun::basTemplate {
namespace {

using Templates = std::vector<std::shared_ptr<clsXUNTemplate>>;

constexpr const char* kLocation = "basTemplate.MergeTemplates";

bool Refuse(const char* reason) {
  detail::ShowBatchMessage(
      "Merge Error", std::string("An error occurred merging the templates. ") + reason, kLocation);
  return false;
}

// The first check a member fails, in the order the checks are made; true when none.
bool MembersCanMerge(const Templates& members) {
  const clsXUNTemplate& first = *members.front();
  for (size_t i = 0; i < members.size(); ++i) {
    const clsXUNTemplate& member = *members[i];
    if (!member.IDFieldsValid(xunIDTypePage))
      return Refuse("All forms in a batch must contain page ID regions.");
    const bool header = i + 1 < members.size();
    if (header && member.IDFieldsValid(xunIDTypeRespondent))
      return Refuse("Batch headers cannot contain respondent tracker regions.");
    // Compared exactly: a header a hair wider than the form is another paper size.
    if (i > 0 &&
        (member.PageHeight() != first.PageHeight() || member.PageWidth() != first.PageWidth() ||
         member.Orientation() != first.Orientation()))
      return Refuse("All forms in a batch must be the same size.");
  }
  return true;
}

// Page copies not yet handed to the target; freed (with their image files) if the merge fails.
class PendingPages {
 public:
  PendingPages() = default;
  PendingPages(const PendingPages&) = delete;
  PendingPages& operator=(const PendingPages&) = delete;
  ~PendingPages() {
    for (const std::shared_ptr<clsXUNPage>& page : pages_)
      if (page) page->Free();
  }
  std::vector<std::shared_ptr<clsXUNPage>>& pages() { return pages_; }

 private:
  std::vector<std::shared_ptr<clsXUNPage>> pages_;
};

// Gives the page's link groups numbers no page of the target uses yet: each member numbers its
// groups from 1, and a group is found by its number.
void RenumberGroups(clsXUNPage& page, std::set<int16_t>& used) {
  std::map<int16_t, int16_t> renumbered;
  for (const std::shared_ptr<clsXUNField>& field : *page.Fields()) {
    const int16_t group = field->LinkGroup();
    if (group < 1) continue;
    auto found = renumbered.find(group);
    if (found == renumbered.end()) {
      const int16_t fresh = detail::LowestFreeGroup(used);
      used.insert(fresh);
      found = renumbered.emplace(group, fresh).first;
    }
    field->LinkGroup(found->second);
  }
}

}  // namespace

namespace detail {

void TakeFormSettings(const clsXUNTemplate& from, clsXUNTemplate& to) {
  to.Attributes(basPublic::CopyDictionary(from.Attributes()));
  to.Name(from.Name());
  to.RDDName(from.RDDName());
  to.Manufacturer(from.Manufacturer());
  to.Description(from.Description());
  to.Tag(from.Tag());
  to.PageHeight(from.PageHeight());
  to.PageWidth(from.PageWidth());
  to.Orientation(from.Orientation());
  to.ReadType(from.ReadType());
  to.Duplex(from.Duplex());
  to.SelfScore(from.SelfScore());
  to.Columns(from.Columns());
  to.ColumnWidth(from.ColumnWidth());
  to.RowTopMargin(from.RowTopMargin());
  to.RowBottomMargin(from.RowBottomMargin());
  xun::detail::TemplateInternals::SetVersion(to, from.Version());
  xun::detail::TemplateInternals::SetCompatibleVersion(to, from.CompatibleVersion());
}

}  // namespace detail

bool MergeTemplates(const Templates& oTemplates, clsXUNTemplate& oTarget) {
  return Trap(kLocation, false, [&] {
    if (oTemplates.empty()) Raise(kErrInvalidCall);
    // The target's own pages stay where they are, so it can only be the first member (Append);
    // named again later, its pages are copied as they were before the merge.
    const bool target_first = oTemplates.front().get() == &oTarget;
    for (const std::shared_ptr<clsXUNTemplate>& member : oTemplates) {
      if (!member) Raise(kErrObjectNotSet);
      if (member.get() == &oTarget && !target_first) Raise(kErrInvalidCall);
      if (!member->Pages()) Raise(kErrObjectNotSet);
    }
    if (!MembersCanMerge(oTemplates)) return false;

    // The headers are every member but the last.
    int16_t header_pages = 0, header_items = 0;
    for (size_t i = 0; i + 1 < oTemplates.size(); ++i) {
      header_pages = Add16(header_pages, oTemplates[i]->NumPages());
      header_items = Add16(header_items, oTemplates[i]->NumItems());
    }
    const int16_t header_count = To16(static_cast<int64_t>(oTemplates.size()) - 1);
    bool valid = true;
    for (const std::shared_ptr<clsXUNTemplate>& member : oTemplates)
      valid = valid && member->Valid();

    PendingPages pending;
    for (size_t i = 0; i < oTemplates.size(); ++i) {
      if (i == 0 && target_first) continue;
      for (const std::shared_ptr<clsXUNPage>& page : *oTemplates[i]->Pages()) {
        std::shared_ptr<clsXUNPage> copy = page->Copy(true, true);
        if (!copy) Raise(kErrObjectNotSet);  // the copy has reported why
        pending.pages().push_back(std::move(copy));
      }
    }

    std::shared_ptr<clsXUNPages> pages = oTarget.Pages();
    if (!pages) {
      oTarget.Pages(clsXUNPages::Create());
      pages = oTarget.Pages();
    }
    std::set<int16_t> used;
    for (const std::shared_ptr<clsXUNPage>& page : *pages)
      detail::CollectGroups(*page, used);
    for (std::shared_ptr<clsXUNPage>& page : pending.pages()) {
      RenumberGroups(*page, used);
      if (!pages->Add(page)) Raise(kErrInvalidCall);
      page.reset();  // the target owns it now
    }

    const clsXUNTemplate& form = *oTemplates.back();
    if (&form != &oTarget) detail::TakeFormSettings(form, oTarget);
    oTarget.HeaderCount(header_count);
    oTarget.HeaderPageCount(header_pages);
    oTarget.HeaderItemCount(header_items);
    xun::detail::TemplateInternals::SetValid(oTarget, valid);
    return true;
  });
}

}  // namespace xun::basTemplate
