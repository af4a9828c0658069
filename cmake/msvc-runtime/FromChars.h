/// \file
/// Stands for std::from_chars of doubles, which libc++ 14 lacks and Microsoft's library has.
#pragma once

#include <charconv>

namespace std {

/// Reads a decimal number with an optional exponent. Other formats, infinities and NaNs are
/// invalid.
from_chars_result from_chars(const char* first, const char* last, double& value,
                             chars_format format = chars_format::general);

} // namespace std
