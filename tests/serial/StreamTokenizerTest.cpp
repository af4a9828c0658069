#include "serial/StreamTokenizer.h"

#include "platform/Memory.h"
#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"
#include "runtime/Text.h"
#include "serial/NewlineFSM.h"
#include "serial/WhitespaceFSM.h"
#include "serial/WordFSM.h"
#include "streams/StringReader.h"
#include "support/Bytes.h"
#include "support/CommaLocale.h"
#include "support/PieceStream.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

JPointer<JInputStream> reader(const std::string& text) {
    return JPointer<JInputStream>(
        new StringReader(text.data(), static_cast<int64_t>(text.size())));
}

// A token as "type:value".
std::string describe(StreamTokenizer& tokenizer, int32_t type) {
    std::string out = std::to_string(type);
    const kel::Token& token = tokenizer.token();
    switch (type) {
    case kel::tokenComment:
    case kel::tokenWord:
        return out + (token.quoted ? ":\"" : ":") + std::string(token.text);
    case kel::tokenInteger:
        return out + ":" + std::to_string(token.integer);
    case kel::tokenFloating: {
        char text[kel::doubleTextSize];
        kel::formatDouble(text, token.floating);
        return out + ":" + text;
    }
    case kel::tokenHashCode: {
        char guid[JHashCode::guidTextLength + 1];
        token.hashCode.toGuidText(guid);
        return out + ":" + guid;
    }
    default:
        return out;
    }
}

// The standard recognisers, by the machines and by the scanner.
class Tokens : public ::testing::TestWithParam<bool> {
protected:
    // All tokens up to the end or the first place where nothing matches, with bars between.
    std::string tokens(const std::string& text) {
        StreamTokenizer tokenizer(reader(text));
        prepare(tokenizer);
        std::string out;
        int32_t type = 1;
        while (type > 0) {
            type = tokenizer.nextToken();
            out += out.empty() ? "" : "|";
            out += describe(tokenizer, type);
        }
        return out;
    }

    void prepare(StreamTokenizer& tokenizer) const {
        tokenizer.addStandardRecognisers();
        tokenizer.setLiteral(GetParam());
    }
};

INSTANTIATE_TEST_SUITE_P(Both, Tokens, ::testing::Values(true, false),
                         [](const auto& path) { return path.param ? "Machines" : "Scanner"; });

TEST_P(Tokens, WordsAndBlanks) { EXPECT_EQ(tokens("abc def"), "6:abc|5|6:def|0"); }

TEST_P(Tokens, NothingIsTheEnd) { EXPECT_EQ(tokens(""), "0"); }

TEST_P(Tokens, AQuotedWordIsOneToken) {
    EXPECT_EQ(tokens("\"a b-c\""), "6:\"a b-c|0");
    EXPECT_EQ(tokens("\"\""), "6:\"|0");
    EXPECT_EQ(tokens("\"\\\"a"), "6:\"\\|6:a|0");
}

TEST_P(Tokens, AQuotedWordKeepsNulsAndHighBytes) {
    EXPECT_EQ(tokens(bytes("\"a\0\xFF\"")), bytes("6:\"a\0\xFF|0"));
}

TEST_P(Tokens, AQuoteThatIsNotClosedThrowsAtTheEnd) {
    StreamTokenizer tokenizer(reader("ab \"abc"));
    prepare(tokenizer);
    tokenizer.nextToken();
    tokenizer.nextToken();
    EXPECT_EQ(thrownMessage<TokenizerException>([&] { tokenizer.nextToken(); }),
              "Reached end of file with no closing quote.");
    EXPECT_EQ(tokenizer.input().position(), 7);
    EXPECT_EQ(thrownMessage<TokenizerException>([&] { tokenizer.getValue(); }),
              "Error reading tokens");
}

TEST_P(Tokens, Integers) {
    EXPECT_EQ(tokens("-7"), "3:-7|0");
    EXPECT_EQ(tokens("007"), "3:7|0");
    EXPECT_EQ(tokens("1-2"), "3:1|3:-2|0");
    EXPECT_EQ(tokens("-"), "3:0|0");
    EXPECT_EQ(tokens("99999999999"), "3:1215752191|0");
}

TEST_P(Tokens, HexadecimalIntegers) {
    EXPECT_EQ(tokens("0x1f"), "3:31|0");
    EXPECT_EQ(tokens("0X1F"), "3:0|6:X1F|0");
    EXPECT_EQ(tokens("-0x1f"), "3:0|6:x1f|0");
    EXPECT_EQ(tokens("00x1"), "3:0|6:x1|0");
    EXPECT_EQ(tokens("0xz"), "3:0|6:z|0");
}

