/// \file
/// Counts the values in a container.
#pragma once

#include "document/Values.h"

namespace kel::tool {

/// Returns the number of variables, elements, pairs or managed values of a container, and 0 for any
/// other value.
int32_t childCountOf(const KEL& value);

} // namespace kel::tool
