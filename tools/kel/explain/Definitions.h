/// \file
/// The definitions of a text, to explain why a use of one was refused.
#pragma once

#include <cstddef>
#include <map>
#include <string_view>

namespace kel::tool {

/// A definition of a text.
struct Definition {
    size_t begin = 0; ///< the offset of its text
    size_t end = 0;   ///< the end of its text
};

/// The definitions by their names, which are parts of the content.
using Definitions = std::map<std::string_view, Definition>;

} // namespace kel::tool
