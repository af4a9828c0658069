// Tests the input of the text reader: values, containers, keys and layout, and the places of its
// errors.
#include "support/Bytes.h"
#include "support/CommaLocale.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

// ---- Scalars -----------------------------------------------------------------------------------

TEST(TextReader, ReadsInts) {
    EXPECT_EQ(read("5")->getType(), KELKind_Int);
    EXPECT_EQ(read("-2147483648")->toInt(), INT32_MIN);
    EXPECT_EQ(read("0x1f")->toInt(), 31);
    EXPECT_EQ(read("007")->toInt(), 7);
}

TEST(TextReader, IntsBeyond32BitsWrap) {
    EXPECT_EQ(read("4294967295")->toInt(), -1);
    EXPECT_EQ(read("2147483648")->toInt(), INT32_MIN);
}

TEST(TextReader, ReadsDoubles) {
    EXPECT_EQ(read("12.5")->getType(), KELKind_Double);
    EXPECT_EQ(read("12.5")->toDouble(), 12.5);
    EXPECT_EQ(read("-.5")->toDouble(), -0.5);
    EXPECT_TRUE(std::signbit(read("-0.000000")->toDouble()));
}

TEST(TextReader, TheDigitsBehindThePointAreAddedFromLeftToRight) {
    const double first = 0 + 1 * 0.1;
    const double second = first + 2 * (0.1 * 0.1);
    EXPECT_EQ(read("0.12")->toDouble(), second);
    EXPECT_EQ(read("0.123")->toDouble(), second + 3 * (0.1 * 0.1 * 0.1));
}

TEST(TextReader, AboveTwoToThe30ADoublesLastDecimalMayChange) {
    EXPECT_EQ(rewritten("1073741823.999999"), "1073741823.999999\n");
    EXPECT_EQ(rewritten("1146147281.171891"), "1146147281.171890\n");
}

TEST(TextReader, ADoublesIntegerPartHas32Bits) {
    EXPECT_EQ(rewritten("2147483647.5"), "2147483647.500000\n");
    EXPECT_EQ(rewritten("2147483648.5"), "-2147483647.500000\n");
    EXPECT_EQ(rewritten("4294967296.5"), "0.500000\n");
}

TEST(TextReader, ReadsDoublesWithAPointInEveryLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_EQ(read("[1.5 2]")->getType(), KELKind_Array);
    EXPECT_EQ(rewritten("1234.5"), "1234.500000\n");
    EXPECT_EQ(refusalOf("1,5") + refusalOf("[1,5]"), "(nothing thrown)" + syntaxErrorAt(1));
}

TEST(TextReader, NumbersMayLackDigits) {
    EXPECT_EQ(read("5.")->toDouble(), 5.0);
    EXPECT_EQ(read(".")->getType(), KELKind_Double);
    EXPECT_EQ(read("-")->getType(), KELKind_Int);
}

