// Stripping a repeated delimiter from the end of a text.
#include <string>

#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun::basPublic {

std::string RemoveTrailingDelimiter(const std::string& sText, const std::string& sDelimiter,
                                    int32_t lCount) {
  return Trap("basPublic.RemoveTrailingDelimiter", std::string{}, [&] {
    std::string out = sText;
    if (sDelimiter.empty()) return out;
    const int32_t count = lCount < 1 ? 32767 : lCount;
    for (int32_t i = 0; i < count && out.ends_with(sDelimiter); ++i)
      out.resize(out.size() - sDelimiter.size());
    return out;
  });
}

}  // namespace xun::basPublic
