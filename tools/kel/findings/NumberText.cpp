#include "findings/NumberText.h"

#include "words/DoubleText.h"
#include "words/ValueText.h"

#include <kel/cpp/written_number.hpp>

namespace kel::tool {

namespace {

std::string shown(std::string_view number) {
    constexpr size_t longest = 40;
    return number.size() <= longest ? std::string(number)
                                    : std::string(number.substr(0, longest)) + "...";
}

std::string readAs(std::string_view number, const std::string& value) {
    return shown(number) + " does not fit in 32 bits and is read as " + value;
}

std::string mistakeInDecimals(std::string_view number) {
    constexpr size_t kept = 6;
    if (detail::written_number(number).wraps()) {
        return "the whole part of " + readAs(number, wordsFor(asReadFromText(number)));
    }
    const std::string_view decimals = number.substr(number.find('.') + 1);
    const bool isKept = decimals.find_last_not_of('0') == std::string_view::npos ||
                        decimals.find_last_not_of('0') < kept;
    return isKept ? std::string()
                  : shown(number) + " has more than the six decimals that are written";
}

} // namespace

std::string mistakeInNumber(std::string_view number) {
    const detail::written_number spelt(number);
    if (spelt.is_decimal) {
        return mistakeInDecimals(number);
    }
    return spelt.wraps() ? readAs(number, std::to_string(spelt.as_read())) : std::string();
}

} // namespace kel::tool
