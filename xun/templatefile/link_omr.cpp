// Linking OMR regions of a page into one group: the checks that refuse incompatible regions,
// then the group number, the order of the page's regions and the group's codes.
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/questions.h"
#include "xun/support/error_reporter.h"
#include "xun/support/message_box.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/link_groups.h"

namespace xun::basTemplate {
namespace {

using Regions = std::vector<std::shared_ptr<clsXUNField>>;

constexpr const char* kLocation = "basTemplate.LinkOMR";
constexpr const char* kTitle = "Link Error";

std::string Refusal(const char* reason) {
  return std::string("An error occurred attempting to link the selected regions. ") + reason +
         " Link operation aborted.";
}

bool AllMatchFirst(const Regions& regions, auto&& same) {
  return std::all_of(regions.begin(), regions.end(),
                     [&](const auto& region) { return same(*regions.front(), *region); });
}

int32_t QuestionCount(const clsXUNField& field) {
  return field.Questions() ? field.Questions()->Count() : 0;
}

// The text of the first rule the regions break, checked against the first selected region in
// this order; nothing when they can be linked.
std::optional<std::string> BrokenRule(const Regions& regions) {
  if (!std::all_of(regions.begin(), regions.end(),
                   [](const auto& r) { return r->RecognitionType() == xunRecogTypeOMR; }))
    return Refusal("Only OMR regions can be linked.");
  if (!AllMatchFirst(regions,
                     [](const auto& a, const auto& b) { return a.DataType() == b.DataType(); }))
    return Refusal("Regions must have the same data type to be linked.");
  if (!AllMatchFirst(regions,
                     [](const auto& a, const auto& b) { return a.FieldType() == b.FieldType(); }))
    return Refusal("Disparate OMR region types cannot be linked.");
  if (!AllMatchFirst(regions, [](const auto& a, const auto& b) { return a.Read() == b.Read(); }))
    return Refusal("Regions must all be read or all not read in order to be linked.");
  if (regions.front()->FieldType() == xunFieldTypeOMRMult &&
      !AllMatchFirst(regions, [](const auto& a, const auto& b) {
        return QuestionCount(a) == QuestionCount(b);
      }))
    return Refusal(
        "Multiple Response OMR regions must contain the same number of questions in order to be "
        "linked.");
  if (regions.front()->FieldType() == xunFieldTypeOMRBoolean)
    return Refusal("Boolean regions cannot be linked.");
  return std::nullopt;
}

void Refuse(const std::string& text, bool bVerbose) {
  if (bVerbose)
    basError::ShowMessage(kTitle, text, MessageBoxIcon::Exclamation, MessageBoxButtons::OK);
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, text, kLocation, kTitle,
                        {}, {}, {}, 1, {}, {}, {}, 0, Variant(!bVerbose));
}

// The selection without repeats, each a region of this page; anything else, or nothing
// selected, is the caller's mistake (error 91 or 5). One region is a selection like any other:
// the rules hold for it, and linked it forms a group of its own.
Regions Selection(const clsXUNFields& list, const Regions& oFields) {
  Regions selected;
  std::unordered_set<const clsXUNField*> seen;
  for (const std::shared_ptr<clsXUNField>& field : oFields) {
    if (!field) Raise(kErrObjectNotSet);
    if (field->Fields().get() != &list) Raise(kErrInvalidCall);
    if (seen.insert(field.get()).second) selected.push_back(field);
  }
  if (selected.empty()) Raise(kErrInvalidCall);
  return selected;
}

}  // namespace

bool LinkOMR(clsXUNPage& oPage, const Regions& oFields, bool bVerbose) {
  return Trap(kLocation, false, [&] {
    const std::shared_ptr<clsXUNFields> list = oPage.Fields();
    if (!list) Raise(kErrObjectNotSet);
    const Regions selected = Selection(*list, oFields);
    if (const std::optional<std::string> reason = BrokenRule(selected)) {
      Refuse(*reason, bVerbose);
      return false;
    }

    // A region already in a group leaves it first; the group left behind is tidied as UnLink
    // tidies it.
    for (const std::shared_ptr<clsXUNField>& field : selected)
      detail::LeaveGroup(oPage, field);
    const int16_t group = NextLink(oPage);
    if (group < 1) Raise(kErrOverflow);

    // The group becomes one run of neighbours at its first region's place, in page order, since
    // a file holds a group as the regions that follow its [Link].
    const std::unordered_set<const clsXUNField*> chosen = [&] {
      std::unordered_set<const clsXUNField*> set;
      for (const auto& field : selected)
        set.insert(field.get());
      return set;
    }();
    Regions members, order;
    for (const std::shared_ptr<clsXUNField>& field : *list)
      if (chosen.count(field.get())) members.push_back(field);
    for (const std::shared_ptr<clsXUNField>& field : *list) {
      if (field == members.front())
        order.insert(order.end(), members.begin(), members.end());
      else if (!chosen.count(field.get()))
        order.push_back(field);
    }
    xun::detail::FieldsInternals::Reorder(*list, order);

    for (const std::shared_ptr<clsXUNField>& field : members) {
      field->LinkGroup(group);
      field->LinkStart(field == members.front());
    }
    detail::RenumberGroupCodes(oPage, group);
    return true;
  });
}

}  // namespace xun::basTemplate
