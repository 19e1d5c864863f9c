// Group membership, group numbers and leaving a group.
#include "xun/templatefile/link_groups.h"

#include <algorithm>
#include <set>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate {
namespace detail {

void CollectGroups(const clsXUNPage& page, std::set<int16_t>& used) {
  if (const std::shared_ptr<clsXUNFields> fields = page.Fields())
    for (const std::shared_ptr<clsXUNField>& field : *fields)
      if (field->LinkGroup() > 0) used.insert(field->LinkGroup());
}

int16_t LowestFreeGroup(const std::set<int16_t>& used) {
  int32_t group = 1;
  for (const int16_t taken : used) {
    if (taken != group) break;
    ++group;
  }
  return To16(group);
}

std::vector<std::shared_ptr<clsXUNField>> GroupMembers(const clsXUNPage& page, int16_t group) {
  std::vector<std::shared_ptr<clsXUNField>> members;
  const std::shared_ptr<clsXUNFields> fields = page.Fields();
  if (group < 1 || !fields) return members;
  for (const std::shared_ptr<clsXUNField>& field : *fields)
    if (field->LinkGroup() == group) members.push_back(field);
  return members;
}

bool LeaveGroup(clsXUNPage& page, const std::shared_ptr<clsXUNField>& field) {
  const int16_t group = field->LinkGroup();
  if (group < 1) return false;
  const std::vector<std::shared_ptr<clsXUNField>> members = GroupMembers(page, group);
  const auto at = std::find(members.begin(), members.end(), field);
  // Taken before anything changes: when the first region leaves, the group still counts from
  // where it counted before.
  const std::vector<std::string> first_codes = FirstCodes(members);
  field->LinkGroup(0);
  field->LinkStart(false);
  std::vector<std::shared_ptr<clsXUNField>> rest;
  for (const std::shared_ptr<clsXUNField>& member : members)
    if (member != field) rest.push_back(member);

  // A region taken from the middle would split the group in two runs, and the file can only
  // hold a group as one run: it moves to just after the group's last region.
  if (at != members.begin() && at != members.end() && at + 1 != members.end()) {
    std::vector<std::shared_ptr<clsXUNField>> order;
    for (const std::shared_ptr<clsXUNField>& region : *page.Fields()) {
      if (region == field) continue;
      order.push_back(region);
      if (region == members.back()) order.push_back(field);
    }
    xun::detail::FieldsInternals::Reorder(*page.Fields(), order);
  }

  // A region on its own answers with the codes it would have as the first of its group.
  RenumberCodes({field}, first_codes);
  if (rest.size() == 1) {
    // One region is no group.
    rest.front()->LinkGroup(0);
    rest.front()->LinkStart(false);
  } else {
    for (const std::shared_ptr<clsXUNField>& member : rest)
      member->LinkStart(member == rest.front());
  }
  RenumberCodes(rest, first_codes);
  return true;
}

}  // namespace detail

int16_t NextLink(const clsXUNTemplate& oTemplate) {
  return Trap("basTemplate.NextLink", int16_t{0}, [&] {
    std::set<int16_t> used;
    if (const std::shared_ptr<clsXUNPages> pages = oTemplate.Pages())
      for (const std::shared_ptr<clsXUNPage>& page : *pages)
        detail::CollectGroups(*page, used);
    return detail::LowestFreeGroup(used);
  });
}

int16_t NextLink(const clsXUNPage& oPage) {
  if (const std::shared_ptr<clsXUNTemplate> owner = oPage.Template()) return NextLink(*owner);
  return Trap("basTemplate.NextLink", int16_t{0}, [&] {
    std::set<int16_t> used;
    detail::CollectGroups(oPage, used);
    return detail::LowestFreeGroup(used);
  });
}

int16_t LinkCount(const clsXUNPage& oPage, int16_t iLinkGroup) {
  return Trap("basTemplate.LinkCount", int16_t{0}, [&] {
    return To16(static_cast<int64_t>(detail::GroupMembers(oPage, iLinkGroup).size()));
  });
}

}  // namespace xun::basTemplate
