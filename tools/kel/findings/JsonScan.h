/// \file
/// Scans JSON for what reading it hides.
#pragma once

#include "findings/PlaceTracker.h"

#include <string_view>

namespace kel::tool {

/// Scans JSON that the tool has read, and finds names that an object has more than once.
/// \param document the values that were read from the content
/// \param wanted gets the offsets that it requests
/// \param found gets the findings
void scanJson(std::string_view content, const Document& document, ValueOffsets& wanted,
              Findings& found);

} // namespace kel::tool
