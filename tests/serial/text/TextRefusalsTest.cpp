// The position of the input after a refusal. FormatDocumentsTest tests the examples of
// docs/text-format.md. This file tests the others, and that a host that continues after every
// failure reaches the end.
#include "support/Bytes.h"
#include "support/SampleGuids.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>
#include <vector>

using namespace kel::test;

namespace {

/// A text whose first read fails, and the input that is left after it.
struct Refusal {
    std::string text;
    std::string left;
};

/// Returns texts that are refused, each with what is left of it. This is a function, because in
/// Microsoft's ABI the strings of SampleGuids.h can be constructed after the constants of this file.
std::vector<Refusal> refusals() {
    return {
        // Values
        {"?1", "1"},
        {"] 1", " 1"},
        {bytes("\0001"), "1"},
        {bytes("\"a\0b\" 1"), " 1"},
        {"unknown 1", " 1"},
        {"abc-1", "bc-1"},
        {"/* open", "* open"},
        {"\r1", "1"},
        {"[ 1 } 2", " 2"},
        {sampleGuid + " = ? 1", " 1"},
        {"[ " + sampleGuid + " = " + sampleGuid + " = 5 ]", " 5 ]"},
        // Structs
        {"{ = 1 }", " 1 }"},
        {"{ \"\" = 1 }", " = 1 }"},
        {bytes("{ \"a\0b\" = 1 }"), " = 1 }"},
        {"{ -1 = 2 }", " = 2 }"},
        {"{ #define N 5\n}", "define N 5\n}"},
        {"{ a : 1 }", " 1 }"},
        {"{ a 1 }", " }"},
        {"{ a = } 1", " 1"},
        // Headers
        {"{ @type 8 }", " }"},
        {"{ @type = 12, @type = 8 }", ", @type = 8 }"},
        {"{ @type = \"8\" }", " }"},
        {"{ @type = ? }", " }"},
        {"{ @hashCode = 5 }", " }"},
        {"{ @type = 8,, a = 1 }", " a = 1 }"},
        // Managers, index lists, references
        {"( a = 5 )", " = 5 )"},
        {"( ? )", " )"},
        {"( 12345678-4F )", "-4F )"},
        {"( " + sampleGuid + " 5 )", " )"},
        {"( " + sampleGuid + " = " + otherGuid + " = 5 )", " 5 )"},
        {"< 5 [ ] >", " [ ] >"},
        {"< { } [ ] >", " [ ] >"},
        {"< [ ] > 1", " 1"},
        {"< [ 1 ] [ ] > 1", " 1"},
        {"< [ ] [ ] [ ] > 1", " > 1"},
        {"REF 5 1", " 1"},
        {"[ REF ] 1", " 1"},
        {"REF " + sampleGuid + " 1", " 1"},
        {"[ " + sampleGuid + " = 5 " + otherGuid + " = REF " + sampleGuid + " 1 ]", " 1 ]"},
        // Definitions
        {"#5 1", " 1"},
        {"#? 1", " 1"},
        {"#\ndefine N 5", "\ndefine N 5"},
        {"#other N 5", " N 5"},
        {"#define 5 1", " 1"},
        {"#define\nN 5", "\nN 5"},
        {"#define N [ 5 ? 6 ]\nN 7", " 7"},
        {"#define N 5 6\nN 7", " 7"},
        {"#define N REF\n[ N 7 ]", " 7 ]"},
        {"#define M N\n#define N M\nM 7", " 7"},
    };
}

/// Returns everything that is left of an input.
template <class Stream> std::string rest(Input<Stream>& input) {
    std::string left;
    for (int32_t c = input->JRead(); c != -1; c = input->JRead()) {
        left.push_back(static_cast<char>(c));
    }
    return left;
}

TEST(TextRefusal, LeavesTheInputJustAfterWhatWasWrong) {
    for (const Refusal& refusal : refusals()) {
        TextInput input(refusal.text);
        const std::string message = thrownMessage<KELIOException>([&] { input.read(); });
        EXPECT_EQ(message.substr(0, 42), syntaxErrorAt(1).substr(0, 42)) << refusal.text;
        EXPECT_EQ(rest(input), refusal.left) << refusal.text;
    }
}

TEST(TextRefusal, AnUnexpectedEndAndAnOpenQuoteLeaveNothing) {
    for (const char* text : {"", " // only\n", "[ 1", "{ a", "{ @type =", "( ", "REF ", "< [ ]",
                             "#define N 5", "[ #define N", "\"open", "[ \"open ]"}) {
        TextInput input(text);
        EXPECT_NE(thrownMessage<KELEOFException>([&] { input.read(); }), "(nothing thrown)");
        EXPECT_EQ(rest(input), "") << text;
    }
}

TEST(TextRefusal, AnOpenQuoteInADefinitionLeavesWhatFollowsTheName) {
    TextInput input("#define N \"a\n[ N 7 ]");
    EXPECT_EQ(thrownMessage<TokenizerException>([&] { input.read(); }),
              "Reached end of file with no closing quote.");
    EXPECT_EQ(rest(input), " 7 ]");
}

TEST(TextRefusal, OfASingleNumberOrWordLeavesTheInputLikewise) {
    TextInput input("word ? \"two words\" ?5");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JRead32(); }), syntaxErrorAt(1));
    }
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JReadString(); }), syntaxErrorAt(1));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JReadString(); }), syntaxErrorAt(1));
    EXPECT_EQ(rest(input), "");
}

