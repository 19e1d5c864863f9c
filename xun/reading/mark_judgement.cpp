#include "xun/reading/mark_judgement.h"

#include <algorithm>
#include <cstdlib>

namespace xun::reading {
namespace {

// A bubble this many points clear of a threshold is judged with full confidence.
constexpr double kSureDistance = 20;

}  // namespace

BubbleRead Judge(int16_t net_fill, const MarkThresholds& thresholds) {
  BubbleRead read;
  read.fill = net_fill;
  if (net_fill < thresholds.empty_below) {
    read.state = MarkState::Unmarked;
    read.confidence =
        std::min(1.0, 0.5 + (thresholds.empty_below - net_fill) / (2 * kSureDistance));
  } else if (net_fill >= thresholds.marked_from) {
    read.state = MarkState::Marked;
    read.confidence =
        std::min(1.0, 0.5 + (net_fill - thresholds.marked_from + 1) / (2 * kSureDistance));
  } else {
    read.state = MarkState::Doubtful;
    const int distance =
        std::min(net_fill - thresholds.empty_below + 1, thresholds.marked_from - net_fill);
    read.confidence = std::min(0.5, distance / (2 * kSureDistance));
  }
  return read;
}

}  // namespace xun::reading
