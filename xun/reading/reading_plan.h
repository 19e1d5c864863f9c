// What reading needs of a template, taken from it once: every page's printed bubbles and every
// item's bubbles, lines and rules.
#pragma once

#include <string>
#include <vector>

#include "xun/model/fwd.h"
#include "xun/reading/answer_rules.h"
#include "xun/reading/page_fit.h"

namespace xun::reading::detail {

// One item: the question's rules and its bubbles, line by line, as indexes into its page's
// printed bubbles.
struct ItemPlan {
  int32_t item = 0;  // 0 for a hidden identification question, which adds no data item
  std::string name;
  std::string region;  // its region's name
  QuestionRules rules;
  std::vector<std::vector<int>> lines;
  int32_t rank_group = -1;  // the region of a rank question: duplicates are looked for within it
  int32_t id_type = 0;      // its identification role, 0 for none
  std::string id_value;     // the value the role expects
};

// Which bubble a printed bubble is: its region's name and its grid row and column.
struct BubbleId {
  std::string region;
  int32_t row = 0, col = 0;
};

struct PagePlan {
  PrintedBubbles printed;
  // The bubbles of each OMR region lie together in `printed`: its first and how many.
  std::vector<std::pair<int, int>> regions;
  std::vector<int16_t> blank_fills;  // of each printed bubble, from the registration (0 without)
  std::vector<BubbleId> ids;         // of each printed bubble
  std::vector<int32_t> item_of;      // the data item each printed bubble answers, 0 for none
  std::vector<ItemPlan> items;
};

struct ReadingPlan {
  double page_width = 0, page_height = 0;  // the printed page, in page units
  std::vector<PagePlan> pages;
};

ReadingPlan PlanOf(const clsXUNTemplate& form);

}  // namespace xun::reading::detail
