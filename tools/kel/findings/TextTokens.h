/// \file
/// TextTokens: takes the tokens of a text that the library has read.
#pragma once

#include "explain/TextScanner.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// Takes one token after the other from a text. The library has accepted the text, so mistakes need
/// no explanation: what does not fit gives an empty token.
class TextTokens {
public:
    /// Begins at an offset of the content and ends at another. The content must stay alive.
    TextTokens(std::string_view content, size_t begin, size_t end)
        : content_(content.substr(0, end)), scanner_(content, begin, end) {}

    size_t at() const { return scanner_.at(); }
    const char* place() const { return content_.data() + scanner_.at(); }
    void moveTo(size_t at) { scanner_.moveTo(at); }
    bool isAtEnd() const { return scanner_.isAtEnd(); }

    /// Returns the next character, or NUL at the end.
    char peek() const { return scanner_.peek(); }

    /// Passes over blanks, line ends and comments, and over a comment without an end.
    /// \return whether there was a line end
    bool skipLayout();

    /// Passes over blanks and comments. \return false, without having moved, if the line ends there
    bool skipOnLine();

    /// Passes over the character after layout. \return whether it comes next; otherwise stays there
    bool take(char character);

    /// Returns the text of a quoted word, without its quotes, and passes over it. Returns nothing
    /// if none begins here.
    std::optional<std::string_view> takeQuoted();

    /// Returns a bare word and passes over it. It is empty if none begins here.
    std::string_view takeWord() { return takeToken(TextToken::Kind::word); }

    /// Returns a number and passes over it. It is empty if none begins here, also if a hash code
    /// does.
    std::string_view takeNumber() { return takeToken(TextToken::Kind::number); }

    /// Returns a key without quotes and passes over it. It is empty if none begins here.
    std::string_view takeBareKey() { return takeUntil(scanner_.endOfBareKey()); }

    /// Returns a hash code in GUID layout, in upper case, and passes over it. It is empty if none
    /// begins here.
    std::string takeHashCode();

    /// Returns the text of a definition, which begins after layout and ends before a line end, and
    /// passes over it.
    std::string_view takeDefinitionText();

private:
    std::string_view takeToken(TextToken::Kind kind);
    std::string_view takeUntil(size_t end);

    std::string_view content_;
    TextScanner scanner_;
};

} // namespace kel::tool