TEST(TextReader, ANumberEndsWhereAnotherTokenMayBegin) {
    EXPECT_EQ(rewritten("#define x 7\n[12x]"), "[\n\t12\n\t7\n]\n");
    EXPECT_EQ(rewritten("#define X1 7\n[0X1]"), "[\n\t0\n\t7\n]\n");
    EXPECT_EQ(rewritten("#define x1 7\n[-0x1]"), "[\n\t0\n\t7\n]\n");
    EXPECT_EQ(refusalOf("[12b]"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[1.5.]"), syntaxErrorAt(1));
}

TEST(TextReader, ThereIsNoExponent) {
    EXPECT_EQ(refusalOf("12e3"), syntaxErrorAt(1));
}

TEST(TextReader, ReadsBooleans) {
    EXPECT_EQ(read("true")->getType(), KELKind_Boolean);
    EXPECT_TRUE(read("true")->toBoolean());
    EXPECT_FALSE(read("false")->toBoolean());
}

TEST(TextReader, ReadsStringsAsTheyStand) {
    EXPECT_EQ(read("\"\"")->getType(), KELKind_String);
    EXPECT_STREQ(read("\"\"")->toString(), "");
    EXPECT_STREQ(read("\"a\\n\n\tb-c // d\xFF\"")->toString(), "a\\n\n\tb-c // d\xFF");
}

TEST(TextReader, QuotedKeywordsAreStrings) {
    EXPECT_EQ(read("\"true\"")->getType(), KELKind_String);
    EXPECT_EQ(read("\"NULL\"")->getType(), KELKind_String);
    EXPECT_EQ(read("\"REF\"")->getType(), KELKind_String);
}

TEST(TextReader, TheWordNullIsNoValue) {
    EXPECT_EQ(read("null").get(), nullptr);
    EXPECT_EQ(read("NULL").get(), nullptr);
}

TEST(TextReader, KeywordsMatchExactly) {
    for (const char* word :
         {"True", "TRUE", "FALSE", "Null", "Ref", "rEF", "truely", "t", "inf", "nan"}) {
        EXPECT_EQ(refusalOf(word), syntaxErrorAt(1)) << word;
    }
}

TEST(TextReader, AQuotedWordWithANulIsASyntaxError) {
    EXPECT_EQ(refusalOf(bytes("\"a\0b\"")), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf(bytes("{ \"a\0b\" = 1 }")), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf(bytes("\0")), syntaxErrorAt(1));
}

TEST(TextReader, AnOpenQuoteIsTheTokenizersFailure) {
    EXPECT_EQ(thrownMessage<TokenizerException>([] { read("[ \"abc"); }),
              "Reached end of file with no closing quote.");
    EXPECT_EQ(thrownMessage<TokenizerException>([] { read("{ \"abc"); }),
              "Reached end of file with no closing quote.");
}

TEST(TextReader, AMemoryBlockIsASyntaxError) {
    EXPECT_EQ(refusalOf("void[3] : 0x00000000"), syntaxErrorAt(1));
}

TEST(TextReader, AStringWithAQuoteCannotBeReadBack) {
    EXPECT_EQ(textOf(stringOf("a \" b")), "\"a \" b\"\n");
    TextInput input("\"a \" b\"\n");
    EXPECT_STREQ(input.read()->toString(), "a ");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(1));
}

// ---- Arrays ------------------------------------------------------------------------------------

TEST(TextReader, ReadsArraysInOrder) {
    const auto array = read("[\n\t1\n\t\"two\"\n\t[\n\t]\n]\n");
    ASSERT_EQ(asArray(array).getCount(), 3);
    EXPECT_EQ(at(array, 0)->toInt(), 1);
    EXPECT_STREQ(at(array, 1)->toString(), "two");
    EXPECT_EQ(asArray(at(array, 2)).getCount(), 0);
}

TEST(TextReader, ElementsMayShareALineAndTouch) {
    EXPECT_EQ(rewritten("[1 2\"a\"[]{}true]"),
              "[\n\t1\n\t2\n\t\"a\"\n\t[\n\t]\n\t{\n\t}\n\ttrue\n]\n");
}

TEST(TextReader, ANullElementIsIgnored) {
    EXPECT_EQ(rewritten("[null 1 NULL 2 null]"), "[\n\t1\n\t2\n]\n");
}

TEST(TextReader, ACommaSeparatesNothing) {
    EXPECT_EQ(refusalOf("[1, 2]"), syntaxErrorAt(1));
}

TEST(TextReader, ABracketOfAnotherKindIsASyntaxError) {
    for (const char* text :
         {"[ }", "[ )", "{ ]", "{ )", "( ]", "( }", "< ]", "[ >", "]", "}", ")", ">"}) {
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(1)) << text;
    }
}

// ---- Structs -----------------------------------------------------------------------------------

TEST(TextReader, ReadsStructs) {
    const auto value = read("{\n\ta = 1\n\tb = \"x\"\n\tc = {\n\t}\n}\n");
    EXPECT_EQ(asStruct(value).getCount(), 3);
    EXPECT_EQ(at(value, "a")->toInt(), 1);
    EXPECT_STREQ(at(value, "b")->toString(), "x");
    EXPECT_EQ(at(value, "c")->getType(), KELKind_Struct);
}

TEST(TextReader, ANullVariableKeepsItsName) {
    const auto value = read("{ a = NULL b = null }");
    EXPECT_EQ(asStruct(value).getCount(), 2);
    EXPECT_EQ(at(value, "a"), nullptr);
    EXPECT_EQ(at(value, "b"), nullptr);
}

TEST(TextReader, OfTwoEqualKeysTheLastWins) {
    EXPECT_EQ(rewritten("{ a = 1 b = 2 a = 3 }"), "{\n\ta = 3\n\tb = 2\n}\n");
    EXPECT_EQ(rewritten("{ a = 1 \"a\" = null }"), "{\n\ta = NULL\n}\n");
}

