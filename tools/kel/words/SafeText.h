/// \file
/// Text of files and names in a form that is safe for every terminal.
#pragma once

#include "words/Utf8.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace kel::tool {

/// Passes the text on in pieces, with control characters as \u00HH and bytes that are not valid
/// UTF-8 as \xHH. Allocates nothing.
/// \param kept the control characters that are passed on unchanged
/// \param put gets each piece as a std::string_view
template <class Put>
void putWithoutControls(std::string_view text, std::string_view kept, const Put& put) {
    constexpr char digits[] = "0123456789abcdef";
    size_t safe = 0; // the bytes at the beginning that can be passed on
    while (safe < text.size()) {
        const size_t length = utf8SequenceLength(text.substr(safe));
        const char c = text[safe];
        const auto byte = static_cast<unsigned char>(c);
        const bool isControl =
            (byte < 0x20 || byte == 0x7F) && kept.find(c) == std::string_view::npos;
        if (length > 0 && !isControl) {
            safe += length;
            continue;
        }
        put(text.substr(0, safe));
        put(std::string_view(length == 0 ? "\\x" : "\\u00"));
        put(std::string_view(&digits[byte >> 4U], 1));
        put(std::string_view(&digits[byte & 0xFU], 1));
        text.remove_prefix(safe + 1);
        safe = 0;
    }
    put(text);
}

/// Returns the text without the control characters that a terminal could obey. Line ends and tabs
/// remain.
std::string forTerminal(std::string_view text);

} // namespace kel::tool
