/// \file
/// Questions about ASCII characters, which do not depend on the locale.
#pragma once

namespace kel::tool {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

} // namespace kel::tool