TEST(TextReader, BareKeysAreTheLongestRun) {
    for (const char* key :
         {"9lives", "0x1f", "a_b@1", "0", "12ab", "007", "@", "_", "true", "null", "REF", "define",
          "1_", "e", "@type1", "00000000000000000000000000000000"}) {
        const auto value = read("{ " + std::string(key) + " = 5 }");
        ASSERT_TRUE(asStruct(value).containsVar(key)) << key;
        EXPECT_EQ(at(value, key)->toInt(), 5);
    }
}

TEST(TextReader, ABareKeyMayTouchTheEqualsSign) {
    EXPECT_EQ(rewritten("{9lives=1 0x1f=2\"q\"=3}"), "{\n\t0x1f = 2\n\t9lives = 1\n\tq = 3\n}\n");
}

TEST(TextReader, QuotedKeysMayHoldAnythingButAQuote) {
    const auto value = read("{ \"a-b\" = 1 \" \" = 2 \"x\ny\" = 3 \"{\" = 4 }");
    EXPECT_EQ(at(value, "a-b")->toInt(), 1);
    EXPECT_EQ(at(value, " ")->toInt(), 2);
    EXPECT_EQ(at(value, "x\ny")->toInt(), 3);
    EXPECT_EQ(at(value, "{")->toInt(), 4);
}

TEST(TextReader, AnEmptyKeyIsASyntaxError) {
    EXPECT_EQ(refusalOf("{ \"\" = 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ = 1 }"), syntaxErrorAt(1));
}

TEST(TextReader, AKeyWithAnotherCharacterNeedsQuotes) {
    EXPECT_EQ(refusalOf("{ a-b = 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ -1 = 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ 1.5 = 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ a\"b\" = 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ \xE9 = 1 }"), syntaxErrorAt(1));
}

TEST(TextReader, AKeyNeedsAnEqualsSignAndAValue) {
    EXPECT_EQ(refusalOf("{ a 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ a : 1 }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ a = }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ a }"), syntaxErrorAt(1));
}

// ---- Layout ------------------------------------------------------------------------------------

TEST(TextReader, LayoutMayStandBetweenAllTokens) {
    EXPECT_EQ(rewritten("/* a */ { // b\r\n\f a /* c */ =\n\t1 }"), "{\n\ta = 1\n}\n");
}

TEST(TextReader, ABlockCommentIsClosedOnlyByASingleStar) {
    EXPECT_EQ(rewritten("/* a ***/ 1"), "1\n");
    EXPECT_EQ(refusalOf("/* a **/ 1"), syntaxErrorAt(1));
}

TEST(TextReader, AnOpenBlockCommentIsASyntaxError) {
    EXPECT_EQ(refusalOf("1 /* x") + "|" + refusalOf("[1 /* x"),
              "(nothing thrown)|" + syntaxErrorAt(1));
}

TEST(TextReader, ALoneCarriageReturnIsASyntaxError) {
    EXPECT_EQ(refusalOf("[1\r2]"), syntaxErrorAt(1));
}

TEST(TextReader, CommentsHoldAnyBytes) {
    EXPECT_EQ(rewritten(bytes("/* \0 \xFF \" */ 1 // \0\" \n")), "1\n");
}

// ---- Errors and lines --------------------------------------------------------------------------

TEST(TextReader, ACommentAndANewlineOnlyIsTheEndOfInput) {
    EXPECT_EQ(endingOf("// comment\n"), endAt(2));
    EXPECT_EQ(endingOf("/* comment */\n"), endAt(2));
}

TEST(TextReader, AnEmptyTextIsTheEndOfInput) {
    EXPECT_EQ(endingOf(""), endAt(1));
    EXPECT_EQ(endingOf(" \n\t\n"), endAt(3));
}

TEST(TextReader, EndOfInputInsideAValueNamesItsLine) {
    EXPECT_EQ(endingOf("["), endAt(1));
    EXPECT_EQ(endingOf("[\n1\n"), endAt(3));
    EXPECT_EQ(endingOf("{\n"), endAt(2));
    EXPECT_EQ(endingOf("{ a"), endAt(1));
    EXPECT_EQ(endingOf("{ a ="), endAt(1));
    EXPECT_EQ(endingOf("{ a = 1\n"), endAt(2));
    EXPECT_EQ(endingOf("("), endAt(1));
}

TEST(TextReader, ASyntaxErrorNamesItsLine) {
    EXPECT_EQ(refusalOf("[\n1\n?\n]"), syntaxErrorAt(3));
    EXPECT_EQ(refusalOf("{\n\ta = 1\n\tb ! 2\n}"), syntaxErrorAt(3));
}

