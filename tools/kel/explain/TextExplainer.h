/// \file
/// Explains why the library refused a text.
#pragma once

#include "explain/Fault.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace kel::tool {

/// Scans a text that the library has refused, up to its first mistake.
/// \param stop the offset at which the library stopped: just after the wrong token
/// \return the mistake, or nothing if the scan finds none where the library found one
std::optional<Fault> explainText(std::string_view content, size_t stop);

} // namespace kel::tool
