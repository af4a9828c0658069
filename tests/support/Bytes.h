/// \file
/// Bytes as tests write and read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Returns a string with room for the NULs of a literal: bytes("a\0b") has three characters.
template <size_t size> std::string bytes(const char (&literal)[size]) {
    return {literal, size - 1};
}

/// Returns the characters as unsigned bytes.
inline const uint8_t* unsignedBytes(std::string_view text) {
    return reinterpret_cast<const uint8_t*>(text.data());
}

/// Returns two upper-case hexadecimal digits for each byte, with blanks between them.
inline std::string hex(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        out += out.empty() ? "" : " ";
        out += "0123456789ABCDEF"[byte >> 4];
        out += "0123456789ABCDEF"[byte & 15];
    }
    return out;
}
