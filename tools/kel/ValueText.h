/// \file
/// Describes a value in a few words, for messages.
#pragma once

#include <kel/KEL.h>
#include <string>

namespace kel::tool {

/// Returns the value on one line of printable text: numbers in their shortest exact form, strings
/// in quotes and cut off if they are long, and all other values as the name of their kind.
std::string wordsFor(const KEL* value);

/// Returns the double in its shortest exact form.
std::string wordsFor(double value);

} // namespace kel::tool
