/// \file
/// Numbers as a text spells them, and what reading makes of those that 32 bits do not hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel {
inline namespace v1 {
namespace detail {

inline bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
inline bool is_hex_digit(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// A number of a text: its sign, its base, and the digits of its whole part.
struct written_number {
    /// Takes a number that is valid in text, such as -12, 0x1f or 12.5.
    explicit written_number(std::string_view number) {
        is_negative = !number.empty() && number.front() == '-';
        is_hexadecimal = number.substr(0, 2) == "0x";
        whole = number.substr(is_hexadecimal ? 2 : is_negative ? 1 : 0);
        const std::size_t point = whole.find('.');
        is_decimal = point != std::string_view::npos;
        whole = whole.substr(0, point);
        whole.remove_prefix((std::min)(whole.find_first_not_of('0'), whole.size()));
    }

    /// Returns whether reading changes the number, because 32 bits do not hold its whole part. Up
    /// to eight hexadecimal digits are bits, so they never change.
    bool wraps() const {
        constexpr std::size_t word_digits = 8;
        if (is_hexadecimal) {
            return whole.size() > word_digits;
        }
        const std::string_view most =
            is_negative && !is_decimal ? "2147483648" : "2147483647"; // one sum serves both signs
        return whole.size() > most.size() || (whole.size() == most.size() && whole > most);
    }

    /// Returns the Int that reading makes of a number without a point.
    std::int32_t as_read() const {
        std::uint32_t sum = 0;
        for (const char c : whole) {
            const auto digit =
                static_cast<std::uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
            sum = sum * (is_hexadecimal ? 16U : 10U) + digit;
        }
        return static_cast<std::int32_t>(is_negative ? 0U - sum : sum);
    }

    bool is_negative = false;
    bool is_hexadecimal = false;
    bool is_decimal = false; ///< it has a point
    std::string_view whole;  ///< borrowed, without the zeros at its beginning
};

} // namespace detail
} // namespace v1
} // namespace kel
