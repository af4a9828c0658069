#include "streams/FileOutputStream.h"

#include "support/Bytes.h"
#include "support/FailingBuffer.h"
#include "support/TemporaryFile.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

using kel::test::thrownMessage;

namespace {

// Provides each medium, empty at first: a file by name, a host's FILE, a standard stream.
class FileOutputStreamMedia : public ::testing::TestWithParam<const char*> {
protected:
    FileOutputStreamMedia() {
        const std::string kind = GetParam();
        if (kind == "Name") {
            output = std::make_unique<FileOutputStream>(file_.name(), false);
        } else if (kind == "Handle") {
            handle_ = std::fopen(file_.name(), "wb");
            output = std::make_unique<FileOutputStream>(handle_);
        } else {
            output = std::make_unique<FileOutputStream>(stream_);
        }
    }
    ~FileOutputStreamMedia() override {
        output.reset();
        if (handle_ != nullptr) {
            std::fclose(handle_);
        }
    }

    void write(const std::string& text) {
        output->JWrite(unsignedBytes(text), 0, static_cast<int32_t>(text.size()));
    }

    // Returns the bytes that have reached the medium so far.
    std::string arrived() {
        return std::string("Stream") == GetParam() ? stream_.str() : file_.bytes();
    }

    std::unique_ptr<FileOutputStream> output;

private:
    TemporaryFile file_;
    std::FILE* handle_ = nullptr;
    std::ostringstream stream_;
};

INSTANTIATE_TEST_SUITE_P(All, FileOutputStreamMedia, ::testing::Values("Name", "Handle", "Stream"),
                         [](const auto& medium) { return std::string(medium.param); });

TEST_P(FileOutputStreamMedia, WritesBytesAndBlocks) {
    output->JWrite('a');
    output->JWrite(0x1FF);
    output->JWrite(unsignedBytes("xbcx"), 1, 2);
    output->JFlush();
    EXPECT_EQ(arrived(), "a\xFF"
                         "bc");
}

TEST_P(FileOutputStreamMedia, ABlockOfNothingWritesNothing) {
    output->JWrite(unsignedBytes("x"), 0, 0);
    output->JWrite(unsignedBytes("x"), 0, -1);
    output->JFlush();
    EXPECT_EQ(arrived(), "");
}

TEST_P(FileOutputStreamMedia, RefusesANullBuffer) {
    EXPECT_EQ(thrownMessage<JIOException>([&] { output->JWrite(nullptr, 0, 1); }),
              "FileOutputStream::JWrite(uchar*,int,int). Buffer=NULL");
}

TEST_P(FileOutputStreamMedia, ClosingDeliversEverything) {
    write("abc");
    output->JClose();
    EXPECT_EQ(arrived(), "abc");
}

TEST_P(FileOutputStreamMedia, DestructionDeliversEverything) {
    write("abc");
    output.reset();
    EXPECT_EQ(arrived(), "abc");
}

TEST_P(FileOutputStreamMedia, TellsAndSeeks) {
    write("abcdef");
    EXPECT_EQ(output->JTell(), 6);
    output->JSeek(2);
    write("XY");
    EXPECT_EQ(output->JTell(), 4);
    output->JFlush();
    EXPECT_EQ(arrived(), "abXYef");
}

TEST_P(FileOutputStreamMedia, RefusesANegativePositionAndStays) {
    write("ab");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output->JSeek(-1); }),
              "FileOutputStream::JSeek(). Cannot seek to negative position.");
    EXPECT_EQ(output->JTell(), 2);
}

TEST_P(FileOutputStreamMedia, ClosedRefusesToWriteAndToMove) {
    output->JClose();
    EXPECT_EQ(thrownMessage<JIOException>([&] { output->JWrite('a'); }),
              "FileOutputStream::JWrite(int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { write("a"); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output->JSeek(0); }),
              "FileOutputStream::JSeek(long). Stream returned error:32");
    EXPECT_EQ(output->JTell(), -1);
}

TEST_P(FileOutputStreamMedia, ClosedHasNothingToFlushOrClose) {
    output->JClose();
    EXPECT_NO_THROW(output->JFlush());
    EXPECT_NO_THROW(output->JClose());
}

TEST(FileOutputStream, ReplacesOrAppends) {
    const TemporaryFile file("old");
    FileOutputStream(file.name(), true).JWrite('+');
    EXPECT_EQ(file.bytes(), "old+");
    FileOutputStream(file.name(), false).JWrite('n');
    EXPECT_EQ(file.bytes(), "n");
}

