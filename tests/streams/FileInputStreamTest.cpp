#include "streams/FileInputStream.h"

#include "support/Bytes.h"
#include "support/FailingBuffer.h"
#include "support/TemporaryFile.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

using kel::test::thrownMessage;

namespace {

constexpr const char* badRead = "FileInputStream::JRead(). Stream returned bad() flag.";
constexpr const char* failedRead = "FileInputStream::JRead(). Stream returned fail() flag.";

std::string readAll(JInputStream& input) {
    std::string out;
    for (int32_t byte = input.JRead(); byte != -1; byte = input.JRead()) {
        out += static_cast<char>(byte);
    }
    return out;
}

std::string readBlock(JInputStream& input, int32_t count) {
    std::string out(static_cast<size_t>(count), '?');
    const int32_t got = input.JRead(reinterpret_cast<uint8_t*>(out.data()), 0, count);
    out.resize(static_cast<size_t>(got));
    return out;
}

// Provides each medium over the bytes "0123456789": a file by name, a host's FILE, a standard
// stream.
class FileInputStreamMedia : public ::testing::TestWithParam<const char*> {
protected:
    FileInputStreamMedia() {
        const std::string kind = GetParam();
        if (kind == "Name") {
            input = std::make_unique<FileInputStream>(file_.name());
        } else if (kind == "Handle") {
            handle_ = std::fopen(file_.name(), "rb");
            input = std::make_unique<FileInputStream>(handle_);
        } else {
            input = std::make_unique<FileInputStream>(stream_);
        }
    }
    ~FileInputStreamMedia() override {
        if (handle_ != nullptr) {
            std::fclose(handle_);
        }
    }

    std::unique_ptr<FileInputStream> input;

private:
    TemporaryFile file_{"0123456789"};
    std::FILE* handle_ = nullptr;
    std::istringstream stream_{"0123456789"};
};

INSTANTIATE_TEST_SUITE_P(All, FileInputStreamMedia, ::testing::Values("Name", "Handle", "Stream"),
                         [](const auto& medium) { return std::string(medium.param); });

TEST_P(FileInputStreamMedia, ReadsBytesAndThenMinusOne) {
    EXPECT_EQ(readAll(*input), "0123456789");
    EXPECT_EQ(input->JRead(), -1);
    EXPECT_EQ(input->JRead(), -1);
}

TEST_P(FileInputStreamMedia, ReadsBlocksUpToTheEnd) {
    EXPECT_EQ(readBlock(*input, 4), "0123");
    EXPECT_EQ(readBlock(*input, 40), "456789");
    EXPECT_EQ(readBlock(*input, 4), "");
}

TEST_P(FileInputStreamMedia, ReadsABlockToAnOffset) {
    uint8_t buffer[4] = {'a', 'b', 'c', 'd'};
    EXPECT_EQ(input->JRead(buffer, 1, 2), 2);
    EXPECT_EQ(std::string(buffer, buffer + 4), "a01d");
}

TEST_P(FileInputStreamMedia, ABlockOfNothingReadsNothing) {
    uint8_t buffer[1];
    EXPECT_EQ(input->JRead(buffer, 0, 0), 0);
    EXPECT_EQ(input->JRead(buffer, 0, -1), 0);
    EXPECT_EQ(input->JTell(), 0);
}

TEST_P(FileInputStreamMedia, RefusesANullBuffer) {
    EXPECT_EQ(thrownMessage<JIOException>([&] { input->JRead(nullptr, 0, 1); }),
              "FileInputStream::JRead(uchar*,int,int). Buffer=NULL");
}

TEST_P(FileInputStreamMedia, TellsAndSeeks) {
    EXPECT_EQ(input->JTell(), 0);
    input->JSeek(7);
    EXPECT_EQ(input->JTell(), 7);
    EXPECT_EQ(readAll(*input), "789");
}

TEST_P(FileInputStreamMedia, SeeksBackFromTheEnd) {
    readAll(*input);
    input->JSeek(8);
    EXPECT_EQ(readBlock(*input, 10), "89");
    input->JSeek(0);
    EXPECT_EQ(input->JRead(), '0');
}

TEST_P(FileInputStreamMedia, TellsThePositionAtTheEnd) {
    readAll(*input);
    EXPECT_EQ(input->JTell(), 10);
}

TEST_P(FileInputStreamMedia, RefusesANegativePositionAndStays) {
    input->JSeek(3);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input->JSeek(-1); }),
              "FileInputStream::JSeek(). Cannot seek to negative position.");
    EXPECT_EQ(input->JRead(), '3');
}

TEST_P(FileInputStreamMedia, ClosedReadsAsEnded) {
    input->JClose();
    EXPECT_EQ(input->JRead(), -1);
    EXPECT_EQ(readBlock(*input, 3), "");
    EXPECT_EQ(input->JTell(), -1);
}

TEST_P(FileInputStreamMedia, ClosingTwiceDoesNothing) {
    input->JClose();
    EXPECT_NO_THROW(input->JClose());
}

TEST_P(FileInputStreamMedia, BytesAreUnsigned) {
    const TemporaryFile file(bytes("\xFF\x80\0"));
    FileInputStream high(file.name());
    EXPECT_EQ(high.JRead(), 0xFF);
    EXPECT_EQ(high.JRead(), 0x80);
    EXPECT_EQ(high.JRead(), 0);
    EXPECT_EQ(high.JRead(), -1);
}

