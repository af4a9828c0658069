#include "streams/BinaryDataInput.h"
#include "streams/BinaryDataOutput.h"
#include "streams/StringReader.h"
#include "streams/StringWriter.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"
#include "support/Thrown.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

using kel::test::thrownMessage;

namespace {

constexpr int32_t little = 1;
constexpr int32_t big = 0;

// A data output whose bytes can be inspected.
class Writing {
public:
    explicit Writing(int32_t order)
        : writer_(new StringWriter), out(JPointer<JOutputStream>(writer_), order) {}

    std::string bytes() const {
        const char* text = writer_->getString();
        return text == nullptr ? "" : std::string(text, writer_->getStringSize() - 1);
    }

private:
    StringWriter* writer_; // owned by out

public:
    BinaryDataOutput out;
};

template <class Write> std::string written(int32_t order, Write write) {
    Writing writing(order);
    write(writing.out);
    return writing.bytes();
}

BinaryDataInput reading(const std::string& bytes, int32_t order = little) {
    auto* reader = new StringReader(bytes.data(), static_cast<int64_t>(bytes.size()));
    return {JPointer<JInputStream>(reader), order};
}

std::string readString(BinaryDataInput& input) {
    const JPointer<JString> text(input.JReadString());
    EXPECT_EQ(text->getRefCount(), 1);
    return text->chars();
}

TEST(BinaryData, LittleEndianBytes) {
    const auto bytesOf = [](auto write) { return hex(written(little, write)); };
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite8(-2); }), "FE");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite16(0x0102); }), "02 01");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite32(0x01020304); }), "04 03 02 01");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite64(JLong64(0x01020304, 5)); }),
              "04 03 02 01 05 00 00 00");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite128(JHashCode(1, 2, 3, 4)); }),
              "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWriteDouble(1.5); }), "00 00 00 00 00 00 F8 3F");
}

TEST(BinaryData, BigEndianBytes) {
    const auto bytesOf = [](auto write) { return hex(written(big, write)); };
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite8(-2); }), "FE");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite16(0x0102); }), "01 02");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite32(0x01020304); }), "01 02 03 04");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite64(JLong64(0x01020304, 5)); }),
              "00 00 00 05 01 02 03 04");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWrite128(JHashCode(1, 2, 3, 4)); }),
              "00 00 00 04 00 00 00 03 00 00 00 02 00 00 00 01");
    EXPECT_EQ(bytesOf([](auto& o) { o.JWriteDouble(1.5); }), "3F F8 00 00 00 00 00 00");
}

TEST(BinaryData, AnyFlagButOneIsBigEndian) {
    EXPECT_EQ(hex(written(7, [](auto& o) { o.JWrite16(0x0102); })), "01 02");
    EXPECT_EQ(hex(written(-1, [](auto& o) { o.JWrite16(0x0102); })), "01 02");
}

TEST(BinaryData, TheOrderCanBeChanged) {
    Writing writing(little);
    EXPECT_EQ(writing.out.getByteOrder(), 1);
    writing.out.setByteOrder(0);
    EXPECT_EQ(writing.out.getByteOrder(), 0);
    writing.out.JWrite16(0x0102);
    BinaryDataInput input = reading(writing.bytes(), little);
    input.setByteOrder(0);
    EXPECT_EQ(input.getByteOrder(), 0);
    EXPECT_EQ(input.JRead16(), 0x0102);
}

class BinaryDataOrders : public ::testing::TestWithParam<int32_t> {};
INSTANTIATE_TEST_SUITE_P(Both, BinaryDataOrders, ::testing::Values(little, big));

