#include "findings/NumberText.h"

#include "words/DoubleText.h"
#include "words/ValueText.h"

#include <cstdint>

namespace kel::tool {

namespace {

constexpr uint32_t greatestInt = 0x7FFFFFFF;

/// Returns the digits without the zeros before them.
std::string_view withoutLeadingZeros(std::string_view digits) {
    const size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? std::string_view() : digits.substr(first);
}

/// Returns the number of the digits modulo 2^32, as the reader computes it.
uint32_t wrapped(std::string_view digits) {
    uint32_t value = 0;
    for (const char digit : digits) {
        value = value * 10 + static_cast<uint32_t>(digit - '0');
    }
    return value;
}

uint32_t wrappedHexadecimal(std::string_view digits) {
    uint32_t value = 0;
    for (const char digit : digits) {
        const char lower = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit + 32) : digit;
        value = value * 16 + static_cast<uint32_t>(lower >= 'a' ? lower - 'a' + 10 : lower - '0');
    }
    return value;
}

/// Returns whether the decimal number is at most the limit, which has ten digits.
bool isAtMost(std::string_view digits, uint32_t limit) {
    constexpr size_t longest = 10;
    digits = withoutLeadingZeros(digits);
    return digits.size() < longest ||
           (digits.size() == longest && digits <= std::string_view(std::to_string(limit)));
}

std::string shown(std::string_view number) {
    constexpr size_t longest = 40;
    return number.size() <= longest ? std::string(number)
                                    : std::string(number.substr(0, longest)) + "...";
}

std::string readAs(std::string_view number, const std::string& value) {
    return shown(number) + " does not fit in 32 bits and is read as " + value;
}

std::string mistakeInDecimals(std::string_view number, std::string_view whole,
                              std::string_view decimals) {
    constexpr size_t kept = 6;
    if (!isAtMost(whole, greatestInt)) {
        return "the whole part of " + readAs(number, wordsFor(asReadFromText(number)));
    }
    const bool isKept = decimals.find_last_not_of('0') == std::string_view::npos ||
                        decimals.find_last_not_of('0') < kept;
    return isKept ? std::string()
                  : shown(number) + " has more than the six decimals that are written";
}

} // namespace

std::string mistakeInNumber(std::string_view number) {
    if (number.starts_with("0x")) {
        constexpr size_t wordDigits = 8;
        const std::string_view digits = withoutLeadingZeros(number.substr(2));
        return digits.size() <= wordDigits
                   ? std::string()
                   : readAs(number,
                            std::to_string(static_cast<int32_t>(wrappedHexadecimal(digits))));
    }
    const bool isNegative = number.starts_with('-');
    const std::string_view digits = number.substr(isNegative ? 1 : 0);
    if (const size_t point = digits.find('.'); point != std::string_view::npos) {
        return mistakeInDecimals(number, digits.substr(0, point), digits.substr(point + 1));
    }
    if (isAtMost(digits, greatestInt + (isNegative ? 1 : 0))) {
        return {};
    }
    const uint32_t value = wrapped(digits);
    return readAs(number, std::to_string(static_cast<int32_t>(isNegative ? 0 - value : value)));
}

} // namespace kel::tool
