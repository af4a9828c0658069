/// \file
/// TextScanner: cuts the text form into tokens, to explain why the library refused it.
#pragma once

#include "explain/Fault.h"
#include "explain/OpenBrackets.h"
#include "words/Characters.h"

#include <cstddef>
#include <string_view>

namespace kel::tool {

/// A token at a place where a value can begin.
struct TextToken {
    enum class Kind {
        end,       ///< the end of the text
        number,    ///<
        word,      ///< a bare word
        quoted,    ///< a quoted word
        openQuote, ///< a quoted word without an end
        hashCode,  ///<
        other      ///< a single character, or something that is not a token
    };

    Kind kind;
    size_t begin;
    size_t end;
};

/// Scans a part of a text as docs/text-format.md describes its tokens.
class TextScanner {
public:
    /// Scans the content from begin to end. The caller must keep the content alive.
    TextScanner(std::string_view content, size_t begin, size_t end)
        : content_(content.substr(0, end)), at_(begin), line_{begin, begin} {}

    size_t at() const { return at_; }
    size_t end() const { return content_.size(); }
    bool isAtEnd() const { return at_ == content_.size(); }

    /// Returns the next character, or NUL at the end.
    char peek() const { return at(at_); }

    void moveTo(size_t at) { at_ = at; }

    /// Returns the current line, which does not begin inside a comment or quotes.
    const CurrentLine& line() const { return line_; }

    /// Passes over blanks, line ends and comments.
    /// \return whether there was a line end outside comments
    /// \throws Fault for a comment without an end
    bool skipLayout();

    /// Returns the end of the comment that begins here.
    /// \throws Fault for a comment without an end
    size_t endOfComment() const;

    /// Returns the token where a value can begin. Does not move.
    TextToken valueToken() const;

    /// Returns the end of a hash code that begins here, or 0 if none does.
    size_t endOfHashCode() const;

    /// Returns the end of a key without quotes, which is here if the key is empty.
    size_t endOfBareKey() const;

private:
    char at(size_t place) const { return place < content_.size() ? content_[place] : '\0'; }
    size_t skipWhile(size_t from, bool (*belongs)(char)) const;
    TextToken numberToken() const;
    TextToken hashCodeOr(TextToken::Kind kind, size_t end) const;

    std::string_view content_;
    size_t at_;
    CurrentLine line_;
};

/// Returns whether a character can begin a bare word.
bool beginsWord(char c);
/// Returns whether a character can be in a key without quotes.
bool isInKey(char c);

} // namespace kel::tool