TEST_P(Tokens, FloatingNumbers) {
    EXPECT_EQ(tokens("12.5"), "4:12.500000|0");
    EXPECT_EQ(tokens("-.25"), "4:-0.250000|0");
    EXPECT_EQ(tokens("1.-2"), "4:1.000000|3:-2|0");
}

TEST_P(Tokens, ThereIsNoExponent) {
    EXPECT_EQ(tokens("12e3"), "-1");
    EXPECT_EQ(tokens("1.5e3"), "-1");
}

TEST_P(Tokens, NoNumberIsDirectlyBeforeAHexadecimalLetter) {
    EXPECT_EQ(tokens("12ab"), "-1");
    EXPECT_EQ(tokens("12gh"), "3:12|6:gh|0");
    EXPECT_EQ(tokens("1.2.3"), "-1");
}

TEST_P(Tokens, ALineCommentLeavesItsLineEnd) {
    EXPECT_EQ(tokens("// note\n"), "2: note|1|0");
    EXPECT_EQ(tokens("//"), "2:|0");
}

TEST_P(Tokens, BlockComments) {
    EXPECT_EQ(tokens("/*a\nb*/1"), "2:a\nb|3:1|0");
    EXPECT_EQ(tokens("/* a **/ b */"), "2: a **/ b |0");
    EXPECT_EQ(tokens("/***/*/"), "2:**/|0");
    EXPECT_EQ(tokens("/*** /***/"), "2:** /**|0");
}

TEST_P(Tokens, AnOpenBlockCommentMatchesNothing) {
    EXPECT_EQ(tokens("1/* a"), "3:1|-1");
    EXPECT_EQ(tokens("/*/"), "-1");
}

TEST_P(Tokens, LineEnds) {
    EXPECT_EQ(tokens("\n\f\r\n"), "1|1|1|0");
    EXPECT_EQ(tokens("\r"), "-1");
    EXPECT_EQ(tokens("\rx"), "-1");
}

TEST_P(Tokens, HashCodes) {
    EXPECT_EQ(tokens("3F2504E0-4F89-11D3-9A0C-0305E82C3301"),
              "7:3F2504E0-4F89-11D3-9A0C-0305E82C3301|0");
    EXPECT_EQ(tokens("abcdef01-4f89-11d3-9a0c-0305e82c3301="),
              "7:ABCDEF01-4F89-11D3-9A0C-0305E82C3301|-1");
}

TEST_P(Tokens, WithoutDashesItIsAWordOrANumber) {
    EXPECT_EQ(tokens("abcdef0123456789abcdef0123456789"),
              "6:abcdef0123456789abcdef0123456789|0");
    EXPECT_EQ(tokens("3F2504E04F8911D39A0C0305E82C3301"), "-1");
    EXPECT_EQ(tokens("00000000000000000000000000000012"), "3:12|0");
}

TEST_P(Tokens, EightDecimalDigitsAndADashAreANumber) {
    EXPECT_EQ(tokens("12345678-4F89"), "3:12345678|-1");
}

TEST_P(Tokens, ADashAndThirtyTwoDigitsAreAHashCode) {
    EXPECT_EQ(tokens("-00000001000200030405060708091011x"),
              "7:00000001-0002-0003-0405-060708091011|6:x|0");
}

TEST_P(Tokens, AWordBeforeAQuoteOrADashMatchesNothing) {
    EXPECT_EQ(tokens("abc\"d\""), "-1");
    EXPECT_EQ(tokens("xyz-1"), "-1");
    EXPECT_EQ(tokens("abc-1"), "-1");
}

TEST_P(Tokens, OtherCharactersMatchNothing) {
    for (const char* text : {"{", "=", "#", "\xFF", "\x80", "'", "\\", "/ "}) {
        EXPECT_EQ(tokens(text), "-1") << text;
    }
    EXPECT_EQ(tokens(bytes("\0")), "-1");
}

TEST_P(Tokens, AnAtSignStandsOnlyInFrontOfAWord) { EXPECT_EQ(tokens("a@b"), "6:a|6:@b|0"); }

TEST_P(Tokens, NothingIsUsedWhereNothingMatches) {
    StreamTokenizer tokenizer(reader("a12\r12e3"));
    prepare(tokenizer);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.input().position(), 3);
    EXPECT_EQ(tokenizer.nextRaw(), '\r');
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.nextRaw(), '1');
}

TEST_P(Tokens, TheEndComesAgainAndAgain) {
    StreamTokenizer tokenizer(reader("a"));
    prepare(tokenizer);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.nextToken(), 0);
    EXPECT_EQ(tokenizer.nextToken(), 0);
    EXPECT_EQ(tokenizer.nextRaw(), -1);
}

