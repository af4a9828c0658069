// The output of the text writer, character by character.
#include "support/CommaLocale.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/KEL_Selector_Impl.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace kel::test;

namespace {

constexpr KELGuid sampleGuid = {
    0x3F2504E0, 0x4F89, 0x11D3, {0x9A, 0x0C, 3, 5, 0xE8, 0x2C, 0x33, 1}};

// ---- The document ------------------------------------------------------------------------------

TEST(TextWriter, WritesTheSampleDocumentWithItsVariablesInNameOrder) {
    const auto document =
        structOf("count", intOf(5), "name", stringOf("abc"), "list", arrayOf(intOf(1), intOf(2)),
                 "my key", nullptr, "inner", structOf("x", intOf(7)));
    EXPECT_EQ(textOf(document), "{\n"
                                "\tcount = 5\n"
                                "\tinner = {\n"
                                "\t\tx = 7\n"
                                "\t}\n"
                                "\tlist = [\n"
                                "\t\t1\n"
                                "\t\t2\n"
                                "\t]\n"
                                "\t\"my key\" = NULL\n"
                                "\tname = \"abc\"\n"
                                "}\n");
}

TEST(TextWriter, NullAtTopLevelWritesNothing) {
    EXPECT_EQ(textOf(static_cast<KEL*>(nullptr)), "");
}

TEST(TextWriter, EveryValueEndsWithOneLineFeed) {
    EXPECT_EQ(textOf(arrayOf(arrayOf(arrayOf(intOf(1))))),
              "[\n\t[\n\t\t[\n\t\t\t1\n\t\t]\n\t]\n]\n");
}

TEST(TextWriter, RootsFollowOneAnother) {
    TextOutput output;
    output.write(intOf(1)).write(arrayOf()).write(stringOf("x"));
    EXPECT_EQ(output.bytes(), "1\n[\n]\n\"x\"\n");
}

// ---- Scalars -----------------------------------------------------------------------------------

TEST(TextWriter, IntsAreDecimal) {
    EXPECT_EQ(textOf(intOf(0)), "0\n");
    EXPECT_EQ(textOf(intOf(INT32_MAX)), "2147483647\n");
    EXPECT_EQ(textOf(intOf(INT32_MIN)), "-2147483648\n");
}

TEST(TextWriter, BooleansAreTrueAndFalse) {
    EXPECT_EQ(textOf(booleanOf(true)), "true\n");
    EXPECT_EQ(textOf(booleanOf(false)), "false\n");
}

TEST(TextWriter, DoublesHaveSixDecimals) {
    EXPECT_EQ(textOf(doubleOf(12.5)), "12.500000\n");
    EXPECT_EQ(textOf(doubleOf(-0.0)), "-0.000000\n");
    EXPECT_EQ(textOf(doubleOf(1e21)), "1000000000000000000000.000000\n");
    EXPECT_EQ(textOf(doubleOf(0.0000004)), "0.000000\n");
}

TEST(TextWriter, DoublesWithoutDecimalsAreWords) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(textOf(doubleOf(INFINITY)), "inf\n");
    EXPECT_EQ(textOf(doubleOf(-INFINITY)), "-inf\n");
    EXPECT_EQ(textOf(doubleOf(nan)), "nan\n");
    EXPECT_EQ(textOf(doubleOf(std::copysign(nan, -1.0))), "-nan\n");
}

TEST(TextWriter, DoublesHaveAPointInEveryLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_EQ(textOf(arrayOf(doubleOf(1234567.5), intOf(1234567))),
              "[\n\t1234567.500000\n\t1234567\n]\n");
}

TEST(TextWriter, TheLargestDoubleIsWrittenWhole) {
    const std::string text = textOf(doubleOf(-std::numeric_limits<double>::max()));
    EXPECT_EQ(text.size(), 1 + 309 + 7 + 1U); // sign, integer part, point and decimals, line end
    EXPECT_EQ(text.substr(0, 18), "-17976931348623157");
}

TEST(TextWriter, GuidsHaveTheGuidLayout) {
    EXPECT_EQ(textOf(guidOf(JHashCode(sampleGuid))), "3F2504E0-4F89-11D3-9A0C-0305E82C3301\n");
    EXPECT_EQ(textOf(guidOf(JHashCode())), "00000000-0000-0000-0000-000000000000\n");
}

