/// \file
/// Exchanging the values inside a container.
#pragma once

#include "Values.h"

#include <functional>

namespace kel::tool {

/// Returns whether the child, null included, has to be replaced, and sets the replacement.
using Replacement = std::function<bool(KEL* child, Value& replacement)>;

/// Asks replace for every value that an array, index list or struct (checked ones and descriptors
/// too) holds itself and puts the replacements in. A null replacement becomes a null variable in a
/// struct, leaves the element out in an array and the pair in an index list. The variables of a
/// checked struct only ever become null. Any other value is left alone.
void replaceChildren(KEL& container, const Replacement& replace);

} // namespace kel::tool
