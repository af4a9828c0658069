/// \file
/// TextSource: the tokens of a text with its definitions expanded, and where errors are.
#pragma once

#include "serial/StreamTokenizer.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kel {

/// What the text reader reads from: the stream, and above it the texts of the definitions that are
/// being expanded, the innermost being read. Keeps the line number and the table of definitions for
/// the life of the stream.
class TextSource {
public:
    /// All expansions of one root value together may cost this much, a definition's length and 64
    /// for each use, so that a chain of doublings is refused instead of filling the memory.
    static constexpr std::size_t expansionLimit = std::size_t{4} * 1024 * 1024;

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

    /// Throws away what a failed value left: unfinished expansions. Called before a root value or
    /// a single number or word.
    void startRoot();

    /// Reads a definition behind its "#": "define", a name, and the text up to the line's end.
    void define();

    /// Starts reading the text of a definition in place of its name; a name without a definition,
    /// one that is being expanded already, and too much expansion are syntax errors.
    void beginExpansion(std::string_view name);

    /// Goes on behind the name of the innermost expansion; anything left in its text is a syntax
    /// error.
    void endExpansion();

    /// \throws KELIOException "Error reading KEL - syntax error at line: N"
    [[noreturn]] void syntaxError() const;

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

    void expectWord(std::string& word);

    StreamTokenizer stream_;
    StreamTokenizer* current_;
    std::vector<Expansion> expansions_;
    std::map<std::string, Definition, std::less<>> definitions_;
    std::size_t expanded_ = 0;
    int32_t line_ = 1;
};

} // namespace kel
