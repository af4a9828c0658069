// Reads and writes single numbers and words on text streams, next to whole values.
#include "support/AllocationFailure.h"
#include "support/Bytes.h"
#include "support/CommaLocale.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

// ---- Writing -----------------------------------------------------------------------------------

TEST(TypedTextOutput, NumbersHaveNoSeparatorAndNoLineEnd) {
    TextOutput output;
    output->JWrite8(-128);
    output->JWrite16(-32768);
    output->JWrite32(INT32_MIN);
    output->JWrite32(5);
    EXPECT_EQ(output.bytes(), "-128-32768-21474836485");
}

TEST(TypedTextOutput, SixtyFourBitsAreTwoDecimalWordsHighWordFirst) {
    TextOutput output;
    output->JWrite64(JLong64(2, 1));
    output->JWrite64(uint64_t{0xFFFFFFFF00000000});
    EXPECT_EQ(output.bytes(), "0000000100000002"
                              "429496729500000000");
}

TEST(TypedTextOutput, A128BitValueIsFourDecimalWordsMostSignificantFirst) {
    TextOutput output;
    output->JWrite128(JHashCode(1, 22, 123456789, 0xFFFFFFFF));
    EXPECT_EQ(output.bytes(), "4294967295"
                              "123456789"
                              "00000022"
                              "00000001");
}

TEST(TypedTextOutput, ADoubleHasSixDecimalsInEveryLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    TextOutput output;
    output->JWriteDouble(-1234.5);
    output->JWrite32(1234567);
    EXPECT_EQ(output.bytes(), "-1234.5000001234567");
}

TEST(TypedTextOutput, AStringIsItsCharacters) {
    TextOutput output;
    output->JWriteString("a \"b\"");
    output->JWriteString("");
    output->JWriteString(nullptr);
    EXPECT_EQ(output.bytes(), "a \"b\"");
}

TEST(TypedTextOutput, RawBytesGoStraightToTheSink) {
    TextOutput output;
    output->JWrite(0x141);
    output->JWrite(unsignedBytes("xBC"), 1, 2);
    output->JWrite(unsignedBytes("x"), 0, 0);
    output->JFlush();
    EXPECT_EQ(output.bytes(), "ABC");
}

TEST(TypedTextOutput, ANullBufferIsRefused) {
    EXPECT_EQ(thrownMessage<KELIOException>([] { TextOutput()->JWrite(nullptr, 0, 1); }),
              "StringWriter::JWrite(uchar*,int,int). Buffer=NULL");
}

// ---- Reading -----------------------------------------------------------------------------------

TEST(TypedTextInput, EachReadTakesOneNumber) {
    TextInput input("1 -2 3\n0x1f 4.5 6");
    EXPECT_EQ(input->JRead8(), 1);
    EXPECT_EQ(input->JRead16(), -2);
    EXPECT_EQ(input->JRead32(), 3);
    EXPECT_EQ(input->JRead32(), 31);
    EXPECT_EQ(input->JReadDouble(), 4.5);
    EXPECT_EQ(input->JReadDouble(), 6.0);
}

TEST(TypedTextInput, IntegersTakeTheLowBits) {
    TextInput input("300 70000 4294967295 2.75 -2.75");
    EXPECT_EQ(input->JRead8(), 44);
    EXPECT_EQ(input->JRead16(), 4464);
    EXPECT_EQ(input->JRead32(), -1);
    EXPECT_EQ(input->JRead32(), 2);
    EXPECT_EQ(input->JRead32(), -2);
}

TEST(TypedTextInput, SixtyFourAnd128BitsAreNotImplemented) {
    TextInput input("5");
    uint64_t wide = 0;
    JHashCode wider;
    EXPECT_EQ(thrownMessage<KELException>([&] { input->JRead64(wide); }), "Not implemented.");
    EXPECT_EQ(thrownMessage<KELException>([&] { input->JRead128(wider); }), "Not implemented.");
    EXPECT_EQ(input->JRead32(), 5);
}

TEST(TypedTextInput, AStringIsOneWordBareOrQuoted) {
    TextInput input("bare \"two words\" \"\" @x_1");
    for (const char* expected : {"bare", "two words", "", "@x_1"}) {
        const Held<JString> word(input->JReadString());
        EXPECT_STREQ(word->chars(), expected);
    }
}

TEST(TypedTextInput, AnythingElseIsASyntaxError) {
    EXPECT_EQ(thrownMessage<KELIOException>([] { TextInput("\nx")->JRead32(); }), syntaxErrorAt(2));
    EXPECT_EQ(thrownMessage<KELIOException>([] { TextInput("[")->JReadDouble(); }),
              syntaxErrorAt(1));
    EXPECT_EQ(thrownMessage<KELIOException>([] { TextInput("5")->JReadString(); }),
              syntaxErrorAt(1));
    EXPECT_EQ(thrownMessage<KELIOException>([] { TextInput(bytes("\"a\0\""))->JReadString(); }),
              syntaxErrorAt(1));
}

TEST(TypedTextInput, TheEndNamesItsLine) {
    EXPECT_EQ(thrownMessage<KELEOFException>([] { TextInput("\n")->JRead8(); }), endAt(2));
    EXPECT_EQ(thrownMessage<KELEOFException>([] { TextInput("")->JReadDouble(); }), endAt(1));
    EXPECT_EQ(thrownMessage<KELEOFException>([] { TextInput("// x")->JReadString(); }), endAt(1));
}

TEST(TypedTextInput, NumbersAndValuesTakeTurns) {
    TextInput input("1 [ 2 ] 3 \"x\" 4");
    EXPECT_EQ(input->JRead32(), 1);
    EXPECT_EQ(textOf(input.read()), "[\n\t2\n]\n");
    EXPECT_EQ(input->JRead32(), 3);
    EXPECT_STREQ(input.read()->toString(), "x");
    EXPECT_EQ(input.read()->toInt(), 4);
}

TEST(TypedTextInput, RawBytesComeFromTheSamePlace) {
    TextInput input("12:abc");
    EXPECT_EQ(input->JRead32(), 12);
    EXPECT_EQ(input->JRead(), ':');
    uint8_t buffer[8] = {};
    EXPECT_EQ(input->JRead(buffer, 1, 7), 3);
    EXPECT_EQ(hex({reinterpret_cast<char*>(buffer), 5}), "00 61 62 63 00");
    EXPECT_EQ(input->JRead(buffer, 0, 1), 0);
    EXPECT_EQ(input->JRead(), -1);
}

TEST(TypedTextInput, RawBytesTakeNoMemory) {
    TextInput input("1 " + std::string(8 << 20, 'x'));
    EXPECT_EQ(input->JRead32(), 1);
    uint8_t buffer[1000];
    const AllocationBudget budget(1 << 20);
    int32_t count = 0;
    while (const int32_t piece = input->JRead(buffer, 0, 1000)) {
        count += piece;
    }
    EXPECT_EQ(count, (8 << 20) + 1);
}

TEST(TypedTextInput, ANullBufferIsRefused) {
    TextInput input("5");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JRead(nullptr, 0, 1); }),
              "JInputStream.read : buff=NULL");
}

TEST(TypedTextInput, AClosedStreamIsAtItsEnd) {
    TextInput input("1 2 3");
    input->JRead32();
    input->JClose();
    input->JClose();
    EXPECT_EQ(input->JRead(), -1);
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { input.read(); }), endAt(1));
}

} // namespace
