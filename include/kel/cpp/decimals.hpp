/// \file
/// Doubles and their decimal digits, in every locale.
#pragma once

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace kel {
inline namespace v1 {
namespace detail {

/// Text holds smaller numbers only, of either sign.
inline constexpr double beyond_text = 2147483648.0;

/// Returns a number with the fewest digits that read as the same number, without an exponent unless
/// it is very large or small: 100000, 0.0001, 1e+15. No locale changes it.
inline std::string shortest(double number) {
    char digits[64];
    const double size = number < 0 ? -number : number;
    const bool is_plain = size >= 1e-6 && size < 1e15;
    const auto end =
        is_plain ? std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed)
                 : std::to_chars(digits, digits + sizeof digits, number);
    return number == 0 ? "0" : std::string(digits, end.ptr); // also for the negative zero
}

/// Returns the number of at most so many decimals that is nearest to a number. One that is so large
/// that it has none, or is not finite, is returned as it is.
/// \param decimals from 0. More than 40 change nothing.
inline double rounded(double number, int decimals) {
    constexpr double beyond = 9007199254740992.0; // from which on every double is whole
    constexpr int most = 40;                      // so that the digits fit
    if (!(std::abs(number) < beyond) || decimals > most) {
        return number;
    }
    char digits[64];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, decimals);
    std::from_chars(digits, end.ptr, number);
    return number;
}

/// Returns a number as its first 15 digits give it, which are the ones that every double keeps:
/// 0.3 for 0.30000000000000004.
inline double with_kept_digits(double number) {
    constexpr int decimals = std::numeric_limits<double>::digits10 - 1; // after the first digit
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number,
                                   std::chars_format::scientific, decimals);
    std::from_chars(digits, end.ptr, number); // leaves the number if it would be too large
    return number;
}

} // namespace detail
} // namespace v1
} // namespace kel
