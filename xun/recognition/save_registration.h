// What the template writer asks of the page images before it writes.
#pragma once

#include "xun/model/fwd.h"

namespace xun::detail {

// For every page with an image: one load that registers each region (when bRegister) and counts
// the filled pixels. Registration failures are shown (bVerbose) and reported at
// "basTemplate.SaveTemplate". Runs inside the writer's trap: other failures are raised to it.
void RegisterForSave(clsXUNTemplate& oTemplate, bool bRegister, bool bVerbose);

}  // namespace xun::detail
