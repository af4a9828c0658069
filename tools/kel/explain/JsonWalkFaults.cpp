// The messages of JsonWalk.
#include "explain/JsonWalk.h"
#include "explain/ShownText.h"
#include "explain/SourceExcerpt.h"
#include "explain/TextHints.h"
#include "explain/TextScanner.h"
#include "words/SimilarWord.h"

#include <algorithm>

namespace kel::tool {

std::string JsonWalk::closing() const {
    return isIn('[') ? "]" : "}";
}

size_t JsonWalk::endOfRun(size_t at) const {
    const size_t end = content_.find_first_of(" \t\r\n\"'[]{}:,=;", at);
    return std::max(std::min(end, content_.size()), std::min(at + 1, content_.size()));
}

/// Returns what is at the current place, in words for `found ...`.
std::string JsonWalk::found() const {
    // not reached: the callers deal with the end of the input themselves
    if (isAtEnd()) {
        return "the end of the input";
    }
    if (peek() == '"') {
        return "a string";
    }
    const bool isRun = isInKey(peek()) || peek() == '-' || peek() == '.' || peek() == '+';
    return quoted(content_.substr(at_, isRun ? endOfRun(at_) - at_ : lengthOfFound(content_, at_)));
}

void JsonWalk::failAt(size_t begin, size_t end, std::string reason, std::string hint) {
    throw Fault{begin, std::max(end, begin) - begin, std::move(reason), std::move(hint)};
}

void JsonWalk::failAtEnd(const std::string& expected) {
    const size_t end = endOfInk(content_);
    if (!brackets_.isEmpty()) {
        throw brackets_.faultAtEnd();
    }
    failAt(end, end,
           end == 0 ? "the input is empty; expected a value"
                    : "expected " + expected + ", found the end of the input");
}

/// Returns a hint for something that JSON does not have, or nothing.
std::string JsonWalk::hint() const {
    const std::string_view run = content_.substr(at_, endOfRun(at_) - at_);
    switch (peek()) {
    case '\'':
        return "strings stand in double quotes";
    case '/':
    case '#':
        return "JSON has no comments";
    case '=':
        return "did you mean \":\"?";
    case '+':
        return "numbers have no plus sign: remove it";
    case '.':
        return "write a digit before the decimal point: 0" + std::string(run.substr(0, 20));
    case '(':
    case '<':
        return "JSON has arrays \"[ ]\" and objects \"{ }\" only";
    default:
        break;
    }
    if (run == "NaN" || run == "nan" || run == "inf" || run == "Infinity" || run == "-Infinity" ||
        run == "-inf" || run == "-nan") {
        return "JSON has only finite numbers; null often stands for others";
    }
    if (run == "None" || run == "undefined" || run == "nil" || run == "NULL") {
        return "did you mean null?";
    }
    if (!beginsWord(peek())) {
        return "";
    }
    SimilarWord similar(run);
    for (const char* known : {"true", "false", "null"}) {
        similar.offer(known);
    }
    return similar.question().empty() ? "a string stands in double quotes: " + quoted(run)
                                      : similar.question().substr(2, similar.question().size() - 3);
}

void JsonWalk::failValue() {
    const char c = peek();
    if (isAtEnd()) {
        failAtEnd("a value");
    }
    const bool isClosing = c == ']' || c == '}';
    if (isClosing && comma_ != 0 && colon_ == 0) {
        failAt(comma_ - 1, comma_, "expected a value after \",\", found " + found(),
               c == closing()[0] ? "remove the comma after the last element" : "");
    }
    if (isClosing && brackets_.isEmpty()) {
        failAt(at_, at_ + 1,
               "found " + found() + " without an open \"" + (c == ']' ? '[' : '{') + '"');
    }
    if (colon_ != 0 && (isClosing || c == ',')) {
        failAt(colon_ - 1, colon_, "expected a value after \":\", found " + found());
    }
    if (isClosing) {
        failAt(at_, at_ + 1, "expected a value or \"]\", found " + found(), brackets_.stillOpen());
    }
    const bool isFirst = isIn('[') && comma_ == 0;
    failAt(at_, endOfRun(at_),
           std::string("expected a value") + (isFirst ? " or \"]\"" : "") + ", found " + found(),
           hint());
}

void JsonWalk::failName() {
    const char c = peek();
    if (isAtEnd()) {
        failAtEnd("a name");
    }
    if (c == '}') { // without a comma it would close the object
        failAt(comma_ - 1, comma_, "expected a name after \",\", found \"}\"",
               "remove the comma after the last member");
    }
    const std::string expected =
        comma_ != 0 ? "a name in double quotes" : "a name in double quotes or \"}\"";
    const bool isWord = isInKey(c);
    failAt(at_, endOfRun(at_), "expected " + expected + ", found " + found(),
           isWord      ? "write " + quoted(content_.substr(at_, endOfRun(at_) - at_))
           : c == '\'' ? "names stand in double quotes"
                       : hint());
}

void JsonWalk::failColon() {
    if (isAtEnd()) {
        failAtEnd("\":\"");
    }
    failAt(at_, at_ + lengthOfFound(content_, at_), "expected \":\" after a name, found " + found(),
           peek() == '=' ? hint() : "");
}

/// Refuses what follows an element.
void JsonWalk::failSeparator() {
    if (isAtEnd()) {
        failAtEnd("");
    }
    const std::string expected = "expected \",\" or \"" + closing() + "\"";
    const std::string reason = expected + ", found " + found();
    const char c = peek();
    if (c == ']' || c == '}') {
        failAt(at_, at_ + 1, reason, brackets_.stillOpen());
    }
    if (c == ':' && isIn('[')) {
        failAt(at_, at_ + 1, reason, brackets_.stillOpen() + ", and an array has no names");
    }
    const bool isElement = c == '"' || c == '[' || c == '{' || c == '-' || isInKey(c);
    const bool isInLaterLine =
        content_.substr(lastEnd_, at_ - lastEnd_).find('\n') != std::string_view::npos;
    if (isElement && isInLaterLine) {
        failAt(lastEnd_, lastEnd_, expected + " before the next line", "add a comma");
    }
    failAt(at_, at_ + lengthOfFound(content_, at_), reason, isElement ? "add a comma" : hint());
}

void JsonWalk::failOpenString(size_t open) {
    failAt(open, open + 1, "this string is not closed before the end of the input");
}

void JsonWalk::failControl(size_t open) {
    const char c = peek();
    if (c == '\n' || c == '\r') {
        failAt(open, open + 1, "this string is not closed in its line",
               "a line end in a string is written as \\n");
    }
    const std::string shown = firstCharacter(content_.substr(at_)).text;
    failAt(at_, at_ + 1, "a control character cannot stand in a string",
           "write it as " + (c == '\t' ? std::string("\\t") : shown));
}

void JsonWalk::failNumber(size_t begin) {
    const std::string_view run = content_.substr(begin, endOfRun(begin) - begin);
    const bool isNegative = run.starts_with('-');
    const std::string_view digits = run.substr(isNegative ? 1 : 0);
    std::string hint;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        hint = "JSON has only decimal numbers";
    } else if (digits.size() > 1 && digits[0] == '0' && isDigit(digits[1])) {
        hint = "numbers have no leading zeros";
    } else if (run.ends_with('.')) {
        hint = "write a digit after the decimal point";
    } else if (run.find('_') != std::string_view::npos) {
        hint = "numbers have no separators: remove the underscores";
    } else if (run.find_last_of("eE") != std::string_view::npos &&
               run.find_first_not_of("0123456789.eE+-") == std::string_view::npos) {
        hint = "write digits after the exponent's sign";
    } else {
        hint = hintForNumber(run);
    }
    failAt(begin, begin + run.size(), quoted(run) + " is not a number", hint);
}

} // namespace kel::tool
