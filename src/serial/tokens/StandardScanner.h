/// \file
/// StandardScanner: the usual six recognisers as one pass over the buffered bytes.
#pragma once

#include "serial/tokens/Token.h"
#include "streams/BufferedInput.h"

namespace kel {

/// Gives the same results as CommentFSM, NewlineFSM, NumberFSM, WhitespaceFSM, WordFSM and
/// HashcodeFSM asked in this order: the same types, values, positions and failures for every input.
/// The first byte decides which recognisers can win. So each byte is read once, and nothing is
/// allocated.
///
/// The machines are the reference; a test compares both on random texts.
class StandardScanner {
public:
    /// Scans tokens of input into token; both must outlive the scanner.
    StandardScanner(BufferedInput& input, Token& token) : input_(input), token_(token) {}

    /// Reads the next token and leaves the input just after it. If nothing matches, the input is
    /// left at the start of the token, which is marked. \return the type
    /// \throws TokenizerException "Reached end of file with no closing quote."
    int32_t scan();

    /// Consumes the blanks and line ends that are in the window, without making tokens of them.
    /// More of them can follow as tokens. \return the number of line ends
    static int32_t skipLayout(BufferedInput& input);

    /// Reads a hash code and no other token. \return false, at the same position, if there is none
    static bool scanHashCode(BufferedInput& input, JHashCode& hashCode);

private:
    int32_t scanSlash();
    int32_t scanLineComment();
    int32_t scanBlockComment();
    int32_t scanReturn();
    int32_t scanBlanks();
    int32_t scanBareWord();
    int32_t scanQuotedWord();
    int32_t scanNumber(bool negative);
    int32_t scanFraction(bool negative, double sum);
    int32_t scanHexadecimal();
    int32_t scanHashCodeInstead();
    int32_t none();
    int32_t finish(TokenType type);
    int32_t finishInteger(uint32_t value);
    int32_t finishText(TokenType type, size_t before, size_t after);
    int32_t skipClass(uint8_t classes);

    BufferedInput& input_;
    Token& token_;
};

} // namespace kel
