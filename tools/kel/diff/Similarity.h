/// \file
/// Finds the elements that were probably changed, in a stretch without equal elements.
#pragma once

#include "diff/Alignment.h"
#include "diff/ContentDigests.h"

#include <vector>

namespace kel::tool {

/// Pairs elements of two stretches of arrays that have no equal elements at the same places.
/// Containers that have values in common belong together. What lies between such pairs belongs
/// together one by one if it is equally long on both sides. Stretches that are too long for
/// comparing each with each are paired by the variable that identifies their structs, or one by one
/// if none does.
Alignment pairSimilar(const ContentDigests& digests, const std::vector<KEL*>& before,
                      const std::vector<KEL*>& after);

} // namespace kel::tool
