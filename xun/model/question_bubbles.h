// How many bubbles lie along one question of an OMR region: the number of choices and codes each
// of its questions is meant to have.
#pragma once

#include <cstdint>
#include <optional>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun::detail {

// One for a Boolean region (each bubble is a question), a row of NumCols for a row-oriented
// region (Orient 1), a column of NumRows for a column-oriented one (Orient 2); nullopt when the
// orientation is neither.
XUN_API std::optional<int32_t> BubblesPerQuestion(const clsXUNField& field);

}  // namespace xun::detail
