/// \file
/// Matches records by the variable that identifies them.
#pragma once

#include "diff/Alignment.h"
#include "diff/ContentDigests.h"

#include <vector>

namespace kel::tool {

/// Aligns two sequences of structs by the values of one variable: the one with the most values that
/// occur in both sequences, such as an id. Returns no pairs if fewer than half of the shorter
/// sequence have such a value. Looks at a few variables of the first struct only, so the time stays
/// in proportion to the lengths.
Alignment alignByKey(const ContentDigests& digests, const std::vector<KEL*>& before,
                     const std::vector<KEL*>& after);

} // namespace kel::tool
