// Definitions: "#define NAME text", and NAME instead of a value.
#include "support/AllocationFailure.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

TEST(TextDefinition, ANameStandsForItsText) {
    EXPECT_EQ(rewritten("#define N 5\nN"), "5\n");
    EXPECT_EQ(rewritten("#define N \"a b\"\n[ N 1 N ]"), "[\n\t\"a b\"\n\t1\n\t\"a b\"\n]\n");
    EXPECT_EQ(rewritten("#define N { a = [ 1 ] }\n{ x = N }"),
              "{\n\tx = {\n\t\ta = [\n\t\t\t1\n\t\t]\n\t}\n}\n");
}

TEST(TextDefinition, EveryUseMakesAValueAfresh) {
    const auto array = read("#define N 5\n[ N N ]");
    EXPECT_NE(at(array, 0), at(array, 1));
    EXPECT_NE(identityOf(at(array, 0)), identityOf(at(array, 1)));
}

TEST(TextDefinition, MayStandWhereverAValueMayBegin) {
    const std::string code = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    EXPECT_EQ(rewritten("[ 1\n#define N 5\nN ]"), "[\n\t1\n\t5\n]\n");
    EXPECT_EQ(rewritten("{ a = #define N 5\nN }"), "{\n\ta = 5\n}\n");
    EXPECT_EQ(identityOf(read(code + " #define N 5\nN")), code);
    EXPECT_EQ(identityOf(read(code + " = #define N 5\nN")), code);
    EXPECT_EQ(rewritten("( " + code + " = #define N 5\nN )"), "(\n\t" + code + " = 5\n)\n");
}

TEST(TextDefinition, MayStandBeforeTheBracketThatClosesAnArrayOrAnIndexList) {
    EXPECT_EQ(rewritten("[ #define N 5\n]"), "[\n]\n");
    EXPECT_EQ(rewritten("[ 1 #define N 5\n #define M 6\n]"), "[\n\t1\n]\n");
    EXPECT_EQ(read("< #define N [ ]\n N #define M [ ]\n M #define O 5\n>")->getType(),
              KELKind_IndexList);
}

