/// \file
/// Explains why the parser refused a JSON text.
#pragma once

#include "explain/Fault.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace kel::tool {

/// Scans a JSON text that the parser has refused, up to its first mistake.
/// \param begin the offset of the text in the content
/// \param stop the offset just after the last byte that the parser has taken
/// \param isOverflow whether the last number before that place is beyond all doubles
/// \return the mistake, or nothing if the scan finds none before that place
std::optional<Fault> explainJson(std::string_view content, size_t begin, size_t stop,
                                 bool isOverflow);

} // namespace kel::tool
