/// \file
/// Fault: a mistake in the text of an input, in words for a person.
#pragma once

#include <cstddef>
#include <string>

namespace kel::tool {

/// A place where the content of an input is wrong. The scanners throw it by value.
struct Fault {
    size_t at = 0;      ///< the offset of the culprit in the content
    size_t length = 1;  ///< the number of its bytes; 0 for a place between two characters
    std::string reason; ///< what is wrong, in lower case without a period
    std::string hint;   ///< what can be done; empty if nothing can be said
};

} // namespace kel::tool
