/// \file
/// Makes identities, draws them and compares them.
#pragma once

#include "platform/Guid.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace kel::test {

/// Returns an identity of its own for each number.
inline JHashCode numbered(uint32_t number) {
    return JHashCode(number, 0, 0, 7);
}

using Words = std::array<uint32_t, 4>;

inline Words draw() {
    JHashCode guid;
    EXPECT_TRUE(platform::createGuid(guid));
    return {guid.w0, guid.w1, guid.w2, guid.w3};
}

inline std::vector<Words> draw(std::size_t count) {
    std::vector<Words> drawn(count);
    std::generate(drawn.begin(), drawn.end(), [] { return draw(); });
    return drawn;
}

inline bool areDistinct(std::vector<Words> drawn) {
    std::sort(drawn.begin(), drawn.end());
    return std::adjacent_find(drawn.begin(), drawn.end()) == drawn.end();
}

} // namespace kel::test
