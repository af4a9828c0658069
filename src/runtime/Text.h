/// \file
/// Numbers to text and back, the same in every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel {

/// Room for any integer's decimal text and a NUL.
inline constexpr std::size_t integerTextSize = 24;
/// Room for any double with six decimals and a NUL.
inline constexpr std::size_t doubleTextSize = 320;

/// Writes the decimal text and a NUL. \return the number of characters before the NUL
std::size_t formatInteger(char* text, int32_t value);

/// Writes the value with six decimals and a NUL; infinities and NaNs as inf, -inf, nan, -nan.
/// \return the number of characters before the NUL
std::size_t formatDouble(char* text, double value);

/// The integer that text begins with, after blanks and a sign; 0 for none. Saturates at the ends of
/// the 32-bit range.
int32_t parseInteger(std::string_view text);

/// The decimal number that text begins with (digits, point, exponent), after blanks and a sign; 0.0
/// for none. Hexadecimal, infinity and NaN are not decimal numbers. Too large becomes infinite.
double parseDouble(std::string_view text);

} // namespace kel