TEST(TextDefinition, ReplacesNoValueThatMustFollow) {
    EXPECT_EQ(refusalOf("{ a = #define N 5\n}"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("[ 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = #define N 5\n]"),
              syntaxErrorAt(2));
}

TEST(TextDefinition, IsNoValue) {
    EXPECT_EQ(endingOf("#define N 5\n"), endAt(2));
    EXPECT_EQ(endingOf("#define N 5"), endAt(1));
}

TEST(TextDefinition, InThePlaceOfAKeyOrAnEntryIsASyntaxError) {
    EXPECT_EQ(refusalOf("{ #define N 5\n a = N }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ a = 1 #define N 5\n }"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("( #define N 5\n )"), syntaxErrorAt(1));
}

TEST(TextDefinition, OtherWordsBehindTheSignAreSyntaxErrors) {
    EXPECT_EQ(refusalOf("#include"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#include \"x\""), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#Define N 5\nN"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#5"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#\ndefine N 5\nN"), syntaxErrorAt(1));
}

TEST(TextDefinition, NeedsTwoWordsOnItsLine) {
    EXPECT_EQ(refusalOf("#define 5 5\n5"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#define\nN 5\nN"), syntaxErrorAt(1));
    for (const char* text : {"#", "# ", "#define", "#define // N", "[ #", "[ #define"}) {
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(1)) << text;
    }
}

TEST(TextDefinition, ItsWordsMayBeQuoted) {
    EXPECT_EQ(rewritten("#\"define\" \"N\" 5\nN"), "5\n");
    EXPECT_EQ(rewritten("#define \"N\" 5\n\"N\""), "\"N\"\n");
}

// ---- Where the text begins and ends ------------------------------------------------------------

TEST(TextDefinition, TheTextEndsBeforeTheLineEnd) {
    EXPECT_EQ(rewritten("#define N 5\r\n[ N ]"), "[\n\t5\n]\n");
    EXPECT_EQ(rewritten("#define N 5\f[ N ]"), "[\n\t5\n]\n");
    EXPECT_EQ(refusalOf("#define N [ 1\n[ N 2 ]"), syntaxErrorAt(2));
}

TEST(TextDefinition, TheTextBeginsAtTheFirstCharacterThatIsNotBlank) {
    EXPECT_EQ(rewritten("#define N \t 5\nN"), "5\n");
    EXPECT_EQ(rewritten("#define N\n\r\n \t5\nN"), "5\n");
}

TEST(TextDefinition, TheTextMayBeginWithABracketOnALaterLine) {
    EXPECT_EQ(endingOf("[ #define N\n]"), endAt(2));
    EXPECT_EQ(rewritten("[ #define N\n]\n]"), "[\n]\n");
}

TEST(TextDefinition, AtTheEndOfInputItsTextIsEmpty) {
    EXPECT_EQ(endingOf("#define N"), endAt(1));
    EXPECT_EQ(endingOf("#define N \n"), endAt(2));
    EXPECT_EQ(endingOf("[ #define N"), endAt(1));
}

TEST(TextDefinition, LinesAreCountedOnThroughADefinition) {
    EXPECT_EQ(refusalOf("#define N 5\n#define M\n\n7\n?"), syntaxErrorAt(5));
    EXPECT_EQ(refusalOf("#define N\f#define M 7\n?"), syntaxErrorAt(3));
}

TEST(TextDefinition, BlanksAndCommentsMayEndTheText) {
    EXPECT_EQ(rewritten("#define N 5 \t // five\nN"), "5\n");
    EXPECT_EQ(rewritten("#define N /* five */ 5 /* ! */\nN"), "5\n");
}

TEST(TextDefinition, AQuoteMustBeClosedOnItsLine) {
    EXPECT_EQ(thrownMessage<TokenizerException>([] { read("#define N \"a\nN"); }),
              "Reached end of file with no closing quote.");
}

// ---- Uses --------------------------------------------------------------------------------------

TEST(TextDefinition, AnUnknownNameIsASyntaxError) {
    EXPECT_EQ(refusalOf("N"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("#define N 5\nn"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("N\n#define N 5\n"), syntaxErrorAt(1));
}

TEST(TextDefinition, KeywordsAreNeverLookedUp) {
    EXPECT_EQ(rewritten("#define true 5\ntrue"), "true\n");
    EXPECT_EQ(read("#define null 5\nnull").get(), nullptr);
}

TEST(TextDefinition, ALaterDefinitionReplacesTheFormer) {
    EXPECT_EQ(rewritten("#define N 5\n[ N\n#define N 6\nN ]"), "[\n\t5\n\t6\n]\n");
}

TEST(TextDefinition, LastsAsLongAsTheStream) {
    TextInput input("#define N 5\n1 N N");
    input.read();
    EXPECT_EQ(input.read()->toInt(), 5);
    EXPECT_EQ(input.read()->toInt(), 5);
}

TEST(TextDefinition, MayUseOthersAlsoThoseDefinedLater) {
    EXPECT_EQ(rewritten("#define A [ B B ]\n#define B 7\nA"), "[\n\t7\n\t7\n]\n");
}

TEST(TextDefinition, MayBeNull) {
    EXPECT_EQ(rewritten("#define N null\n[ 1 N 2 ]"), "[\n\t1\n\t2\n]\n");
    EXPECT_EQ(rewritten("#define N null\n{ a = N }"), "{\n\ta = NULL\n}\n");
}

TEST(TextDefinition, MayBeAGuid) {
    const std::string guid = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    EXPECT_EQ(rewritten("#define N " + guid + "\n[ N N ]"),
              "[\n\t" + guid + "\n\t" + guid + "\n]\n");
}

TEST(TextDefinition, MayGiveOrTakeAnIdentity) {
    const std::string code = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    EXPECT_EQ(identityOf(read("#define N " + code + " = 5\nN")), code);
    EXPECT_EQ(identityOf(read("#define N 5\n" + code + " = N")), code);
    EXPECT_EQ(identityOf(read("#define N [ 5 ]\n" + code + " N")), code);
    EXPECT_EQ(refusalOf("#define N " + code + " = 5\n" + code + " = N"), syntaxErrorAt(2));
}

TEST(TextDefinition, MayReferToAValue) {
    const std::string code = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    const auto array = read("#define N REF " + code + "\n[ " + code + " = 5 N ]");
    EXPECT_EQ(at(array, 0), at(array, 1));
}

TEST(TextDefinition, IsNoKeyAndNoEntry) {
    EXPECT_EQ(rewritten("#define N 5\n{ N = N }"), "{\n\tN = 5\n}\n");
    EXPECT_EQ(refusalOf("#define N 3F2504E0-4F89-11D3-9A0C-0305E82C3301\n( N = 5 )"),
              syntaxErrorAt(2));
}

// ---- One whole value ---------------------------------------------------------------------------

TEST(TextDefinition, AnythingLeftOverInTheTextIsASyntaxError) {
    EXPECT_EQ(refusalOf("#define N 5 6\nN"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define N 5 ]\n[ N"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define N null ?\nN"), syntaxErrorAt(2));
}

TEST(TextDefinition, ATextThatEndsTooEarlyIsASyntaxError) {
    EXPECT_EQ(refusalOf("#define N [ 1\nN ]"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define N // nothing\nN"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define N REF\nN"), syntaxErrorAt(2));
}

TEST(TextDefinition, ADefinitionInsideADefinitionHasNoValueLeft) {
    EXPECT_EQ(refusalOf("#define N #define M 5\nN"), syntaxErrorAt(2));
}

TEST(TextDefinition, AnEmptyTextIsASyntaxErrorWhenItIsUsed) {
    EXPECT_EQ(refusalOf("#define N\f[ N ]"), syntaxErrorAt(2));
}

TEST(TextDefinition, ATextThatIsNeverUsedIsNeverRead) {
    EXPECT_EQ(rewritten("#define N ] ? \"\n1"), "1\n");
}

TEST(TextDefinition, IsReadOnAfterAFailedUse) {
    TextInput input("#define N [ 5 ?\nN\nN 7");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(3));
    EXPECT_EQ(input.read()->toInt(), 7);
}

TEST(TextDefinition, TypedReadsGoOnInTheStreamAfterAFailedUse) {
    TextInput input("#define N [ ? 5 ]\nN 7 word");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2));
    EXPECT_EQ(input->JRead32(), 7);
    const Held<JString> word(input->JReadString());
    EXPECT_STREQ(word->chars(), "word");
}

// ---- Recursion and bounds ----------------------------------------------------------------------

TEST(TextDefinition, InsideItselfItIsASyntaxError) {
    EXPECT_EQ(refusalOf("#define N N\nN"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define N [ N ]\nN"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("#define A B\n#define B { a = A }\nA"), syntaxErrorAt(3));
}

TEST(TextDefinition, CannotBeReplacedWhileItIsExpanded) {
    EXPECT_EQ(refusalOf("#define N #define N 5\nN"), syntaxErrorAt(2));
}

std::string numbered(const char* letter, int number) {
    return std::string(letter).append(std::to_string(number));
}

/// Returns a definition that makes 2 to the power of levels values from a few lines.
std::string doublings(int levels) {
    std::string text = "#define D0 [ ]\n";
    for (int i = 1; i <= levels; ++i) {
        const std::string below = numbered("D", i - 1);
        text.append("#define ").append(numbered("D", i));
        text.append(" [ ").append(below).append(" ").append(below).append(" ]\n");
    }
    return text + numbered("D", levels);
}

TEST(TextDefinition, AShortChainOfDoublingsIsExecuted) {
    auto value = read(doublings(10));
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(asArray(value).getCount(), 2);
        KEL_Impl* inner = at(value, 0);
        inner->addRef();
        value = HeldValue(inner);
    }
    EXPECT_EQ(asArray(value).getCount(), 0);
}

TEST(TextDefinition, ALongChainOfDoublingsIsRefused) {
    const AllocationBudget budget(std::size_t{1} << 30);
    EXPECT_EQ(refusalOf(doublings(30)), syntaxErrorAt(32));
    EXPECT_EQ(refusalOf(doublings(64)), syntaxErrorAt(66));
}

/// Returns definitions in which each name stands for the next one, so that all expansions are
/// nested.
std::string chain(int length) {
    std::string text = "#define C0 5\n";
    for (int i = 1; i <= length; ++i) {
        text.append("#define ").append(numbered("C", i)).append(" ");
        text.append(numbered("C", i - 1)).append("\n");
    }
    return text + numbered("C", length);
}

TEST(TextDefinition, AChainOfNamesIsFollowed) {
    EXPECT_EQ(rewritten(chain(1000)), "5\n");
}

TEST(TextDefinition, AChainOfNamesTakesMemoryInProportionToItsText) {
    const std::string text = chain(50000); // about a megabyte
    const AllocationBudget budget(64 * text.size());
    const std::string message = refusalOf(text);
    EXPECT_TRUE(message == "(nothing thrown)" || message == syntaxErrorAt(50002)) << message;
}

} // namespace
