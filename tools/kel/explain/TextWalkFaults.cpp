// The messages of TextWalk.
#include "explain/ShownText.h"
#include "explain/SourceExcerpt.h"
#include "explain/TextHints.h"
#include "explain/TextWalk.h"
#include "words/SimilarWord.h"

#include <algorithm>

namespace kel::tool {

using Kind = TextToken::Kind;

namespace {

/// Returns the bracket that opens what the character closes, or NUL for any other character.
char openingOf(char c) {
    switch (c) {
    case ']':
        return '[';
    case '}':
        return '{';
    case ')':
        return '(';
    case '>':
        return '<';
    default:
        return '\0';
    }
}

} // namespace

char TextWalk::closingOf(Shape shape) {
    switch (shape) {
    case Shape::array:
        return ']';
    case Shape::structure:
        return '}';
    case Shape::manager:
        return ')';
    case Shape::indexList:
        return '>';
    // not reached: nothing closes the text itself
    case Shape::text:
        break;
    }
    return '\0';
}

/// Remembers a quoted word after which something follows that people separate from it.
void TextWalk::noteQuoted(const TextToken& token) {
    constexpr std::string_view usual = " \t\r\n\f[]{}()<>=,:/;";
    const bool isUsual =
        token.end >= content_.size() || usual.find(content_[token.end]) != std::string_view::npos;
    if (!isUsual || content_[token.end - 2] == '\\') {
        suspect_ = token;
    }
}

bool TextWalk::isOnOneLine(size_t begin, size_t end) const {
    return content_.substr(begin, end - begin).find('\n') == std::string_view::npos;
}

std::string TextWalk::placeOf(size_t at) const {
    return sourcePlace(content_, at);
}

std::string TextWalk::expectedHere() const {
    switch (shapes_.back()) {
    case Shape::text:
        break;
    case Shape::array:
        return "a value or \"]\"";
    case Shape::structure:
        return "a name or \"}\"";
    case Shape::manager:
        return "an identity or \")\"";
    case Shape::indexList:
        return "an array or \">\"";
    }
    return "a value";
}

std::string TextWalk::expectedValue() const {
    if (isIdentified_) {
        return "a value after the identity";
    }
    return keyEnd_ != 0 ? "a value for " + shownKey() : expectedHere();
}

std::string TextWalk::shownKey() const {
    const bool isQuoted = content_[keyBegin_] == '"';
    const size_t begin = keyBegin_ + (isQuoted ? 1 : 0);
    return quoted(content_.substr(begin, keyEnd_ - (isQuoted ? 1 : 0) - begin));
}

/// Returns a hint about a name where only values are allowed.
std::string TextWalk::hintAboutNames() const {
    switch (shapes_.back()) {
    case Shape::text:
        return "the variables of a struct stand in braces: { NAME = VALUE }";
    case Shape::array:
        return brackets_.isOutdented(scanner_.line())
                   ? "is the \"]\" of the array at " + placeOf(brackets_.innermost()) + " missing?"
                   : "an array has no names: a struct is written in \"{ }\"";
    case Shape::structure:
    case Shape::manager:
    case Shape::indexList:
        break;
    }
    return "";
}

// ---- Failures ----------------------------------------------------------------------------------

void TextWalk::failAt(size_t begin, size_t end, std::string reason, std::string hint) const {
    failIfSuspect(begin);
    throw Fault{begin, end - begin, std::move(reason), std::move(hint)};
}

void TextWalk::fail(const std::string& expected, std::string hint) const {
    const size_t at = scanner_.at();
    const bool isUnit = lastIsNumber_ && scanner_.peek() == '%' && isOnOneLine(lastEnd_, at);
    if (hint.empty() && isUnit) {
        hint = hintForNumber(content_.substr(lastBegin_, at + 1 - lastBegin_));
    }
    failAt(at, at + lengthOfFound(content_, at),
           "expected " + expected + ", found " + foundInText(content_, at),
           hint.empty() ? hintForStranger(content_, at) : std::move(hint));
}

/// Blames an earlier quoted word if it ends in the line of a fault. A quote that is missing or too
/// many turns the text after it inside out.
void TextWalk::failIfSuspect(size_t at) const {
    if (!suspect_ || at < suspect_->end || !isOnOneLine(suspect_->end, at)) {
        return;
    }
    const size_t end = suspect_->end;
    if (content_[end - 2] == '\\') {
        // A path can end with a backslash. Then the other quotes of the line are in pairs.
        const std::string_view rest = content_.substr(end, content_.find('\n', end) - end);
        if (std::count(rest.begin(), rest.end(), '"') % 2 == 0 && endOfRun(content_, end) == end) {
            return;
        }
        throw Fault{end - 2, 2, "a backslash does not escape this quote, which ends the word",
                    "text has no escapes: a quoted word cannot hold a double quote"};
    }
    const std::string next = quoted(content_.substr(end, endOfRun(content_, end) - end));
    if (!isOnOneLine(suspect_->begin, end)) {
        throw Fault{suspect_->begin, 1,
                    "this quoted word ends only at " + placeOf(end - 1) + ", before " + next,
                    "is its closing quote missing?"};
    }
    throw Fault{end - 1, 1, "expected a space after a quoted word, found " + next,
                "a quoted word cannot hold a double quote, and text has no escapes"};
}

/// Refuses a quoted word with a NUL in it.
void TextWalk::failIfNul(const TextToken& token) const {
    const size_t nul = content_.substr(0, token.end).find('\0', token.begin);
    if (nul != std::string_view::npos) {
        failAt(nul, nul + 1, "a quoted word cannot hold a NUL");
    }
}

void TextWalk::failOpenQuote(const TextToken& token) const {
    failAt(token.begin, token.end, "this quote is not closed before the end of the input");
}

void TextWalk::failAtEnd(const std::string& expected) const {
    if (used_ != nullptr) {
        const bool isEmpty = endOfInk(content_) <= begin_;
        failAt(begin_, begin_,
               isEmpty ? "the definition is empty" : "the definition ends inside its value",
               "a definition ends with its line");
    }
    if (!brackets_.isEmpty()) {
        throw brackets_.faultAtEnd();
    }
    const size_t end = endOfInk(content_);
    if (values_ > 0 || isIdentified_ || expected != expectedHere()) {
        throw Fault{end, 0, "expected " + expected + ", found the end of the input", ""};
    }
    throw Fault{end, 0,
                std::string(end == 0 ? "the input is empty" : "the input has no value") +
                    "; expected at least one value",
                lateDefinition_ == 0 ? ""
                                     : "the text at " + placeOf(lateDefinition_) +
                                           " belongs to the definition before it"};
}

/// Refuses a number that other characters follow directly.
void TextWalk::failIfNumberGoesOn() const {
    if (isAfterNumber() && endOfRun(content_, lastBegin_) > lastEnd_) {
        failRun(lastBegin_);
    }
}

/// Refuses a bracket that closes something else than the innermost container.
void TextWalk::failIfClosing(const std::string& expected) const {
    const size_t at = scanner_.at();
    const char opening = openingOf(scanner_.peek());
    if (opening == '\0') {
        return;
    }
    if (shapes_.back() == Shape::text) {
        failAt(at, at + 1,
               "found " + quoted(content_.substr(at, 1)) + " without an open \"" + opening + '"',
               brackets_.hintAboutIndentation());
    }
    const bool isWrong = closingOf(shapes_.back()) != scanner_.peek();
    fail(expected, isWrong ? brackets_.stillOpen() : "");
}

void TextWalk::failAfterKey() const {
    if (keyTouchesNumber_) {
        failRun(lastBegin_);
    }
    const size_t at = scanner_.at();
    if (scanner_.isAtEnd()) {
        failAtEnd("\"=\"");
    }
    const std::string expected = "\"=\" after " + shownKey();
    if (scanner_.peek() == ':') {
        fail(expected);
    }
    const size_t runEnd = endOfRun(content_, keyBegin_);
    if (at == keyEnd_ && runEnd > keyEnd_) {
        fail(expected, "names with other characters than letters, digits, \"_\" and \"@\" need "
                       "quotes: " +
                           quoted(content_.substr(keyBegin_, runEnd - keyBegin_)));
    }
    failIfUnit(at);
    const std::string hint = "a variable is written as NAME = VALUE";
    if (!isOnOneLine(keyEnd_, at)) {
        failAt(keyEnd_, keyEnd_, "expected " + expected, hint);
    }
    fail(expected, hint);
}

/// Refuses a name that is the unit of the number before it on its line, and so without a value.
/// \param next the place after the name
void TextWalk::failIfUnit(size_t next) const {
    const bool isAfterNumber = lastIsNumber_ && lastEnd_ < keyBegin_ &&
                               content_.find_first_not_of(" \t", lastEnd_) == keyBegin_ &&
                               content_[keyBegin_] != '"';
    const bool isAlone = !isOnOneLine(keyEnd_, next) || openingOf(content_[next]) != '\0';
    if (isAfterNumber && isAlone) {
        failAt(keyBegin_, keyEnd_, "expected \"=\" after " + shownKey(),
               hintForNumber(content_.substr(lastBegin_, keyEnd_ - lastBegin_)));
    }
}

/// Refuses a character that does not begin a value, or a word or number that is malformed.
void TextWalk::failCharacter(const TextToken& token) const {
    failIfClosing(expectedValue());
    failIfNumberGoesOn();
    const char first = scanner_.peek();
    if (isDigit(first) || first == '-' || first == '.') {
        failRun(token.begin);
    }
    const std::string_view run =
        content_.substr(token.begin, endOfRun(content_, token.begin) - token.begin);
    if (beginsWord(first)) {
        if (looksLikeHashCode(run)) {
            failRun(token.begin);
        }
        const bool isBeforeQuote = content_.substr(token.end).starts_with('"');
        fail(expectedValue(), isBeforeQuote ? "is a double quote missing before it?"
                                            : "a string stands in quotes: " + quoted(run));
    }
    const bool isName = first == '=' || first == ':';
    fail(expectedValue(), isName ? hintAboutNames() : "");
}

void TextWalk::failName(const TextToken& word) const {
    const std::string_view text = content_.substr(word.begin, word.end - word.begin);
    failIfNumberGoesOn();
    if (text == "inf" || text == "nan") {
        failRun(word.begin);
    }
    failIfNameOfVariable(word);
    const auto found = definitions_.find(text);
    if (found != definitions_.end()) {
        throw RefusedUse{text, word.begin, shapes_.back() == Shape::indexList};
    }
    if (text == "void") {
        failAt(word.begin, endOfRun(content_, word.begin),
               "text can show a memory block but not hold it", "store it as binary or JSON");
    }
    constexpr size_t mostOffered = 1000;
    SimilarWord similar(text);
    for (const char* known : {"true", "false", "null", "NULL", "REF"}) {
        similar.offer(known);
    }
    size_t offered = 0;
    for (auto i = definitions_.begin(); i != definitions_.end() && offered < mostOffered; ++i) {
        similar.offer(i->first);
        ++offered;
    }
    const size_t runEnd = std::max(endOfRun(content_, word.begin), word.end);
    failAt(word.begin, runEnd,
           quoted(content_.substr(word.begin, runEnd - word.begin)) + " is not defined" +
               similar.question(),
           similar.question().empty()
               ? "a string stands in quotes: " + quoted(phraseAt(content_, word.begin))
               : "");
}

/// Refuses a word that an equals sign follows: the name of a variable in place of a value.
void TextWalk::failIfNameOfVariable(const TextToken& word) const {
    const size_t next = std::min(content_.find_first_not_of(" \t", word.end), content_.size());
    const bool isName =
        next < content_.size() &&
        (content_[next] == '=' || (content_[next] == ':' && endOfRun(content_, next) == next + 1));
    if (!isName) {
        return;
    }
    if (keyEnd_ != 0 && !isOnOneLine(equals_, word.begin)) {
        failAt(equals_ - 1, equals_, "expected a value for " + shownKey());
    }
    const std::string reason = "expected " + expectedValue() + ", found the name " +
                               quoted(content_.substr(word.begin, word.end - word.begin));
    failAt(word.begin, word.end, reason, hintAboutNames());
}

/// Refuses what people read as one word, which begins like a number or a guid.
void TextWalk::failRun(size_t begin) const {
    const size_t end = std::max(endOfRun(content_, begin), begin + 1);
    const std::string_view run = content_.substr(begin, end - begin);
    if (run == "inf" || run == "-inf" || run == "nan" || run == "-nan") {
        failAt(begin, end, "the reader of text does not know " + quoted(run),
               "text and JSON hold only finite numbers; binary holds all");
    }
    if (!looksLikeHashCode(run)) {
        failAt(begin, end, quoted(run) + " is not a number", hintForNumber(run));
    }
    const size_t strange = run.find_first_not_of("0123456789abcdefABCDEF-");
    failAt(begin, end, quoted(run) + " is not a guid",
           strange != std::string_view::npos
               ? quoted(run.substr(strange, 1)) + " is not a hexadecimal digit"
               : "a guid has 32 hexadecimal digits; this has " + std::to_string(hexDigitsIn(run)));
}

void TextWalk::failIdentity(const std::string& expected) const {
    const size_t begin = scanner_.at();
    const size_t end = std::max(endOfRun(content_, begin), begin);
    if (looksLikeHashCode(content_.substr(begin, end - begin))) {
        failRun(begin);
    }
    failIfClosing(expected);
    fail(expected, "an identity is written as 3F2504E0-4F89-11D3-9A0C-0305E82C3301");
}

} // namespace kel::tool
