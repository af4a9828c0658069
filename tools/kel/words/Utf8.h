/// \file
/// UTF-8, which is all that JSON strings can hold.
#pragma once

#include <string_view>

namespace kel::tool {

/// Returns the length of the well-formed UTF-8 sequence at the beginning of bytes: 1 to 4, or 0 if
/// there is none. Overlong forms, surrogates and numbers beyond U+10FFFF are not well-formed.
size_t utf8SequenceLength(std::string_view bytes);

/// Returns whether the bytes are well-formed UTF-8 throughout.
bool isUtf8(std::string_view bytes);

/// Returns whether a byte continues a sequence. A text must not be cut before such a byte.
constexpr bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

} // namespace kel::tool
