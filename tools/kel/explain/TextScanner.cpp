#include "explain/TextScanner.h"

namespace kel::tool {

using Kind = TextToken::Kind;

namespace {

bool isInWord(char c) {
    return isInKey(c) && c != '@';
}

bool isInLine(char c) {
    return c != '\n' && c != '\f' && c != '\r';
}

} // namespace

bool beginsWord(char c) {
    return isInKey(c) && !isDigit(c);
}

bool isInKey(char c) {
    return isLetter(c) || isDigit(c) || c == '_' || c == '@';
}

size_t TextScanner::skipWhile(size_t from, bool (*belongs)(char)) const {
    while (from < content_.size() && belongs(content_[from])) {
        ++from;
    }
    return from;
}

bool TextScanner::skipLayout() {
    bool hasLineEnd = false;
    for (;;) {
        const char c = peek();
        if (c == ' ' || c == '\t') {
            line_.ink += at_ == line_.ink ? 1 : 0;
            ++at_;
        } else if (c == '\n' || c == '\f' || (c == '\r' && at(at_ + 1) == '\n')) {
            at_ += c == '\r' ? 2 : 1;
            line_ = {at_, at_};
            hasLineEnd = true;
        } else if (c == '/' && (at(at_ + 1) == '/' || at(at_ + 1) == '*')) {
            at_ = endOfComment();
        } else {
            return hasLineEnd;
        }
    }
}

size_t TextScanner::endOfComment() const {
    if (at(at_ + 1) == '/') {
        return skipWhile(at_, isInLine);
    }
    bool isAfterStar = false;
    for (size_t i = at_ + 2; i < content_.size(); ++i) {
        if (isAfterStar && content_[i] == '/') {
            return i + 1;
        }
        isAfterStar = content_[i] == '*' && !isAfterStar; // of two stars the second one is text
    }
    const bool hasEnd = content_.find("*/", at_ + 2) != std::string_view::npos;
    throw Fault{at_, 2, "this comment is not closed",
                hasEnd ? "the closing \"*/\" follows another star: put a space before it"
                       : "a comment ends with \"*/\""};
}

TextToken TextScanner::hashCodeOr(Kind kind, size_t end) const {
    const size_t hashCodeEnd = endOfHashCode();
    return hashCodeEnd != 0 ? TextToken{Kind::hashCode, at_, hashCodeEnd}
                            : TextToken{kind, at_, end};
}

TextToken TextScanner::valueToken() const {
    if (isAtEnd()) {
        return {Kind::end, at_, at_};
    }
    const char c = peek();
    if (c == '"') {
        const size_t quote = content_.find('"', at_ + 1);
        return quote == std::string_view::npos ? TextToken{Kind::openQuote, at_, at_ + 1}
                                               : TextToken{Kind::quoted, at_, quote + 1};
    }
    if (isDigit(c) || c == '-' || c == '.') {
        return numberToken();
    }
    if (!beginsWord(c)) {
        return {Kind::other, at_, at_ + 1};
    }
    const size_t end = skipWhile(at_ + 1, isInWord);
    if (at(end) == '"') {
        return {Kind::other, at_, end};
    }
    return at(end) == '-' ? hashCodeOr(Kind::other, end) : TextToken{Kind::word, at_, end};
}

TextToken TextScanner::numberToken() const {
    constexpr size_t hashCodeDigits = 32;
    constexpr size_t firstGroup = 8;
    const bool isNegative = peek() == '-';
    const size_t digits = at_ + (isNegative ? 1 : 0);
    size_t end = skipWhile(digits, isDigit);
    if (isNegative && end - digits >= hashCodeDigits) {
        return hashCodeOr(Kind::other, end);
    }
    if (at(end) == '.') {
        end = skipWhile(end + 1, isDigit);
        const bool isNumber = at(end) != '.' && !isHexDigit(at(end));
        return {isNumber ? Kind::number : Kind::other, at_, end};
    }
    if (isHexDigit(at(end))) {
        return hashCodeOr(Kind::other, end);
    }
    if (at(end) == 'x' && end == at_ + 1 && peek() == '0') {
        return {Kind::number, at_, skipWhile(end + 1, isHexDigit)};
    }
    const bool canBeHashCode = !isNegative && end - at_ == firstGroup && at(end) == '-';
    return canBeHashCode ? hashCodeOr(Kind::number, end) : TextToken{Kind::number, at_, end};
}

size_t TextScanner::endOfHashCode() const {
    constexpr size_t hashCodeDigits = 32;
    size_t count = 0;
    bool hasDash = false;
    size_t i = at_;
    for (; count < hashCodeDigits; ++i) {
        if (isHexDigit(at(i))) {
            ++count;
        } else if (at(i) == '-') {
            hasDash = true;
        } else {
            return 0;
        }
    }
    return hasDash ? i : 0;
}

size_t TextScanner::endOfBareKey() const {
    return skipWhile(at_, isInKey);
}

} // namespace kel::tool
