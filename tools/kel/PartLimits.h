/// \file
/// The size and the depth of the parts in which documents are converted.
#pragma once

#include <cstddef>

namespace kel::tool {

/// The size of the records that are read or made at a time.
constexpr size_t partSize = 256 * 1024;

/// Containers nested deeper than this are converted as a whole, because opening each costs a
/// little.
constexpr size_t mostOpen = 1000;

} // namespace kel::tool
