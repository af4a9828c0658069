/// \file
/// UTF-8, which is all that JSON strings can hold.
#pragma once

#include <string_view>

namespace kel::tool {

/// The length of the well-formed UTF-8 sequence at the beginning of bytes: 1 to 4, or 0 where there
/// is none. Overlong forms, surrogates and numbers beyond U+10FFFF are not well-formed.
size_t utf8SequenceLength(std::string_view bytes);

/// True when the bytes are well-formed UTF-8 throughout.
bool isUtf8(std::string_view bytes);

/// True for the bytes that continue a sequence, before which a text must not be cut.
constexpr bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

} // namespace kel::tool
