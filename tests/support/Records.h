/// \file
/// Binary records assembled by hand, valid or not.
#pragma once

#include "support/Bytes.h"

#include <cstdint>
#include <kel/JHashCode.h>
#include <kel/KELKind.h>
#include <string>

namespace kel::test {

/// An identity whose bytes count from 0 to 15.
inline constexpr JHashCode counting(0x03020100, 0x07060504, 0x0B0A0908, 0x0F0E0D0C);

/// Returns the low `width` bytes of a number, least significant first.
inline std::string littleEndian(uint64_t number, int width) {
    std::string out;
    for (; width > 0; --width, number >>= 8) {
        out.push_back(static_cast<char>(number & 0xFF));
    }
    return out;
}

inline std::string codeBytes(const JHashCode& code) {
    return littleEndian(code.w0, 4) + littleEndian(code.w1, 4) + littleEndian(code.w2, 4) +
           littleEndian(code.w3, 4);
}

/// Returns the bytes that precede a payload.
inline std::string prefix(const JHashCode& identity, int32_t kind, uint64_t length,
                          uint16_t version = 1) {
    return bytes("KEL\0") + codeBytes(identity) + littleEndian(static_cast<uint32_t>(kind), 4) +
           littleEndian(version, 2) + littleEndian(length, 8);
}

inline std::string record(const JHashCode& identity, int32_t kind, const std::string& payload) {
    return prefix(identity, kind, payload.size()) + payload;
}

inline std::string reference(const JHashCode& identity) {
    return bytes("KEL\0") + codeBytes(identity) + littleEndian(0x7FFFFFFF, 4);
}

inline std::string intRecord(const JHashCode& identity, int32_t value) {
    return record(identity, KELKind_Int, littleEndian(static_cast<uint32_t>(value), 4));
}

/// Returns a variable of a struct's payload.
inline std::string variable(const std::string& name, const std::string& itsRecord) {
    return name + bytes("\0") + itsRecord;
}

} // namespace kel::test