TEST(TextReader, LinesInABlockCommentAreNotCounted) {
    EXPECT_EQ(refusalOf("/* one\ntwo\nthree */ ?"), syntaxErrorAt(1));
}

TEST(TextReader, LinesInAStringAreNotCounted) {
    EXPECT_EQ(refusalOf("[ \"one\ntwo\" ? ]"), syntaxErrorAt(1));
}

TEST(TextReader, EveryKindOfLineEndCountsOnce) {
    EXPECT_EQ(refusalOf("\n\r\n\f?"), syntaxErrorAt(4));
    EXPECT_EQ(refusalOf("// a\n// b\r\n// c\f?"), syntaxErrorAt(4));
}

TEST(TextReader, LineNumbersOfAnySizeFit) {
    EXPECT_EQ(refusalOf(std::string(9, '\n') + "?"), syntaxErrorAt(10));
    EXPECT_EQ(refusalOf(std::string(1233, '\n') + "?"), syntaxErrorAt(1234));
    EXPECT_EQ(refusalOf(std::string(1234566, '\n') + "?"), syntaxErrorAt(1234567));
}

TEST(TextReader, LinesAreCountedOverAllRoots) {
    TextInput input("1\n2\n?");
    input.read();
    input.read();
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(3));
}

TEST(TextReader, ARawCharacterWhereAValueMustStartIsASyntaxError) {
    for (const char* text : {"?", "!", "=", ",", "$", "+1", "'a'",
                             "\xEF\xBB\xBF"
                             "1",
                             "\x80", "\xFF"}) {
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(1)) << text;
    }
}

// ---- Several roots -----------------------------------------------------------------------------

TEST(TextReader, ReadsOneRootAfterTheOther) {
    TextInput input("1\n[ 2 ] \"three\"\n\n");
    EXPECT_EQ(input.read()->toInt(), 1);
    EXPECT_EQ(input.read()->getType(), KELKind_Array);
    EXPECT_STREQ(input.read()->toString(), "three");
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { input.read(); }), endAt(4));
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { input.read(); }), endAt(4));
}

TEST(TextReader, StopsBehindTheLastCharacterOfAContainer) {
    TextInput input("{ a = 1 }rest");
    input.read();
    EXPECT_EQ(input->JRead(), 'r');
}

TEST(TextReader, StopsBeforeTheCharacterThatEndsANumber) {
    TextInput input("12\nrest");
    input.read();
    EXPECT_EQ(input->JRead(), '\n');
}

TEST(TextReader, ReadsOnAfterAnError) {
    TextInput input("[ 1 ? 2 ");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(1));
    EXPECT_EQ(input.read()->toInt(), 2);
}

// ---- Round trips -------------------------------------------------------------------------------

TEST(TextReader, WhatIsWrittenIsReadBack) {
    const auto value = structOf("list", arrayOf(intOf(-5), doubleOf(2.25), booleanOf(false)),
                                "text", stringOf("a\nb"), "none", nullptr, "id", guidOf(codeOf(3)),
                                "m", managerOf(intWith(codeOf(4), 1)));
    EXPECT_TRUE(read(textOf(value))->equalsValue(value.get()));
    EXPECT_EQ(rewritten(textOf(value)), textOf(value));
}

TEST(TextReader, LongKeysStringsAndCommentsMayCrossTheWindow) {
    const std::string longKey(70000, 'k');
    const std::string longText(200000, 't');
    const auto value = structOf(longKey.c_str(), stringOf(longText));
    EXPECT_TRUE(read("//" + longText + "\n" + textOf(value))->equalsValue(value.get()));
}

// ---- Bytes -------------------------------------------------------------------------------------

TEST(TextReader, ABlockOfNothingReadsNothing) {
    TextInput input("1");
    uint8_t buffer[1];
    EXPECT_EQ(input->JRead(buffer, 0, 0), 0);
    EXPECT_EQ(input->JRead(buffer, 0, -1), 0);
    EXPECT_EQ(input.read()->toInt(), 1);
}

TEST(TextReader, TheByteOrderIsKeptAndChangesNothing) {
    TextInput input("1 2");
    EXPECT_EQ(input->getByteOrder(), 1);
    input->setByteOrder(0);
    EXPECT_EQ(input->getByteOrder(), 0);
    EXPECT_EQ(input->JRead16(), 1);
}

} // namespace