TEST(TextWriter, StringsStandInQuotesAsTheyAre) {
    EXPECT_EQ(textOf(stringOf("")), "\"\"\n");
    EXPECT_EQ(textOf(stringOf("a\\b\n\tc\xFF")), "\"a\\b\n\tc\xFF\"\n");
}

TEST(TextWriter, AQuoteInAStringIsNotEscaped) {
    EXPECT_EQ(textOf(stringOf("say \"a\"")), "\"say \"a\"\"\n");
}

TEST(TextWriter, AStringLongerThanTheBufferIsWrittenWhole) {
    const std::string text(100000, 'x');
    EXPECT_EQ(textOf(stringOf(text)), "\"" + text + "\"\n");
}

// ---- Memory blocks -----------------------------------------------------------------------------

std::string addressOf(const HeldValue& block) {
    const void* bytes = dynamic_cast<KEL_MemBlock_Impl&>(*block).bytes();
    auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bytes));
    std::string digits(8, '0');
    for (std::size_t i = 8; i-- > 0; address >>= 4) {
        digits[i] = "0123456789abcdef"[address & 15U];
    }
    return digits;
}

TEST(TextWriter, AMemoryBlockShowsItsSizeAndTheLow32BitsOfItsAddress) {
    const auto block = memBlockOf("abc");
    EXPECT_EQ(textOf(block), "void[3] : 0x" + addressOf(block) + "\n");
}

TEST(TextWriter, TheCommentShowsAMemoryBlocksBytesUpToTheFirstNul) {
    const auto block = memBlockOf(std::string_view("ab\0c", 4));
    TextOutput output;
    output->setMemBlockComment(true);
    output.write(block);
    EXPECT_EQ(output.bytes(), "void[4] : 0x" + addressOf(block) + " // \"ab\"\n");
}

TEST(TextWriter, TheCommentStopsAtTheBlocksEndWhenThereIsNoNul) {
    const auto block = memBlockOf("abcd");
    TextOutput output;
    output->setMemBlockComment(true);
    output.write(block);
    EXPECT_EQ(output.bytes(), "void[4] : 0x" + addressOf(block) + " // \"abcd\"\n");
}

TEST(TextWriter, TheCommentOfAnEmptyBlockIsEmpty) {
    const auto block = memBlockOf("");
    TextOutput output;
    output->setMemBlockComment(true);
    output.write(block);
    EXPECT_EQ(output.bytes(), "void[0] : 0x" + addressOf(block) + " // \"\"\n");
}

TEST(TextWriter, TheCommentOfASharedBlockIsWrittenInEachPlace) {
    for (const std::size_t length : {3U, 300U}) {
        const std::string bytes(length, 'a');
        const auto block = memBlockOf(bytes);
        TextOutput output;
        output->setMemBlockComment(true);
        output.write(arrayOf(block, block));
        const std::string line = "\tvoid[" + std::to_string(length) + "] : 0x" + addressOf(block) +
                                 " // \"" + bytes + "\"\n";
        EXPECT_EQ(output.bytes(), "[\n" + line + line + "]\n");
    }
}

TEST(TextWriter, TheCommentCanBeSwitchedOffAgain) {
    const auto block = memBlockOf("a");
    TextOutput output;
    output->setMemBlockComment(true);
    output->setMemBlockComment(false);
    EXPECT_EQ(output.write(block).bytes(), "void[1] : 0x" + addressOf(block) + "\n");
}

// ---- Containers --------------------------------------------------------------------------------

TEST(TextWriter, AnEmptyArrayHasItsClosingBracketAtItsOwnIndentation) {
    EXPECT_EQ(textOf(arrayOf()), "[\n]\n");
    EXPECT_EQ(textOf(structOf("a", arrayOf())), "{\n\ta = [\n\t]\n}\n");
}

TEST(TextWriter, AnEmptyStructAndAnEmptyManager) {
    EXPECT_EQ(textOf(structOf()), "{\n}\n");
    EXPECT_EQ(textOf(managerOf()), "(\n)\n");
}

