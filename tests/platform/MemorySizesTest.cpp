/// \file
/// The sizes at which the way of allocating changes.
#include "platform/Memory.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::platform;

TEST(MemorySizes, StorageThatShrinksToNoBytesIsStillStorage) {
    void* storage = reallocate(allocate(8), 0);
    EXPECT_NE(storage, nullptr);
    deallocate(storage);
}

TEST(MemorySizes, NullGrowsToNoBytesAsAllocateMakesThem) {
    void* storage = reallocate(nullptr, 0);
    EXPECT_NE(storage, nullptr);
    deallocate(storage);
}

} // namespace
