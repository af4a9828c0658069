#include "serial/tokens/StreamTokenizer.h"

#include "platform/Memory.h"
#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"
#include "serial/tokens/CommentFSM.h"
#include "serial/tokens/HashcodeFSM.h"
#include "serial/tokens/NewlineFSM.h"
#include "serial/tokens/NumberFSM.h"
#include "serial/tokens/TokenizerPaths.h"
#include "serial/tokens/WhitespaceFSM.h"
#include "serial/tokens/WordFSM.h"
#include "support/PieceStream.h"
#include "support/Thrown.h"

using kel::test::thrownMessage;

namespace {

class Tokenizer : public TokenizerPaths {};
INSTANTIATE_TEST_SUITE_P(Both, Tokenizer, ::testing::Values(true, false), pathName);

TEST_P(Tokenizer, AQuoteThatIsNotClosedThrowsAtTheEnd) {
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

TEST_P(Tokenizer, NothingIsUsedWhereNothingMatches) {
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

TEST_P(Tokenizer, TheEndComesAgainAndAgain) {
    StreamTokenizer tokenizer(reader("a"));
    prepare(tokenizer);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.nextToken(), 0);
    EXPECT_EQ(tokenizer.nextToken(), 0);
    EXPECT_EQ(tokenizer.nextRaw(), -1);
}

TEST_P(Tokenizer, TellsWhereATokenBegan) {
    StreamTokenizer tokenizer(reader("ab  12"));
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.tokenStart(), 0);
    tokenizer.nextToken();
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.tokenStart(), 2);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.tokenStart(), 4);
}

TEST_P(Tokenizer, BeginsWhereTheStreamStands) {
    const JPointer<JInputStream> input = reader("abc def");
    input->JSeek(4);
    StreamTokenizer tokenizer(input);
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.nextToken(), 6);
    EXPECT_EQ(tokenizer.token().text, "def");
    EXPECT_EQ(tokenizer.tokenStart(), 4);
}

