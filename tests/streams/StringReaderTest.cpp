#include "streams/StringReader.h"

#include "support/Bytes.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

TEST(StringReader, ReadsTheGivenLength) {
    StringReader input("abcdef", 3);
    EXPECT_EQ(input.JRead(), 'a');
    uint8_t buffer[8];
    EXPECT_EQ(input.JRead(buffer, 0, 8), 2);
    EXPECT_EQ(input.JRead(), -1);
    EXPECT_EQ(input.JRead(buffer, 0, 8), 0);
}

TEST(StringReader, ReadsNulsAndHighBytes) {
    StringReader input("\0\xFF", 2);
    EXPECT_EQ(input.JRead(), 0);
    EXPECT_EQ(input.JRead(), 0xFF);
    EXPECT_EQ(input.JRead(), -1);
}

TEST(StringReader, KeepsACopyOfTheText) {
    std::string text = "abc";
    StringReader input(text.data(), 3);
    text = "xyz";
    EXPECT_EQ(input.JRead(), 'a');
}

TEST(StringReader, NullOrANegativeLengthIsEmpty) {
    EXPECT_EQ(StringReader(nullptr, 5).JRead(), -1);
    EXPECT_EQ(StringReader("abc", -1).JRead(), -1);
}

TEST(StringReader, TellsAndSeeks) {
    StringReader input("abcdef", 6);
    input.JSeek(4);
    EXPECT_EQ(input.JTell(), 4);
    EXPECT_EQ(input.JRead(), 'e');
    input.JSeek(0);
    EXPECT_EQ(input.JRead(), 'a');
}

TEST(StringReader, SeeksBackFromTheEnd) {
    StringReader input("ab", 2);
    uint8_t buffer[8];
    input.JRead(buffer, 0, 8);
    EXPECT_EQ(input.JRead(), -1);
    input.JSeek(1);
    EXPECT_EQ(input.JRead(), 'b');
}

TEST(StringReader, SeeksToTheEndButNotBehindIt) {
    StringReader input("ab", 2);
    input.JSeek(2);
    EXPECT_EQ(input.JRead(), -1);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(3); }),
              "StringReader::JSeek(). Stream returned fail() flag.");
    EXPECT_EQ(input.JTell(), 2);
}

TEST(StringReader, AnEmptyTextCanBeSoughtToItsStart) {
    StringReader input("", 0);
    EXPECT_NO_THROW(input.JSeek(0));
    EXPECT_EQ(input.JTell(), 0);
}

TEST(StringReader, RefusesANegativePosition) {
    StringReader input("ab", 2);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JSeek(-1); }),
              "StringReader::JSeek(). Cannot seek to negative position.");
}

TEST(StringReader, RefusesANullBuffer) {
    StringReader input("ab", 2);
    EXPECT_EQ(thrownMessage<JIOException>([&] { input.JRead(nullptr, 0, 1); }),
              "JInputStream.read : buff=NULL");
}

TEST(StringReader, ClosedReadsAsEnded) {
    StringReader input("ab", 2);
    input.JClose();
    uint8_t buffer[2];
    EXPECT_EQ(input.JRead(), -1);
    EXPECT_EQ(input.JRead(buffer, 0, 2), 0);
}

TEST(StringReader, ABlockOfNothingReadsNothing) {
    StringReader input("abc", 3);
    uint8_t buffer[1];
    EXPECT_EQ(input.JRead(buffer, 0, 0), 0);
    EXPECT_EQ(input.JRead(buffer, 0, -1), 0);
    EXPECT_EQ(input.JRead(), 'a');
}

} // namespace
