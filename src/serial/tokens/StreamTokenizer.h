/// \file
/// StreamTokenizer: cuts a text into tokens with a list of recognisers.
#pragma once

#include "runtime/JVector.h"
#include "serial/tokens/Token.h"
#include "serial/tokens/TokenizerFSM.h"
#include "streams/BufferedInput.h"

#include <string_view>
#include <vector>

/// Reads tokens from a stream. All recognisers receive the same characters. The first one that
/// completes a token wins, not the one with the longest match. Recognisers are asked in the order
/// in which they were added.
///
/// With exactly the standard recognisers in their order, kel::StandardScanner cuts the tokens. It
/// gives the same results without asking machines.
///
/// The tokenizer reads ahead; other readers of the stream continue at input(). token().text and the
/// results of readKeyRun lie in the read-ahead window and are valid until the next call that reads.
class StreamTokenizer final : public virtual JObject {
public:
    /// Reads from the position of input, which is shared and not null. The list starts empty.
    explicit StreamTokenizer(const JPointer<JInputStream>& input);

    /// Appends a recogniser, which is asked after those added before. Null is an empty entry, which
    /// recognises nothing: nextToken and removeFSM pass over it.
    virtual void addFSM(const JPointer<TokenizerFSM>& fsm);

    /// Removes a recogniser. If it is not in the list, this is a no-op.
    virtual void removeFSM(const JPointer<TokenizerFSM>& fsm);

    /// Reads one token and leaves the input just after it. A recogniser that still waits for more
    /// at the end of input has not matched.
    /// \return its kel::TokenType: kel::tokenEnd if the input ends before it; kel::tokenNone, back
    ///         at its start, if no recogniser matches
    /// \throws TokenizerException "Reached end of file with no closing quote.", and exceptions of
    ///         other recognisers; the position is then where the failure occurred
    /// \throws JIOException if the stream fails; the position is then back at the token's start, so
    ///         that no part of it is lost
    virtual int32_t nextToken();

    /// Returns the value of the last token: a JString, JInteger, JDouble or JInt128. It is made at
    /// the first call, so call this function before anything else is read.
    /// \throws TokenizerException "Error reading tokens" when there is none: before any token,
    ///         after a newline, the end, no match or a failure
    virtual JPointer<JObject> getValue();

    /// Adds CommentFSM, NewlineFSM, NumberFSM, WhitespaceFSM, WordFSM and HashcodeFSM.
    void addStandardRecognisers();

    /// Adds the recognisers of another tokenizer, which continues to use them: they remember
    /// nothing between tokens. Many short texts then need only one set of machines.
    void shareRecognisers(const StreamTokenizer& other);

    /// Chooses whether the recognisers are asked even if StandardScanner could cut the tokens. For
    /// tests.
    void askRecognisersOnly(bool recognisersOnly);

    /// Returns the last token as a plain struct.
    const kel::Token& token() const { return token_; }

    /// Reads tokens until one is neither whitespace nor a comment nor a newline, adding the number
    /// of newlines to line. The result is that of repeated nextToken calls, but faster. \return its
    /// type
    /// \throws as nextToken; the newlines before the failure are counted
    int32_t nextSolidToken(int32_t& line);

    /// Adds line ends to a count of lines, which does not grow beyond its greatest value.
    static void countLines(int32_t& line, int32_t more);

    /// Returns the position where the last token, or failed match, began.
    int64_t tokenStart() const { return tokenStart_; }

    /// Returns the bytes that the tokenizer reads.
    kel::BufferedInput& input() { return input_; }

    /// Reads a hash code that begins at the current position, asking no other recogniser, so its
    /// first group can be eight decimal digits. \return false, at the same position, if there is
    /// none
    bool readHashCode(JHashCode& hashCode);

    /// Reads the longest run of letters, digits, "_" and "@" at the current position. It can be
    /// empty. The text is valid until the next call that reads.
    std::string_view readKeyRun();

    /// Reads one raw character. Returns -1 at end of input.
    int32_t nextRaw() { return input_.next(); }

private:
    int32_t nextRecognisedToken();
    int32_t askAll(int32_t c);
    void take(const TokenizerFSM& winner);
    void takeText(const TokenizerFSM& winner, const JString& text);
    void chooseScannerOrRecognisers();

    kel::BufferedInput input_;
    JVector<TokenizerFSM> recognisers_;
    JPointer<JObject> value_;
    kel::Token token_;
    int64_t tokenStart_;
    std::vector<TokenizerFSM*> asked_; // still in during one token; owned by recognisers_
    bool recognisersOnly_ = false;
    bool usesScanner_ = false;
};
