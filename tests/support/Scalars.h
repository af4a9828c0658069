/// \file
/// Values and conversions that the tests of several scalars use.
#pragma once

#include <gtest/gtest.h>
#include <kel/KEL.h>
#include <limits>

namespace kel::test {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// Returns the guid that a value converts to. Checks that the conversion returns the guid that it
/// was given.
inline JHashCode convertedGuid(const KEL& value) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_EQ(&value.toGuid(guid), &guid);
    return guid;
}

} // namespace kel::test
