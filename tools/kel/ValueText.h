/// \file
/// A value in a few words, for messages.
#pragma once

#include <kel/KEL.h>
#include <string>

namespace kel::tool {

/// The value on one line of printable text: numbers in their shortest exact form, strings in
/// quotes and cut off when they are long, of containers only what they are.
std::string wordsFor(const KEL* value);

/// The double in its shortest exact form.
std::string wordsFor(double value);

} // namespace kel::tool
