/// \file
/// Whether two trees are the same in everything that a format keeps.
#pragma once

#include "values/KEL_Impl.h"

#include <string>

namespace kel::test {

/// What is kept beside kinds, contents, names, null variables, and which places share a value: in
/// text doubles to six decimals, in binary all their bits, and the identity of every value.
enum class Kept { inText, inBinary };

/// Compares two trees, which may contain themselves and be of any depth.
/// \return an empty string, or how the trees differ
std::string differenceOf(const KEL_Impl& a, const KEL_Impl& b, Kept kept);

} // namespace kel::test
