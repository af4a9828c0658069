// Tests the tokens of the six standard recognisers, from the machines and from the scanner.
#include "serial/tokens/TokenizerPaths.h"
#include "support/Bytes.h"
#include "support/CommaLocale.h"

namespace {

class Tokens : public TokenizerPaths {};
INSTANTIATE_TEST_SUITE_P(Both, Tokens, ::testing::Values(true, false), pathName);

TEST_P(Tokens, WordsAndBlanks) {
    EXPECT_EQ(tokens("abc def"), "6:abc|5|6:def|0");
}

TEST_P(Tokens, NothingIsTheEnd) {
    EXPECT_EQ(tokens(""), "0");
}

TEST_P(Tokens, AQuotedWordIsOneToken) {
    EXPECT_EQ(tokens("\"a b-c\""), "6:\"a b-c|0");
    EXPECT_EQ(tokens("\"\""), "6:\"|0");
    EXPECT_EQ(tokens("\"\\\"a"), "6:\"\\|6:a|0");
}

TEST_P(Tokens, AQuotedWordKeepsNulsAndHighBytes) {
    EXPECT_EQ(tokens(bytes("\"a\0\xFF\"")), bytes("6:\"a\0\xFF|0"));
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
    EXPECT_EQ(tokens("abcdef0123456789abcdef0123456789"), "6:abcdef0123456789abcdef0123456789|0");
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

TEST_P(Tokens, AnAtSignStandsOnlyInFrontOfAWord) {
    EXPECT_EQ(tokens("a@b"), "6:a|6:@b|0");
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

} // namespace
