/// \file
/// Exchanging the values inside a container.
#pragma once

#include "Values.h"

#include <functional>

namespace kel::tool {

/// Answers whether the child, null included, has to go, and sets what comes in its place.
using Replacement = std::function<bool(KEL* child, Value& replacement)>;

/// Asks replace for every value that an array or struct holds itself and puts the replacements in.
/// A null replacement becomes a null variable in a struct and leaves the element out in an array.
/// Any other value is left alone.
void replaceChildren(KEL& container, const Replacement& replace);

} // namespace kel::tool
