// Walking a template item by item: the one place that knows which question, region or database
// column each item number stands for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/model/template.h"

namespace xun::detail {

struct ItemSlot {
  int16_t item = 0;                          // the template item number
  std::shared_ptr<clsXUNField> field;        // the region that produces it
  int16_t within = 0;                        // its number within the region
  std::shared_ptr<clsXUNQuestion> question;  // nullptr for an item without a question
  bool is_db_column = false;                 // a database return column, named db_column
  std::string db_column;
};

// Whether the question produces no item: an identification question that adds nothing.
bool IsHiddenQuestion(const clsXUNQuestion& question);

// Calls visit(slot) for every item from `first_item` on, in order, until it returns false.
// Regions that end before `first_item` are skipped on their item count alone.
template <class Visit>
void WalkItems(const clsXUNTemplate& oTemplate, int16_t first_item, Visit&& visit);

}  // namespace xun::detail

#include "xun/model/item_walk_impl.h"
