#include "streams/StringReader.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/PieceStream.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KELException_Impl.h"
#include "values/KEL_MemBlock_Impl.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace {

using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::make;
using kel::test::thrownMessage;

const std::string pastEndOfRead = "Cannot read past the end of the memory block.";
const std::string pastEndOfWrite = "Cannot write past the end of the memory block.";
const std::string digits = "0123456789ABCDEF";

using Block = Held<KEL_MemBlock_Impl>;

/// Returns a block of the sixteen hexadecimal digits.
Block sixteen() {
    return make<KEL_MemBlock_Impl>(16, digits.data());
}

/// Returns a block whose bytes are still unread.
Block lazy(JInputStream* source, int32_t size) {
    return make<KEL_MemBlock_Impl>(source, size);
}

/// Returns ten bytes that were dots, after read has written into them.
std::string bytesOf(KEL_MemBlock& block, int32_t offset, int32_t count) {
    std::string out(10, '.');
    block.read(offset, out.data(), count);
    return out;
}

std::string contentsOf(KEL_MemBlock& block) {
    std::string out(static_cast<size_t>(block.getSize()), '?');
    block.read(0, out.data(), block.getSize());
    return out;
}

std::string messageOfRead(KEL_MemBlock& block, int32_t offset, int32_t count) {
    char buffer[32];
    return thrownMessage<KELMemBlockException>([&] { block.read(offset, buffer, count); });
}

std::string messageOfWrite(KEL_MemBlock& block, int32_t offset, int32_t count) {
    const std::string source(32, '#');
    return thrownMessage<KELMemBlockException>([&] { block.write(offset, source.data(), count); });
}

TEST(KEL_MemBlock, IsOfItsKindAndSize) {
    const Block block = sixteen();
    EXPECT_EQ(block->getType(), 5);
    EXPECT_EQ(block->getSize(), 16);
}

TEST(KEL_MemBlock, HoldsACopyOfTheBytes) {
    std::string bytes("a\0b", 3);
    const Block block = make<KEL_MemBlock_Impl>(3, bytes.data());
    bytes[0] = '?';
    EXPECT_EQ(contentsOf(*block), std::string("a\0b", 3));
}

TEST(KEL_MemBlock, MadeFromNullIsZero) {
    EXPECT_EQ(contentsOf(*make<KEL_MemBlock_Impl>(8, nullptr)), std::string(8, '\0'));
}

TEST(KEL_MemBlock, ReadsUpToItsEnd) {
    const Block block = sixteen();
    EXPECT_EQ(contentsOf(*block), digits);
    EXPECT_EQ(bytesOf(*block, 15, 1), "F.........");
    EXPECT_EQ(bytesOf(*block, 10, 6), "ABCDEF....");
    EXPECT_EQ(bytesOf(*block, 16, 0), "..........");
}

TEST(KEL_MemBlock, RefusesToReadPastItsEnd) {
    const Block block = sixteen();
    EXPECT_EQ(messageOfRead(*block, 15, 2), pastEndOfRead);
    EXPECT_EQ(messageOfRead(*block, 16, 1), pastEndOfRead);
    EXPECT_EQ(messageOfRead(*block, 17, 0), pastEndOfRead);
    EXPECT_EQ(messageOfRead(*block, 0, 17), pastEndOfRead);
}

TEST(KEL_MemBlock, WritesUpToItsEnd) {
    const Block block = sixteen();
    block->write(10, "uvwxyz", 6);
    EXPECT_EQ(contentsOf(*block), "0123456789uvwxyz");
    block->write(16, "?", 0);
    EXPECT_EQ(contentsOf(*block), "0123456789uvwxyz");
}

TEST(KEL_MemBlock, RefusesToWritePastItsEndAndStaysAsItWas) {
    const Block block = sixteen();
    EXPECT_EQ(messageOfWrite(*block, 11, 6), pastEndOfWrite);
    EXPECT_EQ(messageOfWrite(*block, 16, 1), pastEndOfWrite);
    EXPECT_EQ(messageOfWrite(*block, 0, 17), pastEndOfWrite);
    EXPECT_EQ(contentsOf(*block), digits);
}

TEST(KEL_MemBlock, ANullDestinationOrSourceDoesNothingWhateverTheRange) {
    const Block block = sixteen();
    block->read(0, nullptr, 4);
    block->read(100, nullptr, 100);
    block->read(-5, nullptr, -5);
    block->write(0, nullptr, 4);
    block->write(100, nullptr, 100);
    EXPECT_EQ(contentsOf(*block), digits);
}

TEST(KEL_MemBlock, ABlockOfNoBytesIsReadAndWritten) {
    const Block block = make<KEL_MemBlock_Impl>(0, nullptr);
    EXPECT_EQ(bytesOf(*block, 0, 0), "..........");
    block->write(0, "x", 0);
    EXPECT_EQ(messageOfRead(*block, 0, 1), pastEndOfRead);
    EXPECT_EQ(messageOfWrite(*block, 0, 1), pastEndOfWrite);
}

