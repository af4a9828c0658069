/// \file
/// Scans a text for what reading it hides.
#pragma once

#include "document/InputBytes.h"
#include "findings/PlaceTracker.h"

namespace kel::tool {

/// Scans a text that the library has read, and finds
///
/// - names that a struct has more than once, and identities that a manager has more than once
/// - integers, and whole parts of decimals, that 32 bits do not hold, so that reading changes them
/// - decimals with more places than text keeps when it is written
/// - definitions that no value uses
///
/// The scan looks at each definition once, not at each of its uses.
/// \param document the values that were read from the content
/// \param wanted gets the offsets that it requests
/// \param found gets the findings
void scanText(const InputBytes& content, const Document& document, ValueOffsets& wanted,
              Findings& found);

} // namespace kel::tool
