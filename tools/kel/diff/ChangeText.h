/// \file
/// Describes changes on one line each.
#pragma once

#include "diff/Changes.h"
#include "words/Painter.h"

#include <string>

namespace kel::tool {

/// Returns the change on one line of printable text, without a line end. Values are described in a
/// few words. The first character says what happened:
///
///     ~ size[0]: 640 -> 800        changed
///     + theme: "dark"              added
///     - old: { 3 variables }       removed
///     > a.b -> c.d                 moved
///     & b: shared with a -> not shared
///     # a: IDENTITY -> IDENTITY
std::string lineFor(const Change& change, const PlacePairs& places);

/// Returns the colour of such changes.
Paint paintOf(Change::Kind kind);

} // namespace kel::tool
