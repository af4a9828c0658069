/// \file
/// TextSource: the tokens of a text with its definitions expanded, and where errors are.
#pragma once

#include "serial/text/ExpansionBudget.h"
#include "serial/tokens/StreamTokenizer.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kel {

/// The source of the text reader: the stream, and above it the texts of the definitions that are
/// being expanded, the innermost being read. Keeps the line number, the table of definitions and
/// their budget for the life of the stream.
///
/// A refusal leaves the input just after the token that was wrong, or after the character
/// where no token matches: every failed read uses something, so a host that goes on reaches the
/// end. Line ends are the exception, because they are counted when they are skipped.
class TextSource {
public:
    /// Reads from the position of input, which is shared and not null.
    explicit TextSource(const JPointer<JInputStream>& input);

    /// The bytes of the stream itself.
    BufferedInput& input() { return stream_.input(); }

    /// The tokens of what is being read now.
    StreamTokenizer& tokens() { return *current_; }

    /// Skips whitespace, comments and newlines, counting lines, and reads the first other token.
    /// \return its type; tokens().tokenStart() is the place before it
    int32_t skip();

    /// The same but stays on its line: a newline is a token here.
    int32_t skipOnLine();

    /// Goes back before the last token.
    void unread() { tokens().input().seek(tokens().tokenStart()); }

    /// True if the last token, of this type, is none and the character stands in its place.
    bool isAt(int32_t type, char character) {
        return type == tokenNone && tokens().input().peek() == character;
    }

    /// Skips layout and reads a character that must follow.
    /// \throws as endError at the end of input, as refuseLast for anything else
    void expect(char character);

    /// Skips layout and reads a hash code that must follow. Its first group may be decimal digits.
    /// \throws as endError at the end of input, as refuseLast for anything else
    JHashCode expectHashCode();

    /// Throws away what a failed value left: unfinished expansions. Called before a root value or
    /// a single number or word.
    void startRoot();

    /// Reads a definition after its "#": "define", a name, and the text up to the line's end.
    void define();

    /// Starts reading the text of a definition in place of its name; a name without a definition,
    /// one that is being expanded already, and too much expansion are syntax errors.
    void beginExpansion(std::string_view name);

    /// Counts a value that is about to be made: if a definition makes too many, that is a syntax
    /// error.
    void countValue();

    /// Continues after the name of the innermost expansion; anything left in its text is a syntax
    /// error.
    void endExpansion();

    /// Leaves the input as it is: for tokens that are wrong where they end.
    /// \throws KELIOException "Error reading KEL - syntax error at line: N"
    [[noreturn]] void syntaxError() const;

    /// The same for the last token: leaves the input just after it, or after one character if none
    /// matched. A line end and the end of input stay unread.
    [[noreturn]] void refuseLast();

    /// Input ended where more must come: inside a definition that is a syntax error.
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
};

} // namespace kel
