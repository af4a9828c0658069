/// \file
/// as_written: the number that somebody wrote, from the one that reading text makes of it.
#pragma once

#include <kel/cpp/rules.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns what the library makes of a decimal number in a text. Only its reader knows the steps.
inline double read_by_library(double decimal) {
    const std::string digits = shortest(decimal);
    return call([&digits] {
        const auto stream = adopt_made<KELInputStream>(
            CreateKELStringInputStream(digits.data(), static_cast<std::int32_t>(digits.size())));
        const auto number = adopt_made<KEL>(stream->read());
        return number->toDouble();
    });
}

/// Returns the decimal number that text had if reading made this number of it: 0.67 for
/// 0.67000000000000015. Returns any other number as it is. More than nine decimals are not looked
/// at, so that the reader need not be called for every number.
inline double as_written(double number) {
    constexpr int most_decimals = 9;
    if (!(std::abs(number) < beyond_text)) {
        return number;
    }
    const double decimal = with_kept_digits(number);
    return decimal != number && decimals_of(decimal) <= most_decimals &&
                   read_by_library(decimal) == number
               ? decimal
               : number;
}

} // namespace detail
} // namespace v1
} // namespace kel
