// Tests hash codes in text: guids, and identities before values, in headers and in managers.
#include "support/SampleGuids.h"
#include "support/Samples.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

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
    EXPECT_EQ(guidIn(sampleGuid), sampleGuid);
}

TEST(TextGuid, AHashCodeAtALineEndIsAGuid) {
    EXPECT_EQ(guidIn(sampleGuid + "\n5"), sampleGuid);
    EXPECT_EQ(guidIn(sampleGuid + " \t\r\n5"), sampleGuid);
    EXPECT_EQ(guidIn(sampleGuid + "\f5"), sampleGuid);
}

TEST(TextGuid, ACommentBehindAGuidChangesNothing) {
    EXPECT_EQ(guidIn(sampleGuid + " // note\n5"), sampleGuid);
    EXPECT_EQ(guidIn(sampleGuid + " /* note */"), sampleGuid);
}

TEST(TextGuid, AHashCodeBeforeAClosingBracketIsAGuid) {
    EXPECT_EQ(rewritten("[" + sampleGuid + "]"), "[\n\t" + sampleGuid + "\n]\n");
    EXPECT_EQ(rewritten("{a = " + sampleGuid + " }"), "{\n\ta = " + sampleGuid + "\n}\n");
    EXPECT_EQ(rewritten("(" + otherGuid + " = " + sampleGuid + ")"),
              "(\n\t" + otherGuid + " = " + sampleGuid + "\n)\n");
}

TEST(TextGuid, GuidsOnLinesOfTheirOwnAreElements) {
    const std::string text =
        "[\n\t" + sampleGuid + "\n\t" + letterGuid + "\n\t" + decimalGuid + "\n]\n";
    EXPECT_EQ(rewritten(text), text);
}

