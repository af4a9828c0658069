#include "streams/StringWriter.h"

#include "platform/Memory.h"
#include "support/Bytes.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

class OpenWriter : public StringWriter {
public:
    using StringWriter::text;

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

TEST(StringWriter, ABadStreamIsBad) {
    OpenWriter output;
    output.text().setstate(std::ios::badbit);
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "StringWriter::JWrite(int). Stream returned bad() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.write("ab"); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(0); }),
              "StringWriter::JSeek(). Stream returned bad() flag.");
    EXPECT_EQ(output.getStringSize(), 1U) << "nothing was counted";
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

TEST(StringWriter, AStreamThatThrowsGivesTheSameMessages) {
    OpenWriter output;
    static_cast<std::ios&>(output.text()).rdbuf(nullptr);
    try {
        output.text().exceptions(std::ios::badbit);
    } catch (const std::ios::failure&) {
        // The stream is bad already.
    }
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JWrite('a'); }),
              "StringWriter::JWrite(int). Stream returned bad() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.write("ab"); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { output.JSeek(0); }),
              "StringWriter::JSeek(). Stream returned bad() flag.");
    EXPECT_EQ(output.JTell(), -1);
}

TEST(StringWriter, StaysReadableWhenClosed) {
    OpenWriter output;
    output.write("abc");
    output.JFlush();
    output.JClose();
    EXPECT_STREQ(output.getString(), "abc");
}

bool refuseLarge(std::size_t size) {
    return size < 1000;
}

TEST(StringWriter, ATextWithoutMemoryIsReportedAndTriedAgain) {
    OpenWriter output;
    output.write(std::string(2000, 'x'));
    const auto before = kel::platform::exchangeAllocationGate(refuseLarge);
    const std::string message = thrownMessage<JOutOfMemoryException>([&] { output.getString(); });
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(message, "StringWriter out of memory.");
    EXPECT_EQ(output.getString(), std::string(2000, 'x'));
}

} // namespace
