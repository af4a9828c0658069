/// \file
/// Numbers of every width: which call of the stream underneath carries them, and in which order.
#include "streams/BinaryDataInput.h"
#include "streams/BinaryDataOutput.h"
#include "support/PieceStream.h"

#include <bit>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// Keeps each write as a string of its own.
class Writes : public JOutputStream {
public:
    void JWrite(int32_t byte) override { pieces.emplace_back(1, static_cast<char>(byte)); }
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override {
        pieces.emplace_back(buffer + offset, buffer + offset + count);
    }
    void JFlush() override {}
    void JClose() override {}
    int64_t JTell() override { return 0; }
    void JSeek(int64_t) override {}

    std::vector<std::string> pieces;
};

const std::string ascending = "ABCDEFGHIJKLMNOP";
const std::string descending = "PONMLKJIHGFEDCBA";

/// Writes one number of each width. The most significant byte of each is 'P', and the others follow
/// downwards.
std::vector<std::string> writesOfEveryWidth(int32_t order) {
    const JPointer<Writes> sink(new Writes);
    BinaryDataOutput output(JPointer<JOutputStream>::share(sink.get()), order);
    output.JWrite16(0x504F);
    output.JWrite32(0x504F4E4D);
    output.JWrite64(JLong64::of(0x504F4E4D4C4B4A49));
    output.JWriteDouble(std::bit_cast<double>(0x504F4E4D4C4B4A49));
    output.JWrite128(JHashCode(0x44434241, 0x48474645, 0x4C4B4A49, 0x504F4E4D));
    return sink->pieces;
}

TEST(BinaryDataOutput, EveryLittleEndianNumberTakesOneWrite) {
    EXPECT_EQ(writesOfEveryWidth(1),
              (std::vector<std::string>{"OP", "MNOP", "IJKLMNOP", "IJKLMNOP", "ABCDEFGHIJKLMNOP"}));
}

TEST(BinaryDataOutput, EveryFlagButOneWritesTheMostSignificantByteFirstAndByteByByte) {
    std::vector<std::string> bytes;
    for (const std::size_t width : {2U, 4U, 8U, 8U, 16U}) {
        for (const char byte : descending.substr(0, width)) {
            bytes.emplace_back(1, byte);
        }
    }
    for (const int32_t order : {0, 2, 7, -1, INT32_MIN}) {
        EXPECT_EQ(writesOfEveryWidth(order), bytes) << order;
    }
}

void expectNumbersOfEveryWidth(const std::string& bytes, int32_t order) {
    const auto input = [&](std::size_t from, std::size_t width) {
        const JPointer<JInputStream> medium(new PieceStream(bytes.substr(from, width)));
        return BinaryDataInput(medium, order);
    };
    // The most significant byte is 'P' again.
    const std::size_t last = bytes.front() == 'A' ? 16 : 0;
    const auto from = [&](std::size_t width) { return last == 0 ? 0 : last - width; };
    EXPECT_EQ(input(from(2), 2).JRead16(), 0x504F) << order;
    EXPECT_EQ(input(from(4), 4).JRead32(), 0x504F4E4D) << order;
    EXPECT_EQ(input(from(8), 8).JRead64(), JLong64::of(0x504F4E4D4C4B4A49)) << order;
    EXPECT_EQ(input(from(8), 8).JReadDouble(), std::bit_cast<double>(0x504F4E4D4C4B4A49)) << order;
    EXPECT_EQ(input(0, 16).JRead128(), JHashCode(0x44434241, 0x48474645, 0x4C4B4A49, 0x504F4E4D))
        << order;
}

TEST(BinaryDataInput, EveryFlagButOneReadsTheMostSignificantByteFirst) {
    expectNumbersOfEveryWidth(ascending, 1);
    for (const int32_t order : {0, 2, 7, -1, INT32_MIN}) {
        expectNumbersOfEveryWidth(descending, order);
    }
}

TEST(BinaryDataInput, EveryNumberTakesOneRead) {
    const JPointer<PieceStream> stream(new PieceStream(std::string(64, 'x')));
    const JPointer<JInputStream> medium(JPointer<JInputStream>::share(stream.get()));
    BinaryDataInput input(medium, 1);
    int reads = 0;
    for (const int32_t order : {1, 0}) {
        input.setByteOrder(order);
        input.JRead16();
        EXPECT_EQ(stream->reads, ++reads);
        input.JRead32();
        EXPECT_EQ(stream->reads, ++reads);
        input.JRead64();
        EXPECT_EQ(stream->reads, ++reads);
        input.JRead128();
        EXPECT_EQ(stream->reads, ++reads);
    }
}

TEST(BinaryDataInput, ANumberCanArriveByteByByte) {
    const JPointer<PieceStream> stream(new PieceStream("MNOP"));
    stream->largestPiece = 1;
    const JPointer<JInputStream> medium(JPointer<JInputStream>::share(stream.get()));
    EXPECT_EQ(BinaryDataInput(medium, 1).JRead32(), 0x504F4E4D);
}

} // namespace