TEST(TextGuid, EightDecimalDigitsAndADashBeginAGuid) {
    EXPECT_EQ(guidIn(decimalGuid), decimalGuid);
    EXPECT_EQ(guidIn(digitGuid), digitGuid);
    EXPECT_EQ(guidIn("00000000-0000-0000-0000-000000000000"),
              "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(rewritten("{ a = " + decimalGuid + "\n}"), "{\n\ta = " + decimalGuid + "\n}\n");
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
    EXPECT_EQ(guidIn("3f2504e0-4f89-11d3-9a0c-0305e82c3301"), sampleGuid);
    EXPECT_EQ(guidIn("abcdefab-cdef-abcd-efab-cdefabcdefab"), letterGuid);
}

TEST(TextGuid, DashesMayStandAnywhereButNotNowhere) {
    EXPECT_EQ(guidIn("3F2504E04F8911D39A0C0305E82C330-1"), sampleGuid);
    EXPECT_EQ(refusalOf("AF2504E04F8911D39A0C0305E82C3301"), syntaxErrorAt(1)); // a word
}

TEST(TextGuid, AHashCodeThatIsCutShortIsASyntaxError) {
    EXPECT_EQ(refusalOf("3F2504E0-4F89-11D3"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[ABCDEFAB-CDEF ]"), syntaxErrorAt(1));
}

// ---- Identities before values ------------------------------------------------------------------

TEST(TextIdentity, AHashCodeAndAValueOnItsLineIsTheValuesIdentity) {
    EXPECT_EQ(intWithIdentity(sampleGuid + " 5"), "Int with " + sampleGuid);
    EXPECT_EQ(intWithIdentity(sampleGuid + " = 5"), "Int with " + sampleGuid);
    EXPECT_EQ(intWithIdentity(sampleGuid + "=5"), "Int with " + sampleGuid);
    EXPECT_EQ(intWithIdentity(sampleGuid + " /* note */ 5"), "Int with " + sampleGuid);
    EXPECT_EQ(intWithIdentity(decimalGuid + " = 5"), "Int with " + decimalGuid);
    EXPECT_EQ(intWithIdentity(letterGuid + " 5"), "Int with " + letterGuid);
}

TEST(TextIdentity, EveryKindTakesIt) {
    for (const char* value : {"5", "1.5", "true", "\"x\"", "[ 1 ]", "{ a = 1 }", "( )"}) {
        EXPECT_EQ(identityOf(read(sampleGuid + " = " + value)), sampleGuid) << value;
        EXPECT_EQ(identityOf(at(read("[ " + sampleGuid + " " + value + " ]"), 0)), sampleGuid)
            << value;
    }
}

TEST(TextIdentity, TwoHashCodesAreAGuidWithAnIdentity) {
    const auto guid = read(sampleGuid + " = " + otherGuid + "\n");
    EXPECT_EQ(guid->getType(), KELKind_guid);
    EXPECT_STREQ(guid->toString(), otherGuid.c_str());
    EXPECT_EQ(identityOf(guid), sampleGuid);
}

TEST(TextIdentity, ThreeHashCodesAreASyntaxError) {
    EXPECT_EQ(refusalOf("[" + sampleGuid + " = " + otherGuid + " = 5]"), syntaxErrorAt(1));
}

TEST(TextIdentity, OnlyTheValueItStandsBeforeTakesIt) {
    const auto array = read("[ " + sampleGuid + " = [ 1 ] 2 ]");
    EXPECT_EQ(identityOf(at(array, 0)), sampleGuid);
    EXPECT_NE(identityOf(at(array, 1)), sampleGuid);
    EXPECT_NE(identityOf(KEL_Impl::of(asArray(at(array, 0)).getVar(0))), sampleGuid);
    EXPECT_NE(identityOf(array), sampleGuid);
}

TEST(TextIdentity, InFrontOfNullItIsIgnored) {
    const auto value = read("{ a = " + sampleGuid + " = null b = 1 }");
    EXPECT_EQ(at(value, "a"), nullptr);
    EXPECT_NE(identityOf(at(value, "b")), sampleGuid);
}

TEST(TextIdentity, ValuesWithoutOneGetAFreshOne) {
    const auto array = read("[ 1 1 ]");
    EXPECT_NE(identityOf(at(array, 0)), identityOf(at(array, 1)));
}

TEST(TextIdentity, MayBeMissingAValueBehindItsEqualsSign) {
    EXPECT_EQ(endingOf(sampleGuid + " = "), endAt(1));
    EXPECT_EQ(refusalOf("[" + sampleGuid + " = ]"), syntaxErrorAt(1));
}

// ---- Headers -----------------------------------------------------------------------------------

TEST(TextGuid, BeforeTheBracketOfAnotherContainerIsASyntaxError) {
    for (const char* bracket : {")", ">", "}"}) {
        EXPECT_EQ(refusalOf("[ " + sampleGuid + bracket), syntaxErrorAt(1)) << bracket;
    }
}

TEST(TextHeader, GivesTheStructItsIdentity) {
    EXPECT_EQ(identityOf(read("{ @hashCode = " + sampleGuid + "\n}")), sampleGuid);
    EXPECT_EQ(identityOf(read("{ @type = 8, @hashCode = " + decimalGuid + "\n\ta = 1\n}")),
              decimalGuid);
    EXPECT_EQ(identityOf(read("{@hashCode=" + letterGuid + ",@type=8}")), letterGuid);
}

TEST(TextHeader, IsNoEntry) {
    EXPECT_EQ(rewritten("{ @type = 8, @hashCode = " + sampleGuid + "\n\ta = 1\n}"),
              "{\n\ta = 1\n}\n");
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
    EXPECT_EQ(refusalOf("{ @hashCode = \"" + sampleGuid + "\"\n}"), syntaxErrorAt(1));
}

TEST(TextHeader, EndOfInputInsideItIsTheEndOfInput) {
    EXPECT_EQ(endingOf("{ @type"), endAt(1));
    EXPECT_EQ(endingOf("{ @type = "), endAt(1));
    EXPECT_EQ(endingOf("{ @hashCode = \n"), endAt(2));
    EXPECT_EQ(endingOf("{ @hashCode = " + sampleGuid), endAt(1));
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
    EXPECT_EQ(identityOf(read("{ @type =\n8, @hashCode = " + sampleGuid + " }")), sampleGuid);
    EXPECT_EQ(identityOf(read("{ /* a\n*/ @hashCode = " + sampleGuid + " }")), sampleGuid);
}

TEST(TextHeader, OfARepeatedItemTheLastCounts) {
    EXPECT_EQ(identityOf(read("{ @hashCode = " + otherGuid + " @hashCode = " + sampleGuid + " }")),
              sampleGuid);
    EXPECT_EQ(read("{ @type = 8 @type = 50 }")->getType(), KELKind_MetaKel);
}

TEST(TextHeader, AnIdentityInFrontOfTheStructWins) {
    EXPECT_EQ(identityOf(read(otherGuid + " = { @hashCode = " + sampleGuid + "\n}")), otherGuid);
}

// ---- Managers ----------------------------------------------------------------------------------

TEST(TextManager, EntriesGetTheirIdentities) {
    const auto manager = read("(\n\t" + sampleGuid + " = 5\n\t" + decimalGuid + " = \"x\"\n)\n");
    ASSERT_EQ(asManager(manager).size(), 2);
    EXPECT_EQ(rewritten(textOf(manager)), textOf(manager));
    EXPECT_EQ(textOf(manager), "(\n\t" + sampleGuid + " = 5\n\t" + decimalGuid + " = \"x\"\n)\n");
}

TEST(TextManager, EveryFormOfHashCodeIsAKey) {
    for (const std::string& key : {sampleGuid, decimalGuid, letterGuid, digitGuid, otherGuid}) {
        EXPECT_EQ(rewritten("(" + key + "=5)"), "(\n\t" + key + " = 5\n)\n");
    }
}

TEST(TextManager, ANullEntryIsIgnored) {
    EXPECT_EQ(rewritten("( " + sampleGuid + " = null )"), "(\n)\n");
}

TEST(TextManager, OfTwoEqualEntriesTheLastWinsInTheFirstOnesPlace) {
    EXPECT_EQ(rewritten("( " + sampleGuid + " = 1 " + otherGuid + " = 2 " + sampleGuid + " = 3 )"),
              "(\n\t" + sampleGuid + " = 3\n\t" + otherGuid + " = 2\n)\n");
}

TEST(TextManager, AnEntryMayBeAGuid) {
    EXPECT_EQ(rewritten("( " + sampleGuid + " = " + otherGuid + "\n)"),
              "(\n\t" + sampleGuid + " = " + otherGuid + "\n)\n");
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
    EXPECT_EQ(refusalOf("( \"" + sampleGuid + "\" = 5 )"), syntaxErrorAt(1));
}

TEST(TextManager, AnEntryNeedsAnEqualsSign) {
    EXPECT_EQ(refusalOf("( " + sampleGuid + " 5 )"), syntaxErrorAt(1));
    EXPECT_EQ(endingOf("( " + sampleGuid + " "), endAt(1));
    EXPECT_EQ(endingOf("( " + sampleGuid + " = "), endAt(1));
}

TEST(TextManager, AnEntryCannotHaveASecondIdentity) {
    EXPECT_EQ(refusalOf("( " + sampleGuid + " = " + otherGuid + " = 5 )"), syntaxErrorAt(1));
}

} // namespace
