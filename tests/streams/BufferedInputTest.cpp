#include "streams/BufferedInputStream.h"

#include "platform/Memory.h"
#include "support/PieceStream.h"
#include "support/Thrown.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

using kel::BufferedInput;
using kel::test::thrownMessage;

namespace {

// A buffered input over a PieceStream whose behaviour the test sets.
class Buffered {
public:
    explicit Buffered(const std::string& data, bool seekable = true)
        : stream(new PieceStream(data)), holder_(stream) {
        stream->seekable = seekable;
    }

    PieceStream* stream;

private:
    JPointer<JInputStream> holder_;

public:
    BufferedInput make() { return BufferedInput(holder_); }
};

std::string numbers(size_t count) {
    std::string out;
    for (size_t i = 0; out.size() < count; ++i) {
        out += std::to_string(i) + ' ';
    }
    out.resize(count);
    return out;
}

std::string window(const BufferedInput& input) {
    return {input.begin(), input.end()};
}

std::string takeAll(BufferedInput& input) {
    std::string out;
    for (int32_t c = input.next(); c != -1; c = input.next()) {
        out += static_cast<char>(c);
    }
    return out;
}

TEST(BufferedInput, PeeksWithoutUsingAndTakesInOrder) {
    Buffered source("ab");
    BufferedInput input = source.make();
    EXPECT_EQ(input.peek(), 'a');
    EXPECT_EQ(input.next(), 'a');
    EXPECT_EQ(input.next(), 'b');
    EXPECT_EQ(input.peek(), -1);
    EXPECT_EQ(input.next(), -1);
}

TEST(BufferedInput, TheEndStaysUntilSought) {
    Buffered source("a");
    BufferedInput input = source.make();
    input.next();
    EXPECT_EQ(input.next(), -1);
    EXPECT_TRUE(input.endWasMet());
    source.stream->data += "b";
    EXPECT_EQ(input.next(), -1);
    input.seek(1);
    EXPECT_FALSE(input.endWasMet());
    EXPECT_EQ(input.next(), 'b');
}

TEST(BufferedInput, ReadsAheadInChunks) {
    Buffered source(numbers(1000000));
    BufferedInput input = source.make();
    EXPECT_EQ(takeAll(input), source.stream->data);
    EXPECT_LE(source.stream->reads, 40);
}

TEST(BufferedInput, WithoutPositionsNothingIsReadAhead) {
    Buffered source(numbers(100), false);
    BufferedInput input = source.make();
    input.next();
    input.peek();
    EXPECT_EQ(source.stream->place, 2);
    input.ensure(10);
    EXPECT_EQ(source.stream->place, 11);
    EXPECT_EQ(input.position(), 1);
}

TEST(BufferedInput, EnsuresBytesInTheWindow) {
    Buffered source(numbers(500000));
    source.stream->largestPiece = 1000;
    BufferedInput input = source.make();
    ASSERT_TRUE(input.ensure(200000));
    EXPECT_EQ(window(input).substr(0, 200000), source.stream->data.substr(0, 200000));
}

TEST(BufferedInput, EnsureTellsThatTheInputEndsBefore) {
    Buffered source("abc");
    BufferedInput input = source.make();
    EXPECT_TRUE(input.ensure(3));
    EXPECT_FALSE(input.ensure(4));
    EXPECT_EQ(window(input), "abc");
    EXPECT_EQ(input.next(), 'a');
}

std::size_t largestAllocation = 0;
bool noteLargest(std::size_t size) {
    largestAllocation = std::max(largestAllocation, size);
    return true;
}

// Returns the greatest single allocation while action runs.
template <class Action> std::size_t largestDuring(Action action) {
    largestAllocation = 0;
    const auto before = kel::platform::exchangeAllocationGate(noteLargest);
    action();
    kel::platform::exchangeAllocationGate(before);
    return largestAllocation;
}

TEST(BufferedInput, AFalseCountCostsNoMemory) {
    Buffered source("abc");
    BufferedInput input = source.make();
    EXPECT_LE(largestDuring([&] { input.ensure(SIZE_MAX / 2); }), 4096U);
}

TEST(BufferedInput, TheWindowStaysSmallWithoutAMark) {
    Buffered source(numbers(3000000));
    EXPECT_LE(largestDuring([&] {
                  BufferedInput input = source.make();
                  takeAll(input);
              }),
              100000U);
}

TEST(BufferedInput, TheWindowGrowsByDoublingForALongMark) {
    Buffered source(numbers(3000000));
    BufferedInput input = source.make();
    input.mark();
    EXPECT_LE(largestDuring([&] { takeAll(input); }), 6500000U);
    EXPECT_EQ(std::string(input.marked(), input.begin()), source.stream->data);
}

TEST(BufferedInput, GoesBackToTheMarkAcrossChunks) {
    Buffered source(numbers(300000));
    BufferedInput input = source.make();
    input.ensure(10);
    input.skip(10);
    input.mark();
    takeAll(input);
    EXPECT_EQ(input.markPosition(), 10);
    input.resetToMark();
    EXPECT_EQ(input.position(), 10);
    EXPECT_EQ(takeAll(input), source.stream->data.substr(10));
    EXPECT_EQ(source.stream->seeks, 0);
}

TEST(BufferedInput, AClearedMarkHoldsNothing) {
    Buffered source(numbers(3000000));
    BufferedInput input = source.make();
    input.mark();
    input.clearMark();
    EXPECT_EQ(input.marked(), nullptr);
    EXPECT_LE(largestDuring([&] { takeAll(input); }), 100000U);
}

TEST(BufferedInput, GoesBackToTheMarkOnAPipe) {
    Buffered source(numbers(200000), false);
    BufferedInput input = source.make();
    input.next();
    input.mark();
    const std::string rest = takeAll(input);
    input.resetToMark();
    EXPECT_EQ(takeAll(input), rest);
}

TEST(BufferedInput, PositionsAreTheStreams) {
    Buffered source(numbers(100));
    source.stream->place = 30;
    BufferedInput input = source.make();
    EXPECT_EQ(input.position(), 30);
    EXPECT_EQ(input.next(), source.stream->data[30]);
    EXPECT_EQ(input.position(), 31);
    input.seek(99);
    takeAll(input);
    EXPECT_EQ(input.position(), 100);
}

TEST(BufferedInput, PositionsGoBeyond32Bits) {
    Buffered source("");
    source.stream->place = 5000000000;
    BufferedInput input = source.make();
    EXPECT_EQ(input.position(), 5000000000);
}

TEST(BufferedInput, SeeksInsideTheWindowForFree) {
    Buffered source(numbers(1000));
    BufferedInput input = source.make();
    input.ensure(500);
    input.seek(500);
    EXPECT_EQ(input.next(), source.stream->data[500]);
    input.seek(0);
    EXPECT_EQ(input.next(), source.stream->data[0]);
    EXPECT_EQ(source.stream->seeks, 0);
}

TEST(BufferedInput, SeeksOutsideTheWindowWithTheStream) {
    Buffered source(numbers(300000));
    BufferedInput input = source.make();
    input.seek(200000);
    EXPECT_EQ(input.next(), source.stream->data[200000]);
    input.seek(3);
    EXPECT_EQ(input.next(), source.stream->data[3]);
    EXPECT_EQ(source.stream->seeks, 2);
}

TEST(BufferedInput, TheLastKilobyteNeedsNoSeek) {
    Buffered source(numbers(200000), false);
    BufferedInput input = source.make();
    takeAll(input);
    input.seek(200000 - 1000);
    EXPECT_EQ(takeAll(input), source.stream->data.substr(199000));
}

TEST(BufferedInput, ASeekThatTheStreamRefusesChangesNothing) {
    Buffered source(numbers(100));
    BufferedInput input = source.make();
    input.next();
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.seek(-1); }), "PieceStream cannot seek.");
    EXPECT_EQ(input.position(), 1);
    EXPECT_EQ(input.next(), source.stream->data[1]);
}

