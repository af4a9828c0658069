/// \file
/// Conversions of numbers to text and back, the same in every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel {

/// The size of the buffer for any integer's decimal text and a NUL.
inline constexpr std::size_t integerTextSize = 24;
/// The size of the buffer for any double with six decimals and a NUL.
inline constexpr std::size_t doubleTextSize = 320;

/// Writes the decimal text and a NUL. \return the number of characters before the NUL
std::size_t formatInteger(char* text, int32_t value);

/// Writes the value with six decimals and a NUL. Infinities and NaNs are inf, -inf, nan and -nan.
/// \return the number of characters before the NUL
std::size_t formatDouble(char* text, double value);

/// Returns the integer at the beginning of text, after blanks and a sign; 0 if there is none.
/// Saturates at the ends of the 32-bit range.
int32_t parseInteger(std::string_view text);

/// Returns the decimal number (digits, point, exponent) at the beginning of text, after blanks and
/// a sign; 0.0 if there is none. Hexadecimal, infinity and NaN are not decimal numbers. A number
/// that is too large becomes infinite.
double parseDouble(std::string_view text);

} // namespace kel
