/// \file
/// Describes a value in a few words, for messages.
#pragma once

#include <kel/KEL.h>
#include <string>
#include <string_view>

namespace kel::tool {

/// Returns the value on one line of printable text: numbers in their shortest exact form, strings
/// in quotes and cut off if they are long, and all other values as the name of their kind.
std::string wordsFor(const KEL* value);

/// Returns the text in quotes, cut off if it is long.
std::string wordsFor(std::string_view text);

/// Returns the double in its shortest exact form, but a whole number up to 2^53 with all its digits
/// and nothing else.
std::string wordsFor(double value);

} // namespace kel::tool
