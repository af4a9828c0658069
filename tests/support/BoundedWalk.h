/// \file
/// Copies and compares with little memory. A walk that does not end runs out of memory instead of
/// time.
#pragma once

#include "support/AllocationFailure.h"
#include "values/KEL_Impl.h"

#include <gtest/gtest.h>

namespace kel::test {

constexpr std::size_t walkBudget = 16 << 20; // far more than the walks of most tests need

/// Returns the copy, owned by the caller.
inline KEL_Impl* copyOf(const KEL& value, std::size_t bytes = walkBudget) {
    const AllocationBudget budget(bytes);
    return KEL_Impl::of(value.copy());
}

/// Compares the contents both ways and returns whether they are equal.
inline bool areEqual(const KEL& a, const KEL& b, std::size_t bytes = walkBudget) {
    const AllocationBudget budget(bytes);
    const bool equal = a.equalsValue(&b);
    EXPECT_EQ(b.equalsValue(&a), equal);
    return equal;
}

} // namespace kel::test
