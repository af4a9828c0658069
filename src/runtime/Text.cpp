#include "runtime/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace kel {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Returns whether c is one of the blanks that precede a number in the C locale.
bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Removes blanks and one sign from the front. \return true for a minus
bool skipToDigits(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    return negative;
}

/// Returns whether digits that from_chars found out of range are too large rather than too small.
bool isHuge(std::string_view number) {
    const std::size_t e = number.find_first_of("eE");
    int64_t exponent = 0;
    if (e != std::string_view::npos) {
        std::string_view digits = number.substr(e + 1);
        const bool negative = skipToDigits(digits);
        if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec ==
            std::errc::result_out_of_range) {
            exponent = std::numeric_limits<int32_t>::max();
        }
        exponent = negative ? -exponent : exponent;
        number = number.substr(0, e);
    }
    const std::size_t point = std::min(number.find('.'), number.size());
    const std::size_t first = number.find_first_of("123456789");
    const auto lead = static_cast<int64_t>(point) - static_cast<int64_t>(first);
    return lead + exponent > 0;
}

/// The two decimal digits of each number below 100.
constexpr std::array<char, 200> digitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

/// Writes value with six decimals if machine numbers can compute them.
/// \return the place after the last digit, or null, with nothing written, if the value is too large
///         or too close to the middle between two texts
char* formatMillionths(char* text, double value) {
    constexpr double tooLarge = 4294967296.0; // the digits before the point fit in 32 bits
    constexpr uint32_t million = 1000000;
    const double magnitude = std::fabs(value);
    if (!(magnitude < tooLarge)) {
        return nullptr;
    }
    auto whole = static_cast<uint32_t>(magnitude);
    // The fraction is exact. The product is rounded by 2^-34 at most, so the side of the middle
    // that it is on is certain anywhere except right beside the middle.
    const double scaled = (magnitude - whole) * million;
    auto millionths = static_cast<uint32_t>(scaled);
    const double aboveMiddle = scaled - millionths - 0.5;
    constexpr double uncertain = 1.0 / (1 << 30);
    if (std::fabs(aboveMiddle) < uncertain) {
        return nullptr;
    }
    millionths += aboveMiddle > 0 ? 1 : 0;
    if (millionths == million) {
        millionths = 0;
        if (whole == UINT32_MAX) {
            return nullptr;
        }
        ++whole;
    }
    if (std::signbit(value)) {
        *text++ = '-';
    }
    text = std::to_chars(text, text + integerTextSize, whole).ptr;
    *text = '.';
    std::memcpy(text + 1, &digitPairs[2 * (millionths / 10000)], 2);
    std::memcpy(text + 3, &digitPairs[2 * (millionths / 100 % 100)], 2);
    std::memcpy(text + 5, &digitPairs[2 * (millionths % 100)], 2);
    return text + 7;
}

} // namespace

std::size_t formatInteger(char* text, int32_t value) {
    char* end = std::to_chars(text, text + integerTextSize - 1, value).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - text);
}

std::size_t formatDouble(char* text, double value) {
    if (!std::isfinite(value)) {
        const char* name = std::isnan(value) ? "nan" : "inf";
        char* end = text;
        if (std::signbit(value)) {
            *end++ = '-';
        }
        std::memcpy(end, name, 4);
        return static_cast<std::size_t>(end + 3 - text);
    }
    char* end = formatMillionths(text, value);
    if (end == nullptr) {
        end =
            std::to_chars(text, text + doubleTextSize - 1, value, std::chars_format::fixed, 6).ptr;
    }
    *end = '\0';
    return static_cast<std::size_t>(end - text);
}

int32_t parseInteger(std::string_view text) {
    const bool negative = skipToDigits(text);
    constexpr int64_t limit = int64_t{1} << 31;
    int64_t value = 0;
    for (std::size_t i = 0; i < text.size() && isDigit(text[i]) && value < limit; ++i) {
        value = value * 10 + (text[i] - '0');
    }
    value = std::min(value, negative ? limit : limit - 1);
    return static_cast<int32_t>(negative ? -value : value);
}

double parseDouble(std::string_view text) {
    const bool negative = skipToDigits(text);
    const bool startsDecimal =
        !text.empty() &&
        (isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
    if (!startsDecimal) {
        return 0.0;
    }
    double value = 0.0;
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        const auto length = static_cast<std::size_t>(result.ptr - text.data());
        value = isHuge(text.substr(0, length)) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -value : value;
}

} // namespace kel
