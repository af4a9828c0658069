#include "runtime/MemoryPool.h"

#include "platform/Memory.h"
#include "support/AllocationFailure.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

std::string read(const MemoryPool& pool, uint32_t index, uint32_t count) {
    std::string out(count, '?');
    pool.read(index, out.data(), count);
    return out;
}

TEST(MemoryPool, StartsWithZeros) {
    const MemoryPool pool(4, 4);
    EXPECT_EQ(read(pool, 0, 4), std::string(4, '\0'));
    EXPECT_EQ(pool.getSize(), 4U);
}

TEST(MemoryPool, AWriteRunsOverIntoTheNextSegment) {
    MemoryPool pool(4, 4);
    pool.write(2, "abcd", 4);
    EXPECT_EQ(read(pool, 2, 4), "abcd");
    EXPECT_EQ(pool.getSize(), 8U);
}

TEST(MemoryPool, ASegmentIsAsLargeAsTheWriteNeeds) {
    MemoryPool pool(4, 4);
    pool.write(0, "abcdefghijklm", 13);
    EXPECT_EQ(pool.getSize(), 13U);
    EXPECT_EQ(read(pool, 3, 7), "defghij");
}

TEST(MemoryPool, AWriteThatEndsWithTheLastSegmentAddsNone) {
    MemoryPool pool(4, 4);
    pool.write(0, "abcd", 4);
    EXPECT_EQ(pool.getSize(), 4U);
    pool.write(2, "efgh", 4);
    pool.write(4, "ijkl", 4);
    EXPECT_EQ(pool.getSize(), 8U);
    EXPECT_EQ(read(pool, 0, 8), "abefijkl");
}

TEST(MemoryPool, AWriteOfNothingAtTheEndChangesNothing) {
    MemoryPool pool(4, 4);
    pool.write(0, "abcd", 4);
    pool.write(4, "x", 0);
    EXPECT_EQ(pool.getSize(), 4U);
    EXPECT_EQ(read(pool, 0, 4), "abcd");
}

TEST(MemoryPool, CollectsByteByByteAcrossManySegments) {
    MemoryPool pool(5, 3);
    const std::string text = "the quick brown fox jumps over the lazy dog";
    for (uint32_t i = 0; i < text.size(); ++i) {
        pool.write(i, &text[i], 1);
    }
    EXPECT_EQ(read(pool, 0, static_cast<uint32_t>(text.size())), text);
    pool.write(4, "QUICK", 5);
    EXPECT_EQ(read(pool, 0, 15), "the QUICK brown");
}

TEST(MemoryPool, AGapIsZero) {
    MemoryPool pool(2, 2);
    pool.write(5, "x", 1);
    EXPECT_EQ(read(pool, 0, 6), std::string(5, '\0') + "x");
}

TEST(MemoryPool, ReadingOutsideThrows) {
    const MemoryPool pool(4, 4);
    const std::string expected = "MemoryPool read: out of bounds.";
    EXPECT_EQ(thrownMessage<JIOException>([&] { read(pool, 0, 5); }), expected);
    EXPECT_EQ(thrownMessage<JIOException>([&] { read(pool, 5, 0); }), expected);
    char byte = 0;
    EXPECT_EQ(thrownMessage<JIOException>([&] { pool.read(UINT32_MAX, &byte, 2); }), expected);
    EXPECT_EQ(read(pool, 4, 0), "");
}

bool refuseAll(std::size_t) {
    return false;
}

TEST(MemoryPool, ConstructionWithoutMemoryThrows) {
    const auto before = kel::platform::exchangeAllocationGate(refuseAll);
    const auto make = [] { const MemoryPool pool(4, 4); };
    bool failed = false;
    try {
        make();
    } catch (const JOutOfMemoryException&) {
        failed = true; // its message could not be allocated either
    }
    kel::platform::exchangeAllocationGate(before);
    EXPECT_TRUE(failed);
}

bool refuseLarge(std::size_t size) {
    return size < 1000;
}

TEST(MemoryPool, FailureToGrowThrowsAndKeepsTheContents) {
    MemoryPool pool(4, 4);
    pool.write(0, "abcd", 4);
    const std::string large(2000, 'x');
    const auto before = kel::platform::exchangeAllocationGate(refuseLarge);
    const std::string message =
        thrownMessage<JOutOfMemoryException>([&] { pool.write(2, large.data(), 2000); });
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(message, "MemoryPool out of memory.");
    EXPECT_EQ(read(pool, 0, 4), "abcd");
}

TEST(MemoryPool, WithoutMemoryForASegmentItKeepsTheContents) {
    MemoryPool pool(4, 4);
    pool.write(0, "abcd", 4);
    const std::string message = thrownMessage<JOutOfMemoryException>([&] {
        const kel::test::FailingAllocation failing(0);
        pool.write(2, "efgh", 4);
    });
    EXPECT_EQ(message, "MemoryPool out of memory.");
    EXPECT_EQ(read(pool, 0, 4), "abcd");
}

TEST(MemoryPool, APositionBeyond32BitsIsRefused) {
    MemoryPool pool(4, 4);
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { pool.write(UINT32_MAX, "a", 1); }),
              "MemoryPool out of memory.");
}

TEST(MemoryPool, ALongChainNeedsNoStack) {
    MemoryPool pool(1, 1);
    for (uint32_t i = 0; i < 300000; ++i) {
        pool.write(i, "y", 1);
    }
    EXPECT_EQ(read(pool, 299999, 1), "y");
}

TEST(MemoryPool, BecomesAString) {
    MemoryPool pool(4, 4);
    pool.write(0, "one two", 7);
    const JString string(pool, 4, 3);
    EXPECT_TRUE(string.equals("two"));
}

} // namespace
