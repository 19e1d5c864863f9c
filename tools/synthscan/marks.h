// The marks a respondent makes in a bubble, drawn by hand as a pencil would: never a perfect
// ellipse, never quite where the bubble is.
#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "xun/model/bubble_grid.h"

namespace xun::synthscan {

enum class MarkKind {
  kBlank,        // nothing
  kFull,         // the bubble filled near black
  kLight,        // filled with a light pencil: 40-60% dark, grainy
  kPartial,      // a share of the bubble filled from one side
  kTick,         // a check mark across the bubble
  kCross,        // two strokes corner to corner
  kDot,          // a small stray dot in or beside the bubble
  kErased,       // a mark rubbed out cleanly: a faint smudge
  kHeavyErased,  // a mark rubbed out badly: a grey smudge
};

struct Mark {
  MarkKind kind = MarkKind::kBlank;
  int share = 0;  // kPartial: the per cent of the bubble filled, 10 to 95
  bool operator==(const Mark&) const = default;
};

// The mark's name as the marks file and the truth file write it: "full", "partial:40" ...
std::string MarkName(const Mark& mark);
// The mark named `text`, or nothing for a name that is not a mark.
std::optional<Mark> ParseMark(std::string_view text);

// Draws `mark` over the bubble `bubble` (page units) of `page`, a grey page at `dpi`. Ink only
// darkens: what is printed stays visible through a light mark.
void DrawMark(cv::Mat& page, int dpi, const BubbleRect& bubble, const Mark& mark,
              std::mt19937& random);

}  // namespace xun::synthscan
