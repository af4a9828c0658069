/// \file
/// PlainScanner: the commonest tokens, recognised at once in the read-ahead window.
#pragma once

#include "serial/tokens/Characters.h"

#include <bit>
#include <cstring>
#include <string_view>

namespace kel {

/// A scalar as it is usually written.
struct PlainScalar {
    enum class Form { integer, floating, quoted, yes, no, null };

    Form form;
    int32_t integer = 0;
    double floating = 0.0;
    std::string_view text; ///< of a quoted word, without a NUL; lies in the window
};

/// Recognises the output of the text writer as far as it lies completely in the read-ahead window.
/// The places that it takes and returns are in a window (BufferedInput), which ends with a NUL. It
/// returns null for anything else, and for anything that can continue after the window.
/// StandardScanner, which knows all tokens, decides about that. StandardScanner finds the same in
/// everything that PlainScanner recognises; a test compares them.
///
/// Places are passed in registers: using the bytes of the window one token at a time costs more
/// than recognising them.
class PlainScanner {
public:
    /// Skips blanks and line ends and adds the number of line ends.
    /// \return the first other byte; after the end of the window, more of them can follow
    static const uint8_t* skipLayout(const uint8_t* place, const uint8_t* end, int32_t& lineEnds) {
        for (;;) {
            if (isInClass(*place, blankClass)) {
                ++place;
                continue;
            }
            if (*place == '\r' && place[1] == '\n') {
                ++place; // the two are one line end
            } else if (*place != '\n' && *place != '\f') {
                return place;
            }
            place = skipTabs(place + 1, end);
            ++lineEnds;
        }
    }

    /// Recognises a number, a quoted word, "true", "false", "null" or "NULL".
    /// \return the place after it, or null
    static const uint8_t* scanScalar(const uint8_t* place, const uint8_t* end, PlainScalar& scalar);

    /// Recognises a struct's key, blanks and "=".
    /// \param key the key, which lies in the window
    /// \return the place after it, or null
    static const uint8_t* scanKey(const uint8_t* place, const uint8_t* end, std::string_view& key);

    /// Returns whether, after blanks, a variable or the end of a struct follows, or the end of the
    /// line. No item of the struct's header follows then.
    static bool hasNoHeader(const uint8_t* place);

private:
    /// Skips an indentation, perhaps not all of it. It takes eight bytes at a time, because a loop
    /// that ends at another place each time is slow.
    static const uint8_t* skipTabs(const uint8_t* place, const uint8_t* end) {
        constexpr uint64_t eightTabs = 0x0909090909090909;
        while (end - place >= 8) {
            uint64_t eight = 0;
            std::memcpy(&eight, place, sizeof eight);
            const uint64_t others = eight ^ eightTabs;
            if (others != 0) {
                const int tabBits = std::endian::native == std::endian::little
                                        ? std::countr_zero(others)
                                        : std::countl_zero(others);
                return place + tabBits / 8;
            }
            place += sizeof eight;
        }
        return place;
    }

    static const uint8_t* scanNumber(const uint8_t* place, PlainScalar& scalar);
    static const uint8_t* scanFraction(const uint8_t* digits, bool negative, double sum,
                                       PlainScalar& scalar);
    static const uint8_t* scanQuoted(const uint8_t* place, const uint8_t* end,
                                     std::string_view& text);
    static const uint8_t* scanWord(const uint8_t* place, std::string_view word);
};

} // namespace kel