TEST(KEL_MemBlock, ANegativeOffsetIsNotRefusedAndSkipsWhatLiesBefore) {
    const Block block = sixteen();
    EXPECT_EQ(bytesOf(*block, -3, 5), "...01.....");
    EXPECT_EQ(bytesOf(*block, -5, 5), "..........");
    EXPECT_EQ(bytesOf(*block, INT32_MIN, 8), "..........");
    block->write(-3, "vwxyz", 5);
    EXPECT_EQ(contentsOf(*block), "yz23456789ABCDEF");
}

TEST(KEL_MemBlock, ANegativeCountIsNotRefusedAndCopiesNothing) {
    const Block block = sixteen();
    EXPECT_EQ(bytesOf(*block, 4, -1), "..........");
    EXPECT_EQ(bytesOf(*block, 20, -10), "..........");
    EXPECT_EQ(bytesOf(*block, -1, -1), "..........");
    block->write(20, "xyz", -10);
    EXPECT_EQ(contentsOf(*block), digits);
}

TEST(KEL_MemBlock, ASumThatOverflows32BitsIsNotRefusedAndCopiesWhatIsInside) {
    const Block block = sixteen();
    EXPECT_EQ(bytesOf(*block, INT32_MAX, 10), "..........");
    EXPECT_EQ(bytesOf(*block, INT32_MAX, INT32_MAX), ".........."); // wraps to -2
    block->write(INT32_MAX, "xyz", 3);
    EXPECT_EQ(contentsOf(*block), digits);
    // -2147483648 + -1 wraps to 2147483647, which is past the end.
    EXPECT_EQ(messageOfRead(*block, INT32_MIN, -1), pastEndOfRead);
}

TEST(KEL_MemBlock, ACountThatWrapsCopiesUpToTheEnd) {
    const Block block = sixteen();
    std::string out(32, '.');
    block->read(8, out.data(), INT32_MAX); // 8 + 2147483647 wraps to a negative sum
    EXPECT_EQ(out.substr(0, 10), "89ABCDEF..");
}

TEST(KEL_MemBlock, CannotBeMadeWithoutMemory) {
    const auto messageAfter = [](std::size_t allowed) {
        const FailingAllocation failing(allowed);
        return thrownMessage<KELOutOfMemoryException>([] { sixteen(); });
    };
    EXPECT_EQ(messageAfter(1), "Out of memory!");
    EXPECT_EQ(messageAfter(0), "(another JException: Out of memory!)"); // no room for the object
}

TEST(KEL_MemBlock, ANegativeSizeIsOutOfMemory) {
    EXPECT_EQ(thrownMessage<KELOutOfMemoryException>([] { make<KEL_MemBlock_Impl>(-1, nullptr); }),
              "Out of memory!");
    EXPECT_EQ(
        thrownMessage<KELOutOfMemoryException>([] { make<KEL_MemBlock_Impl>(INT32_MIN, ""); }),
        "Out of memory!");
}

