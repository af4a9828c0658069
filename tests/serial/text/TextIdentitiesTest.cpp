// Tests hash codes in text: guids, and identities before values, in headers and in managers.
#include "support/Samples.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string sample = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
const std::string decimal = "12345678-4F89-11D3-9A0C-0305E82C3301"; // a number to the tokenizer
const std::string letters = "ABCDEFAB-CDEF-ABCD-EFAB-CDEFABCDEFAB"; // a word to the tokenizer
const std::string allDigits = "12345678-1234-1234-1234-123456789012";
const std::string other = "00000000-0000-0000-0000-0000000000FF";

/// Returns the layout of the guid value in a text.
std::string guidIn(const std::string& text) {
    const auto value = read(text);
    return value->getType() == KELKind_guid ? value->toString() : "(no guid)";
}

/// Returns "KIND with IDENTITY" for the value in a text.
std::string intWithIdentity(const std::string& text) {
    const auto value = read(text);
    return (value->getType() == KELKind_Int ? "Int with " : "? with ") + identityOf(value);
}

// ---- Guid values -------------------------------------------------------------------------------

TEST(TextGuid, AHashCodeAtTheEndOfTheInputIsAGuid) {
    EXPECT_EQ(guidIn(sample), sample);
}

TEST(TextGuid, AHashCodeAtALineEndIsAGuid) {
    EXPECT_EQ(guidIn(sample + "\n5"), sample);
    EXPECT_EQ(guidIn(sample + " \t\r\n5"), sample);
    EXPECT_EQ(guidIn(sample + "\f5"), sample);
}

TEST(TextGuid, ACommentBehindAGuidChangesNothing) {
    EXPECT_EQ(guidIn(sample + " // note\n5"), sample);
    EXPECT_EQ(guidIn(sample + " /* note */"), sample);
}

TEST(TextGuid, AHashCodeBeforeAClosingBracketIsAGuid) {
    EXPECT_EQ(rewritten("[" + sample + "]"), "[\n\t" + sample + "\n]\n");
    EXPECT_EQ(rewritten("{a = " + sample + " }"), "{\n\ta = " + sample + "\n}\n");
    EXPECT_EQ(rewritten("(" + other + " = " + sample + ")"),
              "(\n\t" + other + " = " + sample + "\n)\n");
}

TEST(TextGuid, GuidsOnLinesOfTheirOwnAreElements) {
    const std::string text = "[\n\t" + sample + "\n\t" + letters + "\n\t" + decimal + "\n]\n";
    EXPECT_EQ(rewritten(text), text);
}

