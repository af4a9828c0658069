#include "platform/Memory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using namespace kel::platform;

/// While alive, raw storage cannot be allocated.
class ClosedGate {
public:
    ClosedGate() : before_(exchangeAllocationGate([](std::size_t) { return false; })) {}
    ClosedGate(const ClosedGate&) = delete;
    ClosedGate& operator=(const ClosedGate&) = delete;
    ~ClosedGate() { exchangeAllocationGate(before_); }

private:
    AllocationGate before_;
};

TEST(Memory, StorageOfNoBytesIsStorageAllTheSame) {
    for (void* storage : {allocate(0), allocateZeroed(0, 8), allocateZeroed(8, 0)}) {
        EXPECT_NE(storage, nullptr);
        deallocate(storage);
    }
}

TEST(Memory, StorageThatShrinksToNoBytesIsStorageAllTheSame) {
    void* storage = reallocate(allocate(8), 0);
    EXPECT_NE(storage, nullptr);
    deallocate(storage);
}

TEST(Memory, SizedStorageKeepsItsBytesWhenItBecomesABlockAndBack) {
    constexpr std::size_t large = largestBlock * 3;
    auto* bytes = static_cast<unsigned char*>(allocateSized(large));
    std::memset(bytes, 7, large);
    bytes = static_cast<unsigned char*>(reallocateSized(bytes, large, 16));
    EXPECT_TRUE(std::all_of(bytes, bytes + 16, [](unsigned char byte) { return byte == 7; }));
    bytes = static_cast<unsigned char*>(reallocateSized(bytes, 16, large));
    EXPECT_TRUE(std::all_of(bytes, bytes + 16, [](unsigned char byte) { return byte == 7; }));
    deallocateSized(bytes, large);
}

TEST(Memory, ZeroedStorageIsZero) {
    auto* bytes = static_cast<unsigned char*>(allocateZeroed(16, 64));
    EXPECT_TRUE(std::all_of(bytes, bytes + 1024, [](unsigned char byte) { return byte == 0; }));
    deallocate(bytes);
}

TEST(Memory, ACountThatOverflowsIsRefused) {
    EXPECT_EQ(allocateZeroed(SIZE_MAX / 2, 4), nullptr);
}

TEST(Memory, FreeingNullDoesNothing) {
    deallocate(nullptr);
    deallocateBlock(nullptr);
    deallocateSized(nullptr, largestBlock);
    deallocateSized(nullptr, largestBlock + 1);
}

TEST(Memory, AClosedGateLetsEveryAllocationFail) {
    const ClosedGate closed;
    EXPECT_EQ(allocate(1), nullptr);
    EXPECT_EQ(allocateZeroed(1, 1), nullptr);
}

TEST(Memory, TheGateIsAskedForTheWholeSize) {
    static std::size_t asked = 0;
    const AllocationGate before = exchangeAllocationGate([](std::size_t size) {
        asked = size;
        return true;
    });
    deallocate(allocateZeroed(3, 8));
    exchangeAllocationGate(before);
    EXPECT_EQ(asked, 24U);
}

TEST(Memory, ExchangingTheGateReturnsTheOneBefore) {
    const AllocationGate first = [](std::size_t) { return true; };
    EXPECT_EQ(exchangeAllocationGate(first), nullptr);
    EXPECT_EQ(exchangeAllocationGate(nullptr), first);
}

} // namespace