TEST_P(Tokens, TellsWhereATokenBegan) {
    StreamTokenizer tokenizer(reader("ab  12"));
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.tokenStart(), 0);
    tokenizer.nextToken();
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.tokenStart(), 2);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.tokenStart(), 4);
}

TEST_P(Tokens, BeginsWhereTheStreamStands) {
    const JPointer<JInputStream> input = reader("abc def");
    input->JSeek(4);
    StreamTokenizer tokenizer(input);
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.nextToken(), 6);
    EXPECT_EQ(tokenizer.token().text, "def");
    EXPECT_EQ(tokenizer.tokenStart(), 4);
}

TEST_P(Tokens, ValuesAreObjects) {
    StreamTokenizer tokenizer(reader("12 .5 x \"y\"/*z*/"
                                     "3F2504E0-4F89-11D3-9A0C-0305E82C3301"));
    prepare(tokenizer);
    const auto next = [&] {
        tokenizer.nextToken();
        return tokenizer.getValue();
    };
    EXPECT_EQ(dynamic_cast<JInteger&>(*next()).intValue(), 12);
    EXPECT_STREQ(dynamic_cast<JString&>(*next()).chars(), " ");
    EXPECT_EQ(dynamic_cast<JDouble&>(*next()).doubleValue(), 0.5);
    next();
    const JPointer<JObject> bare = next();
    EXPECT_STREQ(dynamic_cast<JString&>(*bare).chars(), "x");
    EXPECT_FALSE(dynamic_cast<JString&>(*bare).isQuoted());
    next();
    const JPointer<JObject> quoted = next();
    EXPECT_STREQ(dynamic_cast<JString&>(*quoted).chars(), "y");
    EXPECT_TRUE(dynamic_cast<JString&>(*quoted).isQuoted());
    EXPECT_STREQ(dynamic_cast<JString&>(*next()).chars(), "z");
    EXPECT_EQ(dynamic_cast<JInt128&>(*next()).int128().w0, 0x3F2504E0U);
}

TEST_P(Tokens, AskingTwiceGivesTheSameObject) {
    StreamTokenizer tokenizer(reader("abc"));
    prepare(tokenizer);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.getValue().get(), tokenizer.getValue().get());
}

TEST_P(Tokens, AValueOutlivesItsToken) {
    StreamTokenizer tokenizer(reader("abc def"));
    prepare(tokenizer);
    tokenizer.nextToken();
    const JPointer<JObject> value = tokenizer.getValue();
    tokenizer.nextToken();
    EXPECT_STREQ(dynamic_cast<JString&>(*value).chars(), "abc");
    EXPECT_EQ(value->getRefCount(), 1);
}

TEST_P(Tokens, ThereIsNoValueBeforeATokenAfterANewlineAndAtTheEnd) {
    StreamTokenizer tokenizer(reader("a\n"));
    prepare(tokenizer);
    const auto failure = [&] {
        return thrownMessage<TokenizerException>([&] { tokenizer.getValue(); });
    };
    EXPECT_EQ(failure(), "Error reading tokens");
    tokenizer.nextToken();
    tokenizer.nextToken();
    EXPECT_EQ(failure(), "Error reading tokens") << "after the newline";
    tokenizer.nextToken();
    EXPECT_EQ(failure(), "Error reading tokens") << "at the end";
}

TEST_P(Tokens, SolidTokensCountTheNewlinesBeforeThem) {
    StreamTokenizer tokenizer(reader(" \t\n\f x\r\n/* a\n */\n // b\n 7 \r"));
    prepare(tokenizer);
    int32_t line = 1;
    EXPECT_EQ(tokenizer.nextSolidToken(line), 6);
    EXPECT_EQ(line, 3);
    EXPECT_EQ(tokenizer.nextSolidToken(line), 3);
    EXPECT_EQ(line, 6) << "the newline inside the comment is not counted";
    EXPECT_EQ(tokenizer.nextSolidToken(line), -1);
    EXPECT_EQ(tokenizer.nextRaw(), '\r');
    EXPECT_EQ(tokenizer.nextSolidToken(line), 0);
    EXPECT_EQ(line, 6);
}

TEST_P(Tokens, ReadsAHashCodeOnRequest) {
    StreamTokenizer tokenizer(reader("12345678-4F89-11D3-9A0C-0305E82C3301 abc"));
    prepare(tokenizer);
    JHashCode hashCode;
    EXPECT_TRUE(tokenizer.readHashCode(hashCode));
    EXPECT_EQ(hashCode.w0, 0x12345678U);
    EXPECT_EQ(tokenizer.input().position(), 36);
    EXPECT_FALSE(tokenizer.readHashCode(hashCode));
    EXPECT_EQ(tokenizer.input().position(), 36);
}

