#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"
#include "serial/tokens/CommentFSM.h"
#include "serial/tokens/HashcodeFSM.h"
#include "serial/tokens/NewlineFSM.h"
#include "serial/tokens/NumberFSM.h"
#include "serial/tokens/WhitespaceFSM.h"
#include "serial/tokens/WordFSM.h"
#include "support/Thrown.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

using kel::test::thrownMessage;

namespace {

// Any machine. The test can read and set its state.
template <class Machine> class Opened : public Machine {
public:
    void setState(int32_t state) { this->state_ = state; }
    int32_t state() const { return this->state_; }
};

// Returns the machine's results for the characters of text, one digit each. "$" stands for the end
// of input.
template <class Machine> std::string answers(Machine& machine, const std::string& text) {
    std::string out;
    machine.reset();
    for (const char c : text) {
        out += std::to_string(machine.accept(c == '$' ? -1 : static_cast<unsigned char>(c)));
    }
    return out;
}

template <class Machine> std::string answers(const std::string& text) {
    Machine machine;
    return answers(machine, text);
}

// Returns the text of the value after the characters.
template <class Machine> std::string textOf(const std::string& text) {
    Machine machine;
    answers(machine, text);
    const JPointer<JObject> value = machine.returnValue();
    return dynamic_cast<const JString&>(*value).chars();
}

const JNumber& number(const JPointer<JObject>& value) {
    return dynamic_cast<const JNumber&>(*value);
}

template <class Machine> std::string valueFailure(const std::string& text) {
    Machine machine;
    answers(machine, text);
    return thrownMessage<TokenizerException>([&] { machine.returnValue(); });
}

template <class Machine> std::string failureAfterTheEnd(const std::string& text) {
    Machine machine;
    answers(machine, text);
    return thrownMessage<TokenizerException>([&] { machine.accept('x'); });
}

template <class Machine> std::string failureInState(int32_t state) {
    Opened<Machine> machine;
    machine.setState(state);
    return thrownMessage<TokenizerException>([&] { machine.accept('x'); });
}

TEST(TokenizerFSM, WhatIsNotAByteBelongsToNoToken) {
    EXPECT_EQ(NumberFSM().accept(256 + '1'), 0);
    EXPECT_EQ(WordFSM().accept(256 + 'a'), 0);
    EXPECT_EQ(HashcodeFSM().accept(256 + 'A'), 0);
}

TEST(TokenizerFSM, TypesAreFixed) {
    EXPECT_EQ(NewlineFSM().getType(), 1);
    EXPECT_EQ(CommentFSM().getType(), 2);
    EXPECT_EQ(NumberFSM().getType(), 3);
    EXPECT_EQ(WhitespaceFSM().getType(), 5);
    EXPECT_EQ(WordFSM().getType(), 6);
    EXPECT_EQ(HashcodeFSM().getType(), 7);
}

TEST(TokenizerFSM, TheStateIsMinusOneAfterTheEndAndZeroAfterAReset) {
    Opened<WhitespaceFSM> machine;
    EXPECT_EQ(answers(machine, " x"), "13");
    EXPECT_EQ(machine.state(), -1);
    EXPECT_EQ(answers(machine, "x"), "0");
    EXPECT_EQ(machine.state(), -1);
    machine.reset();
    EXPECT_EQ(machine.state(), 0);
}

TEST(TokenizerFSM, NothingIsReturnedBeforeTheEnd) {
    const std::string nothing = "Nothing to return.";
    EXPECT_EQ(valueFailure<NewlineFSM>("\r"), nothing);
    EXPECT_EQ(valueFailure<CommentFSM>("//x"), nothing);
    EXPECT_EQ(valueFailure<NumberFSM>("12"), nothing);
    EXPECT_EQ(valueFailure<WhitespaceFSM>(" "), nothing);
    EXPECT_EQ(valueFailure<WordFSM>("ab"), "WordFSM::returnValue(). nothing to return.");
    EXPECT_EQ(valueFailure<HashcodeFSM>("-0123456789"), nothing);
}

TEST(TokenizerFSM, NothingIsReturnedAfterARejection) {
    const std::string nothing = "Nothing to return.";
    EXPECT_EQ(valueFailure<NewlineFSM>("x"), nothing);
    EXPECT_EQ(valueFailure<CommentFSM>("/x"), nothing);
    EXPECT_EQ(valueFailure<NumberFSM>("12a"), nothing);
    EXPECT_EQ(valueFailure<WhitespaceFSM>("x"), nothing);
    EXPECT_EQ(valueFailure<WordFSM>("ab-"), "WordFSM::returnValue(). nothing to return.");
    EXPECT_EQ(valueFailure<HashcodeFSM>("0123456789abcdef0123456789abcdef"), nothing);
}

TEST(TokenizerFSM, NothingIsReturnedAfterAReset) {
    WhitespaceFSM machine;
    answers(machine, " x");
    machine.reset();
    EXPECT_EQ(thrownMessage<TokenizerException>([&] { machine.returnValue(); }),
              "Nothing to return.");
}

TEST(TokenizerFSM, NothingIsTakenAfterTheEnd) {
    const std::string again = "FSM has to be reset.";
    EXPECT_EQ(failureAfterTheEnd<NewlineFSM>("\n"), "FSM needs to be reset.");
    EXPECT_EQ(failureAfterTheEnd<CommentFSM>("/**/"), again);
    EXPECT_EQ(failureAfterTheEnd<NumberFSM>("12 "), again);
    EXPECT_EQ(failureAfterTheEnd<WhitespaceFSM>(" x"), again);
    EXPECT_EQ(failureAfterTheEnd<WordFSM>("ab "), again);
    EXPECT_EQ(failureAfterTheEnd<HashcodeFSM>("x"), again);
}

TEST(TokenizerFSM, AnUnknownStateIsAnInternalError) {
    EXPECT_EQ(failureInState<NewlineFSM>(99), "Internal error in NewlineFSM.");
    EXPECT_EQ(failureInState<CommentFSM>(2), "Internal error in CommentFSM.");
    EXPECT_EQ(failureInState<NumberFSM>(4), "Internal error in NumberFSM.");
    EXPECT_EQ(failureInState<WhitespaceFSM>(2), "Internal error in WhitespaceFSM.");
    EXPECT_EQ(failureInState<WordFSM>(-2), "Internal error in WordFSM.");
    EXPECT_EQ(failureInState<HashcodeFSM>(1), "Internal error in HashcodeFSM.");
}

TEST(NewlineFSM, TakesLfFfAndCrLf) {
    EXPECT_EQ(answers<NewlineFSM>("\n"), "2");
    EXPECT_EQ(answers<NewlineFSM>("\f"), "2");
    EXPECT_EQ(answers<NewlineFSM>("\r\n"), "12");
}

TEST(NewlineFSM, RejectsAllElse) {
    EXPECT_EQ(answers<NewlineFSM>("\rx"), "10");
    EXPECT_EQ(answers<NewlineFSM>("\r$"), "10");
    EXPECT_EQ(answers<NewlineFSM>(" "), "0");
    EXPECT_EQ(answers<NewlineFSM>("$"), "0");
}

TEST(NewlineFSM, TheValueIsEmpty) {
    NewlineFSM machine;
    answers(machine, "\n");
    EXPECT_TRUE(machine.returnValue().isNull());
}

TEST(WhitespaceFSM, TakesSpacesAndTabs) {
    EXPECT_EQ(answers<WhitespaceFSM>(" \t x"), "1113");
    EXPECT_EQ(answers<WhitespaceFSM>("\t$"), "12");
    EXPECT_EQ(answers<WhitespaceFSM>(" \n"), "13");
    EXPECT_EQ(answers<WhitespaceFSM>("\n"), "0");
    EXPECT_EQ(answers<WhitespaceFSM>("$"), "0");
}

TEST(WhitespaceFSM, TheValueIsOneSpace) {
    EXPECT_EQ(textOf<WhitespaceFSM>("\t\t x"), " ");
}

TEST(CommentFSM, ALineCommentEndsBeforeTheLineEnd) {
    for (const char* end : {"\n", "\f", "\r", "$"}) {
        EXPECT_EQ(answers<CommentFSM>("//ab" + std::string(end)), "11113");
        EXPECT_EQ(textOf<CommentFSM>("//ab" + std::string(end)), "ab");
    }
}

TEST(CommentFSM, ABlockCommentEndsWithItsSlash) {
    EXPECT_EQ(answers<CommentFSM>("/*a*/"), "11112");
    EXPECT_EQ(textOf<CommentFSM>("/*a\n*b/*/"), "a\n*b/");
    EXPECT_EQ(textOf<CommentFSM>("/**/"), "");
}

TEST(CommentFSM, AnEvenRunOfStarsDoesNotClose) {
    EXPECT_EQ(answers<CommentFSM>("/* a **/"), "11111111");
    EXPECT_EQ(answers<CommentFSM>("/***/"), "11111");
    EXPECT_EQ(textOf<CommentFSM>("/* a **/ */"), " a **/ ");
}

TEST(CommentFSM, AnOddRunOfStarsCloses) {
    EXPECT_EQ(answers<CommentFSM>("/* ***/"), "1111112");
    EXPECT_EQ(textOf<CommentFSM>("/* ***/"), " **");
    EXPECT_EQ(textOf<CommentFSM>("/****/"), "**");
}

TEST(CommentFSM, AnOpenBlockCommentTakesTheEndOfInputAsText) {
    EXPECT_EQ(answers<CommentFSM>("/*a$"), "1111");
    EXPECT_EQ(answers<CommentFSM>("/*a*$"), "11111");
    EXPECT_EQ(answers<CommentFSM>("/*/$$$"), "111111");
    EXPECT_EQ(answers<CommentFSM>("/*a*$*/"), "1111112");
    EXPECT_EQ(textOf<CommentFSM>("/*a*$*/"), "a*\xFF");
}

TEST(CommentFSM, RejectsALoneSlash) {
    EXPECT_EQ(answers<CommentFSM>("/ "), "10");
    EXPECT_EQ(answers<CommentFSM>("/$"), "10");
    EXPECT_EQ(answers<CommentFSM>("x"), "0");
    EXPECT_EQ(answers<CommentFSM>("$"), "0");
}

TEST(CommentFSM, CountsNuls) {
    CommentFSM machine;
    answers(machine, std::string("//a\0b$", 6));
    EXPECT_EQ(machine.textLength(), 3U);
}

TEST(WordFSM, ABareWordEndsBeforeWhatIsNoLetterDigitOrUnderscore) {
    EXPECT_EQ(answers<WordFSM>("a1_Z "), "11113");
    EXPECT_EQ(answers<WordFSM>("@a@"), "113");
    EXPECT_EQ(answers<WordFSM>("_$"), "13");
    EXPECT_EQ(textOf<WordFSM>("a1_Z="), "a1_Z");
    EXPECT_EQ(textOf<WordFSM>("@type "), "@type");
}

TEST(WordFSM, DoesNotBeginWithADigitOrADash) {
    for (const char* text : {"1", "-", ".", " ", "$", "\xE4"}) {
        EXPECT_EQ(answers<WordFSM>(text), "0") << text;
    }
}

TEST(WordFSM, IsRejectedBeforeAQuoteOrADash) {
    EXPECT_EQ(answers<WordFSM>("ab\""), "110");
    EXPECT_EQ(answers<WordFSM>("ab-"), "110");
}

TEST(WordFSM, AQuotedWordTakesEverythingUpToTheQuote) {
    EXPECT_EQ(answers<WordFSM>("\"a b-\\\n\""), "11111112");
    EXPECT_EQ(textOf<WordFSM>("\"a b-\\\n\""), "a b-\\\n");
    EXPECT_EQ(textOf<WordFSM>("\"\""), "");
}

TEST(WordFSM, MarksAQuotedWord) {
    WordFSM machine;
    answers(machine, "\"a\"");
    EXPECT_TRUE(dynamic_cast<const JString&>(*machine.returnValue()).isQuoted());
    answers(machine, "a ");
    EXPECT_FALSE(dynamic_cast<const JString&>(*machine.returnValue()).isQuoted());
}

TEST(WordFSM, AQuoteThatIsNotClosedThrows) {
    WordFSM machine;
    EXPECT_EQ(thrownMessage<TokenizerException>([&] { answers(machine, "\"abc$"); }),
              "Reached end of file with no closing quote.");
}

TEST(WordFSM, ForgetsALongWordAtTheNextOne) {
    WordFSM machine;
    answers(machine, std::string(1000, 'a') + " ");
    EXPECT_EQ(machine.textLength(), 1000U);
    answers(machine, "bc ");
    EXPECT_STREQ(dynamic_cast<const JString&>(*machine.returnValue()).chars(), "bc");
}

int32_t integerOf(const std::string& text) {
    NumberFSM machine;
    answers(machine, text);
    EXPECT_EQ(machine.getType(), 3) << text;
    return number(machine.returnValue()).intValue();
}

double doubleOf(const std::string& text) {
    NumberFSM machine;
    answers(machine, text);
    EXPECT_EQ(machine.getType(), 4) << text;
    return number(machine.returnValue()).doubleValue();
}

TEST(NumberFSM, ReadsDecimalIntegers) {
    EXPECT_EQ(integerOf("12 "), 12);
    EXPECT_EQ(integerOf("-7$"), -7);
    EXPECT_EQ(integerOf("0 "), 0);
    EXPECT_EQ(integerOf("007 "), 7);
    EXPECT_EQ(integerOf("-0x"), 0);
    EXPECT_EQ(integerOf("- "), 0);
}

TEST(NumberFSM, IntegersWrapAround) {
    EXPECT_EQ(integerOf("2147483647 "), INT32_MAX);
    EXPECT_EQ(integerOf("2147483648 "), INT32_MIN);
    EXPECT_EQ(integerOf("-2147483648 "), INT32_MIN);
    EXPECT_EQ(integerOf("4294967303 "), 7);
    EXPECT_EQ(integerOf("0x1FFFFFFFF "), -1);
}

TEST(NumberFSM, ReadsHexadecimalIntegers) {
    EXPECT_EQ(integerOf("0x1f "), 31);
    EXPECT_EQ(integerOf("0xABCDEF "), 0xABCDEF);
    EXPECT_EQ(integerOf("0xg"), 0);
    EXPECT_EQ(answers<NumberFSM>("0x1fg"), "11113");
    EXPECT_EQ(answers<NumberFSM>("00x"), "113");
}

TEST(NumberFSM, AnUpperCaseXEndsTheZero) {
    EXPECT_EQ(answers<NumberFSM>("0X"), "13");
    EXPECT_EQ(integerOf("0X"), 0);
}

TEST(NumberFSM, ReadsDecimalFractions) {
    EXPECT_EQ(doubleOf("12.5 "), 12.5);
    EXPECT_EQ(doubleOf("-12.5$"), -12.5);
    EXPECT_EQ(doubleOf("3. "), 3.0);
    EXPECT_EQ(doubleOf(".5 "), 0.5);
    EXPECT_EQ(doubleOf("0.5 "), 0.5);
    EXPECT_EQ(doubleOf(". "), 0.0);
}

TEST(NumberFSM, AMinusReachesTheZeroOfAFraction) {
    EXPECT_TRUE(std::signbit(doubleOf("-0.0 ")));
    EXPECT_TRUE(std::signbit(doubleOf("-. ")));
}

TEST(NumberFSM, SumsFractionsDigitByDigit) {
    double weight = 0.1;
    double sum = 0.0;
    for (const int digit : {1, 2, 3, 4, 5, 6, 7, 8, 9}) {
        sum = sum + digit * weight;
        weight = weight * 0.1;
    }
    EXPECT_EQ(doubleOf("0.123456789 "), sum);
    EXPECT_EQ(doubleOf("0.3 "), 3 * 0.1) << "not the nearest double";
}

TEST(NumberFSM, AFractionTakesTheWrappedIntegerPart) {
    EXPECT_EQ(doubleOf("4294967297.5 "), 1.5);
    EXPECT_EQ(doubleOf("2147483648.0 "), -2147483648.0);
}

TEST(NumberFSM, IsRejectedByAHexadecimalLetterOrASecondPoint) {
    EXPECT_EQ(answers<NumberFSM>("12e"), "110");
    EXPECT_EQ(answers<NumberFSM>("0F"), "10");
    EXPECT_EQ(answers<NumberFSM>("1.5a"), "1110");
    EXPECT_EQ(answers<NumberFSM>("1.2."), "1110");
}

TEST(NumberFSM, EndsBeforeAnythingElse) {
    EXPECT_EQ(answers<NumberFSM>("12g"), "113");
    EXPECT_EQ(answers<NumberFSM>("12-"), "113");
    EXPECT_EQ(answers<NumberFSM>("12\xFF"), "113");
    EXPECT_EQ(answers<NumberFSM>("x"), "0");
    EXPECT_EQ(answers<NumberFSM>("$"), "0");
}

JHashCode hashCodeOf(const std::string& text) {
    HashcodeFSM machine;
    answers(machine, text);
    return dynamic_cast<const JInt128&>(*machine.returnValue()).int128();
}

const JHashCode sample(0x3F2504E0, 0x11D34F89, 0x05030C9A, 0x01332CE8);

TEST(HashcodeFSM, LaysOutTheWordsOfAGuid) {
    EXPECT_EQ(hashCodeOf("3F2504E0-4F89-11D3-9A0C-0305E82C3301"),
              JHashCode(0x3F2504E0, 0x11D34F89, 0x05030C9A, 0x01332CE8));
}

TEST(HashcodeFSM, CaseAndPlacesOfDashesDoNotMatter) {
    EXPECT_EQ(hashCodeOf("3f2504e0-4f89-11d3-9a0c-0305e82c3301"), sample);
    EXPECT_EQ(hashCodeOf("-3F2504E04F8911D39A0C0305E82C3301"), sample);
    EXPECT_EQ(hashCodeOf("3F2504E04F8911D39A0C0305E82C330--1"), sample);
}

TEST(HashcodeFSM, NeedsADashBeforeTheLastDigit) {
    EXPECT_EQ(answers<HashcodeFSM>("3F2504E04F8911D39A0C0305E82C3301").back(), '0');
    EXPECT_EQ(answers<HashcodeFSM>("3F2504E04F8911D39A0C0305E82C330-1").back(), '2');
}

TEST(HashcodeFSM, RejectsAllElse) {
    EXPECT_EQ(answers<HashcodeFSM>("3g"), "10");
    EXPECT_EQ(answers<HashcodeFSM>("-$"), "10");
    EXPECT_EQ(answers<HashcodeFSM>("$"), "0");
}

} // namespace