TEST_P(BinaryDataOrders, IntegersComeBackAroundEveryPowerOfTwo) {
    for (int bit = 0; bit < 64; ++bit) {
        for (const uint64_t v : {1ULL << bit, (1ULL << bit) - 1, 0 - (1ULL << bit)}) {
            const auto half = static_cast<uint32_t>(v >> 32);
            BinaryDataInput input = reading(written(GetParam(),
                                                    [&](auto& o) {
                                                        o.JWrite8(static_cast<int8_t>(v));
                                                        o.JWrite16(static_cast<int16_t>(v));
                                                        o.JWrite32(static_cast<int32_t>(v));
                                                        o.JWrite64(JLong64::of(v));
                                                        o.JWrite128(JHashCode(half, 1, 2, half));
                                                    }),
                                            GetParam());
            EXPECT_EQ(input.JRead8(), static_cast<int8_t>(v));
            EXPECT_EQ(input.JRead16(), static_cast<int16_t>(v));
            EXPECT_EQ(input.JRead32(), static_cast<int32_t>(v));
            EXPECT_EQ(input.JRead64(), JLong64::of(v));
            EXPECT_EQ(input.JRead128(), JHashCode(half, 1, 2, half));
        }
    }
}

TEST_P(BinaryDataOrders, DoublesComeBackBitByBit) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {0.0, -0.0, 0.1, -1e300, 5e-324, infinity, -infinity}) {
        BinaryDataInput input =
            reading(written(GetParam(), [&](auto& o) { o.JWriteDouble(value); }), GetParam());
        const double read = input.JReadDouble();
        EXPECT_EQ(read, value);
        EXPECT_EQ(std::signbit(read), std::signbit(value));
    }
    BinaryDataInput input =
        reading(written(GetParam(), [](auto& o) { o.JWriteDouble(std::nan("")); }), GetParam());
    EXPECT_TRUE(std::isnan(input.JReadDouble()));
}

template <class Read> void expectEndAtEveryLength(int length, Read read, const char* message) {
    for (int cut = 0; cut < length; ++cut) {
        BinaryDataInput input = reading(std::string(static_cast<size_t>(cut), 'x'));
        EXPECT_EQ(thrownMessage<JEOFException>([&] { read(input); }), message) << cut;
    }
    BinaryDataInput whole = reading(std::string(static_cast<size_t>(length), 'x'));
    EXPECT_NO_THROW(read(whole));
}

TEST(BinaryDataInput, AByteIsMissed) {
    expectEndAtEveryLength(
        1, [](auto& i) { i.JRead8(); }, "BinaryDataInput::JRead8(). EOF reached.");
}

TEST(BinaryDataInput, TwoBytesAreMissedAtEveryLength) {
    expectEndAtEveryLength(
        2, [](auto& i) { i.JRead16(); }, "BinaryDataInput::JRead16(). EOF reached.");
}

TEST(BinaryDataInput, FourBytesAreMissedAtEveryLength) {
    expectEndAtEveryLength(
        4, [](auto& i) { i.JRead32(); }, "BinaryDataInput::JRead32(). EOF reached.");
}

TEST(BinaryDataInput, EightBytesAreMissedAtEveryLength) {
    expectEndAtEveryLength(
        8, [](auto& i) { i.JRead64(); }, "BinaryDataInput::JRead64(). EOF reached.");
}

TEST(BinaryDataInput, ADoubleFailsLikeA64BitInteger) {
    expectEndAtEveryLength(
        8, [](auto& i) { i.JReadDouble(); }, "BinaryDataInput::JRead64(). EOF reached.");
}

TEST(BinaryDataInput, SixteenBytesAreMissedAtEveryLength) {
    expectEndAtEveryLength(
        16, [](auto& i) { i.JRead128(); }, "BinaryDataInput::JRead128(). EOF reached.");
}

TEST(BinaryDataInput, TheByteFFIsNoEnd) {
    BinaryDataInput input = reading("\xFF");
    EXPECT_EQ(input.JRead8(), -1);
}

TEST(BinaryData, AStringIsItsCharactersAndANul) {
    EXPECT_EQ(hex(written(little, [](auto& o) { o.JWriteString("ab"); })), "61 62 00");
}

TEST(BinaryData, TheEmptyStringIsOneNul) {
    EXPECT_EQ(hex(written(little, [](auto& o) { o.JWriteString(""); })), "00");
    BinaryDataInput input = reading(bytes("\0"));
    EXPECT_EQ(readString(input), "");
}

TEST(BinaryData, ANullStringWritesNothing) {
    EXPECT_EQ(written(little, [](auto& o) { o.JWriteString(nullptr); }), "");
}

