#include "words/GuidText.h"

#include <charconv>

namespace kel::tool {

namespace {

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isGuidText(std::string_view text) {
    if (text.size() != JHashCode::guidTextLength) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
        if (isDash ? text[i] != '-' : !isHex(text[i])) {
            return false;
        }
    }
    return true;
}

template <class Number> Number hexAt(std::string_view text, size_t at, size_t digits) {
    Number number = 0;
    std::from_chars(text.data() + at, text.data() + at + digits, number, 16);
    return number;
}

} // namespace

std::optional<JHashCode> guidOfText(std::string_view text) {
    if (!isGuidText(text)) {
        return std::nullopt;
    }
    KELGuid guid = {hexAt<uint32_t>(text, 0, 8),
                    hexAt<uint16_t>(text, 9, 4),
                    hexAt<uint16_t>(text, 14, 4),
                    {hexAt<uint8_t>(text, 19, 2), hexAt<uint8_t>(text, 21, 2)}};
    for (size_t i = 2; i < 8; ++i) {
        guid.data4[i] = hexAt<uint8_t>(text, 20 + 2 * i, 2);
    }
    return JHashCode(guid);
}

std::string textOfGuid(const JHashCode& guid) {
    char text[JHashCode::guidTextLength + 1];
    guid.toGuidText(text);
    return text;
}

} // namespace kel::tool