TEST(KEL_MemBlock, WritingNotifiesAndAFailedWriteDoesNot) {
    const Block block = sixteen();
    kel::test::Watcher watcher;
    block->addObserver(&watcher);
    block->write(0, "x", 1);
    EXPECT_EQ(watcher.calls(), 1);
    messageOfWrite(*block, 16, 1);
    block->write(0, nullptr, 1);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST(KEL_MemBlock, WithASourceIsLoadedByTheFirstRead) {
    JPointer<StringReader> source(new StringReader("abcdef", 6));
    const Block block = lazy(source.get(), 4);
    EXPECT_EQ(source->JTell(), 0);
    EXPECT_EQ(block->loadedBytes(), nullptr);
    EXPECT_EQ(contentsOf(*block), "abcd");
    EXPECT_EQ(source->JTell(), 4);
    EXPECT_EQ(contentsOf(*block), "abcd");
    EXPECT_EQ(source->JTell(), 4);
}

TEST(KEL_MemBlock, SharesItsSourceUntilItIsLoaded) {
    JPointer<StringReader> source(new StringReader("abcdef", 6));
    const Block block = lazy(source.get(), 4);
    EXPECT_EQ(source->getRefCount(), 2);
    contentsOf(*block);
    EXPECT_EQ(source->getRefCount(), 1);
}

TEST(KEL_MemBlock, IsLoadedAlsoByAReadPastItsEnd) {
    JPointer<StringReader> source(new StringReader("abcdef", 6));
    const Block block = lazy(source.get(), 4);
    EXPECT_EQ(messageOfRead(*block, 3, 2), pastEndOfRead);
    EXPECT_EQ(contentsOf(*block), "abcd");
}

TEST(KEL_MemBlock, WithoutSourceOrBytesCannotBeRead) {
    const Block block = lazy(nullptr, 4);
    EXPECT_EQ(messageOfRead(*block, 0, 1), pastEndOfRead);
    EXPECT_EQ(messageOfRead(*block, 0, 0), pastEndOfRead);
    block->read(0, nullptr, 1);
}

TEST(KEL_MemBlock, WritingDoesNotLoad) {
    JPointer<StringReader> source(new StringReader("abcdef", 6));
    const Block block = lazy(source.get(), 4);
    EXPECT_EQ(messageOfWrite(*block, 0, 1), pastEndOfWrite);
    EXPECT_EQ(source->JTell(), 0);
    contentsOf(*block);
    block->write(0, "x", 1);
    EXPECT_EQ(contentsOf(*block), "xbcd");
}

TEST(KEL_MemBlock, ASourceThatEndsTooEarlyCannotBeRead) {
    JPointer<StringReader> source(new StringReader("abc", 3));
    const Block block = lazy(source.get(), 4);
    EXPECT_EQ(messageOfRead(*block, 0, 1), pastEndOfRead);
    EXPECT_EQ(block->loadedBytes(), nullptr);
}

TEST(KEL_MemBlock, ALoadThatCameUpShortGoesOnWhereItStopped) {
    PieceStream stream("abcdef");
    stream.largestPiece = 2;
    stream.failsAt = 2;
    const Block block = lazy(&stream, 5);
    EXPECT_EQ(thrownMessage<JIOException>([&] { contentsOf(*block); }), "PieceStream failed.");
    EXPECT_EQ(messageOfWrite(*block, 0, 1), pastEndOfWrite) << "it is not loaded yet";
    stream.failsAt = INT64_MAX;
    const std::string all = std::exchange(stream.data, "abc");
    EXPECT_EQ(messageOfRead(*block, 0, 1), pastEndOfRead);
    stream.data = all;
    EXPECT_EQ(contentsOf(*block), "abcde");
}

TEST(KEL_MemBlock, AFailureOfTheSourceComesThroughAndNothingIsLoaded) {
    PieceStream stream("abcdef");
    stream.failsAt = 2;
    const Block block = lazy(&stream, 4);
    EXPECT_EQ(thrownMessage<JIOException>([&] { contentsOf(*block); }), "PieceStream failed.");
    EXPECT_EQ(block->loadedBytes(), nullptr);
}

TEST(KEL_MemBlock, LoadingWithoutMemoryThrows) {
    JPointer<StringReader> source(new StringReader("abcdef", 6));
    const Block block = lazy(source.get(), 4);
    char byte = 0;
    {
        const FailingAllocation failing(0);
        EXPECT_EQ(thrownMessage<KELOutOfMemoryException>([&] { block->read(0, &byte, 1); }),
                  "Out of memory!");
    }
    EXPECT_EQ(contentsOf(*block), "abcd");
}

TEST(KEL_MemBlock, CopyingAndComparingLoad) {
    JPointer<StringReader> source(new StringReader("abcdabcd", 8));
    const Block first = lazy(source.get(), 4);
    const Block second = lazy(source.get(), 4);
    const Held<KEL> copy(first->copy());
    EXPECT_TRUE(copy->equalsValue(second.get()));
    EXPECT_EQ(source->JTell(), 8);
}

TEST(KEL_MemBlock, EqualsABlockOfTheSameBytes) {
    const Block block = sixteen();
    EXPECT_TRUE(block->equalsValue(sixteen().get()));
    EXPECT_FALSE(block->equalsValue(make<KEL_MemBlock_Impl>(15, digits.data()).get()));
    EXPECT_FALSE(block->equalsValue(make<KEL_MemBlock_Impl>(16, nullptr).get()));
    const Block none = make<KEL_MemBlock_Impl>(0, nullptr);
    EXPECT_TRUE(none->equalsValue(make<KEL_MemBlock_Impl>(0, nullptr).get()));
}

TEST(KEL_MemBlock, TakesOverABlockOfItsOwnSize) {
    const Block block = make<KEL_MemBlock_Impl>(16, nullptr);
    kel::test::Watcher watcher;
    block->addObserver(&watcher);
    block->assign(sixteen().get());
    EXPECT_EQ(contentsOf(*block), digits);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST(KEL_MemBlock, RefusesABlockOfAnotherSize) {
    const Block block = sixteen();
    const Block other = make<KEL_MemBlock_Impl>(15, nullptr);
    EXPECT_EQ(thrownMessage<KELMemBlockException>([&] { block->assign(other.get()); }),
              pastEndOfWrite);
    EXPECT_EQ(contentsOf(*block), digits);
}

TEST(KEL_MemBlock, ConvertingTakesABlockOfItsSizeAndNothingElse) {
    const Block block = sixteen();
    block->assignConverted(make<KEL_MemBlock_Impl>(15, nullptr).get(), true);
    EXPECT_EQ(contentsOf(*block), digits);
    block->assignConverted(make<KEL_MemBlock_Impl>(16, nullptr).get(), true);
    EXPECT_EQ(contentsOf(*block), std::string(16, '\0'));
}

TEST(KEL_MemBlock, TakesOverItself) {
    const Block block = sixteen();
    block->assign(block.get());
    EXPECT_EQ(contentsOf(*block), digits);
}

} // namespace
