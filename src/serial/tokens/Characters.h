/// \file
/// Character classes of the text format, the same in every locale.
#pragma once

#include <array>
#include <cstdint>

namespace kel {

/// Bits of characterClass.
enum CharacterClass : uint8_t {
    digitClass = 1,     ///< 0-9
    hexLetterClass = 2, ///< a-f A-F
    letterClass = 4,    ///< a-z A-Z
    underscoreClass = 8,
    atClass = 16,
    blankClass = 32, ///< space and tab

    hexDigitClass = digitClass | hexLetterClass,
    wordStartClass = letterClass | underscoreClass | atClass,
    wordClass = letterClass | digitClass | underscoreClass, ///< in a word, after its start
    keyClass = wordClass | atClass                          ///< in a key without quotes
};

namespace detail {

// not reached: the compiler runs it
constexpr std::array<uint8_t, 256> makeCharacterClasses() {
    std::array<uint8_t, 256> classes{};
    for (unsigned c = '0'; c <= '9'; ++c) {
        classes[c] = digitClass;
    }
    for (unsigned c = 'A'; c <= 'Z'; ++c) {
        const uint8_t hex = c <= 'F' ? hexLetterClass : 0;
        classes[c] = classes[c + ('a' - 'A')] = static_cast<uint8_t>(letterClass | hex);
    }
    classes['_'] = underscoreClass;
    classes['@'] = atClass;
    classes[' '] = classes['\t'] = blankClass;
    return classes;
}

inline constexpr std::array<uint8_t, 256> characterClasses = makeCharacterClasses();

} // namespace detail

/// Returns whether byte belongs to one of the classes, a union of CharacterClass bits.
inline bool isInClass(uint8_t byte, uint8_t classes) {
    return (detail::characterClasses[byte] & classes) != 0;
}

/// Does the same for a character that can be -1 (end of input), which belongs to no class.
inline bool isInClass(int32_t c, uint8_t classes) {
    return c >= 0 && c <= 255 && isInClass(static_cast<uint8_t>(c), classes);
}

/// Returns whether byte is a decimal digit, without the table.
inline bool isDigit(uint8_t byte) {
    return static_cast<uint8_t>(byte - '0') < 10;
}

/// Returns the value of a hexadecimal digit, 0 to 15. The character must be one.
inline uint32_t hexDigitValue(uint8_t digit) {
    return digit <= '9' ? digit - static_cast<uint32_t>('0') : (digit & 7U) + 9U;
}

} // namespace kel
