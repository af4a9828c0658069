/// \file
/// unfoldedSize: how many values a tree has when nothing in it is shared.
#pragma once

#include "values/KEL_Impl.h"

#include <cstdint>
#include <optional>

namespace kel {

/// Counts the values of a tree as a deep copy visits them: a value counts once for each place that
/// has it, a null variable counts as one, and the elements of a manager do not count. The time is
/// linear in the number of distinct values and references; counts beyond 2^62 are reported as 2^62.
/// \return nothing when a value of the tree contains itself
std::optional<uint64_t> unfoldedSize(const KEL_Impl& source);

} // namespace kel
