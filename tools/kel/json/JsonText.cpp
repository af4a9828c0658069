#include "json/JsonText.h"

#include "words/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kel::tool {

JsonDouble::JsonDouble(double value) {
    constexpr std::string_view null = "null";
    constexpr double plainDigits = 1e15;
    char* const end = characters_ + sizeof characters_;
    char* at;
    if (!std::isfinite(value)) {
        at = std::copy(null.begin(), null.end(), characters_);
    } else if (std::trunc(value) == value && std::fabs(value) < plainDigits) {
        at = std::to_chars(characters_, end, value, std::chars_format::fixed).ptr;
    } else {
        at = std::to_chars(characters_, end, value).ptr;
    }
    const std::string_view digits(characters_, static_cast<size_t>(at - characters_));
    if (digits != null && digits.find_first_of(".e") == std::string_view::npos) {
        *at++ = '.'; // without it the number would be read as an Int
        *at++ = '0';
    }
    size_ = static_cast<size_t>(at - characters_);
}

uint64_t sizeOfJsonString(std::string_view text) {
    constexpr uint64_t ofNumberedEscape = 6; // \u001f
    constexpr uint64_t ofReplacement = 3;    // U+FFFD
    uint64_t size = 2;
    uint64_t replaced = 0; // if the text is not UTF-8
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            const bool hasShortEscape = (byte >= '\b' && byte <= '\r' && byte != '\v');
            size += hasShortEscape ? 2 : ofNumberedEscape;
        } else {
            size += c == '"' || c == '\\' ? 2 : 1;
            replaced += byte >= 0x80 ? ofReplacement - 1 : 0;
        }
    }
    return replaced > 0 && !isUtf8(text) ? size + replaced : size;
}

} // namespace kel::tool
