// Link groups of a page: which regions belong to one, and taking a region out of one. Shared by
// the page's link members and the linking routines of basTemplate.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "xun/model/fwd.h"

namespace xun::basTemplate::detail {

// The page's regions in `group`, in page order; none for a group number below 1.
std::vector<std::shared_ptr<clsXUNField>> GroupMembers(const clsXUNPage& page, int16_t group);

// Adds the group numbers the page's regions use to `used`.
void CollectGroups(const clsXUNPage& page, std::set<int16_t>& used);
// The lowest number above 0 that is not in `used`; error 6 when none is left.
int16_t LowestFreeGroup(const std::set<int16_t>& used);

// Takes a region of the page out of its link group, as docs/linking.md describes: the group left
// behind keeps a first region and stays one run of neighbours, a group left with one region is
// dissolved; what remains of the group, and every region that ends up alone, is renumbered from
// the group's first codes. False when the region is in no group.
bool LeaveGroup(clsXUNPage& page, const std::shared_ptr<clsXUNField>& field);

// ResetCodes without its trap: failures propagate to the caller's.
void RenumberGroupCodes(const clsXUNPage& page, int16_t group);
// The first code of each question position (1, 2, ...) over `regions`: the code numbering
// starts from for that position; empty where no region has one.
std::vector<std::string> FirstCodes(const std::vector<std::shared_ptr<clsXUNField>>& regions);
// Renumbers the codes of `regions`, taken as one group in this order, counting on from
// `first_codes` (see FirstCodes).
void RenumberCodes(const std::vector<std::shared_ptr<clsXUNField>>& regions,
                   const std::vector<std::string>& first_codes);

}  // namespace xun::basTemplate::detail
