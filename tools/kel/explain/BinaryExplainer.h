/// \file
/// Explains why the library refused a binary file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::tool {

/// A mistake in a binary file.
struct BinaryFault {
    size_t offset; ///< of the wrong field, or the end of the content if it ends too early
    std::string path;
    std::string reason;
};

/// Returns the first mistake in a content that the library has refused.
/// \param stop the offset at which the library stopped
/// \param message the library's message, for a mistake that the records alone do not show
BinaryFault explainBinary(std::string_view content, size_t stop, const std::string& message);

} // namespace kel::tool