TEST_P(Tokens, AHashCodeThatIsCutAnywhereIsNone) {
    const std::string whole = "12345678-4F89-11D3-9A0C-0305E82C3301";
    for (size_t length = 0; length < whole.size(); ++length) {
        StreamTokenizer tokenizer(reader(whole.substr(0, length)));
        JHashCode hashCode(7);
        EXPECT_FALSE(tokenizer.readHashCode(hashCode));
        EXPECT_EQ(hashCode, JHashCode(7));
        EXPECT_EQ(tokenizer.input().position(), 0);
    }
}

TEST_P(Tokens, ReadsAKeyOnRequest) {
    StreamTokenizer tokenizer(reader("9lives_a@1 = 0"));
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.readKeyRun(), "9lives_a@1");
    EXPECT_EQ(tokenizer.readKeyRun(), "");
    EXPECT_EQ(tokenizer.input().position(), 10);
    EXPECT_EQ(tokenizer.nextRaw(), ' ');
}

TEST_P(Tokens, AKeyMayEndTheInput) {
    StreamTokenizer tokenizer(reader("abc"));
    EXPECT_EQ(tokenizer.readKeyRun(), "abc");
    EXPECT_EQ(tokenizer.readKeyRun(), "");
}

TEST_P(Tokens, AFailureOfTheStreamPassesThrough) {
    auto* stream = new PieceStream("abcdef");
    stream->largestPiece = 2;
    stream->failsAt = 4;
    StreamTokenizer tokenizer{JPointer<JInputStream>(stream)};
    prepare(tokenizer);
    EXPECT_EQ(thrownMessage<JIOException>([&] { tokenizer.nextToken(); }), "PieceStream failed.");
    EXPECT_EQ(tokenizer.input().position(), 4);
}

TEST_P(Tokens, TheLocaleDoesNotMatter) {
    const kel::test::CommaLocale comma;
    KEL_NEED(comma);
    StreamTokenizer tokenizer(reader("12.5 \xE4"));
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.nextToken(), 4);
    EXPECT_EQ(tokenizer.token().floating, 12.5);
    EXPECT_EQ(tokenizer.nextToken(), 5);
    EXPECT_EQ(tokenizer.nextToken(), -1) << "no letter in any locale";
}

std::string joined(const char* before, const std::string& text, const char* after) {
    return std::string(before).append(text).append(after);
}

TEST_P(Tokens, LongTokensComeWhole) {
    const std::string body(1000000, 'a');
    EXPECT_EQ(tokens(body), joined("6:", body, "|0"));
    EXPECT_EQ(tokens(joined("\"", body, "\"")), joined("6:\"", body, "|0"));
    EXPECT_EQ(tokens(joined("/*", body, "*/")), joined("2:", body, "|0"));
    EXPECT_EQ(tokens(joined("//", body, "\n")), joined("2:", body, "|1|0"));
    EXPECT_EQ(tokens(std::string(1000000, ' ')), "5|0");
    EXPECT_EQ(tokens(joined("-", std::string(100000, '7'), "g")).substr(0, 5), "7:777");
    EXPECT_EQ(tokens(joined("0.", std::string(100000, '1'), " ")), "4:0.111111|5|0");
}

std::size_t allocated = 0;
bool countBytes(std::size_t size) {
    allocated += size;
    return true;
}

TEST(StreamTokenizer, TheScannerAllocatesNothingPerToken) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += joined("key_", std::to_string(i), " = \"value\" /* c */ 12.5 0x1f\n");
    }
    StreamTokenizer tokenizer(reader(text));
    tokenizer.addStandardRecognisers();
    ASSERT_TRUE(tokenizer.input().ensure(text.size()));
    allocated = 0;
    const auto before = kel::platform::exchangeAllocationGate(countBytes);
    for (int32_t type = 1; type != 0; type = tokenizer.nextToken()) {
        if (type == -1) {
            tokenizer.nextRaw();
        }
    }
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(allocated, 0U);
}

TEST(StreamTokenizer, AVeryLongTokenCostsLinearMemory) {
    const std::string text = joined("\"", std::string(5000000, 'a'), "\"");
    StreamTokenizer tokenizer(reader(text));
    tokenizer.addStandardRecognisers();
    allocated = 0;
    const auto before = kel::platform::exchangeAllocationGate(countBytes);
    tokenizer.nextToken();
    kel::platform::exchangeAllocationGate(before);
    EXPECT_LE(allocated, 5U * text.size()) << "all sizes of the window together";
}