TEST(TextRefusal, WhatIsNotImplementedLeavesTheWholeInput) {
    TextInput input("5");
    EXPECT_EQ(thrownMessage<KELException>([&] { input->JRead64(); }), "Not implemented.");
    EXPECT_EQ(rest(input), "5");
}

TEST(TextRefusal, LinesAreCountedOnAfterIt) {
    TextInput input("#\n?\n#define\n?");
    for (const int line : {1, 2, 3, 4}) {
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(line));
    }
}

// ---- Reading on --------------------------------------------------------------------------------

/// Continues after every failure, up to the end. Every read must consume at least one byte.
template <class Read> void readOn(const std::string& text, const Read& read) {
    TextInput input(text);
    for (;;) {
        const int64_t before = input->JTell();
        try {
            read(input);
        } catch (KELEOFException* failure) {
            failure->release();
            break;
        } catch (KELException* failure) {
            failure->release();
        } catch (const TokenizerException&) {
        }
        ASSERT_GT(input->JTell(), before) << text;
    }
    EXPECT_EQ(input->JTell(), static_cast<int64_t>(text.size())) << text;
}

void readOnInEveryWay(const std::string& text) {
    readOn(text, [](TextInput& input) { input.read(); });
    readOn(text, [](TextInput& input) { input->JRead32(); });
    readOn(text, [](TextInput& input) { input->JReadDouble(); });
    readOn(text, [](TextInput& input) { Held<JString> word(input->JReadString()); });
}

TEST(TextRefusal, AHostThatReadsOnReachesTheEnd) {
    for (const Refusal& refusal : refusals()) {
        readOnInEveryWay(refusal.text);
        readOnInEveryWay(refusal.text + refusal.text + "\n" + refusal.text);
        for (std::size_t size = 0; size < refusal.text.size(); ++size) {
            readOnInEveryWay(refusal.text.substr(0, size));
        }
    }
}

TEST(TextRefusal, AHostThatReadsOnThroughAnythingReachesTheEnd) {
    const std::string pieces = "[]{}()<>=#@\"/*-.0x19aF \r\n\t,nulltrueREFdefine\\\xFF";
    uint64_t state = 1;
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        for (int length = 0; length < 24; ++length) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            text.push_back(pieces[static_cast<uint32_t>(state >> 33) % pieces.size()]);
        }
        readOnInEveryWay(text);
    }
}

} // namespace