TEST_P(Tokenizer, ValuesAreObjects) {
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

TEST_P(Tokenizer, AskingTwiceGivesTheSameObject) {
    StreamTokenizer tokenizer(reader("abc"));
    prepare(tokenizer);
    tokenizer.nextToken();
    EXPECT_EQ(tokenizer.getValue().get(), tokenizer.getValue().get());
}

TEST_P(Tokenizer, AValueOutlivesItsToken) {
    StreamTokenizer tokenizer(reader("abc def"));
    prepare(tokenizer);
    tokenizer.nextToken();
    const JPointer<JObject> value = tokenizer.getValue();
    tokenizer.nextToken();
    EXPECT_STREQ(dynamic_cast<JString&>(*value).chars(), "abc");
    EXPECT_EQ(value->getRefCount(), 1);
}

TEST_P(Tokenizer, ThereIsNoValueBeforeATokenAfterANewlineAndAtTheEnd) {
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

TEST_P(Tokenizer, SolidTokensCountTheNewlinesBeforeThem) {
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

TEST_P(Tokenizer, ReadsAHashCodeOnRequest) {
    StreamTokenizer tokenizer(reader("12345678-4F89-11D3-9A0C-0305E82C3301 abc"));
    prepare(tokenizer);
    JHashCode hashCode;
    EXPECT_TRUE(tokenizer.readHashCode(hashCode));
    EXPECT_EQ(hashCode.w0, 0x12345678U);
    EXPECT_EQ(tokenizer.input().position(), 36);
    EXPECT_FALSE(tokenizer.readHashCode(hashCode));
    EXPECT_EQ(tokenizer.input().position(), 36);
}

TEST_P(Tokenizer, AHashCodeThatIsCutAnywhereIsNone) {
    const std::string whole = "12345678-4F89-11D3-9A0C-0305E82C3301";
    for (size_t length = 0; length < whole.size(); ++length) {
        StreamTokenizer tokenizer(reader(whole.substr(0, length)));
        JHashCode hashCode(7);
        EXPECT_FALSE(tokenizer.readHashCode(hashCode));
        EXPECT_EQ(hashCode, JHashCode(7));
        EXPECT_EQ(tokenizer.input().position(), 0);
    }
}

TEST_P(Tokenizer, ReadsAKeyOnRequest) {
    StreamTokenizer tokenizer(reader("9lives_a@1 = 0"));
    prepare(tokenizer);
    EXPECT_EQ(tokenizer.readKeyRun(), "9lives_a@1");
    EXPECT_EQ(tokenizer.readKeyRun(), "");
    EXPECT_EQ(tokenizer.input().position(), 10);
    EXPECT_EQ(tokenizer.nextRaw(), ' ');
}

TEST_P(Tokenizer, AKeyMayEndTheInput) {
    StreamTokenizer tokenizer(reader("abc"));
    EXPECT_EQ(tokenizer.readKeyRun(), "abc");
    EXPECT_EQ(tokenizer.readKeyRun(), "");
}

TEST_P(Tokenizer, AFailureOfTheStreamPassesThroughAndLeavesTheTokenUnread) {
    auto* stream = new PieceStream("abcdef");
    stream->largestPiece = 2;
    stream->failsAt = 4;
    StreamTokenizer tokenizer{JPointer<JInputStream>(stream)};
    prepare(tokenizer);
    EXPECT_EQ(thrownMessage<JIOException>([&] { tokenizer.nextToken(); }), "PieceStream failed.");
    EXPECT_EQ(tokenizer.input().position(), 0);
}

TEST_P(Tokenizer, LongTokensComeWhole) {
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
JPointer<TokenizerFSM> machine(TokenizerFSM* fsm) {
    return JPointer<TokenizerFSM>(fsm);
}

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

TEST(StreamTokenizer, RemovingWhatIsNotThereChangesNothing) {
    StreamTokenizer tokenizer(reader(" "));
    tokenizer.addFSM(machine(new WhitespaceFSM));
    tokenizer.removeFSM(machine(new WhitespaceFSM));
    tokenizer.removeFSM({});
    EXPECT_EQ(tokenizer.nextToken(), 5);
}

TEST(StreamTokenizer, ANullRecogniserRecognisesNothing) {
    StreamTokenizer tokenizer(reader("a "));
    tokenizer.addFSM({});
    EXPECT_EQ(tokenizer.nextToken(), -1);
    EXPECT_EQ(tokenizer.nextRaw(), 'a');
    tokenizer.addFSM(machine(new WhitespaceFSM));
    tokenizer.addFSM({});
    EXPECT_EQ(tokenizer.nextToken(), 5);
    EXPECT_EQ(tokenizer.nextToken(), 0);
}

TEST_P(Tokenizer, SharedRecognisersServeBothTokenizersInTurn) {
    StreamTokenizer first(reader("abc 12.5"));
    prepare(first);
    StreamTokenizer second(reader("/*x*/\"y\""));
    second.shareRecognisers(first);
    second.askRecognisersOnly(GetParam());
    EXPECT_EQ(describe(first, first.nextToken()), "6:abc");
    EXPECT_EQ(describe(second, second.nextToken()), "2:x");
    EXPECT_EQ(first.nextToken(), 5);
    EXPECT_EQ(describe(second, second.nextToken()), "6:\"y");
    EXPECT_EQ(describe(first, first.nextToken()), "4:12.500000");
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
    StreamTokenizer tokenizer(reader("\n"));
    tokenizer.addFSM(machine(new CommentFSM));
    tokenizer.addFSM(machine(new LoudNewlineFSM));
    tokenizer.addFSM(machine(new NumberFSM));
    tokenizer.addFSM(machine(new WhitespaceFSM));
    tokenizer.addFSM(machine(new WordFSM));
    tokenizer.addFSM(machine(new HashcodeFSM));
    EXPECT_EQ(tokenizer.nextToken(), 51);
}

TEST(StreamTokenizer, TheUsualRecognisersInAnotherOrderKeepThatOrder) {
    StreamTokenizer tokenizer(reader("-12345678901234567890123456789012"));
    tokenizer.addFSM(machine(new HashcodeFSM));
    tokenizer.addFSM(machine(new NewlineFSM));
    tokenizer.addFSM(machine(new NumberFSM));
    tokenizer.addFSM(machine(new WhitespaceFSM));
    tokenizer.addFSM(machine(new WordFSM));
    tokenizer.addFSM(machine(new EverythingFSM(TokenizerFSM::completeWith)));
    EXPECT_EQ(tokenizer.nextToken(), 50) << "the last one completes with the first character";
}

TEST(StreamTokenizer, TheNumberOfALineStopsAtTheLargest) {
    int32_t line = INT32_MAX - 2;
    StreamTokenizer::countLines(line, 2);
    EXPECT_EQ(line, INT32_MAX);
    StreamTokenizer::countLines(line, 1);
    EXPECT_EQ(line, INT32_MAX);
}

} // namespace
