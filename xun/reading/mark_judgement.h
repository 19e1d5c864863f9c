// Whether a bubble is marked, from its net fill: how much darker it is than its printed blank.
#pragma once

#include <cstdint>

#include "xun/reading/answer_rules.h"

namespace xun::reading {

// Net fill, in percent of the bubble's inside. Below `empty_below` a bubble is unmarked (dust, a
// stray dot, a clean erasure, the grain of the paper); from `marked_from` it is marked (a filled
// bubble, light pencil, most of the bubble filled, a cross); between, doubtful.
struct MarkThresholds {
  int16_t empty_below = 20;
  int16_t marked_from = 40;
};

// The judgement, with a confidence that grows with the distance from the thresholds.
XUN_READING_API BubbleRead Judge(int16_t net_fill, const MarkThresholds& thresholds = {});

}  // namespace xun::reading
