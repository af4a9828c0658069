// Tests file streams over media that only POSIX systems offer: a full disk, directories, pipes,
// descriptors.
#include "streams/BufferedInput.h"
#include "streams/FileInputStream.h"
#include "streams/FileOutputStream.h"
#include "support/Bytes.h"
#include "support/Pipe.h"
#include "support/TemporaryFile.h"
#include "support/Thrown.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using kel::test::thrownMessage;

namespace {

constexpr const char* flushError = "FileOutputStream::JFlush() error.";
constexpr const char* closeError = "FileOutputStream::JClose() error.";
const std::string large(100000, 'x');

TEST(FullDisk, ShowsAtAWriteBeyondTheBuffer) {
    FileOutputStream output("/dev/full", false);
    const auto write = [&] { output.JWrite(unsignedBytes(large), 0, 100000); };
    EXPECT_EQ(thrownMessage<JIOException>(write),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }), closeError);
}

TEST(FullDisk, ShowsAtAByteWithoutBuffer) {
    std::FILE* handle = std::fopen("/dev/full", "wb");
    std::setvbuf(handle, nullptr, _IONBF, 0);
    FileOutputStream output(handle);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "FileOutputStream::JWrite(int). Stream returned error:32");
    std::fclose(handle);
}

TEST(FullDisk, ShowsWhenTheBufferIsFlushed) {
    FileOutputStream output("/dev/full", false);
    output.JWrite('a');
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JFlush(); }), flushError);
}

TEST(FullDisk, ShowsWhenTheFileIsClosed) {
    FileOutputStream output("/dev/full", false);
    output.JWrite('a');
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }), closeError);
    EXPECT_NO_THROW(output.JClose());
    EXPECT_EQ(output.JTell(), -1) << "closed, although closing failed";
}

TEST(FullDisk, ShowsWhenAHostsHandleIsClosed) {
    std::FILE* handle = std::fopen("/dev/full", "wb");
    FileOutputStream output(handle);
    output.JWrite('a');
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }), closeError);
    std::fclose(handle);
}

TEST(FullDisk, DestructionIsSilent) {
    EXPECT_NO_THROW(FileOutputStream("/dev/full", false).JWrite('a'));
}

TEST(FileOutputStream, AFileThatLostBytesIsNeverClosedAsComplete) {
    // The write fails, and the disk has room again when the file is closed.
    const TemporaryFile file;
    const int full = open("/dev/full", O_WRONLY);
    const int next = dup(full);
    close(next);
    FileOutputStream output(file.name(), false);
    const int room = dup(next);
    dup2(full, next);
    EXPECT_NE(thrownMessage<JIOException>([&] { output.JWrite(unsignedBytes(large), 0, 100000); }),
              "(nothing thrown)");
    dup2(room, next);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JClose(); }), closeError);
    close(full);
    close(room);
}

TEST(FileInputStream, ADirectoryOpensButCannotBeRead) {
    FileInputStream input("/");
    uint8_t buffer[4];
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }),
              "FileInputStream::JRead(). Stream returned error:32");
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 0, 4); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
}

TEST(FileInputStream, ADescriptorThatIsGoneFailsToClose) {
    const TemporaryFile file("abc");
    const int next = dup(0);
    close(next);
    FileInputStream input(file.name());
    close(next);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JClose(); }),
              "FileInputStream::JClose() error.");
    EXPECT_NO_THROW(input.JClose());
    EXPECT_EQ(input.JRead(), -1);
}

TEST(FileInputStream, ReadsAPipeButCannotSeekIt) {
    Pipe pipe;
    pipe.send("abc");
    pipe.closeWriting();
    FileInputStream input(pipe.reading());
    EXPECT_EQ(input.JTell(), -1);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(0); }),
              "FileInputStream::JSeek(long). Stream returned error:32");
    uint8_t buffer[8];
    EXPECT_EQ(input.JRead(buffer, 0, 8), 3);
    EXPECT_EQ(input.JRead(), -1);
}

TEST(FileInputStream, WhatCameBeforeAFailureIsReadFirstAndNothingIsSkipped) {
    const Pipe pipe;
    fcntl(fileno(pipe.reading()), F_SETFL, O_NONBLOCK); // nothing to read yet is an error
    pipe.send("abc");
    FileInputStream input(pipe.reading());
    uint8_t buffer[8] = {};
    EXPECT_EQ(input.JRead(buffer, 0, 8), 3);
    pipe.send("def");
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(buffer, 0, 8); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
    EXPECT_EQ(input.JRead(), 'd');
    EXPECT_EQ(input.JRead(buffer, 3, 5), 2);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(); }),
              "FileInputStream::JRead(). Stream returned error:32");
    pipe.send("g");
    EXPECT_EQ(input.JRead(), 'g');
    EXPECT_EQ(std::string(buffer, buffer + 5), "abcef");
}

TEST(FileOutputStream, WritesAPipeButCannotSeekIt) {
    const Pipe pipe;
    FileOutputStream output(pipe.writing());
    EXPECT_EQ(output.JTell(), -1);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(0); }),
              "FileOutputStream::JSeek(long). Stream returned error:32");
    output.JWrite('a');
    output.JClose();
    EXPECT_EQ(std::fgetc(pipe.reading()), 'a');
}

TEST(BufferedInput, TakesFromAPipeOnlyWhatIsAskedFor) {
    const Pipe pipe;
    pipe.send("abcdef");
    kel::BufferedInput input(JPointer<JInputStream>(new FileInputStream(pipe.reading())));
    EXPECT_EQ(input.next(), 'a');
    EXPECT_TRUE(input.ensure(2)); // would never return if it requested more
    EXPECT_EQ(input.position(), 1);
    EXPECT_EQ(std::fgetc(pipe.reading()), 'd');
}

} // namespace
