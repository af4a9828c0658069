#include "streams/StringWriter.h"

#include "platform/Memory.h"
#include "support/AllocationFailure.h"
#include "support/Bytes.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

class OpenWriter : public StringWriter {
public:
    void write(const std::string& bytes) {
        JWrite(unsignedBytes(bytes), 0, static_cast<int32_t>(bytes.size()));
    }
};

TEST(StringWriter, ShowsNothingBeforeTheFirstWrite) {
    OpenWriter output;
    EXPECT_EQ(output.getString(), nullptr);
    EXPECT_EQ(output.getStringSize(), 1U);
}

TEST(StringWriter, ShowsWhatWasWritten) {
    OpenWriter output;
    output.JWrite('a');
    output.JWrite(0x100 + 'b');
    output.JWrite(unsignedBytes("xcdx"), 1, 2);
    EXPECT_STREQ(output.getString(), "abcd");
    EXPECT_EQ(output.getStringSize(), 5U);
}

TEST(StringWriter, ShowsFurtherWrites) {
    OpenWriter output;
    output.write("one");
    EXPECT_STREQ(output.getString(), "one");
    output.write(" two");
    EXPECT_STREQ(output.getString(), "one two");
}

TEST(StringWriter, TheTextStaysWhereItIsWithoutAWrite) {
    OpenWriter output;
    output.write("one");
    EXPECT_EQ(output.getString(), output.getString());
}

TEST(StringWriter, CountsNuls) {
    OpenWriter output;
    output.write(bytes("a\0b"));
    EXPECT_EQ(std::string(output.getString(), output.getStringSize()), bytes("a\0b\0"));
}

TEST(StringWriter, WritingNothingIsAWrite) {
    for (const int32_t count : {0, -1}) {
        OpenWriter output;
        output.JWrite(unsignedBytes("x"), 0, count);
        EXPECT_STREQ(output.getString(), "");
        EXPECT_EQ(output.getStringSize(), 1U);
    }
}

TEST(StringWriter, RefusesANullBuffer) {
    OpenWriter output;
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite(nullptr, 0, 1); }),
              "StringWriter::JWrite(uchar*,int,int). Buffer=NULL");
}

TEST(StringWriter, RewritingCountsAgainAndEndsInNuls) {
    OpenWriter output;
    output.write("abcd");
    output.JSeek(1);
    EXPECT_EQ(output.JTell(), 1);
    output.write("XY");
    EXPECT_EQ(output.getStringSize(), 7U);
    EXPECT_EQ(std::string(output.getString(), 7), bytes("aXYd\0\0\0"));
}

TEST(StringWriter, RefusesANegativePosition) {
    OpenWriter output;
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(-1); }),
              "StringWriter::JSeek(). Cannot seek to negative position.");
}

/// Returns the message of the JIOException that action throws when its first allocation fails.
template <class Action> std::string messageWithoutMemory(const Action& action) {
    const kel::test::FailingAllocation failing(0, false);
    return thrownMessage<JIOException>(action);
}

TEST(StringWriter, AWriteWithoutMemoryWritesNothing) {
    OpenWriter output;
    output.write("abc");
    const std::string more(1000, 'x');
    EXPECT_EQ(messageWithoutMemory([&] { output.write(more); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(0); }),
              "StringWriter::JSeek(). Stream returned bad() flag.");
    EXPECT_EQ(output.JTell(), -1);
    EXPECT_EQ(output.getStringSize(), 4U) << "nothing was counted";
    EXPECT_STREQ(output.getString(), "abc");
}

TEST(StringWriter, AfterAWriteWithoutMemoryTheNextOneTriesAgain) {
    for (const bool oneByte : {false, true}) {
        OpenWriter output;
        output.write("abc");
        output.getString(); // so that even one byte needs memory
        EXPECT_EQ(messageWithoutMemory([&] { output.JWrite('?'); }),
                  "StringWriter::JWrite(int). Stream returned bad() flag.");
        oneByte ? output.JWrite('d') : output.write("d");
        EXPECT_STREQ(output.getString(), "abcd");
        EXPECT_EQ(output.JTell(), 4);
        output.JSeek(0);
    }
}

TEST(StringWriter, ATextThatWasShownNeverChanges) {
    OpenWriter output;
    output.write("one");
    const char* shown = output.getString();
    output.write(" two");
    output.JSeek(0);
    output.write("O");
    EXPECT_STREQ(shown, "one");
    EXPECT_EQ(std::string(output.getString(), output.getStringSize()), bytes("One two\0\0"));
}

TEST(StringWriter, AShownTextThatCannotBeCopiedMakesAWriteFail) {
    OpenWriter output;
    output.write("one");
    const char* shown = output.getString();
    EXPECT_EQ(messageWithoutMemory([&] { output.JWrite('x'); }),
              "StringWriter::JWrite(int). Stream returned bad() flag.");
    EXPECT_STREQ(shown, "one");
    EXPECT_STREQ(output.getString(), "one");
}

TEST(StringWriter, GrowsToAnyLength) {
    OpenWriter output;
    std::string expected;
    for (std::size_t size = 1; size < 100000; size += size / 3 + 1) {
        const std::string piece(size, static_cast<char>('a' + size % 26));
        output.write(piece);
        output.JWrite('|');
        expected += piece + '|';
    }
    EXPECT_EQ(output.getString(), expected);
    EXPECT_EQ(output.getStringSize(), expected.size() + 1);
}

TEST(StringWriter, AFailedStreamIsFailed) {
    OpenWriter output;
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(5); }),
              "StringWriter::JSeek(). Stream returned fail() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "StringWriter::JWrite(int). Stream returned fail() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.write("ab"); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.");
}

TEST(StringWriter, StaysReadableWhenClosed) {
    OpenWriter output;
    output.write("abc");
    output.JFlush();
    output.JClose();
    EXPECT_STREQ(output.getString(), "abc");
}

bool refuseFrom1000(std::size_t size) {
    return size < 1000;
}

TEST(StringWriter, ATextWithoutMemoryIsReportedAndTriedAgain) {
    OpenWriter output;
    output.write(std::string(2000, 'x'));
    output.JSeek(0);
    output.write("y"); // written again, so getString needs memory for a copy with NULs
    const auto before = kel::platform::exchangeAllocationGate(refuseFrom1000);
    const std::string message = thrownMessage<JOutOfMemoryException>([&] { output.getString(); });
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(message, "StringWriter out of memory.");
    EXPECT_EQ(output.getString(), "y" + std::string(1999, 'x'));
}

TEST(StringWriter, ShowingATextTakesNoMemory) {
    OpenWriter output;
    output.write("abc");
    const kel::test::FailingAllocation failing(0, false);
    EXPECT_STREQ(output.getString(), "abc");
    EXPECT_FALSE(failing.hasFailed());
}

TEST(StringWriter, FailsBeforeMoreThan4GigabytesAreCounted) {
    OpenWriter output;
    const std::vector<uint8_t> megabyte(1 << 20);
    for (int i = 0; i < 4095; ++i) {
        output.JWrite(megabyte.data(), 0, 1 << 20);
        output.JSeek(0);
    }
    const uint32_t size = output.getStringSize();
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite(megabyte.data(), 0, 1 << 20); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.");
    EXPECT_EQ(output.getStringSize(), size);
}

} // namespace
