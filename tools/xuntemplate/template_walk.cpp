#include "template_walk.h"

namespace xuntool {

std::vector<RegionRef> AllRegions(const xun::clsXUNTemplate& t) {
  std::vector<RegionRef> out;
  const auto pages = t.Pages();
  if (!pages) return out;
  int32_t p = 0;
  for (const auto& page : *pages) {
    ++p;
    if (!page || !page->Fields()) continue;
    int32_t r = 0;
    for (const auto& field : *page->Fields())
      out.push_back({p, ++r, field});
  }
  return out;
}

std::map<int32_t, std::vector<RegionRef>> LinkGroups(const xun::clsXUNTemplate& t) {
  std::map<int32_t, std::vector<RegionRef>> groups;
  for (const RegionRef& ref : AllRegions(t))
    if (ref.field->LinkGroup() != 0) groups[ref.field->LinkGroup()].push_back(ref);
  return groups;
}

int32_t RegionIDRole(const xun::clsXUNField& field) {
  const auto questions = field.Questions();
  if (!questions) return 0;
  for (const auto& q : *questions)
    if (q->IDType() >= xun::xunIDTypeForm) return q->IDType();
  return 0;
}

std::string RegionLabel(const RegionRef& ref) {
  const std::string& name = ref.field->FieldName();
  return name.empty() ? "region " + std::to_string(ref.region) : name;
}

}  // namespace xuntool
