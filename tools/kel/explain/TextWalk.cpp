#include "explain/TextWalk.h"

#include "explain/ShownText.h"
#include "explain/TextHints.h"

#include <algorithm>

namespace kel::tool {

using Kind = TextToken::Kind;

namespace {

constexpr size_t nowhere = static_cast<size_t>(-1);

bool closesContainer(char c) {
    return c == ']' || c == '}' || c == ')' || c == '>';
}

} // namespace

TextWalk::TextWalk(std::string_view content, size_t stop)
    : content_(content), scanner_(content, 0, content.size()), begin_(0), stop_(stop),
      brackets_(content_) {
    shapes_.push_back(Shape::text);
}

TextWalk::TextWalk(std::string_view content, const Definition& definition,
                   std::vector<std::string_view>& used)
    : content_(content.substr(0, definition.end)),
      scanner_(content, definition.begin, definition.end), begin_(definition.begin), stop_(nowhere),
      used_(&used), brackets_(content_) {
    shapes_.push_back(Shape::text);
}

void TextWalk::run() {
    while (!isOver()) {
        switch (shapes_.back()) {
        case Shape::text:
            readElement();
            break;
        case Shape::structure:
            nextVariable();
            break;
        case Shape::manager:
            nextEntry();
            break;
        case Shape::array:
        case Shape::indexList:
            if (scanner_.peek() == closingOf(shapes_.back())) {
                close();
            } else {
                readElement();
            }
            break;
        }
    }
}

/// Skips layout and returns whether nothing is left, or nothing that the library has seen.
bool TextWalk::isOver() {
    scanner_.skipLayout();
    const bool isRoot = shapes_.size() == 1;
    if (scanner_.isAtEnd()) {
        if (isRoot && values_ == 0) {
            failAtEnd("a value");
        }
        return isRoot;
    }
    if (isRoot && values_ == 1 && used_ != nullptr) {
        failAt(scanner_.at(), scanner_.at() + lengthOfFound(content_, scanner_.at()),
               "the definition continues after its value with " +
                   foundInText(content_, scanner_.at()));
    }
    return scanner_.at() >= stop_;
}

/// Reads a value or a definition.
void TextWalk::readElement() {
    if (beginValue() == Begun::identity) {
        readValue();
    }
}

void TextWalk::nextVariable() {
    if (scanner_.peek() == '}') {
        close();
        return;
    }
    readKey();
    scanner_.skipLayout();
    if (scanner_.peek() != '=') {
        failAfterKey();
    }
    scanner_.moveTo(scanner_.at() + 1);
    equals_ = scanner_.at();
    readValue();
    keyEnd_ = 0;
}

void TextWalk::nextEntry() {
    if (scanner_.peek() == ')') {
        close();
        return;
    }
    expectHashCode(expectedHere());
    expectCharacter('=', "the identity");
    isIdentified_ = true;
    readValue();
}

void TextWalk::readKey() {
    const TextToken token = scanner_.valueToken();
    keyBegin_ = scanner_.at();
    keyTouchesNumber_ = isAfterNumber();
    if (token.kind == Kind::openQuote) {
        failOpenQuote(token);
    }
    if (token.kind == Kind::quoted) {
        if (token.end - token.begin == 2) {
            failAt(token.begin, token.end, "a name cannot be empty");
        }
        noteQuoted(token);
        failIfNul(token);
        keyEnd_ = token.end;
    } else {
        keyEnd_ = scanner_.endOfBareKey();
    }
    if (keyEnd_ == keyBegin_) {
        keyEnd_ = 0;
        if (scanner_.isAtEnd()) {
            failAtEnd(expectedHere());
        }
        failIfClosing(expectedValue());
        failIfNumberGoesOn();
        fail(expectedHere());
    }
    scanner_.moveTo(keyEnd_);
}

void TextWalk::readValue() {
    do {
        scanner_.skipLayout();
    } while (beginValue() != Begun::value);
}

TextWalk::Begun TextWalk::beginValue() {
    const TextToken token = scanner_.valueToken();
    switch (token.kind) {
    case Kind::end:
        failAtEnd(expectedValue());
    case Kind::openQuote:
        failOpenQuote(token);
    case Kind::number:
        complete(token.begin, token.end);
        lastIsNumber_ = true;
        return Begun::value;
    case Kind::quoted:
        noteQuoted(token);
        failIfNul(token);
        complete(token.begin, token.end);
        return Begun::value;
    case Kind::hashCode:
        return beginWithHashCode(token);
    case Kind::word:
        beginWord(token);
        return Begun::value;
    case Kind::other:
        break;
    }
    return beginCharacter(token);
}

/// Passes over a hash code. It is an identity if a value follows on its line.
TextWalk::Begun TextWalk::beginWithHashCode(const TextToken& token) {
    scanner_.moveTo(token.end);
    if (isIdentified_) {
        complete(token.begin, token.end);
        return Begun::value;
    }
    const bool hasLineEnd = scanner_.skipLayout();
    const bool hasEquals = !hasLineEnd && scanner_.peek() == '=';
    if (hasEquals) {
        scanner_.moveTo(scanner_.at() + 1);
    } else if (hasLineEnd || scanner_.isAtEnd() || closesContainer(scanner_.peek())) {
        complete(token.begin, token.end);
        return Begun::value;
    }
    isIdentified_ = true;
    return Begun::identity;
}

void TextWalk::beginWord(const TextToken& token) {
    const std::string_view text = content_.substr(token.begin, token.end - token.begin);
    if (text == "REF" || text == "ref") {
        refer(token);
        return;
    }
    const bool isName = text != "true" && text != "false" && text != "null" && text != "NULL";
    if (isName && isAtStop(token.end)) {
        failName(token);
    }
    if (isName && used_ != nullptr) {
        used_->push_back(text);
    }
    complete(token.begin, token.end);
}

TextWalk::Begun TextWalk::beginCharacter(const TextToken& token) {
    switch (scanner_.peek()) {
    case '[':
        open(Shape::array);
        return Begun::value;
    case '{':
        open(Shape::structure);
        readHeader();
        return Begun::value;
    case '(':
        open(Shape::manager);
        return Begun::value;
    case '<':
        open(Shape::indexList);
        return Begun::value;
    case '#':
        scanner_.moveTo(token.end);
        define();
        return Begun::definition;
    default:
        failCharacter(token);
    }
}

void TextWalk::refer(const TextToken& word) {
    scanner_.moveTo(word.end);
    expectHashCode("the identity of a value after \"REF\"");
    const size_t end = scanner_.at();
    if (isAtStop(end)) {
        scanner_.skipLayout();
        failAt(end - lastHashCodeLength_, end,
               isIdentified_ ? "the value has another identity than the one before \"REF\", or was "
                               "not read before"
                             : "no value with this identity was read before",
               "\"REF\" finds only values that are complete and whose identity the text gives");
    }
    complete(word.begin, end);
}

void TextWalk::readHeader() {
    for (;;) {
        const bool hasLineEnd = scanner_.skipLayout();
        const TextToken token = scanner_.valueToken();
        const std::string_view text = content_.substr(token.begin, token.end - token.begin);
        const bool isKind = text == "@type";
        if (hasLineEnd || token.kind != Kind::word || (!isKind && text != "@hashCode")) {
            return;
        }
        scanner_.moveTo(token.end);
        expectCharacter('=', quoted(text));
        if (isKind) {
            readKind();
        } else {
            expectHashCode("the identity of the value");
        }
        if (!scanner_.skipLayout() && scanner_.peek() == ',') {
            scanner_.moveTo(scanner_.at() + 1);
        }
    }
}

void TextWalk::readKind() {
    scanner_.skipLayout();
    const TextToken token = scanner_.valueToken();
    if (token.kind == Kind::end) {
        failAtEnd("the code of a kind");
    }
    if (token.kind == Kind::openQuote) {
        failOpenQuote(token);
    }
    if (token.kind != Kind::number || isAtStop(token.end)) {
        fail("8, 50, 51 or 52 after \"@type\"",
             "8 is a struct, 50 a checked struct, 51 its descriptor, 52 that of a variable");
    }
    scanner_.moveTo(token.end);
}

/// Records a definition after its "#".
void TextWalk::define() {
    if (definitionWord("\"define\" after \"#\"") != "define") {
        scanner_.moveTo(lastBegin_);
        fail("\"define\" after \"#\"", content_.substr(lastBegin_).starts_with("include")
                                           ? "a text cannot include others"
                                           : "a comment begins with \"//\"");
    }
    std::string_view name = definitionWord("a name after \"#define\"");
    if (name.starts_with('"')) {
        name = name.substr(1, name.size() - 2);
    }
    const size_t begin =
        std::min(content_.find_first_not_of(" \t\r\n", scanner_.at()), content_.size());
    const size_t end = std::min(content_.find_first_of("\n\f\r", begin), content_.size());
    definitions_[name] = {begin, end};
    if (!isOnOneLine(scanner_.at(), begin)) {
        lateDefinition_ = begin;
    }
    scanner_.moveTo(end);
}

/// Takes one of the two words that begin a definition.
std::string_view TextWalk::definitionWord(const char* expected) {
    const size_t before = scanner_.at();
    const bool hasLineEnd = scanner_.skipLayout();
    const TextToken token = scanner_.valueToken();
    if (hasLineEnd || token.kind == Kind::end) {
        failAt(before, before, std::string("expected ") + expected + " in the same line");
    }
    if (token.kind == Kind::openQuote) {
        failOpenQuote(token);
    }
    if (token.kind != Kind::word && token.kind != Kind::quoted) {
        fail(expected, "names begin with a letter or \"_\", or stand in quotes");
    }
    lastBegin_ = token.begin;
    lastEnd_ = token.end;
    lastIsNumber_ = false;
    scanner_.moveTo(token.end);
    return content_.substr(token.begin, token.end - token.begin);
}

void TextWalk::open(Shape shape) {
    shapes_.push_back(shape);
    brackets_.open(scanner_.at(), scanner_.line());
    scanner_.moveTo(scanner_.at() + 1);
    isIdentified_ = false;
    lastIsNumber_ = false;
    keyEnd_ = 0;
}

void TextWalk::close() {
    const Shape shape = shapes_.back();
    const size_t open = brackets_.innermost();
    const size_t at = scanner_.at();
    if (shape == Shape::indexList && isAtStop(at + 1)) {
        failAt(at, at + 1, "an index list needs two arrays of equal length before its \">\"",
               "the list begins at " + placeOf(open));
    }
    brackets_.close(at, scanner_.line());
    shapes_.pop_back();
    if (shape == Shape::array && shapes_.back() == Shape::indexList && isAtStop(at + 1)) {
        failAt(open, open + 1, "an index list holds two arrays, and this is the third");
    }
    complete(open, at + 1);
}

/// Continues after a value.
void TextWalk::complete(size_t begin, size_t end) {
    scanner_.moveTo(end);
    lastBegin_ = begin;
    lastEnd_ = end;
    lastIsNumber_ = false;
    isIdentified_ = false;
    const Shape shape = shapes_.back();
    const bool isContainer = closesContainer(content_[end - 1]);
    if (shape == Shape::indexList && !isContainer && isAtStop(end)) {
        failAt(begin, end,
               "expected an array in an index list, found " + foundInText(content_, begin));
    }
    values_ += shape == Shape::text ? 1 : 0;
}

void TextWalk::expectCharacter(char character, const std::string& after) {
    scanner_.skipLayout();
    if (scanner_.peek() != character) {
        const std::string expected = std::string("\"") + character + "\" after " + after;
        if (scanner_.isAtEnd()) {
            failAtEnd(expected);
        }
        fail(expected);
    }
    scanner_.moveTo(scanner_.at() + 1);
}

void TextWalk::expectHashCode(const std::string& expected) {
    scanner_.skipLayout();
    if (scanner_.isAtEnd()) {
        failAtEnd(expected);
    }
    const size_t end = scanner_.endOfHashCode();
    if (end == 0) {
        failIdentity(expected);
    }
    lastHashCodeLength_ = end - scanner_.at();
    scanner_.moveTo(end);
}

} // namespace kel::tool