TEST(FileOutputStream, RefusesAFileThatCannotBeMade) {
    const std::string expected = "FileOutputStream. Cannot open file.";
    EXPECT_EQ(
        thrownMessage<JIOException>([] { FileOutputStream output("/no/such/place/x", false); }),
        expected);
    EXPECT_EQ(thrownMessage<JIOException>([] { FileOutputStream output(nullptr, true); }),
              expected);
    EXPECT_EQ(
        thrownMessage<JIOException>([] { FileOutputStream output(static_cast<FILE*>(nullptr)); }),
        expected);
}

TEST(FileOutputStream, AHostsHandleStaysOpen) {
    const TemporaryFile file;
    std::FILE* handle = std::fopen(file.name(), "wb");
    {
        FileOutputStream output(handle);
        output.JWrite('a');
        output.JClose();
    }
    EXPECT_EQ(std::fputc('b', handle), 'b');
    std::fclose(handle);
    EXPECT_EQ(file.bytes(), "ab");
}

TEST(FileOutputStream, AHandleThatCannotWriteIsAnError) {
    const TemporaryFile file("abc");
    std::FILE* handle = std::fopen(file.name(), "rb");
    FileOutputStream output(handle);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "FileOutputStream::JWrite(int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite(unsignedBytes("ab"), 0, 2); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    std::fclose(handle);
}

void expectFlags(std::ostream& stream, const std::string& flag) {
    FileOutputStream output(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "FileOutputStream::JWrite(int). Stream returned " + flag + " flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite(unsignedBytes("ab"), 0, 2); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned " + flag + " flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(0); }),
              "FileOutputStream::JSeek(). Stream returned " + flag + " flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JFlush(); }),
              "FileOutputStream::JFlush() error.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }),
              "FileOutputStream::JClose() error.");
    EXPECT_NO_THROW(output.JClose()) << "closed, although closing failed";
}

TEST(FileOutputStream, ABrokenStandardStreamIsBad) {
    FailingBuffer broken;
    std::ostream stream(&broken);
    expectFlags(stream, "bad()");
}

TEST(FileOutputStream, AFailedStandardStreamIsFailed) {
    std::ostringstream stream;
    stream.setstate(std::ios::failbit);
    expectFlags(stream, "fail()");
}

TEST(FileOutputStream, AStandardStreamThatThrowsGivesTheSameMessages) {
    FailingBuffer broken;
    std::ostream stream(&broken);
    stream.exceptions(std::ios::badbit | std::ios::failbit);
    expectFlags(stream, "bad()");
}

TEST(FileOutputStream, ABrokenStandardStreamShowsWhenFlushed) {
    FailingBuffer broken;
    std::ostream stream(&broken);
    FileOutputStream output(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JFlush(); }),
              "FileOutputStream::JFlush() error.");
}

TEST(FileOutputStream, WhateverAStreamBufferThrowsIsBad) {
    for (const std::ios::iostate mask : {std::ios::goodbit, std::ios::badbit | std::ios::failbit}) {
        const auto messageOf = [&](void (*use)(FileOutputStream&)) {
            ThrowingBuffer buffer;
            std::ostream stream(&buffer);
            stream.exceptions(mask);
            FileOutputStream output(stream);
            return thrownMessage<JIOException>([&] { use(output); });
        };
        EXPECT_EQ(messageOf([](FileOutputStream& output) { output.JWrite('a'); }),
                  "FileOutputStream::JWrite(int). Stream returned bad() flag.");
        EXPECT_EQ(
            messageOf([](FileOutputStream& output) { output.JWrite(unsignedBytes("ab"), 0, 2); }),
            "FileOutputStream::JWrite(uchar*,int,int). Stream returned bad() flag.");
        EXPECT_EQ(messageOf([](FileOutputStream& output) { output.JFlush(); }),
                  "FileOutputStream::JFlush() error.");
        EXPECT_EQ(messageOf([](FileOutputStream& output) { output.JClose(); }),
                  "FileOutputStream::JClose() error.");
        EXPECT_EQ(messageOf([](FileOutputStream& output) { output.JTell(); }),
                  "FileOutputStream::JSeek(). Stream returned bad() flag.");
        EXPECT_EQ(messageOf([](FileOutputStream& output) { output.JSeek(0); }),
                  "FileOutputStream::JSeek(). Stream returned bad() flag.");
    }
}

TEST(FileOutputStream, AStandardStreamWithoutABufferIsBad) {
    std::ostream stream(nullptr);
    expectFlags(stream, "bad()");
    EXPECT_EQ(FileOutputStream(stream).JTell(), -1);
}

TEST(FileOutputStream, AStandardStreamThatWasReadToItsEndTakesNothing) {
    std::stringstream stream("a");
    stream.setstate(std::ios::eofbit);
    FileOutputStream output(stream);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "FileOutputStream::JWrite(int). Stream returned fail() flag.");
}

} // namespace
