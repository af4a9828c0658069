/// \file
/// Copying and comparing whole trees without recursion.
#pragma once

#include "values/KEL_Impl.h"

namespace kel {

/// A deep copy; the caller owns it. What is shared in the source, or contains itself, is so in the
/// copy. Linear in the number of values and references.
KEL_Impl* copyTree(const KEL_Impl& source);

/// The same, but where source contains itself the copy contains target, which is to take over the
/// copy's contents.
KEL_Impl* copyTreeFor(const KEL_Impl& source, KEL_Impl& target);

/// Equality of contents, see KELInterface_V1::equalsValue. Values that contain themselves are equal
/// when no difference can be found. Linear in the number of pairs that meet.
bool treesEqual(const KEL_Impl& a, const KEL_Impl& b);

} // namespace kel