// Machines of the test's own.
JPointer<TokenizerFSM> machine(TokenizerFSM* fsm) { return JPointer<TokenizerFSM>(fsm); }

class EverythingFSM : public TokenizerFSM {
public:
    explicit EverythingFSM(int32_t answer) : answer_(answer) {}
    int32_t getType() const override { return 50; }
    void reset() override {}
    int32_t accept(int32_t) override { return answer_; }
    JPointer<JObject> returnValue() const override {
        return JPointer<JObject>(new JString("everything"));
    }

private:
    int32_t answer_;
};

TEST(StreamTokenizer, WithoutRecognisersNothingMatches) {
    StreamTokenizer tokenizer(reader("a"));
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.nextRaw(), 'a');
    EXPECT_EQ(tokenizer.nextToken(), 0);
}

TEST(StreamTokenizer, TheRecogniserAddedFirstWins) {
    StreamTokenizer tokenizer(reader(" a"));
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::completeWith)));
    tokenizer.addFSM(machine(new WhitespaceFSM));
    EXPECT_EQ(tokenizer.nextToken(), 50);
    EXPECT_EQ(tokenizer.token().text, "everything");
    EXPECT_EQ(tokenizer.input().position(), 1);
}

TEST(StreamTokenizer, TheFirstToCompleteWinsNotTheLongest) {
    StreamTokenizer tokenizer(reader("abc"));
    tokenizer.addFSM(machine(new WordFSM));
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::completeWith)));
    EXPECT_EQ(tokenizer.nextToken(), 50);
    EXPECT_EQ(tokenizer.input().position(), 1);
}

TEST(StreamTokenizer, AnswerThreeStepsBackButNotAtTheEnd) {
    StreamTokenizer tokenizer(reader("a"));
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::completeBefore)));
    EXPECT_EQ(tokenizer.nextToken(), 50);
    EXPECT_EQ(tokenizer.input().position(), 0);
    EXPECT_EQ(tokenizer.nextRaw(), 'a');
    EXPECT_EQ(tokenizer.nextToken(), 50);
    EXPECT_EQ(tokenizer.input().position(), 1);
}

TEST(StreamTokenizer, AMachineThatWaitsBehindTheEndIsOut) {
    StreamTokenizer tokenizer(reader("a"));
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::wantsMore)));
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.nextRaw(), 'a');
    EXPECT_EQ(tokenizer.nextToken(), 0);
}

TEST(StreamTokenizer, ARemovedRecogniserIsNotAsked) {
    StreamTokenizer tokenizer(reader(" \n"));
    const JPointer<TokenizerFSM> blanks = machine(new WhitespaceFSM);
    tokenizer.addFSM(blanks);
    tokenizer.addFSM(machine(new NewlineFSM));
    tokenizer.removeFSM(blanks);
    EXPECT_EQ(blanks->getRefCount(), 1);
    EXPECT_EQ(tokenizer.nextToken(), -1);
    tokenizer.nextRaw();
    EXPECT_EQ(tokenizer.nextToken(), 1);
}

TEST(StreamTokenizer, RemovingWhatIsNotThereAndAddingNothingChangesNothing) {
    StreamTokenizer tokenizer(reader(" "));
    tokenizer.addFSM(machine(new WhitespaceFSM));
    tokenizer.addFSM({});
    tokenizer.removeFSM(machine(new WhitespaceFSM));
    tokenizer.removeFSM({});
    EXPECT_EQ(tokenizer.nextToken(), 5);
}

TEST(StreamTokenizer, OneRecogniserMoreThanUsualIsAskedToo) {
    StreamTokenizer tokenizer(reader("="));
    tokenizer.addStandardRecognisers();
    EXPECT_EQ(tokenizer.nextToken(), -1);
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::completeWith)));
    EXPECT_EQ(tokenizer.nextToken(), 50);
}

class LoudNewlineFSM : public NewlineFSM {
public:
    int32_t getType() const override { return 51; }
};

TEST(StreamTokenizer, ARedefinedRecogniserInTheUsualPlaceIsAsked) {
    StreamTokenizer usual(reader(""));
    usual.addStandardRecognisers();
    StreamTokenizer tokenizer(reader("\n"));
    tokenizer.addFSM(machine(new WordFSM));
    tokenizer.addFSM(machine(new LoudNewlineFSM));
    EXPECT_EQ(tokenizer.nextToken(), 51);
}

} // namespace
