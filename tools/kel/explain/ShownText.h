/// \file
/// Parts of an input as a terminal can show them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::tool {

/// One character of an input.
struct ShownCharacter {
    size_t length;    ///< the number of its bytes; a byte that is not UTF-8 is one character
    size_t columns;   ///< the number of columns that its text takes on a terminal
    std::string text; ///< the character itself, or an escape such as \u001b or \xff
};

/// Returns the first character of the bytes, which must not be empty. Control characters, also
/// those that change the direction of writing, and bytes that are not UTF-8 become escapes.
ShownCharacter firstCharacter(std::string_view bytes);

/// Returns the bytes in double quotes as one short line: without controls, and cut after forty
/// characters.
std::string quoted(std::string_view bytes);

} // namespace kel::tool
