/// \file
/// TextSource: the tokens of a text with its definitions expanded, and the places of errors.
#pragma once

#include "serial/text/ExpansionBudget.h"
#include "serial/tokens/StreamTokenizer.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kel {

/// The source of the text reader: the stream, and on top of it the texts of the definitions that
/// are being expanded. The innermost one is being read. Keeps the line number, the table of
/// definitions and their budget for the life of the stream.
///
/// A refusal leaves the input just after the wrong token, or after one character if no token
/// matches. So every failed read consumes something, and a host that reads on reaches the end. Line
/// ends are the exception, because they are counted when they are skipped.
class TextSource {
public:
    /// Reads from the position of input, which is shared and not null.
    explicit TextSource(const JPointer<JInputStream>& input);

    /// Returns the bytes of the stream itself.
    BufferedInput& input() { return stream_.input(); }

    /// Returns the tokens of the text that is being read now.
    StreamTokenizer& tokens() { return *current_; }

    /// Skips whitespace, comments and newlines, counting lines, and reads the first other token.
    /// \return its type; tokens().tokenStart() is the place before it
    int32_t skip();

    /// Does the same but does not leave the line: a newline is a token here.
    int32_t skipOnLine();

    /// Uses the bytes of the window before place, among which are so many line ends of layout.
    void use(const uint8_t* place, int32_t lineEnds) {
        tokens().input().skipTo(place);
        StreamTokenizer::countLines(line_, lineEnds);
    }

    /// Chooses whether the recognisers cut every token, one at a time, and nothing else examines
    /// the text. For tests.
    void readLiterally(bool literally) {
        literally_ = literally;
        stream_.askRecognisersOnly(literally);
    }

    /// Returns true unless a test chose otherwise.
    bool usesPlainScanner() const { return !literally_; }

    /// Moves back to the place before the last token.
    void unread() { tokens().input().seek(tokens().tokenStart()); }

    /// Returns whether the last token, of this type, matched nothing and the character is at its
    /// place.
    bool isAt(int32_t type, char character) {
        return type == tokenNone && tokens().input().peek() == character;
    }

    /// Skips layout and reads a character that must follow.
    /// \throws as endError at the end of input, as refuseLast for anything else
    void expect(char character);

    /// Skips layout and reads a hash code that must follow. Its first group can be decimal digits.
    /// \throws as endError at the end of input, as refuseLast for anything else
    JHashCode expectHashCode();

    /// Drops the unfinished expansions of a failed value. Called before a root value or a single
    /// number or word.
    void startRoot();

    /// Reads a definition after its "#": "define", a name, and the text up to the line's end.
    void define();

    /// Starts reading the text of a definition in place of its name. It is a syntax error if the
    /// name has no definition, is being expanded already, or needs too much expansion.
    void beginExpansion(std::string_view name);

    /// Counts a value, at one of the costs of the budget. It is a syntax error if definitions make
    /// too many.
    void countValue(int64_t cost) {
        if (!expansions_.empty() && !budget_.spendValue(cost)) {
            syntaxError();
        }
    }

    /// Continues after the name of the innermost expansion. It is a syntax error if anything is
    /// left in its text.
    void endExpansion();

    /// Refuses the input and leaves it as it is: for tokens that are wrong where they end.
    /// \throws KELIOException "Error reading KEL - syntax error at line: N"
    [[noreturn]] void syntaxError() const;

    /// Refuses the last token: leaves the input just after it, or after one character if none
    /// matched. A line end and the end of input are not consumed.
    [[noreturn]] void refuseLast();

    /// Reports that the input ended too early. Inside a definition that is a syntax error.
    /// \throws KELEOFException "Error reading KEL - unexpected end of input at line: N"
    [[noreturn]] void endError() const;

private:
    struct Definition {
        std::string text;
        bool expanding = false;
    };

    /// The text of a definition that is being read.
    struct Expansion {
        Definition* definition;
        JPointer<StreamTokenizer> tokens;
    };

    std::string expectWordOnLine();

    StreamTokenizer stream_;
    StreamTokenizer* current_;
    std::vector<Expansion> expansions_;
    std::map<std::string, Definition, std::less<>> definitions_;
    ExpansionBudget budget_;
    int32_t line_ = 1;
    bool literally_ = false;
};

} // namespace kel