TEST(BinaryDataInput, AStringEndsAtTheEndOfInput) {
    BinaryDataInput input = reading("ab");
    EXPECT_EQ(readString(input), "ab");
    EXPECT_EQ(thrownMessage<JEOFException>([&] { input.JReadString(); }),
              "BinaryDataInput::JReadString(). EOF reached.");
}

TEST(BinaryDataInput, StringsFollowOneAnother) {
    BinaryDataInput input = reading(bytes("one\0\0two\0"));
    EXPECT_EQ(readString(input), "one");
    EXPECT_EQ(readString(input), "");
    EXPECT_EQ(readString(input), "two");
}

TEST(BinaryDataInput, LongStringsComeBackWhole) {
    for (const size_t length : {511U, 512U, 513U, 1024U, 100000U}) {
        std::string text(length, 'a');
        text[length / 2] = 'b';
        BinaryDataInput input = reading(text + '\0' + "next");
        EXPECT_EQ(readString(input), text);
        EXPECT_EQ(input.JRead(), 'n');
    }
}

TEST(BinaryDataInput, IsTheStreamUnderneath) {
    BinaryDataInput input = reading("abcdef");
    uint8_t buffer[2];
    EXPECT_EQ(input.JRead(), 'a');
    EXPECT_EQ(input.JRead(buffer, 0, 2), 2);
    EXPECT_EQ(input.JTell(), 3);
    input.JSeek(5);
    EXPECT_EQ(input.JRead8(), 'f');
    input.JClose();
    EXPECT_EQ(input.JRead(), -1);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "StringReader::JSeek(). Stream returned fail() flag.");
}

TEST(BinaryDataInput, ANumberThatAFailureCutsShortThrowsTheFailure) {
    JPointer<PieceStream> stream(new PieceStream("abcdef"));
    stream->largestPiece = 2;
    stream->failsAt = 2;
    const JPointer<JInputStream> medium(JPointer<JInputStream>::share(stream.get()));
    BinaryDataInput input(medium, 1);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead32(); }), "PieceStream failed.");
    stream->failsAt = INT64_MAX;
    EXPECT_EQ(input.JRead32(), 0x66656463) << "all four bytes, in pieces";
}

/// Keeps the pieces that arrive; flushing, closing and seeking fail.
class PieceSink : public JOutputStream {
public:
    void JWrite(int32_t byte) override { pieces.emplace_back(1, static_cast<char>(byte)); }
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override {
        pieces.emplace_back(buffer + offset, buffer + offset + count);
    }
    void JFlush() override { throw JIOException("flush"); }
    void JClose() override { throw JIOException("close"); }
    int64_t JTell() override { return 42; }
    void JSeek(int64_t) override { throw JIOException("seek"); }

    std::vector<std::string> pieces;
};

TEST(BinaryDataOutput, LittleEndianAndStringsTakeOneWrite) {
    auto* sink = new PieceSink;
    BinaryDataOutput output(JPointer<JOutputStream>(sink), little);
    output.JWrite32(0x31323334);
    output.JWriteString("ab");
    EXPECT_EQ(sink->pieces, (std::vector<std::string>{"4321", bytes("ab\0")}));
}

TEST(BinaryDataOutput, BigEndianGoesByteByByte) {
    auto* sink = new PieceSink;
    BinaryDataOutput output(JPointer<JOutputStream>(sink), big);
    output.JWrite16(0x3132);
    EXPECT_EQ(sink->pieces, (std::vector<std::string>{"1", "2"}));
}

TEST(BinaryDataOutput, IsTheStreamUnderneath) {
    auto* sink = new PieceSink;
    BinaryDataOutput output(JPointer<JOutputStream>(sink), little);
    output.JWrite('a');
    output.JWrite(unsignedBytes("xbc"), 1, 2);
    EXPECT_EQ(sink->pieces, (std::vector<std::string>{"a", "bc"}));
    EXPECT_EQ(output.JTell(), 42);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JFlush(); }), "flush");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }), "close");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(1); }), "seek");
}

} // namespace