TEST(TextGuid, EightDecimalDigitsAndADashBeginAGuid) {
    EXPECT_EQ(guidIn(decimal), decimal);
    EXPECT_EQ(guidIn(allDigits), allDigits);
    EXPECT_EQ(guidIn("00000000-0000-0000-0000-000000000000"),
              "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(rewritten("{ a = " + decimal + "\n}"), "{\n\ta = " + decimal + "\n}\n");
}

TEST(TextGuid, EightDecimalDigitsAndADashThatBeginNoGuidAreANumber) {
    EXPECT_EQ(rewritten("[12345678-5]"), "[\n\t12345678\n\t-5\n]\n");
    EXPECT_EQ(rewritten("[12345678 -5]"), "[\n\t12345678\n\t-5\n]\n");
    EXPECT_EQ(refusalOf("[12345678-]") + refusalOf("[12345678-x]"),
              "(nothing thrown)" + syntaxErrorAt(1)); // a single dash is the number 0
}

TEST(TextGuid, ANegativeNumberNeverBeginsAGuid) {
    EXPECT_EQ(rewritten("[-1234567-8]"), "[\n\t-1234567\n\t-8\n]\n");
    // The input begins with a dash and seven digits, and has 32 digits in all.
    TextInput input("-1234567-89ABCDEF-01234567-89ABCDEF-0");
    const auto value = input.read();
    EXPECT_EQ(value->getType(), KELKind_Int);
    EXPECT_EQ(value->toInt(), -1234567);
}

TEST(TextGuid, LowerCaseDigitsAreTheSame) {
    EXPECT_EQ(guidIn("3f2504e0-4f89-11d3-9a0c-0305e82c3301"), sample);
    EXPECT_EQ(guidIn("abcdefab-cdef-abcd-efab-cdefabcdefab"), letters);
}

TEST(TextGuid, DashesMayStandAnywhereButNotNowhere) {
    EXPECT_EQ(guidIn("3F2504E04F8911D39A0C0305E82C330-1"), sample);
    EXPECT_EQ(refusalOf("AF2504E04F8911D39A0C0305E82C3301"), syntaxErrorAt(1)); // a word
}

TEST(TextGuid, AHashCodeThatIsCutShortIsASyntaxError) {
    EXPECT_EQ(refusalOf("3F2504E0-4F89-11D3"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[ABCDEFAB-CDEF ]"), syntaxErrorAt(1));
}

// ---- Identities before values ------------------------------------------------------------------

TEST(TextIdentity, AHashCodeAndAValueOnItsLineIsTheValuesIdentity) {
    EXPECT_EQ(intWithIdentity(sample + " 5"), "Int with " + sample);
    EXPECT_EQ(intWithIdentity(sample + " = 5"), "Int with " + sample);
    EXPECT_EQ(intWithIdentity(sample + "=5"), "Int with " + sample);
    EXPECT_EQ(intWithIdentity(sample + " /* note */ 5"), "Int with " + sample);
    EXPECT_EQ(intWithIdentity(decimal + " = 5"), "Int with " + decimal);
    EXPECT_EQ(intWithIdentity(letters + " 5"), "Int with " + letters);
}

TEST(TextIdentity, EveryKindTakesIt) {
    for (const char* value : {"5", "1.5", "true", "\"x\"", "[ 1 ]", "{ a = 1 }", "( )"}) {
        EXPECT_EQ(identityOf(read(sample + " = " + value)), sample) << value;
        EXPECT_EQ(identityOf(at(read("[ " + sample + " " + value + " ]"), 0)), sample) << value;
    }
}

TEST(TextIdentity, TwoHashCodesAreAGuidWithAnIdentity) {
    const auto guid = read(sample + " = " + other + "\n");
    EXPECT_EQ(guid->getType(), KELKind_guid);
    EXPECT_STREQ(guid->toString(), other.c_str());
    EXPECT_EQ(identityOf(guid), sample);
}

TEST(TextIdentity, ThreeHashCodesAreASyntaxError) {
    EXPECT_EQ(refusalOf("[" + sample + " = " + other + " = 5]"), syntaxErrorAt(1));
}

TEST(TextIdentity, OnlyTheValueItStandsBeforeTakesIt) {
    const auto array = read("[ " + sample + " = [ 1 ] 2 ]");
    EXPECT_EQ(identityOf(at(array, 0)), sample);
    EXPECT_NE(identityOf(at(array, 1)), sample);
    EXPECT_NE(identityOf(KEL_Impl::of(asArray(at(array, 0)).getVar(0))), sample);
    EXPECT_NE(identityOf(array), sample);
}

TEST(TextIdentity, InFrontOfNullItIsIgnored) {
    const auto value = read("{ a = " + sample + " = null b = 1 }");
    EXPECT_EQ(at(value, "a"), nullptr);
    EXPECT_NE(identityOf(at(value, "b")), sample);
}

TEST(TextIdentity, ValuesWithoutOneGetAFreshOne) {
    const auto array = read("[ 1 1 ]");
    EXPECT_NE(identityOf(at(array, 0)), identityOf(at(array, 1)));
}

TEST(TextIdentity, MayBeMissingAValueBehindItsEqualsSign) {
    EXPECT_EQ(endingOf(sample + " = "), endAt(1));
    EXPECT_EQ(refusalOf("[" + sample + " = ]"), syntaxErrorAt(1));
}

// ---- Headers -----------------------------------------------------------------------------------

TEST(TextGuid, BeforeTheBracketOfAnotherContainerIsASyntaxError) {
    for (const char* bracket : {")", ">", "}"}) {
        EXPECT_EQ(refusalOf("[ " + sample + bracket), syntaxErrorAt(1)) << bracket;
    }
}

TEST(TextHeader, GivesTheStructItsIdentity) {
    EXPECT_EQ(identityOf(read("{ @hashCode = " + sample + "\n}")), sample);
    EXPECT_EQ(identityOf(read("{ @type = 8, @hashCode = " + decimal + "\n\ta = 1\n}")), decimal);
    EXPECT_EQ(identityOf(read("{@hashCode=" + letters + ",@type=8}")), letters);
}

TEST(TextHeader, IsNoEntry) {
    EXPECT_EQ(rewritten("{ @type = 8, @hashCode = " + sample + "\n\ta = 1\n}"), "{\n\ta = 1\n}\n");
}

TEST(TextHeader, EntriesMayFollowOnItsLine) {
    EXPECT_EQ(rewritten("{ @type = 8 a = 1 @hashCode = 2 }"), "{\n\t@hashCode = 2\n\ta = 1\n}\n");
}

TEST(TextHeader, OnALaterLineItsWordsAreOrdinaryKeys) {
    EXPECT_EQ(rewritten("{\n@type = 50\n@hashCode = \"x\"\n}"),
              "{\n\t@hashCode = \"x\"\n\t@type = 50\n}\n");
    EXPECT_EQ(rewritten("{ // note\n@type = 50 }"), "{\n\t@type = 50\n}\n");
}

TEST(TextHeader, BehindAnEntryItsWordsAreOrdinaryKeys) {
    EXPECT_EQ(rewritten("{ a = 1 @type = 50 }"), "{\n\t@type = 50\n\ta = 1\n}\n");
}

TEST(TextHeader, QuotedItsWordsAreOrdinaryKeys) {
    EXPECT_EQ(rewritten("{ \"@type\" = 50 }"), "{\n\t@type = 50\n}\n");
}

TEST(TextHeader, ADescriptionIsAnOrdinaryEntryEverywhere) {
    EXPECT_EQ(rewritten("{ @desc = \"x\" }"), "{\n\t@desc = \"x\"\n}\n");
    EXPECT_EQ(rewritten("{ @type = 8, @desc = \"x\" }"), "{\n\t@desc = \"x\"\n}\n");
    EXPECT_EQ(rewritten("{\n@desc = \"x\"\n}"), "{\n\t@desc = \"x\"\n}\n");
}

TEST(TextHeader, ATypeOtherThanStructIsASyntaxError) {
    for (const KELKind kind : kel::test::everyKind) {
        if (static_cast<int32_t>(kind) < 50 && kind != KELKind_Struct) {
            const std::string code = std::to_string(static_cast<int32_t>(kind));
            EXPECT_EQ(refusalOf("{ @type = " + code + "\n}"), syntaxErrorAt(1)) << code;
        }
    }
    EXPECT_EQ(refusalOf("{ @type = \"8\"\n}"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @type 8\n}"), syntaxErrorAt(1));
}

TEST(TextHeader, AHashCodeThatIsNoneIsASyntaxError) {
    EXPECT_EQ(refusalOf("{ @hashCode = 5\n}"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @hashCode = \"" + sample + "\"\n}"), syntaxErrorAt(1));
}

TEST(TextHeader, EndOfInputInsideItIsTheEndOfInput) {
    EXPECT_EQ(endingOf("{ @type"), endAt(1));
    EXPECT_EQ(endingOf("{ @type = "), endAt(1));
    EXPECT_EQ(endingOf("{ @hashCode = \n"), endAt(2));
    EXPECT_EQ(endingOf("{ @hashCode = " + sample), endAt(1));
}

TEST(TextHeader, ACommaMayFollowEveryItemOnItsLine) {
    EXPECT_EQ(rewritten("{ @type = 8, @type = 8 , a = 1 }"), "{\n\ta = 1\n}\n");
    EXPECT_EQ(rewritten("{ @type = 8,\n\ta = 1 }"), "{\n\ta = 1\n}\n");
    EXPECT_EQ(rewritten("{ @type = 8 /* c */ , }"), "{\n}\n");
    EXPECT_EQ(refusalOf("{ , @type = 8 }") + refusalOf("{ @type = 8,, a = 1 }"),
              syntaxErrorAt(1) + syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @type = 8\n, a = 1 }"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("{ a = 1, b = 2 }"), syntaxErrorAt(1));
}

TEST(TextHeader, GoesOnWhereAnItemEnds) {
    EXPECT_EQ(identityOf(read("{ @type =\n8, @hashCode = " + sample + " }")), sample);
    EXPECT_EQ(identityOf(read("{ /* a\n*/ @hashCode = " + sample + " }")), sample);
}

TEST(TextHeader, OfARepeatedItemTheLastCounts) {
    EXPECT_EQ(identityOf(read("{ @hashCode = " + other + " @hashCode = " + sample + " }")), sample);
    EXPECT_EQ(read("{ @type = 8 @type = 50 }")->getType(), KELKind_MetaKel);
}

TEST(TextHeader, AnIdentityInFrontOfTheStructWins) {
    EXPECT_EQ(identityOf(read(other + " = { @hashCode = " + sample + "\n}")), other);
}

// ---- Managers ----------------------------------------------------------------------------------

TEST(TextManager, EntriesGetTheirIdentities) {
    const auto manager = read("(\n\t" + sample + " = 5\n\t" + decimal + " = \"x\"\n)\n");
    ASSERT_EQ(asManager(manager).size(), 2);
    EXPECT_EQ(rewritten(textOf(manager)), textOf(manager));
    EXPECT_EQ(textOf(manager), "(\n\t" + sample + " = 5\n\t" + decimal + " = \"x\"\n)\n");
}

TEST(TextManager, EveryFormOfHashCodeIsAKey) {
    for (const std::string& key : {sample, decimal, letters, allDigits, other}) {
        EXPECT_EQ(rewritten("(" + key + "=5)"), "(\n\t" + key + " = 5\n)\n");
    }
}

TEST(TextManager, ANullEntryIsIgnored) {
    EXPECT_EQ(rewritten("( " + sample + " = null )"), "(\n)\n");
}

TEST(TextManager, OfTwoEqualEntriesTheLastWinsInTheFirstOnesPlace) {
    EXPECT_EQ(rewritten("( " + sample + " = 1 " + other + " = 2 " + sample + " = 3 )"),
              "(\n\t" + sample + " = 3\n\t" + other + " = 2\n)\n");
}

TEST(TextManager, AnEntryMayBeAGuid) {
    EXPECT_EQ(rewritten("( " + sample + " = " + other + "\n)"),
              "(\n\t" + sample + " = " + other + "\n)\n");
}

TEST(TextManager, TheZeroIdentityIsAKeyLikeOthers) {
    const std::string zero = "00000000-0000-0000-0000-000000000000";
    EXPECT_EQ(rewritten("( " + zero + " = 1 " + zero + " = 2 )"), "(\n\t" + zero + " = 2\n)\n");
}

/// Returns a manager's entry in its written form, with the identity of a small number.
std::string entryOf(int number, int value) {
    const std::string digits = std::to_string(1000 + number).substr(1);
    return "\t00000000-0000-0000-0000-000000000" + digits + " = " + std::to_string(value) + "\n";
}

TEST(TextManager, TheZeroIdentityIsAKeyLikeOthersAmongMany) {
    for (const int zeroPlace : {0, 20, 39}) {
        std::string entries;
        std::string expected;
        for (int i = 0; i < 40; ++i) {
            entries += entryOf(i == zeroPlace ? 0 : i + 1, 1);
            expected += i == zeroPlace ? entryOf(0, 3) : entryOf(i + 1, 1);
        }
        const std::string text = "(\n" + entries + entryOf(0, 2) + entryOf(0, 3) + ")\n";
        EXPECT_EQ(rewritten(text), "(\n" + expected + ")\n");
    }
}

TEST(TextManager, AKeyThatIsNoHashCodeIsASyntaxError) {
    EXPECT_EQ(refusalOf("( a = 5 )"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("( 5 )"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("( \"" + sample + "\" = 5 )"), syntaxErrorAt(1));
}

TEST(TextManager, AnEntryNeedsAnEqualsSign) {
    EXPECT_EQ(refusalOf("( " + sample + " 5 )"), syntaxErrorAt(1));
    EXPECT_EQ(endingOf("( " + sample + " "), endAt(1));
    EXPECT_EQ(endingOf("( " + sample + " = "), endAt(1));
}

TEST(TextManager, AnEntryCannotHaveASecondIdentity) {
    EXPECT_EQ(refusalOf("( " + sample + " = " + other + " = 5 )"), syntaxErrorAt(1));
}

} // namespace
