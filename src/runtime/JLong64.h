/// \file
/// JLong64: a 64-bit integer as two words.
#pragma once

#include <cstdint>
#include <string>

/// A 64-bit value in two unsigned 32-bit words. It is a plain value: trivially copyable, without
/// virtual operations.
class JLong64 {
public:
    uint32_t low = 0;  ///< least significant word
    uint32_t high = 0; ///< most significant word

    /// Makes zero.
    constexpr JLong64() = default;

    /// Extends a word with zeros, never with the sign.
    constexpr explicit JLong64(uint32_t value) : low(value) {}

    /// Combines two words, the least significant first.
    constexpr JLong64(uint32_t lowWord, uint32_t highWord) : low(lowWord), high(highWord) {}

    /// Splits a 64-bit integer into its words.
    static constexpr JLong64 of(uint64_t value) {
        return JLong64(static_cast<uint32_t>(value), static_cast<uint32_t>(value >> 32));
    }

    /// Returns both words as one 64-bit integer.
    constexpr uint64_t value() const { return low | static_cast<uint64_t>(high) << 32; }

    /// Returns the low word if the high word is zero, else -1: a larger value is not truncated.
    constexpr int32_t intValue() const { return high == 0 ? static_cast<int32_t>(low) : -1; }

    /// Returns the high word and then the low word in decimal, each with at least eight digits.
    /// This is not the decimal value of the 64-bit number: high 1 and low 2 give 0000000100000002.
    std::string toDecimalText() const;

    friend constexpr bool operator==(const JLong64& a, const JLong64& b) {
        return a.low == b.low && a.high == b.high;
    }
};
