/// \file
/// Pattern: a text to find in other texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Compares texts with a pattern: a part of them, or a glob pattern for the whole text, in which
/// `*` stands for any characters, `?` for one character, and a backslash makes the next character
/// an ordinary one. The time is at most proportional to the product of both lengths.
class Pattern {
public:
    /// \param ignoresCase whether ASCII letters match in either case
    Pattern(std::string text, bool isGlob, bool ignoresCase);

    /// Returns whether the text matches.
    bool matches(std::string_view text);

private:
    /// An element of a glob pattern.
    struct Element {
        enum class Kind { byte, anyCharacter, anyCharacters };

        Kind kind;
        char byte = 0;
    };

    void readGlob(std::string_view text);
    bool matchesGlob(std::string_view text) const;

    bool isGlob_;
    bool ignoresCase_;
    std::string part_;          ///< to be found, unless it is a glob pattern
    std::vector<Element> glob_; ///< the glob pattern
    std::string lowerCase_;     ///< the current text; kept because new memory costs time
};

} // namespace kel::tool