TEST(BufferedInput, SyncGivesBackWhatWasReadAhead) {
    Buffered source(numbers(1000));
    BufferedInput input = source.make();
    input.next();
    input.sync();
    EXPECT_EQ(source.stream->place, 1);
    EXPECT_EQ(input.position(), 1);
    EXPECT_EQ(input.available(), 0U);
    EXPECT_EQ(input.next(), source.stream->data[1]);
}

TEST(BufferedInput, SyncLeavesAStreamAloneThatCannotSeek) {
    Buffered source(numbers(1000));
    BufferedInput input = source.make();
    input.next();
    source.stream->refusesSeek = true;
    EXPECT_NO_THROW(input.sync());
    EXPECT_EQ(takeAll(input), source.stream->data.substr(1));
}

TEST(BufferedInput, SyncLeavesAPipeAlone) {
    Buffered source("abc", false);
    BufferedInput input = source.make();
    input.ensure(2);
    input.sync();
    EXPECT_EQ(source.stream->seeks, 0);
    EXPECT_EQ(takeAll(input), "abc");
}

TEST(BufferedInput, CopiesBytesOut) {
    Buffered source(numbers(200000));
    BufferedInput input = source.make();
    input.next();
    std::string out(200000, '?');
    EXPECT_EQ(input.read(reinterpret_cast<uint8_t*>(out.data()), 150000), 150000U);
    EXPECT_EQ(out.substr(0, 150000), source.stream->data.substr(1, 150000));
    EXPECT_EQ(input.position(), 150001);
    EXPECT_EQ(input.read(reinterpret_cast<uint8_t*>(out.data()), 150000), 49999U);
}