TEST(TextWriter, AVariableWithoutAValueIsNull) {
    EXPECT_EQ(textOf(structOf("key", nullptr)), "{\n\tkey = NULL\n}\n");
}

TEST(TextWriter, VariablesStandInTheOrderOfTheirBytes) {
    EXPECT_EQ(textOf(structOf("b", intOf(1), "a", intOf(2), "B", intOf(3), "\xC3\xA4", intOf(4))),
              "{\n\tB = 3\n\ta = 2\n\tb = 1\n\t\"\xC3\xA4\" = 4\n}\n");
}

TEST(TextWriter, AStructHasNoHeader) {
    EXPECT_EQ(textOf(arrayOf(structOf("x", intOf(1)))), "[\n\t{\n\t\tx = 1\n\t}\n]\n");
    EXPECT_EQ(textOf(structOf("@type", intOf(1))), "{\n\t@type = 1\n}\n");
}

TEST(TextWriter, AManagerNamesEachValueByItsIdentity) {
    const auto manager = managerOf(intWith(codeOf(0xAB), 7), stringWith(codeOf(1), "x"));
    EXPECT_EQ(textOf(manager), "(\n"
                               "\t00000000-0000-0000-0000-0000000000AB = 7\n"
                               "\t00000000-0000-0000-0000-000000000001 = \"x\"\n"
                               ")\n");
}

TEST(TextWriter, ContainersInAManagerContinueTheLine) {
    const auto manager = managerOf(arrayWith(codeOf(2), managerOf()));
    EXPECT_EQ(textOf(structOf("m", manager)), "{\n"
                                              "\tm = (\n"
                                              "\t\t00000000-0000-0000-0000-000000000002 = [\n"
                                              "\t\t\t(\n"
                                              "\t\t\t)\n"
                                              "\t\t]\n"
                                              "\t)\n"
                                              "}\n");
}

TEST(TextWriter, ASharedValueIsWrittenInEveryPlace) {
    const auto shared = arrayOf(intOf(1));
    EXPECT_EQ(textOf(arrayOf(shared, shared)), "[\n\t[\n\t\t1\n\t]\n\t[\n\t\t1\n\t]\n]\n");
}

// ---- Keys --------------------------------------------------------------------------------------

std::string keyLine(const char* key) {
    const std::string text = textOf(structOf(key, intOf(1)));
    return text.substr(2, text.size() - 4);
}

TEST(TextWriter, KeysOfLettersDigitsUnderscoreAndAtAreBare) {
    EXPECT_EQ(keyLine("a_b@1"), "\ta_b@1 = 1\n");
    EXPECT_EQ(keyLine("AZaz09_@"), "\tAZaz09_@ = 1\n");
}

TEST(TextWriter, AKeyThatBeginsWithADigitIsBare) {
    EXPECT_EQ(keyLine("9lives"), "\t9lives = 1\n");
    EXPECT_EQ(keyLine("0x1f"), "\t0x1f = 1\n");
}

TEST(TextWriter, KeysWithAnyOtherCharacterAreQuoted) {
    EXPECT_EQ(keyLine("a-b"), "\t\"a-b\" = 1\n");
    EXPECT_EQ(keyLine("two words"), "\t\"two words\" = 1\n");
    EXPECT_EQ(keyLine("line\nend"), "\t\"line\nend\" = 1\n");
    EXPECT_EQ(keyLine("\xE9"), "\t\"\xE9\" = 1\n");
}

TEST(TextWriter, WhetherAKeyIsQuotedDoesNotDependOnTheLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_EQ(keyLine("\xC3\xA4"), "\t\"\xC3\xA4\" = 1\n");
}

// ---- The inner form ----------------------------------------------------------------------------

std::string innerForm(const HeldValue& value, int32_t indent, bool indentFirst,
                      int32_t parentKind) {
    TextOutput output;
    output->write(value.get(), indent, indentFirst, parentKind);
    return output.bytes();
}

TEST(TextWriter, FourColumnsAreOneTab) {
    EXPECT_EQ(innerForm(arrayOf(intOf(1)), 8, true, -1), "\t\t[\n\t\t\t1\n\t\t]\n");
    EXPECT_EQ(innerForm(intOf(1), 7, true, -1), "\t1\n");
}

