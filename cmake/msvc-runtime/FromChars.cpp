#include "FromChars.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The significant digits of a number, without a point. strtod reads them alike in every locale.
class Digits {
public:
    /// Adds the next digit of the number.
    void add(char digit, bool isFraction) {
        if (count_ == 0 && digit == '0') {
            exponent_ -= isFraction ? 1 : 0;
        } else if (count_ < mostDigits) {
            digits_[count_++] = digit;
            exponent_ -= isFraction ? 1 : 0;
        } else {
            // All later digits only decide whether the number is above the middle between two
            // doubles. One digit that is not zero says as much.
            exponent_ += isFraction ? 0 : 1;
            more_ = more_ || digit != '0';
        }
    }

    /// Returns whether all digits are zeros.
    bool isZero() const { return count_ == 0; }

    /// Returns the double that is closest to the digits with this power of ten. A double that is
    /// too large is infinite.
    double closest(int64_t power) {
        constexpr int64_t unreachable = 100000; // beyond the range of doubles whatever the digits
        std::array<char, mostDigits + 16> text = digits_;
        std::size_t size = count_;
        power += exponent_;
        if (more_) {
            text[size++] = '1';
            --power;
        }
        text[size++] = 'e';
        power = std::clamp(power, -unreachable, unreachable);
        *std::to_chars(&text[size], &text.back(), static_cast<int32_t>(power)).ptr = '\0';
        const int before = errno;
        const double result = std::strtod(text.data(), nullptr);
        errno = before;
        return result;
    }

private:
    /// The digits of the middle between two doubles are never more.
    static constexpr std::size_t mostDigits = 770;

    std::array<char, mostDigits + 16> digits_{};
    std::size_t count_ = 0;
    int64_t exponent_ = 0;
    bool more_ = false;
};

/// Reads "e", a sign and digits at place. Returns the place after them, or place without digits.
const char* readPower(const char* place, const char* end, int64_t& power) {
    constexpr int64_t largest = INT64_MAX / 100; // no sum of powers overflows
    if (place == end || (*place != 'e' && *place != 'E')) {
        return place;
    }
    const char* digits = place + 1;
    const bool negative = digits != end && *digits == '-';
    if (digits != end && (*digits == '-' || *digits == '+')) {
        ++digits;
    }
    if (digits == end || !isDigit(*digits)) {
        return place;
    }
    for (; digits != end && isDigit(*digits); ++digits) {
        power = std::min(power * 10 + (*digits - '0'), largest);
    }
    power = negative ? -power : power;
    return digits;
}

} // namespace

std::from_chars_result std::from_chars(const char* first, const char* last, double& value,
                                       chars_format format) {
    const bool isNegative = first != last && *first == '-';
    const char* place = first + (isNegative ? 1 : 0);
    const bool startsDecimal =
        place != last &&
        (isDigit(*place) || (*place == '.' && place + 1 != last && isDigit(place[1])));
    if (!startsDecimal || format != chars_format::general) {
        return {first, errc::invalid_argument};
    }
    Digits digits;
    bool isFraction = false;
    for (; place != last && (isDigit(*place) || (*place == '.' && !isFraction)); ++place) {
        if (*place == '.') {
            isFraction = true;
        } else {
            digits.add(*place, isFraction);
        }
    }
    int64_t power = 0;
    place = readPower(place, last, power);
    const double result = digits.isZero() ? 0.0 : digits.closest(power);
    if (isinf(result) || (result == 0.0 && !digits.isZero())) {
        return {place, errc::result_out_of_range};
    }
    value = isNegative ? -result : result;
    return {place, errc()};
}
