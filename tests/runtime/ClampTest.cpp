// Counts that do not fit into the type in which a host gets them.
#include "runtime/Clamp.h"

#include <cstdint>
#include <gtest/gtest.h>

using kel::clampTo;

namespace {

TEST(Clamp, KeepsWhatFits) {
    EXPECT_EQ(clampTo<int32_t>(uint64_t{0}), 0);
    EXPECT_EQ(clampTo<int32_t>(uint64_t{INT32_MAX}), INT32_MAX);
    EXPECT_EQ(clampTo<int32_t>(int64_t{INT32_MIN}), INT32_MIN);
    EXPECT_EQ(clampTo<uint32_t>(uint64_t{UINT32_MAX}), UINT32_MAX);
}

TEST(Clamp, ReturnsTheNearestNumberForTheRest) {
    EXPECT_EQ(clampTo<int32_t>(uint64_t{1} << 31), INT32_MAX);
    EXPECT_EQ(clampTo<int32_t>(UINT64_MAX), INT32_MAX);
    EXPECT_EQ(clampTo<int32_t>(INT64_MIN), INT32_MIN);
    EXPECT_EQ(clampTo<uint32_t>(uint64_t{1} << 32), UINT32_MAX);
    EXPECT_EQ(clampTo<uint32_t>(-1), 0U);
}

} // namespace