TEST(TextWriter, TheFirstLineIsIndentedOnlyWhenAsked) {
    EXPECT_EQ(innerForm(arrayOf(intOf(1)), 4, false, -1), "[\n\t\t1\n\t]\n");
}

TEST(TextWriter, AnIndentationBelowZeroIsNone) {
    EXPECT_EQ(innerForm(arrayOf(intOf(1)), -8, true, -1), "[\n\t1\n]\n");
}

TEST(TextWriter, AStructInsideAMetaKindNamesThatKindInItsHeader) {
    EXPECT_EQ(innerForm(structOf("x", intOf(1)), 0, true, 50), "{ @type = 50\n\tx = 1\n}\n");
    EXPECT_EQ(innerForm(structOf(), 0, true, 52), "{ @type = 52\n}\n");
    EXPECT_EQ(innerForm(structOf(), 0, true, 8), "{\n}\n");
}

TEST(TextWriter, ADescriptorsStructAlsoNamesItsIdentity) {
    EXPECT_EQ(innerForm(structWith(codeOf(9)), 0, true, 51),
              "{ @type = 51, @hashCode = 00000000-0000-0000-0000-000000000009\n}\n");
}

TEST(TextWriter, AnEmptyValueInsideWritesNothingNotEvenIndentation) {
    TextOutput output;
    output->write(nullptr, 8, true, -1);
    EXPECT_EQ(output.bytes(), "");
}

// ---- Refusals ----------------------------------------------------------------------------------

HeldValue selector() {
    return HeldValue(new KEL_Selector_Impl(nullptr));
}

TEST(TextWriter, ASelectorAbortsTheWrite) {
    EXPECT_EQ(thrownMessage<KELIOException>([] { textOf(selector()); }), "General KEL exception.");
    EXPECT_EQ(thrownMessage<KELIOException>([] { textOf(make<KEL_MultiSelector_Impl>(nullptr)); }),
              "General KEL exception.");
}

TEST(TextWriter, WhatStandsBeforeARefusedValueStaysInTheSink) {
    TextOutput output;
    const auto value = arrayOf(intOf(1), structOf("a", intOf(2), "b", selector()));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(value); }),
              "General KEL exception.");
    EXPECT_EQ(output.bytes(), "[\n\t1\n\t{\n\t\ta = 2\n\t\tb = ");
}

TEST(TextWriter, AfterARefusalTheStreamWritesOn) {
    TextOutput output;
    const auto refused = arrayOf(selector());
    thrownMessage<KELIOException>([&] { output.write(refused); });
    EXPECT_EQ(output.write(intOf(1)).bytes(), "[\n\t1\n");
}

TEST(TextWriter, AValueThatContainsItselfIsRefused) {
    const auto loop = arrayOf(intOf(1));
    const TakeApart atEnd(loop.get());
    asArray(loop).addVar(structOf("again", loop).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(loop); }),
              "Cannot write a value that contains itself.");
}

TEST(TextWriter, AValueThatContainsItselfCanBeWrittenOnceItNoLongerDoes) {
    const auto loop = arrayOf();
    asArray(loop).addVar(loop.get());
    thrownMessage<KELIOException>([&] { textOf(loop); });
    asArray(loop).removeAllVars();
    EXPECT_EQ(textOf(arrayOf(loop, loop)), "[\n\t[\n\t]\n\t[\n\t]\n]\n");
}

TEST(TextWriter, AManagerInsideItselfIsRefused) {
    const auto loop = managerOf();
    asManager(loop).addKel(loop.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(loop); }),
              "Cannot write a value that contains itself.");
    asManager(loop).removeAllKels();
}

TEST(TextWriter, TheByteOrderIsKeptAndChangesNothing) {
    TextOutput output;
    EXPECT_EQ(output->getByteOrder(), 1);
    output->setByteOrder(0);
    EXPECT_EQ(output->getByteOrder(), 0);
    EXPECT_EQ(output.write(intOf(1)).bytes(), "1\n");
}

} // namespace
