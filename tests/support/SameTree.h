/// \file
/// Compares two trees in everything that a format keeps.
#pragma once

#include "values/KEL_Impl.h"

#include <string>

namespace kel::test {

/// The format decides what is compared. Both keep kinds, contents, names, null variables, and which
/// places share a value. Text keeps six decimals of a double. Binary keeps all bits of a double and
/// the identity of every value.
enum class Kept { inText, inBinary };

/// Compares two trees, which can contain themselves and be of any depth.
/// \return a description of the difference, empty if there is none
std::string differenceOf(const KEL_Impl& a, const KEL_Impl& b, Kept kept);

} // namespace kel::test
