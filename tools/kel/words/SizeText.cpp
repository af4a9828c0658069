#include "words/SizeText.h"

#include <charconv>
#include <limits>

namespace kel::tool {

std::optional<uint64_t> sizeOfText(std::string_view text) {
    constexpr std::string_view units = "KkMmGgTt";
    unsigned shift = 0;
    if (!text.empty()) {
        const size_t unit = units.find(text.back());
        if (unit != std::string_view::npos) {
            shift = 10 * (static_cast<unsigned>(unit) / 2 + 1);
            text.remove_suffix(1);
        }
    }
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, number);
    const bool isNumber = failure == std::errc() && rest == end && number > 0;
    if (!isNumber || number > std::numeric_limits<uint64_t>::max() >> shift) {
        return std::nullopt;
    }
    return number << shift;
}

} // namespace kel::tool
