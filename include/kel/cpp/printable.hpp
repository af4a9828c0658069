/// \file
/// printable: a text that anybody can have written, for a terminal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the length of the well-formed UTF-8 sequence with which bytes begin, or 0.
inline std::size_t sequence_length(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = at(0);
    const std::size_t length = lead < 0x80                    ? 1
                               : lead >= 0xC2 && lead <= 0xDF ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || length > bytes.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        // The first continuation excludes overlong forms, surrogates and what is beyond U+10FFFF.
        const unsigned least = i > 1 ? 0x80U : lead == 0xE0 ? 0xA0U : lead == 0xF0 ? 0x90U : 0x80U;
        const unsigned most = i > 1 ? 0xBFU : lead == 0xED ? 0x9FU : lead == 0xF4 ? 0x8FU : 0xBFU;
        if (at(i) < least || at(i) > most) {
            return 0;
        }
    }
    return length;
}

/// Returns the number of a character from its well-formed UTF-8.
inline std::uint32_t number_of(std::string_view sequence) {
    constexpr std::uint32_t lead_bits[] = {0x7F, 0x1F, 0x0F, 0x07};
    std::uint32_t number = static_cast<unsigned char>(sequence[0]) & lead_bits[sequence.size() - 1];
    for (const char each : sequence.substr(1)) {
        number = number << 6U | (static_cast<unsigned char>(each) & 0x3FU);
    }
    return number;
}

/// Returns whether a character controls a terminal, or hides or turns what is around it: controls,
/// separators of lines and paragraphs, and marks of the direction of writing.
inline bool is_control(std::uint32_t character) {
    const auto is_in = [character](std::uint32_t first, std::uint32_t last) {
        return first <= character && character <= last;
    };
    return is_in(0, 0x1F) || is_in(0x7F, 0x9F) || character == 0x061C || is_in(0x200E, 0x200F) ||
           is_in(0x2028, 0x202E) || is_in(0x2066, 0x2069) || character == 0xFEFF;
}

inline void append_escape(std::string& text, const char* lead, std::uint32_t number, int digits) {
    text += lead;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        text += "0123456789abcdef"[number >> static_cast<unsigned>(shift) & 0xFU];
    }
}

/// Returns the end of at most so many bytes of a text that does not split a character.
inline std::size_t end_within(std::string_view text, std::size_t most) {
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0U) == 0x80) {
        --most;
    }
    return most;
}

/// Returns the same text with its control characters, and bytes that are not UTF-8, as escapes.
inline std::string escaped(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = sequence_length(text);
        const std::string_view character = text.substr(0, (std::max<std::size_t>)(length, 1));
        if (length == 0) {
            append_escape(shown, "\\x", static_cast<unsigned char>(text[0]), 2);
        } else if (const std::uint32_t number = number_of(character); is_control(number)) {
            append_escape(shown, "\\u", number, 4);
        } else {
            shown += character;
        }
        text.remove_prefix(character.size());
    }
    return shown;
}

} // namespace detail

/// Returns a text of anybody as a terminal or a log can show it. A control character, a mark that
/// turns the direction of writing and a byte that is not UTF-8 become escapes with their numbers. A
/// text of more than so many bytes is cut in the middle, where it has "..." then. The
/// messages of kel.hpp are printable.
///
///     std::cout << kel::printable(document.get_or("title", "")) << '\n';
inline std::string printable(std::string_view text, std::size_t most = 1000) {
    if (text.size() <= most) {
        return detail::escaped(text);
    }
    const std::size_t half = most / 2;
    const std::size_t rest = detail::end_within(text, text.size() - half);
    return detail::escaped(text.substr(0, detail::end_within(text, half))) + "..." +
           detail::escaped(text.substr(rest));
}

} // namespace v1
} // namespace kel
