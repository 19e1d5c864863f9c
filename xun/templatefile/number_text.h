// Numbers as the template file holds them: the shortest plain decimal that reads back as the
// same value, with "." as the decimal point and never an exponent.
#pragma once

#include <string>

#include "xun/export.h"

namespace xun::basTemplate::detail {

// "0.1", "8.268", "1000000000000000000000"; -0 gives "0". NaN and infinities have no plain form
// and are refused with error 6 (overflow). Exported for the tests only.
XUN_API std::string ShortestDecimal(double value);
// The same for a single: 0.167f gives "0.167", not the digits of its double widening.
XUN_API std::string ShortestDecimal(float value);

}  // namespace xun::basTemplate::detail
