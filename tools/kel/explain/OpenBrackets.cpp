#include "explain/OpenBrackets.h"

#include "explain/ShownText.h"
#include "explain/SourceExcerpt.h"

namespace kel::tool {

void OpenBrackets::close(size_t at, const CurrentLine& line) {
    const Bracket& opening = open_.back();
    // The first character of a line closes a bracket of an earlier line.
    if (!hasMismatch_ && at == line.ink && opening.line.indentation() != line.indentation()) {
        hasMismatch_ = true;
        mismatchOpen_ = opening;
        mismatchClose_ = {at, line};
    }
    open_.pop_back();
}

bool OpenBrackets::isOutdented(const CurrentLine& line) const {
    const CurrentLine& opening = open_.back().line;
    return opening.begin != line.begin && line.indentation() <= opening.indentation();
}

Fault OpenBrackets::faultAtEnd() const {
    const Bracket& bracket = open_.back();
    if (hasMismatch_ && mismatchClose_.line.indentation() == bracket.line.indentation()) {
        return {mismatchOpen_.at, 1,
                quoted(content_.substr(mismatchOpen_.at, 1)) + " is not closed before the " +
                    withPlace(mismatchClose_.at),
                "that bracket is indented like " + withPlace(bracket.at)};
    }
    return {bracket.at, 1,
            quoted(content_.substr(bracket.at, 1)) +
                " is not closed before the end of the input at " +
                sourcePlace(content_, endOfInk(content_)),
            hintAboutIndentation()};
}

std::string OpenBrackets::stillOpen() const {
    return withPlace(innermost()) + " is still open";
}

std::string OpenBrackets::hintAboutIndentation() const {
    return hasMismatch_ ? withPlace(mismatchClose_.at) + " closes " + withPlace(mismatchOpen_.at) +
                              ", which is indented differently"
                        : "";
}

std::string OpenBrackets::withPlace(size_t at) const {
    return quoted(content_.substr(at, 1)) + " at " + sourcePlace(content_, at);
}

} // namespace kel::tool
