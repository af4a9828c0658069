#include "words/DoubleText.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace kel::tool {

double asReadFromText(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative) {
        text.remove_prefix(1);
    }
    const size_t point = text.find('.');
    uint32_t whole = 0;
    for (const char digit : text.substr(0, point)) {
        whole = whole * 10 + static_cast<uint32_t>(digit - '0');
    }
    double number = static_cast<int32_t>(whole);
    double weight = 0.1;
    for (const char digit : text.substr(point + 1)) {
        number = number + (digit - '0') * weight;
        weight = weight * 0.1;
    }
    return isNegative ? -number : number;
}

bool isCarriedByText(double value) {
    if (!(std::fabs(value) < 4294967296.0)) {
        return false; // also infinities and not-a-number
    }
    char text[32];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
    const double readBack = asReadFromText(std::string_view(text, end.ptr));
    return std::bit_cast<uint64_t>(readBack) == std::bit_cast<uint64_t>(value);
}

} // namespace kel::tool
