/// \file
/// Finds the records of the values that findings are about.
#pragma once

#include "findings/PlaceTracker.h"

#include <string_view>

namespace kel::tool {

/// Walks over the records of a binary file that the library has read, and stores the offsets of
/// the records that are wanted. A shared value has the offset of its whole record.
/// \param document the values that were read from the content
/// \param wanted gets the offsets that it requests
void scanBinary(std::string_view content, const Document& document, ValueOffsets& wanted);

} // namespace kel::tool
