/// \file
/// Copying whole trees without recursion.
#pragma once

#include "values/KEL_Impl.h"

#include <cstdint>

namespace kel {

/// The greatest number of values that a copy of shared values can unfold to.
constexpr uint64_t copyLimit = INT32_MAX;

/// Returns a deep copy as KELInterface_V1::copy describes it; the caller owns it. The time is
/// linear in the number of values made. A tree without shared containers is copied in one pass and
/// without a table.
/// \throws JOutOfMemoryException "Out of memory!", before a shared value is copied, for a source
///         that would unfold to more than copyLimit values
KEL_Impl* copyTree(const KEL_Impl& source);

/// Returns a copy whose contents target will take over. It differs from copyTree in two ways: null
/// variables remain null, and where source contains itself the copy contains target.
KEL_Impl* copyTreeFor(const KEL_Impl& source, KEL_Impl& target);

} // namespace kel
