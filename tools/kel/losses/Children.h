/// \file
/// Replaces the values inside a container.
#pragma once

#include "document/Values.h"

#include <functional>

namespace kel::tool {

/// Returns whether the child, null included, has to be replaced, and sets the replacement.
using Replacement = std::function<bool(KEL* child, Value& replacement)>;

/// Calls replace for every value directly inside an array, index list or struct (also a checked
/// struct or a descriptor) and puts the replacements in. A null replacement becomes a null variable
/// in a struct. It removes the element from an array and the pair from an index list. The variables
/// of a checked struct can only become null. Any other value is left alone.
void replaceChildren(KEL& container, const Replacement& replace);

} // namespace kel::tool
