/// \file
/// Judges numbers as they are written in text.
#pragma once

#include <string>
#include <string_view>

namespace kel::tool {

/// Returns what is wrong with a number of the text form, or nothing. Reading takes whole numbers
/// modulo 2^32, so one that 32 bits do not hold becomes another. Writing keeps six decimals.
/// Hexadecimal digits are bits, so eight of them are never wrong.
/// \param number a number as the text form defines it
std::string mistakeInNumber(std::string_view number);

} // namespace kel::tool
