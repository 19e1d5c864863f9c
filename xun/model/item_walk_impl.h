// Implementation of the walks (templates, so they live in a header).
#pragma once

#include <algorithm>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/support/numeric.h"

namespace xun::detail {

template <class Visit>
int16_t WalkRegions(const clsXUNPage& page, int16_t offset, Visit&& visit) {
  int16_t count = offset;
  const auto fields = page.Fields();
  if (!fields) return count;
  int32_t position = 0;
  for (const auto& field : *fields) {
    RegionSlot slot;
    slot.position = ++position;
    slot.field = field;
    slot.before = count;
    slot.items = ItemShare(*field);
    count = Add16(count, slot.items);
    if (!visit(slot)) break;
  }
  return count;
}

template <class Visit>
void WalkItems(const clsXUNTemplate& oTemplate, int16_t first_item, Visit&& visit) {
  const auto pages = oTemplate.Pages();
  if (!pages) return;
  int16_t item = 0;
  bool more = true;
  std::vector<std::shared_ptr<clsXUNQuestion>> visible;
  for (const auto& page : *pages) {
    item = WalkRegions(*page, item, [&](const RegionSlot& region) {
      const int16_t count = region.items;
      if (count == 0 || region.before + count < first_item) return true;
      const auto& field = region.field;
      const auto db = field->DBVerify() && field->DB() ? field->DB()->ReturnFields() : nullptr;
      const int16_t db_columns = db ? To16(db->Count()) : int16_t{0};
      const int16_t own = static_cast<int16_t>(std::max(0, count - db_columns));
      visible.clear();
      if (field->Questions())
        for (const auto& question : *field->Questions())
          if (!IsHiddenQuestion(*question)) visible.push_back(question);
      for (int16_t k = 1; k <= count; ++k) {
        ItemSlot slot;
        slot.item = Add16(region.before, k);
        slot.field = field;
        slot.within = k;
        if (k <= own) {
          if (static_cast<size_t>(k) <= visible.size()) slot.question = visible[k - 1];
        } else {
          slot.is_db_column = true;
          slot.db_column = db->Item(k - own);
        }
        if (slot.item < first_item) continue;
        if (!visit(slot)) {
          more = false;
          return false;
        }
      }
      return true;
    });
    if (!more) return;
  }
}

}  // namespace xun::detail