TEST(FileInputStream, RefusesAFileThatIsNotThere) {
    const std::string expected = "FileInputStream. Cannot open file.";
    EXPECT_EQ(thrownMessage<JIOException>([] { FileInputStream input("/no/such/file"); }),
              expected);
    EXPECT_EQ(
        thrownMessage<JIOException>([] { FileInputStream input(static_cast<char*>(nullptr)); }),
        expected);
    EXPECT_EQ(
        thrownMessage<JIOException>([] { FileInputStream input(static_cast<FILE*>(nullptr)); }),
        expected);
}

TEST(FileInputStream, ReadsAHandleFromWhereItStands) {
    const TemporaryFile file("0123456789");
    std::FILE* handle = std::fopen(file.name(), "rb");
    std::fseek(handle, 6, SEEK_SET);
    {
        FileInputStream input(handle);
        EXPECT_EQ(input.JTell(), 6);
        EXPECT_EQ(input.JRead(), '6');
        input.JClose();
    }
    EXPECT_EQ(std::fgetc(handle), '7') << "the handle is still open";
    std::fclose(handle);
}

TEST(FileInputStream, AHandleThatCannotReadIsAnError) {
    const TemporaryFile file;
    std::FILE* handle = std::fopen(file.name(), "wb");
    FileInputStream input(handle);
    uint8_t buffer[4];
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }),
              "FileInputStream::JRead(). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 0, 4); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
    std::fclose(handle);
}

TEST(FileInputStream, AClosedStreamCannotSeek) {
    const TemporaryFile file("abc");
    FileInputStream input(file.name());
    input.JClose();
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(long). Stream returned error:32");
}

TEST(FileInputStream, ABrokenStandardStreamIsBad) {
    FailingBuffer broken;
    std::istream stream(&broken);
    FileInputStream input(stream);
    uint8_t buffer[4];
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }), badRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 0, 4); }), badRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(). Stream returned bad() flag.");
}

TEST(FileInputStream, ABrokenStandardStreamAtItsEndRemainsBad) {
    std::istringstream stream("abc");
    stream.setstate(std::ios::badbit | std::ios::eofbit);
    FileInputStream input(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(). Stream returned bad() flag.");
}

TEST(FileInputStream, AFailedStandardStreamIsFailed) {
    std::istringstream stream("abc");
    stream.setstate(std::ios::failbit);
    FileInputStream input(stream);
    uint8_t buffer[4];
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }), failedRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 0, 4); }), failedRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(). Stream returned fail() flag.");
}

TEST(FileInputStream, SeekingBehindAStandardStreamFails) {
    std::istringstream stream("abc");
    FileInputStream input(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(4); }),
              "FileInputStream::JSeek(). Stream returned fail() flag.");
}

TEST(FileInputStream, AStandardStreamThatThrowsGivesTheSameMessages) {
    FailingBuffer broken;
    std::istream stream(&broken);
    FileInputStream input(stream);
    try {
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        stream.setstate(std::ios::badbit);
    } catch (const std::ios::failure&) {
        // the flag is set now
    }
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }), badRead);
}

TEST(FileInputStream, AStandardStreamThatThrowsAtItsEndStillEnds) {
    std::istringstream stream("a");
    stream.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
    FileInputStream input(stream);
    EXPECT_EQ(readAll(input), "a");
    input.JSeek(0);
    EXPECT_EQ(readBlock(input, 5), "a");
}

/// The exception masks that a host can set on its stream: none, or all failures.
const std::ios::iostate exceptionMasks[] = {std::ios::goodbit,
                                            std::ios::badbit | std::ios::failbit};

TEST(FileInputStream, WhateverAStreamBufferThrowsIsBad) {
    constexpr const char* badSeek = "FileInputStream::JSeek(). Stream returned bad() flag.";
    for (const std::ios::iostate mask : exceptionMasks) {
        const auto messageOf = [&](void (*use)(FileInputStream&)) {
            ThrowingBuffer buffer;
            std::istream stream(&buffer);
            stream.exceptions(mask);
            FileInputStream input(stream);
            return thrownMessage<JIOException>([&] { use(input); });
        };
        EXPECT_EQ(messageOf([](FileInputStream& input) { input.JRead(); }), badRead);
        EXPECT_EQ(messageOf([](FileInputStream& input) { readBlock(input, 4); }), badRead);
        EXPECT_EQ(messageOf([](FileInputStream& input) { input.JTell(); }), badSeek);
        EXPECT_EQ(messageOf([](FileInputStream& input) { input.JSeek(0); }), badSeek);
    }
}

TEST(FileInputStream, WhatCameBeforeAStreamBufferThrewIsReadFirst) {
    for (const std::ios::iostate mask : exceptionMasks) {
        ThrowingBuffer buffer("abc");
        std::istream stream(&buffer);
        stream.exceptions(mask);
        FileInputStream input(stream);
        EXPECT_EQ(input.JRead(), 'a');
        EXPECT_EQ(readBlock(input, 4), "bc");
        EXPECT_EQ(thrownMessage<JIOException>([&] { readBlock(input, 4); }), badRead);
        EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }), badRead) << "it stays bad";
    }
}

TEST(FileInputStream, AStandardStreamWithoutABufferIsBad) {
    std::istream stream(nullptr);
    FileInputStream input(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }), badRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { readBlock(input, 4); }), badRead);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(). Stream returned bad() flag.");
    EXPECT_EQ(input.JTell(), -1);
}

} // namespace
