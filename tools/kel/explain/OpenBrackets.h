/// \file
/// OpenBrackets: the brackets of a text that are open, and which of them was probably forgotten.
#pragma once

#include "explain/Fault.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// The line that a scanner is in.
struct CurrentLine {
    size_t begin = 0; ///< the offset of the line
    size_t ink = 0;   ///< the offset of its first character that is not a blank

    size_t indentation() const { return ink - begin; }
};

/// A stack of brackets with the indentation of their lines. If a bracket begins a line and is not
/// indented as its opening one, a bracket between the two is usually missing or superfluous.
class OpenBrackets {
public:
    /// The caller must keep the content alive.
    explicit OpenBrackets(std::string_view content) : content_(content) {}

    bool isEmpty() const { return open_.empty(); }

    /// Returns the offset of the innermost bracket.
    size_t innermost() const { return open_.back().at; }

    void open(size_t at, const CurrentLine& line) { open_.push_back({at, line}); }

    /// Closes the innermost bracket with the one at the offset.
    void close(size_t at, const CurrentLine& line);

    /// Returns whether a line begins after that of the innermost bracket and is not indented
    /// deeper.
    bool isOutdented(const CurrentLine& line) const;

    /// Returns the fault of an input that ends although brackets are open.
    Fault faultAtEnd() const;

    /// Returns the hint that the innermost bracket is still open.
    std::string stillOpen() const;

    /// Returns the hint about the first pair of brackets that are not indented alike, or nothing.
    std::string hintAboutIndentation() const;

private:
    struct Bracket {
        size_t at = 0;
        CurrentLine line = {};
    };

    std::string withPlace(size_t at) const;

    std::string_view content_;
    std::vector<Bracket> open_;
    bool hasMismatch_ = false;
    Bracket mismatchOpen_; ///< the first pair of brackets that are not indented alike
    Bracket mismatchClose_;
};

} // namespace kel::tool
