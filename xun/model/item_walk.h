// Walking a template item by item: the one place that knows which region, question or database
// column each item number stands for. Page and template item counts, item numbers, lookups and
// names all come from these walks, so they cannot disagree.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/model/template.h"

namespace xun::detail {

// One region in the item list.
struct RegionSlot {
  int32_t position = 0;                // the region's 1-based position on its page
  std::shared_ptr<clsXUNField> field;  // the region
  int16_t before = 0;                  // the items before its first (the walk's offset included)
  int16_t items = 0;                   // its share of the items
};

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

// The items a region adds to its page: its NumItems, none when that count is negative (more
// hidden identification questions than items).
int16_t ItemShare(const clsXUNField& field);

// Calls visit(slot) for every region of the page in order, counting items on from `offset`,
// until it returns false. Returns the count after the last region visited.
template <class Visit>
int16_t WalkRegions(const clsXUNPage& page, int16_t offset, Visit&& visit);

// Calls visit(slot) for every item from `first_item` on, in order, until it returns false.
// Regions that end before `first_item` are skipped on their item count alone.
template <class Visit>
void WalkItems(const clsXUNTemplate& oTemplate, int16_t first_item, Visit&& visit);

}  // namespace xun::detail

#include "xun/model/item_walk_impl.h"
