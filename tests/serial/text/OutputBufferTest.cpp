// The buffer between the text writer and its sink.
#include "serial/text/OutputBuffer.h"

#include "support/FailingSink.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>

using kel::OutputBuffer;
using kel::test::thrownMessage;

namespace {

TEST(OutputBuffer, HandsOverWhenItIsFlushed) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    buffer.append("ab");
    buffer.append('c');
    buffer.append(3, 'd');
    EXPECT_EQ(sink.bytes, "");
    buffer.flush();
    EXPECT_EQ(sink.bytes, "abcddd");
    EXPECT_EQ(sink.writes, 1);
}

TEST(OutputBuffer, WritesNothingWhenItIsEmpty) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    buffer.append("");
    buffer.append(std::string_view(""));
    buffer.append(0, 'x');
    buffer.flush();
    EXPECT_EQ(sink.writes, 0);
}

TEST(OutputBuffer, PiecesOfAnySizeArriveInOrder) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    std::string expected;
    for (const std::size_t size : {1U, 1000U, 32767U, 32768U, 32769U, 100000U, 3U}) {
        const std::string text(size, static_cast<char>('a' + size % 26));
        buffer.append(text);
        buffer.append(size, '-');
        buffer.append('|');
        expected += text + std::string(size, '-') + "|";
    }
    buffer.flush();
    EXPECT_EQ(sink.bytes, expected);
}

TEST(OutputBuffer, IndentsByTabs) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    std::string expected;
    for (std::size_t tabs = 0; tabs < 300; ++tabs) {
        buffer.indent(tabs);
        buffer.append('.');
        expected += std::string(tabs, '\t') + '.';
    }
    buffer.flush();
    EXPECT_EQ(sink.bytes, expected);
}

TEST(OutputBuffer, CallsTheSinkOnlyWhenItIsFlushed) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    const std::string line(OutputBuffer::fullSize - 1, 'x');
    buffer.append(line);
    EXPECT_FALSE(buffer.isFull());
    buffer.append('y');
    EXPECT_TRUE(buffer.isFull());
    buffer.append(line);
    buffer.append(100 * line.size(), 'z');
    EXPECT_EQ(sink.writes, 0);
    buffer.flush();
    EXPECT_FALSE(buffer.isFull());
    EXPECT_EQ(sink.bytes, line + 'y' + line + std::string(100 * line.size(), 'z'));
}

TEST(OutputBuffer, ForgetsWhatIsDropped) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    buffer.append("lost");
    buffer.drop();
    buffer.append("kept");
    buffer.flush();
    EXPECT_EQ(sink.bytes, "kept");
}

TEST(OutputBuffer, ReservedRoomCountsOnlyAsFarAsItIsCommitted) {
    FailingSink sink;
    OutputBuffer buffer(sink);
    for (int i = 0; i < 100; ++i) {
        char* room = buffer.reserve(OutputBuffer::reserveLimit);
        room[0] = 'x';
        room[1] = 'y';
        buffer.commit(1);
    }
    buffer.flush();
    EXPECT_EQ(sink.bytes, std::string(100, 'x'));
}

TEST(OutputBuffer, WhatCouldNotBeWrittenIsDropped) {
    FailingSink sink;
    sink.allowed = 0;
    OutputBuffer buffer(sink);
    buffer.append("lost");
    EXPECT_EQ(thrownMessage<JIOException>([&] { buffer.flush(); }), "FailingSink failed.");
    buffer.append("kept");
    buffer.flush();
    EXPECT_EQ(sink.bytes, "kept");
}

} // namespace
