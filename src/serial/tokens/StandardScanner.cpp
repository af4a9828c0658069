#include "serial/tokens/StandardScanner.h"

#include "serial/tokens/Characters.h"
#include "serial/tokens/Fraction.h"
#include "serial/tokens/HashcodeFSM.h"
#include "serial/tokens/PlainScanner.h"

#include <cstring>
#include <kel/JException.h>

namespace kel {

namespace {

bool isLineEnd(uint8_t byte) {
    return byte == '\n' || byte == '\f' || byte == '\r';
}

} // namespace

// The loops below run over the window and stop no later than at the NUL after it. Only there they
// request more input. Pointers are then fetched again, because the window may have moved.

int32_t StandardScanner::scan() {
    token_.clear();
    input_.mark();
    const int32_t first = input_.peek();
    switch (first) {
    case -1:
        return finish(tokenEnd);
    case '/':
        return scanSlash();
    case '\n':
    case '\f':
        input_.skip(1);
        return finish(tokenNewline);
    case '\r':
        return scanReturn();
    case ' ':
    case '\t':
        return scanBlanks();
    case '"':
        return scanQuotedWord();
    case '-':
        input_.skip(1);
        return scanNumber(true);
    case '.':
        input_.skip(1);
        return scanFraction(false, 0.0);
    default:
        break;
    }
    const auto byte = static_cast<uint8_t>(first);
    if (isInClass(byte, wordStartClass)) {
        return scanBareWord();
    }
    return isDigit(byte) ? scanNumber(false) : none();
}

int32_t StandardScanner::none() {
    input_.resetToMark();
    return finish(tokenNone);
}

int32_t StandardScanner::finish(TokenType type) {
    token_.type = type;
    return type;
}

int32_t StandardScanner::finishInteger(uint32_t value) {
    token_.integer = static_cast<int32_t>(value);
    return finish(tokenInteger);
}

// Finishes a token whose text is the consumed bytes without some at its start and end.
int32_t StandardScanner::finishText(TokenType type, size_t before, size_t after) {
    const uint8_t* from = input_.marked() + before;
    const uint8_t* to = input_.begin() - after;
    token_.text = {reinterpret_cast<const char*>(from), static_cast<size_t>(to - from)};
    return finish(type);
}

// Consumes all bytes of the classes. \return the byte after them, not consumed, or -1 at end of
// input
int32_t StandardScanner::skipClass(uint8_t classes) {
    do {
        const uint8_t* p = input_.begin();
        while (isInClass(*p, classes)) {
            ++p;
        }
        input_.skipTo(p);
        if (p != input_.end()) {
            return *p;
        }
    } while (input_.more());
    return -1;
}

int32_t StandardScanner::scanSlash() {
    input_.skip(1);
    switch (input_.peek()) {
    case '/':
        input_.skip(1);
        return scanLineComment();
    case '*':
        input_.skip(1);
        return scanBlockComment();
    default:
        return none();
    }
}

int32_t StandardScanner::scanLineComment() {
    do {
        const uint8_t* p = input_.begin();
        const uint8_t* end = input_.end();
        while (p != end && !isLineEnd(*p)) {
            ++p;
        }
        input_.skipTo(p);
    } while (input_.begin() == input_.end() && input_.more());
    return finishText(tokenComment, 2, 0);
}

int32_t StandardScanner::scanBlockComment() {
    bool afterStar = false;
    do {
        const uint8_t* end = input_.end();
        for (const uint8_t* p = input_.begin(); p != end; ++p) {
            if (afterStar && *p == '/') {
                input_.skipTo(p + 1);
                return finishText(tokenComment, 2, 2);
            }
            afterStar = *p == '*' && !afterStar; // of two stars the second one is text
        }
        input_.skipTo(end);
    } while (input_.more());
    return none();
}

int32_t StandardScanner::scanReturn() {
    input_.skip(1);
    if (input_.peek() != '\n') {
        return none();
    }
    input_.skip(1);
    return finish(tokenNewline);
}

int32_t StandardScanner::scanBlanks() {
    skipClass(blankClass);
    token_.text = " ";
    return finish(tokenWhitespace);
}

int32_t StandardScanner::scanBareWord() {
    input_.skip(1);
    const int32_t behind = skipClass(wordClass);
    if (behind == '"') {
        return none();
    }
    return behind == '-' ? scanHashCodeInstead() : finishText(tokenWord, 0, 0);
}

int32_t StandardScanner::scanQuotedWord() {
    input_.skip(1);
    do {
        const void* quote = std::memchr(input_.begin(), '"', input_.available());
        if (quote != nullptr) {
            input_.skipTo(static_cast<const uint8_t*>(quote) + 1);
            token_.quoted = true;
            return finishText(tokenWord, 1, 1);
        }
        input_.skipTo(input_.end());
    } while (input_.more());
    throw TokenizerException("Reached end of file with no closing quote.");
}

int32_t StandardScanner::scanNumber(bool negative) {
    uint32_t value = 0;
    int64_t digits = 0;
    int32_t behind = -1;
    do {
        const uint8_t* p = input_.begin();
        for (; isDigit(*p); ++p) {
            value = value * 10 + (*p - static_cast<uint32_t>('0'));
        }
        digits += p - input_.begin();
        input_.skipTo(p);
        if (p != input_.end()) {
            behind = *p;
            break;
        }
    } while (input_.more());

    // After a dash, the 32nd digit completes a hash code before the number ends.
    if (negative && digits >= hashCodeDigits) {
        return scanHashCodeInstead();
    }
    if (behind == '.') {
        input_.skip(1);
        return scanFraction(negative, static_cast<int32_t>(value));
    }
    if (isInClass(behind, hexLetterClass)) {
        return scanHashCodeInstead();
    }
    if (behind == 'x' && !negative && digits == 1 && value == 0) {
        input_.skip(1);
        return scanHexadecimal();
    }
    return finishInteger(negative ? 0 - value : value);
}

int32_t StandardScanner::scanHexadecimal() {
    uint32_t value = 0;
    do {
        const uint8_t* p = input_.begin();
        for (; isInClass(*p, hexDigitClass); ++p) {
            value = value * 16 + hexDigitValue(*p);
        }
        input_.skipTo(p);
    } while (input_.available() == 0 && input_.more());
    return finishInteger(value);
}

int32_t StandardScanner::scanFraction(bool negative, double sum) {
    size_t place = 0;
    do {
        const uint8_t* p = input_.begin();
        for (; isDigit(*p); ++p) {
            // Digits without weight add nothing.
            if (place < fractionWeightCount) {
                sum = addFractionDigit(sum, *p - static_cast<uint32_t>('0'),
                                       fractionWeights[place++]);
            }
        }
        input_.skipTo(p);
    } while (input_.available() == 0 && input_.more());
    const int32_t behind = input_.peek();
    if (behind == '.' || isInClass(behind, hexLetterClass)) {
        return none();
    }
    token_.floating = negative ? -sum : sum;
    return finish(tokenFloating);
}

// Reads a hash code after the number or word that the token began as was rejected.
int32_t StandardScanner::scanHashCodeInstead() {
    input_.resetToMark();
    return finish(scanHashCode(input_, token_.hashCode) ? tokenHashCode : tokenNone);
}

int32_t StandardScanner::skipLayout(BufferedInput& input) {
    int32_t lineEnds = 0;
    input.skipTo(PlainScanner::skipLayout(input.begin(), input.end(), lineEnds));
    return lineEnds;
}

bool StandardScanner::scanHashCode(BufferedInput& input, JHashCode& hashCode) {
    uint8_t digits[hashCodeDigits];
    int32_t count = 0;
    bool dashed = false;
    input.mark();
    while (count < hashCodeDigits) {
        const int32_t c = input.next();
        if (isInClass(c, hexDigitClass)) {
            digits[count++] = static_cast<uint8_t>(c);
        } else if (c == '-') {
            dashed = true;
        } else {
            break;
        }
    }
    if (count < hashCodeDigits || !dashed) {
        input.resetToMark();
        return false;
    }
    hashCode = hashCodeOfDigits(digits);
    return true;
}

} // namespace kel
