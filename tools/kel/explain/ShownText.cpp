#include "explain/ShownText.h"

#include "words/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace kel::tool {

namespace {

struct Range {
    uint32_t first;
    uint32_t last;
};

// Controls, line and paragraph separators, and the marks that change the direction of writing.
constexpr Range dangerous[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                               {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069},
                               {0xFEFF, 0xFEFF}};
// Marks that terminals draw over the character before them.
constexpr Range combining[] = {{0x0300, 0x036F}, {0x200B, 0x200D}, {0xFE00, 0xFE0F}};
// The characters of East Asia and the pictures, which take two columns.
constexpr Range wide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                          {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                          {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

template <size_t Count> bool isIn(const Range (&ranges)[Count], uint32_t character) {
    return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
        return range.first <= character && character <= range.last;
    });
}

/// Returns the number of a character from its well-formed UTF-8.
uint32_t numberOf(std::string_view sequence) {
    constexpr uint32_t leadBits[] = {0x7F, 0x1F, 0x0F, 0x07};
    uint32_t number = static_cast<unsigned char>(sequence[0]) & leadBits[sequence.size() - 1];
    for (const char c : sequence.substr(1)) {
        number = number << 6U | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return number;
}

std::string escaped(const char* lead, uint32_t number, int digitCount) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text = lead;
    for (int shift = 4 * (digitCount - 1); shift >= 0; shift -= 4) {
        text += digits[number >> static_cast<unsigned>(shift) & 0xFU];
    }
    return text;
}

} // namespace

ShownCharacter firstCharacter(std::string_view bytes) {
    const size_t length = utf8SequenceLength(bytes);
    if (length == 0) {
        const std::string text = escaped("\\x", static_cast<unsigned char>(bytes[0]), 2);
        return {1, text.size(), text};
    }
    const std::string_view sequence = bytes.substr(0, length);
    const uint32_t number = numberOf(sequence);
    if (isIn(dangerous, number)) {
        const std::string text = escaped("\\u", number, 4);
        return {length, text.size(), text};
    }
    const size_t columns = isIn(combining, number) ? 0 : isIn(wide, number) ? 2 : 1;
    return {length, columns, std::string(sequence)};
}

std::string quoted(std::string_view bytes) {
    constexpr int mostCharacters = 40;
    std::string text = "\"";
    for (int i = 0; i < mostCharacters && !bytes.empty(); ++i) {
        const ShownCharacter character = firstCharacter(bytes);
        text += character.text;
        bytes.remove_prefix(character.length);
    }
    return text + (bytes.empty() ? "\"" : "...\"");
}

} // namespace kel::tool
