#include "synthscan/truth.h"

namespace xun::synthscan {

// A partial fill counts from this share: most of the bubble is dark, as with a hurried mark.
constexpr int kMarkedShare = 70;

Truth TruthOf(const Mark& mark) {
  switch (mark.kind) {
    case MarkKind::kFull:
    case MarkKind::kLight:
    case MarkKind::kCross:
      return Truth::kMarked;
    case MarkKind::kPartial:
      return mark.share >= kMarkedShare ? Truth::kMarked : Truth::kAmbiguous;
    case MarkKind::kTick:
    case MarkKind::kHeavyErased:
      return Truth::kAmbiguous;
    case MarkKind::kBlank:
    case MarkKind::kDot:
    case MarkKind::kErased:
      return Truth::kUnmarked;
  }
  return Truth::kAmbiguous;
}

std::string TruthName(Truth truth) {
  switch (truth) {
    case Truth::kMarked:
      return "marked";
    case Truth::kUnmarked:
      return "unmarked";
    case Truth::kAmbiguous:
      return "ambiguous";
  }
  return "ambiguous";
}

}  // namespace xun::synthscan
