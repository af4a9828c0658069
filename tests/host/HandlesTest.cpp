// Streams over a host's own files, pipes and devices, and media that fail.
#include "StreamSupport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

// ---- The handle remains the host's -------------------------------------------------------------

TEST(Handles, AreFlushedButNotClosedByATextStream) {
    const File file;
    const auto handle = file.open("wb");
    std::fputs("// mine\n", handle.get());
    DeleteKELOutputStream([&] {
        KELOutputStream* stream = CreateKELTextOutputStream(handle.get());
        stream->write(hold(CreateKELInt(5)).get());
        return stream;
    }());
    EXPECT_EQ(file.bytes(), "// mine\n5\n");
    std::fputs("// mine too\n", handle.get());
    std::fflush(handle.get());
    EXPECT_EQ(file.bytes(), "// mine\n5\n// mine too\n");
}

TEST(Handles, AreFlushedButNotClosedByABinaryStream) {
    const File file;
    const auto handle = file.open("wb");
    hold(CreateKELBinaryOutputStream(handle.get()))->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(file.bytes().size(), 38U);
    EXPECT_EQ(std::fputc('x', handle.get()), 'x');
}

TEST(Handles, AreLeftBehindTheLastByteThatTextReadingUsed) {
    const File file("// mine\n[ 1 2 ] rest");
    const auto handle = file.open("rb");
    std::fseek(handle.get(), 8, SEEK_SET);
    hold(hold(CreateKELTextInputStream(handle.get()))->read());
    EXPECT_EQ(rest(handle.get()), " rest");
}

TEST(Handles, AreLeftBehindTheLastRecordThatBinaryReadingUsed) {
    const File file;
    {
        const auto stream = hold(CreateKELBinaryOutputStream(file.name()));
        stream->write(hold(CreateKELInt(5)).get());
        stream->write(hold(CreateKELInt(6)).get());
        stream->JWrite('x');
    }
    const auto handle = file.open("rb");
    EXPECT_EQ(hold(hold(CreateKELBinaryInputStream(handle.get()))->read())->toInt(), 5);
    EXPECT_EQ(std::ftell(handle.get()), 38);
    EXPECT_EQ(hold(hold(CreateKELBinaryInputStream(handle.get()))->read())->toInt(), 6);
    EXPECT_EQ(rest(handle.get()), "x");
}

TEST(Handles, AreLeftThereByClosingToo) {
    const File file("1 2");
    const auto handle = file.open("rb");
    const auto stream = hold(CreateKELTextInputStream(handle.get()));
    hold(stream->read());
    stream->JClose();
    EXPECT_EQ(rest(handle.get()), " 2");
}

TEST(Handles, AtTheEndOfTheFileStayThere) {
    const File file("1");
    const auto handle = file.open("rb");
    hold(hold(CreateKELTextInputStream(handle.get()))->read());
    EXPECT_EQ(rest(handle.get()), "");
}

TEST(Handles, InAppendModeTakeText) {
    const File file("1\n");
    const auto handle = file.open("ab");
    hold(CreateKELTextOutputStream(handle.get()))->write(hold(CreateKELInt(2)).get());
    EXPECT_EQ(file.bytes(), "1\n2\n");
}

TEST(Handles, InAppendModeTakeBinary) {
    const File file;
    for (int i = 0; i < 2; ++i) {
        const auto handle = file.open("ab");
        hold(CreateKELBinaryOutputStream(handle.get()))->write(numbers(3).get());
    }
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    EXPECT_TRUE(hold(input->read())->equalsValue(numbers(3).get()));
    EXPECT_TRUE(hold(input->read())->equalsValue(numbers(3).get()));
}

// ---- Pipes -------------------------------------------------------------------------------------

TEST(Pipes, CarryBinary) {
    Pipe pipe;
    hold(CreateKELBinaryOutputStream(pipe.writing.get()))->write(numbers(100).get());
    const auto input = hold(CreateKELBinaryInputStream(pipe.reading.get()));
    EXPECT_TRUE(hold(input->read())->equalsValue(numbers(100).get()));
}

TEST(Pipes, CarryText) {
    Pipe pipe;
    hold(CreateKELTextOutputStream(pipe.writing.get()))->write(numbers(100).get());
    const auto input = hold(CreateKELTextInputStream(pipe.reading.get()));
    EXPECT_TRUE(hold(input->read())->equalsValue(numbers(100).get()));
}

TEST(Pipes, AreNotReadFurtherThanTheValue) {
    Pipe pipe;
    std::fputs("[ 1 ]rest", pipe.writing.get());
    std::fflush(pipe.writing.get());
    hold(hold(CreateKELTextInputStream(pipe.reading.get()))->read());
    EXPECT_EQ(std::fgetc(pipe.reading.get()), 'r');
}

TEST(Pipes, GiveAValueAsSoonAsItIsThere) {
    Pipe pipe;
    const auto output = hold(CreateKELBinaryOutputStream(pipe.writing.get()));
    const auto input = hold(CreateKELBinaryInputStream(pipe.reading.get()));
    const auto value = hold(CreateKELInt(5));
    for (int i = 0; i < 3; ++i) {
        output->write(value.get());
        output->JFlush();
        EXPECT_EQ(hold(input->read())->toInt(), 5); // would never return if it read ahead
    }
}

TEST(Pipes, HaveAnEnd) {
    Pipe pipe;
    std::fputs("[ 1", pipe.writing.get());
    pipe.writing.reset();
    const auto input = hold(CreateKELTextInputStream(pipe.reading.get()));
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { input->read(); }),
              "Error reading KEL - unexpected end of input at line: 1");
}

// ---- Failing media -----------------------------------------------------------------------------

TEST(FailingMedia, AHandleThatCannotBeWrittenReportsIt) {
    const File file("1");
    const auto handle = file.open("rb");
    const auto stream = hold(CreateKELTextOutputStream(handle.get()));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->write(hold(CreateKELInt(5)).get()); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->JWrite('x'); }),
              "FileOutputStream::JWrite(int). Stream returned error:32");
}

TEST(FailingMedia, AHandleThatCannotBeReadReportsIt) {
    const File file;
    const auto handle = file.open("wb");
    const auto stream = hold(CreateKELTextInputStream(handle.get()));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->read(); }),
              "FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
}

} // namespace
