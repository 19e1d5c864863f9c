// What each mark means to a careful person reading the form: the answer a reading of the scan
// must give, or that a person could not say either way.
#pragma once

#include <string>

#include "synthscan/marks.h"

namespace xun::synthscan {

enum class Truth { kUnmarked, kMarked, kAmbiguous };

// Full, light pencil, a partial fill of at least 70% and a cross are marked; blank, a stray dot
// and a clean erasure are unmarked; a partial fill of less than 70%, a tick and a badly erased
// mark are ambiguous.
Truth TruthOf(const Mark& mark);

// "marked", "unmarked" or "ambiguous".
std::string TruthName(Truth truth);

}  // namespace xun::synthscan
