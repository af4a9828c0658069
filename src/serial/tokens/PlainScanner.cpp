#include "serial/tokens/PlainScanner.h"

#include "serial/tokens/Characters.h"
#include "serial/tokens/Fraction.h"

#include <cstddef>
#include <cstring>

namespace kel {

namespace {

/// Returns whether the byte can follow a number and belongs to the next token. A NUL can be the end
/// of the window.
bool endsNumber(uint8_t byte) {
    return byte != '.' && byte != '-' && byte != 'x' && byte != 0 &&
           !isInClass(byte, hexLetterClass);
}

std::string_view textBetween(const uint8_t* from, const uint8_t* to) {
    return {reinterpret_cast<const char*>(from), static_cast<std::size_t>(to - from)};
}

const uint8_t* skipBlanks(const uint8_t* p) {
    while (isInClass(*p, blankClass)) {
        ++p;
    }
    return p;
}

} // namespace

// The loops below stop at the NUL after the window at the latest.

const uint8_t* PlainScanner::scanScalar(const uint8_t* place, const uint8_t* end,
                                        PlainScalar& scalar) {
    switch (*place) {
    case '"':
        scalar.form = PlainScalar::Form::quoted;
        return scanQuoted(place, end, scalar.text);
    case 't':
        scalar.form = PlainScalar::Form::yes;
        return scanWord(place, "true");
    case 'f':
        scalar.form = PlainScalar::Form::no;
        return scanWord(place, "false");
    case 'n':
        scalar.form = PlainScalar::Form::null;
        return scanWord(place, "null");
    case 'N':
        scalar.form = PlainScalar::Form::null;
        return scanWord(place, "NULL");
    case '-':
    case '0':
    case '1':
    case '2':
    case '3':
    case '4':
    case '5':
    case '6':
    case '7':
    case '8':
    case '9':
        return scanNumber(place, scalar);
    default:
        return nullptr;
    }
}

const uint8_t* PlainScanner::scanNumber(const uint8_t* place, PlainScalar& scalar) {
    constexpr std::ptrdiff_t mostDigits = 19; // after a dash, 32 can be a hash code
    const bool negative = *place == '-';
    const uint8_t* const digits = place + (negative ? 1 : 0);
    const uint8_t* p = digits;
    uint32_t value = 0;
    for (; isDigit(*p); ++p) {
        value = value * 10 + (*p - static_cast<uint32_t>('0'));
    }
    if (p == digits || p - digits > mostDigits) {
        return nullptr;
    }
    if (*p == '.') {
        return scanFraction(p + 1, negative, static_cast<int32_t>(value), scalar);
    }
    if (!endsNumber(*p)) {
        return nullptr;
    }
    scalar.form = PlainScalar::Form::integer;
    scalar.integer = static_cast<int32_t>(negative ? 0 - value : value);
    return p;
}

const uint8_t* PlainScanner::scanFraction(const uint8_t* digits, bool negative, double sum,
                                          PlainScalar& scalar) {
    const uint8_t* p = digits;
    for (const auto& terms : fractionTerms) {
        if (!isDigit(*p)) {
            break;
        }
        sum += terms[*p - static_cast<uint32_t>('0')];
        ++p;
    }
    if (!endsNumber(*p) || isDigit(*p)) {
        return nullptr; // among others, a fraction with more places than the table
    }
    scalar.form = PlainScalar::Form::floating;
    scalar.floating = negative ? -sum : sum;
    return p;
}

const uint8_t* PlainScanner::scanQuoted(const uint8_t* place, const uint8_t* end,
                                        std::string_view& text) {
    const uint8_t* const from = place + 1;
    const auto* to =
        static_cast<const uint8_t*>(std::memchr(from, '"', static_cast<std::size_t>(end - from)));
    if (to == nullptr) {
        return nullptr;
    }
    text = textBetween(from, to);
    return text.find('\0') == std::string_view::npos ? to + 1 : nullptr;
}

const uint8_t* PlainScanner::scanWord(const uint8_t* place, std::string_view word) {
    for (const char c : word) {
        if (*place++ != static_cast<uint8_t>(c)) {
            return nullptr;
        }
    }
    const bool goesOn =
        isInClass(*place, wordClass) || *place == '"' || *place == '-' || *place == 0;
    return goesOn ? nullptr : place;
}

const uint8_t* PlainScanner::scanKey(const uint8_t* place, const uint8_t* end,
                                     std::string_view& key) {
    const uint8_t* after = place;
    if (*place == '"') {
        after = scanQuoted(place, end, key);
        if (after == nullptr) {
            return nullptr;
        }
    } else {
        while (isInClass(*after, keyClass)) {
            ++after;
        }
        key = textBetween(place, after);
    }
    after = skipBlanks(after);
    return key.empty() || *after != '=' ? nullptr : after + 1;
}

bool PlainScanner::hasNoHeader(const uint8_t* place) {
    const uint8_t next = *skipBlanks(place);
    return next == '\n' || next == '}' || (next != '@' && isInClass(next, keyClass));
}

} // namespace kel