TEST(BufferedInput, ANulStandsBehindTheWindow) {
    Buffered source(numbers(200000));
    source.stream->largestPiece = 777;
    BufferedInput input = source.make();
    EXPECT_EQ(*input.end(), 0);
    while (input.more()) {
        ASSERT_EQ(*input.end(), 0);
        input.skip(input.available() / 2);
    }
    EXPECT_EQ(*input.end(), 0);
}

TEST(BufferedInput, AFailureOfTheStreamLosesNothing) {
    Buffered source(numbers(1000));
    source.stream->largestPiece = 100;
    source.stream->failsAt = 250;
    BufferedInput input = source.make();
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.ensure(300); }), "PieceStream failed.");
    EXPECT_EQ(window(input), source.stream->data.substr(0, 200));
    EXPECT_EQ(*input.end(), 0);
    source.stream->failsAt = INT64_MAX;
    EXPECT_EQ(takeAll(input), source.stream->data);
}

TEST(BufferedInput, WhatCameBeforeAFailureIsCopiedOutFirst) {
    for (const bool seekable : {true, false}) {
        Buffered source(numbers(1000), seekable);
        source.stream->largestPiece = 100;
        source.stream->failsAt = 250;
        BufferedInput input = source.make();
        std::string out(1000, '?');
        auto* bytes = reinterpret_cast<uint8_t*>(out.data());
        EXPECT_EQ(input.read(bytes, 300), 200U);
        source.stream->failsAt = INT64_MAX;
        EXPECT_EQ(thrownMessage<JIOException>([&] { input.read(bytes + 200, 300); }),
                  "PieceStream failed.");
        EXPECT_EQ(input.read(bytes + 200, 800), 800U);
        EXPECT_EQ(out, source.stream->data);
    }
}

TEST(BufferedInput, SeekingAwayForgetsAFailureThatWasNotThrown) {
    Buffered source(numbers(3000));
    source.stream->largestPiece = 100;
    source.stream->failsAt = 150;
    BufferedInput input = source.make();
    uint8_t bytes[200];
    EXPECT_EQ(input.read(bytes, 200), 100U);
    source.stream->failsAt = INT64_MAX;
    input.seek(2000);
    EXPECT_EQ(input.next(), source.stream->data[2000]);
}

bool refuseFrom100000(std::size_t size) {
    return size < 100000;
}

TEST(BufferedInput, WithoutMemoryTheWindowStays) {
    Buffered source(numbers(1000000));
    BufferedInput input = source.make();
    const auto before = kel::platform::exchangeAllocationGate(refuseFrom100000);
    const std::string message = thrownMessage<JOutOfMemoryException>([&] { input.ensure(500000); });
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(message, "BufferedInput out of memory.");
    EXPECT_EQ(takeAll(input), source.stream->data);
}

TEST(BufferedInputStream, ReadsTheBytesOfTheWindow) {
    const JPointer<PieceStream> medium(new PieceStream("abcdef"));
    kel::BufferedInputStream stream(JPointer<JInputStream>::share(medium.get()));
    uint8_t bytes[2] = {};
    EXPECT_EQ(stream.input().next(), 'a');
    EXPECT_EQ(stream.JRead(), 'b');
    EXPECT_EQ(stream.JRead(bytes, 0, 2), 2);
    EXPECT_EQ(bytes[1], 'd');
    EXPECT_EQ(stream.JRead(bytes, 0, 0), 0);
    EXPECT_EQ(stream.JTell(), 4);
    stream.JSeek(1);
    EXPECT_EQ(stream.input().next(), 'b');
    EXPECT_EQ(thrownMessage<JIOException>([&] { stream.JRead(nullptr, 0, 2); }),
              "JInputStream.read : buff=NULL");
    stream.JClose();
    EXPECT_LT(medium->data.size(), 7U);
}

} // namespace
