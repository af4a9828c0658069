/// \file
/// JLong64: a 64-bit integer as two words.
#pragma once

#include <cstdint>
#include <string>

/// A 64-bit value in two unsigned 32-bit words. A plain value: trivially copyable, no virtual
/// operations.
class JLong64 {
public:
    uint32_t low = 0;  ///< least significant word
    uint32_t high = 0; ///< most significant word

    /// Zero.
    constexpr JLong64() = default;

    /// Zero extension of a word, never sign extension.
    constexpr explicit JLong64(uint32_t value) : low(value) {}

    /// The two words, least significant first.
    constexpr JLong64(uint32_t lowWord, uint32_t highWord) : low(lowWord), high(highWord) {}

    /// The words of a 64-bit integer.
    static constexpr JLong64 of(uint64_t value) {
        return JLong64(static_cast<uint32_t>(value), static_cast<uint32_t>(value >> 32));
    }

    /// Both words as one 64-bit integer.
    constexpr uint64_t value() const { return low | static_cast<uint64_t>(high) << 32; }

    /// The low word when the high word is zero, else -1: too large is not truncated.
    constexpr int32_t intValue() const { return high == 0 ? static_cast<int32_t>(low) : -1; }

    /// The high and then the low word in decimal, each with at least eight digits. This is not the
    /// decimal value of the 64-bit number: high 1, low 2 gives 0000000100000002.
    std::string toDecimalText() const;

    friend constexpr bool operator==(const JLong64& a, const JLong64& b) {
        return a.low == b.low && a.high == b.high;
    }
};
