// The tests of depth prove something only if the small stack is small.
#include "support/SmallStack.h"

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

TEST(SmallStack, IsSmallerThanThatOfOtherThreads) {
    // Windows gives the requested size. Wine gives at least 1 MiB. Other threads have 2 MiB. A
    // million levels of the smallest calls need more than ten times as much.
    const auto sizeOfMine = [] {
        MEMORY_BASIC_INFORMATION memory = {};
        VirtualQuery(&memory, &memory, sizeof memory);
        const auto* bottom = static_cast<const char*>(memory.AllocationBase);
        const auto* top = static_cast<const char*>(memory.BaseAddress) + memory.RegionSize;
        return top - bottom;
    };
    EXPECT_GE(sizeOfMine(), 2 * 1024 * 1024);
    kel::test::runInSmallStack([&] { EXPECT_LE(sizeOfMine(), 1024 * 1024); });
}

} // namespace
