// Uses streams over media that only POSIX systems offer: a full disk, folders that can be opened,
// pipes without a reader.
#include "StreamSupport.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace host;

namespace {

TEST(Pipes, ThatNobodyReadsReportIt) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    pipe.reading.reset();
    KELOutputStream* stream = CreateKELTextOutputStream(pipe.writing.get());
    stream->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(stream); }),
              "FileOutputStream::JClose() error.");
    std::signal(SIGPIPE, before);
}

TEST(FullDisk, ShowsAtTheLatestWhenTheStreamIsDeleted) {
    KELOutputStream* text = CreateKELTextOutputStream("/dev/full", false);
    text->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(text); }),
              "FileOutputStream::JClose() error.");
    KELOutputStream* binary = CreateKELBinaryOutputStream("/dev/full");
    binary->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(binary); }),
              "FileOutputStream::JClose() error.");
}

TEST(FullDisk, ShowsWhenAHostsHandleIsFlushedAtTheEnd) {
    const auto handle = Handle(std::fopen("/dev/full", "wb"));
    KELOutputStream* stream = CreateKELTextOutputStream(handle.get());
    stream->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(stream); }),
              "FileOutputStream::JClose() error.");
}

TEST(FullDisk, ShowsAtAFlush) {
    KELOutputStream* stream = CreateKELTextOutputStream("/dev/full", false);
    stream->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->JFlush(); }),
              "FileOutputStream::JFlush() error.");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(stream); }),
              "FileOutputStream::JClose() error.");
}

TEST(FullDisk, ShowsAtAClose) {
    const auto stream = hold(CreateKELBinaryOutputStream("/dev/full"));
    stream->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->JClose(); }),
              "FileOutputStream::JClose() error.");
}

TEST(FullDisk, ShowsInTheWriteOfALargeValue) {
    const auto large = numbers(100000);
    KELOutputStream* stream = CreateKELBinaryOutputStream("/dev/full");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->write(large.get()); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { DeleteKELOutputStream(stream); }),
              "FileOutputStream::JClose() error.");
}

TEST(FailingMedia, AFolderCannotBeRead) {
    const auto text = hold(CreateKELTextInputStream("/"));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { text->read(); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
    const auto binary = hold(CreateKELBinaryInputStream("/"));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { binary->read(); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
}

} // namespace
