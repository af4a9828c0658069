#include "explain/JsonWalk.h"

#include "explain/ShownText.h"
#include "explain/TextScanner.h"
#include "words/Utf8.h"

namespace kel::tool {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

void JsonWalk::run() {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content_.substr(at_).starts_with(byteOrderMark)) {
        at_ += byteOrderMark.size();
    }
    skipSpace();
    readValue();
    while (!brackets_.isEmpty()) {
        next();
    }
}

void JsonWalk::skipSpace() {
    for (; !isAtEnd() && isSpace(content_[at_]); ++at_) {
        if (content_[at_] == '\n') {
            line_ = {at_ + 1, at_ + 1};
        } else if (at_ == line_.ink) {
            ++line_.ink;
        }
    }
}

/// Reads what follows an opening bracket or an element.
void JsonWalk::next() {
    skipSpace();
    const bool isFirst = lastEnd_ <= brackets_.innermost();
    if (peek() == closing()[0]) {
        close();
        return;
    }
    if (!isFirst) {
        if (peek() != ',') {
            failSeparator();
        }
        comma_ = ++at_;
        skipSpace();
    }
    if (isIn('{')) {
        readName();
    }
    readValue();
}

void JsonWalk::readName() {
    if (peek() != '"') {
        failName();
    }
    readString();
    skipSpace();
    if (peek() != ':') {
        failColon();
    }
    colon_ = ++at_;
    skipSpace();
}

void JsonWalk::readValue() {
    const char c = peek();
    if (c == '[' || c == '{') {
        open();
        return;
    }
    if (c == '"') {
        readString();
    } else if (isDigit(c) || (c == '-' && isDigit(charAt(at_ + 1)))) {
        readNumber();
    } else {
        readLiteral();
    }
    comma_ = colon_ = 0;
}

void JsonWalk::readLiteral() {
    for (const std::string_view word : {"true", "false", "null"}) {
        if (content_.substr(at_, word.size()) == word && !isInKey(charAt(at_ + word.size()))) {
            at_ += word.size();
            lastEnd_ = at_;
            return;
        }
    }
    failValue();
}

void JsonWalk::skipDigits() {
    while (isDigit(peek())) {
        ++at_;
    }
}

void JsonWalk::readNumber() {
    const size_t begin = at_;
    at_ += peek() == '-' ? 1 : 0;
    const bool isZero = peek() == '0';
    const size_t digits = at_;
    skipDigits();
    if (isZero && at_ != digits + 1) {
        failNumber(begin);
    }
    if (peek() == '.') {
        ++at_;
        if (!isDigit(peek())) {
            failNumber(begin);
        }
        skipDigits();
    }
    if (peek() == 'e' || peek() == 'E') {
        ++at_;
        at_ += peek() == '+' || peek() == '-' ? 1 : 0;
        if (!isDigit(peek())) {
            failNumber(begin);
        }
        skipDigits();
    }
    if (isInKey(peek()) || peek() == '.') {
        failNumber(begin);
    }
    if (at_ + 1 >= overflow_) {
        failAt(begin, at_, quoted(content_.substr(begin, at_ - begin)) + " is beyond all doubles",
               "the greatest double is about 1.8e308");
    }
    lastEnd_ = at_;
}

void JsonWalk::readString() {
    const size_t open = at_;
    ++at_;
    for (;;) {
        if (isAtEnd()) {
            failOpenString(open);
        }
        const auto byte = static_cast<unsigned char>(content_[at_]);
        if (byte == '"') {
            lastEnd_ = ++at_;
            return;
        }
        if (byte == '\\') {
            readEscape(open);
        } else if (byte < 0x20) {
            failControl(open);
        } else {
            const size_t length = utf8SequenceLength(content_.substr(at_));
            if (length == 0) {
                failAt(at_, at_ + 1, "this byte is not valid UTF-8", "save the file as UTF-8");
            }
            at_ += length;
        }
    }
}

/// Returns the number that four hexadecimal digits spell.
/// \throws Fault if they are not there
unsigned JsonWalk::escapedUnit() {
    constexpr size_t digitCount = 4;
    unsigned number = 0;
    for (size_t i = at_ + 2; i < at_ + 2 + digitCount; ++i) {
        const char c = charAt(i);
        if (!isHexDigit(c)) {
            failAt(at_, i, "\"\\u\" needs four hexadecimal digits", "such as \\u00e9");
        }
        number = number * 16 + static_cast<unsigned>(isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
    }
    return number;
}

void JsonWalk::readEscape(size_t open) {
    constexpr std::string_view escapes = "\"\\/bfnrt";
    const char c = charAt(at_ + 1);
    if (at_ + 1 >= content_.size()) {
        failOpenString(open);
    }
    if (c != 'u') {
        if (escapes.find(c) == std::string_view::npos) {
            const size_t length = 1 + firstCharacter(content_.substr(at_ + 1)).length;
            failAt(at_, at_ + (c == '\n' ? 1 : length),
                   c == '\n' ? "a backslash does not continue a string in the next line"
                             : quoted(content_.substr(at_, length)) + " is not an escape",
                   R"(the escapes are \" \\ \/ \b \f \n \r \t and \uXXXX; a backslash is \\)");
        }
        at_ += 2;
        return;
    }
    constexpr size_t escapeLength = 6;
    const unsigned unit = escapedUnit();
    const size_t begin = at_;
    at_ += escapeLength;
    const bool isLow = unit >= 0xDC00 && unit < 0xE000;
    bool isHalf = isLow;
    if (unit >= 0xD800 && unit < 0xDC00) {
        const bool isPair = peek() == '\\' && charAt(at_ + 1) == 'u';
        const unsigned second = isPair ? escapedUnit() : 0;
        isHalf = second < 0xDC00 || second >= 0xE000;
        at_ += isPair ? escapeLength : 0;
    }
    if (isHalf) {
        failAt(begin, begin + escapeLength, "half of a surrogate pair",
               "characters beyond \\uffff take two escapes: \\ud83d\\ude00");
    }
}

void JsonWalk::open() {
    brackets_.open(at_, line_);
    ++at_;
    comma_ = colon_ = 0;
}

void JsonWalk::close() {
    brackets_.close(at_, line_);
    lastEnd_ = ++at_;
    comma_ = colon_ = 0;
}

} // namespace kel::tool
