/// \file
/// Finds values that were moved.
#pragma once

#include "diff/Changes.h"
#include "diff/ContentDigests.h"

namespace kel::tool {

/// Makes one change of a removed value and an added one with equal contents, if no other value that
/// was removed or added has these contents, and if they are distinctive.
void findMoves(Changes& changes, const ContentDigests& digests);

} // namespace kel::tool
