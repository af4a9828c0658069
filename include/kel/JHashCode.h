/// \file
/// JHashCode: the 128-bit identity of every object, and the 128-bit GUID value.
#pragma once

#include <kel/config.h>

class JString;

/// A GUID in the platform's layout: one 32-bit field, two 16-bit fields, eight bytes.
struct KELGuid {
    uint32_t data1;   ///< the first field
    uint16_t data2;   ///< the second field
    uint16_t data3;   ///< the third field
    uint8_t data4[8]; ///< the tail, in memory order
};

/// 128 bits as four 32-bit words, least significant first. It is a plain value of 16 bytes:
/// trivially copyable, without virtual operations. It serves as the identity of an object, as the
/// value of a KEL_guid and as the library's 128-bit integer.
///
/// \par Failures
/// Never fails.
class JHashCode {
public:
    /// The length of toGuidText's output without the terminating NUL.
    static constexpr size_t guidTextLength = 36;
    /// The maximum length of toDecimalText's output without the terminating NUL.
    static constexpr size_t maxDecimalTextLength = 40;

    uint32_t w0 = 0; ///< least significant word; a GUID's 32-bit field
    uint32_t w1 = 0; ///< a GUID's two 16-bit fields, the first one low
    uint32_t w2 = 0; ///< bytes 0 to 3 of a GUID's tail, little-endian
    uint32_t w3 = 0; ///< most significant word; bytes 4 to 7 of a GUID's tail, little-endian

    /// Sets all four words to zero.
    constexpr JHashCode() = default;

    /// Stores v in the least significant word and zero in the others.
    constexpr explicit JHashCode(uint32_t v) : w0(v) {}

    /// Stores the four given words, least significant first.
    constexpr JHashCode(uint32_t word0, uint32_t word1, uint32_t word2, uint32_t word3)
        : w0(word0), w1(word1), w2(word2), w3(word3) {}

    /// Stores the sixteen bytes of the GUID in memory order.
    constexpr explicit JHashCode(const KELGuid& guid)
        : w0(guid.data1), w1(guid.data2 | static_cast<uint32_t>(guid.data3) << 16),
          w2(wordOf(guid.data4)), w3(wordOf(guid.data4 + 4)) {}

    /// Returns true if all four words are equal.
    friend constexpr bool operator==(const JHashCode& a, const JHashCode& b) {
        return a.w0 == b.w0 && a.w1 == b.w1 && a.w2 == b.w2 && a.w3 == b.w3;
    }
    friend constexpr bool operator!=(const JHashCode& a, const JHashCode& b) { return !(a == b); }

    /// Returns true if all four words are zero.
    constexpr bool isZero() const { return (w0 | w1 | w2 | w3) == 0; }

    /// Returns w0 if the other three words are zero, and 2147483647 otherwise. A value that is too
    /// large saturates; it is never truncated.
    constexpr int32_t intValue() const {
        return (w1 | w2 | w3) == 0 ? static_cast<int32_t>(w0) : INT32_MAX;
    }

    /// Returns the value as a GUID structure.
    constexpr KELGuid toGuid() const {
        KELGuid guid = {w0, static_cast<uint16_t>(w1), static_cast<uint16_t>(w1 >> 16), {}};
        for (unsigned i = 0; i < 8; ++i) {
            guid.data4[i] = tailByte(i);
        }
        return guid;
    }

    /// Writes the GUID layout (8-4-4-4-12) in upper-case hexadecimal, then a NUL: 37 bytes.
    void toGuidText(char* text) const {
        text = putHex(text, w0, 8);
        *text++ = '-';
        text = putHex(text, w1 & 0xFFFFU, 4);
        *text++ = '-';
        text = putHex(text, w1 >> 16, 4);
        *text++ = '-';
        for (unsigned i = 0; i < 8; ++i) {
            if (i == 2) {
                *text++ = '-';
            }
            text = putHex(text, tailByte(i), 2);
        }
        *text = '\0';
    }

    /// Writes the four words in decimal, most significant first, each with at least eight digits,
    /// then a NUL: at most 41 bytes. This is not the decimal value of the 128-bit number.
    /// \return the number of characters before the NUL, 32 to 40
    size_t toDecimalText(char* text) const {
        char* end = putDecimal(text, w3);
        end = putDecimal(end, w2);
        end = putDecimal(end, w1);
        end = putDecimal(end, w0);
        *end = '\0';
        return static_cast<size_t>(end - text);
    }

    /// Returns a new string with the text of toDecimalText, owned by the caller with one reference.
    /// Returns null if the string object or its characters cannot be allocated. Only the library
    /// calls it; hosts use toDecimalText.
    JString* toDecimalString() const;

    /// Returns a new string with the text of toGuidText, owned by the caller with one reference.
    /// Returns null if the string object or its characters cannot be allocated. Only the library
    /// calls it; hosts use toGuidText.
    JString* toGuidString() const;

private:
    static constexpr uint32_t wordOf(const uint8_t* b) {
        return b[0] | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
               static_cast<uint32_t>(b[3]) << 24;
    }

    constexpr uint8_t tailByte(unsigned i) const {
        return static_cast<uint8_t>((i < 4 ? w2 : w3) >> (8 * (i % 4)));
    }

    static char* putHex(char* text, uint32_t value, int digits) {
        for (int i = digits - 1; i >= 0; --i) {
            text[i] = "0123456789ABCDEF"[value & 0xFU];
            value >>= 4;
        }
        return text + digits;
    }

    static char* putDecimal(char* text, uint32_t word) {
        char digits[10];
        int count = 0;
        do {
            digits[count++] = static_cast<char>('0' + word % 10);
            word /= 10;
        } while (word != 0 || count < 8);
        while (count > 0) {
            *text++ = digits[--count];
        }
        return text;
    }
};
