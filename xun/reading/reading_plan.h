// What reading needs of a template, taken from it once: every page's printed bubbles and every
// item's bubbles, lines and rules.
#pragma once

#include <string>
#include <vector>

#include "xun/model/fwd.h"
#include "xun/reading/answer_rules.h"
#include "xun/reading/page_fit.h"
#include "xun/reading/region_plan.h"

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
  // An item of a region read from the image: the region (in PagePlan::image_regions) and which
  // of its values, from 0.
  int image_region = -1, part = 0;
  int32_t id_type = 0;   // its identification role, 0 for none
  std::string id_value;  // the value the role expects
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
  std::vector<RegionPlan> image_regions;  // barcode, OCR and image-clip regions, in page order
  std::vector<int32_t> item_of;           // the data item each printed bubble answers, 0 for none
  std::vector<ItemPlan> items;
  // The page's timing marks, as printed; and whether its bubbles are printed in a drop-out ink
  // the scanner does not see, so the marks are what registers it.
  PrintedBubbles marks;
  bool drop_out = false;
};

struct ReadingPlan {
  double page_width = 0, page_height = 0;  // the printed page, in page units
  std::vector<PagePlan> pages;
};

ReadingPlan PlanOf(const clsXUNTemplate& form);

}  // namespace xun::reading::detail
