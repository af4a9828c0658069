/// \file
/// Comparing whole trees without recursion.
#pragma once

#include "values/KEL_Impl.h"

namespace kel {

/// Returns whether the contents are equal, see KELInterface_V1::equalsValue. Values that contain
/// themselves are equal when no difference can be found. The time is nearly linear in the number of
/// distinct values and references of both trees. Trees without shared containers are compared
/// without a table.
bool treesEqual(const KEL_Impl& a, const KEL_Impl& b);

} // namespace kel
