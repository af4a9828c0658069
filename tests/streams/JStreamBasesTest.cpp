#include "streams/JInputStream.h"
#include "streams/JOutputStream.h"
#include "support/Bytes.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

// Implements only the single-byte operations, so that the bulk ones are those of the base.
class Counting : public JInputStream {
public:
    using JInputStream::JRead;
    int32_t JRead() override {
        if (next_ == failsAt) {
            throw JIOException("failed");
        }
        return next_ < 5 ? next_++ : -1;
    }
    void JClose() override {}
    int64_t JTell() override { return next_; }
    void JSeek(int64_t) override {}

    int32_t failsAt = INT32_MAX;

private:
    int32_t next_ = 0;
};

class Collecting : public JOutputStream {
public:
    using JOutputStream::JWrite;
    void JWrite(int32_t byte) override { text += static_cast<char>(byte); }
    void JFlush() override {}
    void JClose() override {}
    int64_t JTell() override { return -1; }
    void JSeek(int64_t) override {}

    std::string text;
};

TEST(JInputStream, BulkReadGoesByteByByteUpToTheEnd) {
    Counting input;
    uint8_t buffer[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(input.JRead(buffer, 1, 3), 3);
    EXPECT_EQ(hex({reinterpret_cast<char*>(buffer), 8}), "09 00 01 02 09 09 09 09");
    EXPECT_EQ(input.JRead(buffer, 0, 8), 2);
    EXPECT_EQ(input.JRead(buffer, 0, 8), 0);
}

TEST(JInputStream, BulkReadHandsOutWhatCameBeforeAFailure) {
    Counting input;
    input.failsAt = 3;
    uint8_t buffer[8] = {};
    EXPECT_EQ(input.JRead(buffer, 0, 8), 3);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 3, 5); }), "failed");
    input.failsAt = INT32_MAX;
    EXPECT_EQ(input.JRead(buffer, 3, 5), 2);
    EXPECT_EQ(hex({reinterpret_cast<char*>(buffer), 5}), "00 01 02 03 04");
}

TEST(JInputStream, BulkReadOfNothingReadsNothing) {
    Counting input;
    uint8_t buffer[1];
    EXPECT_EQ(input.JRead(buffer, 0, 0), 0);
    EXPECT_EQ(input.JRead(buffer, 0, -1), 0);
    EXPECT_EQ(input.JTell(), 0);
}

TEST(JInputStream, BulkReadRefusesANullBuffer) {
    Counting input;
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(nullptr, 0, 1); }),
              "JInputStream.read : buff=NULL");
}

TEST(JOutputStream, BulkWriteGoesByteByByte) {
    Collecting output;
    output.JWrite(unsignedBytes("abcdef"), 2, 3);
    output.JWrite(unsignedBytes("abcdef"), 0, -1);
    EXPECT_EQ(output.text, "cde");
}

TEST(JOutputStream, BulkWriteRefusesANullBuffer) {
    Collecting output;
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite(nullptr, 0, 1); }),
              "JOutputStream.JWrite : buff=NULL");
}

} // namespace
