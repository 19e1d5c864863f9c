// Implementation of WalkItems (a template, so it lives in a header).
#pragma once

#include <algorithm>
#include <vector>

#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/model/question.h"
#include "xun/support/numeric.h"

namespace xun::detail {

template <class Visit>
void WalkItems(const clsXUNTemplate& oTemplate, int16_t first_item, Visit&& visit) {
  int16_t item = 0;
  const auto pages = oTemplate.Pages();
  if (!pages) return;
  std::vector<std::shared_ptr<clsXUNQuestion>> visible;
  for (const auto& page : *pages) {
    if (!page->Fields()) continue;
    for (const auto& field : *page->Fields()) {
      const int16_t count = field->NumItems();
      if (count <= 0) continue;
      if (item + count < first_item) {
        item = Add16(item, count);
        continue;
      }
      const auto db = field->DBVerify() && field->DB() ? field->DB()->ReturnFields() : nullptr;
      const int16_t db_columns = db ? To16(db->Count()) : int16_t{0};
      const int16_t own = static_cast<int16_t>(std::max(0, count - db_columns));
      visible.clear();
      if (field->Questions())
        for (const auto& question : *field->Questions())
          if (!IsHiddenQuestion(*question)) visible.push_back(question);
      for (int16_t k = 1; k <= count; ++k) {
        ItemSlot slot;
        item = Add16(item, 1);
        slot.item = item;
        slot.field = field;
        slot.within = k;
        if (k <= own) {
          if (static_cast<size_t>(k) <= visible.size()) slot.question = visible[k - 1];
        } else {
          slot.is_db_column = true;
          slot.db_column = db->Item(k - own);
        }
        if (item < first_item) continue;
        if (!visit(slot)) return;
      }
    }
  }
}

}  // namespace xun::detail
