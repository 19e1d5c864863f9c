// Walks over the template tree shared by several commands.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "xun/xun.h"

namespace xuntool {

struct RegionRef {
  int32_t page = 0;    // 1-based
  int32_t region = 0;  // 1-based on its page
  std::shared_ptr<xun::clsXUNField> field;
};

// Every region of the template, pages in order and regions in page order.
std::vector<RegionRef> AllRegions(const xun::clsXUNTemplate& t);

// The regions of every link group, by group number, in template order.
std::map<int32_t, std::vector<RegionRef>> LinkGroups(const xun::clsXUNTemplate& t);

// The identification role of the region's first identification question, 0 when none.
int32_t RegionIDRole(const xun::clsXUNField& field);

// "Answers" for a named region, "region 3" otherwise.
std::string RegionLabel(const RegionRef& ref);

}  // namespace xuntool
