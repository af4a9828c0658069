/// \file
/// Comparing whole trees without recursion.
#pragma once

#include "values/KEL_Impl.h"

namespace kel {

/// Equality of contents, see KELInterface_V1::equalsValue. Values that contain themselves are equal
/// when no difference can be found. Nearly linear in the number of distinct values and references
/// of both; trees without shared containers are compared without a table.
bool treesEqual(const KEL_Impl& a, const KEL_Impl& b);

} // namespace kel
