/// \file
/// Loads and stores of fixed-width integers in a fixed byte order, by shifts, so that the result
/// does not depend on the machine. Compilers turn each of them into one plain load or store.
///
/// Every function takes the address of the first byte; the caller guarantees that the 2, 4, 8 or
/// 16 bytes exist. No alignment is needed.
#pragma once

#include <bit>
#include <cstdint>
#include <kel/JHashCode.h>

namespace kel {

inline uint16_t loadLittle16(const uint8_t* b) {
    return static_cast<uint16_t>(b[0] | b[1] << 8);
}

inline uint32_t loadLittle32(const uint8_t* b) {
    return b[0] | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
           static_cast<uint32_t>(b[3]) << 24;
}

inline uint64_t loadLittle64(const uint8_t* b) {
    return loadLittle32(b) | static_cast<uint64_t>(loadLittle32(b + 4)) << 32;
}

/// Loads the 128-bit value of sixteen bytes, least significant first.
inline JHashCode loadLittle128(const uint8_t* b) {
    return JHashCode(loadLittle32(b), loadLittle32(b + 4), loadLittle32(b + 8),
                     loadLittle32(b + 12));
}

/// Loads the IEEE double whose bits are eight bytes, least significant first.
inline double loadLittleDouble(const uint8_t* b) {
    return std::bit_cast<double>(loadLittle64(b));
}

inline void storeLittle16(uint8_t* b, uint16_t v) {
    b[0] = static_cast<uint8_t>(v);
    b[1] = static_cast<uint8_t>(v >> 8);
}

inline void storeLittle32(uint8_t* b, uint32_t v) {
    b[0] = static_cast<uint8_t>(v);
    b[1] = static_cast<uint8_t>(v >> 8);
    b[2] = static_cast<uint8_t>(v >> 16);
    b[3] = static_cast<uint8_t>(v >> 24);
}

inline void storeLittle64(uint8_t* b, uint64_t v) {
    storeLittle32(b, static_cast<uint32_t>(v));
    storeLittle32(b + 4, static_cast<uint32_t>(v >> 32));
}

/// Stores the 128-bit value as sixteen bytes, least significant first.
inline void storeLittle128(uint8_t* b, const JHashCode& v) {
    storeLittle32(b, v.w0);
    storeLittle32(b + 4, v.w1);
    storeLittle32(b + 8, v.w2);
    storeLittle32(b + 12, v.w3);
}

/// Stores the double's bits as eight bytes, least significant first.
inline void storeLittleDouble(uint8_t* b, double v) {
    storeLittle64(b, std::bit_cast<uint64_t>(v));
}

inline uint16_t loadBig16(const uint8_t* b) {
    return static_cast<uint16_t>(b[0] << 8 | b[1]);
}

inline uint32_t loadBig32(const uint8_t* b) {
    return static_cast<uint32_t>(b[0]) << 24 | static_cast<uint32_t>(b[1]) << 16 |
           static_cast<uint32_t>(b[2]) << 8 | b[3];
}

inline uint64_t loadBig64(const uint8_t* b) {
    return static_cast<uint64_t>(loadBig32(b)) << 32 | loadBig32(b + 4);
}

/// Loads the 128-bit value of sixteen bytes, most significant first.
inline JHashCode loadBig128(const uint8_t* b) {
    return JHashCode(loadBig32(b + 12), loadBig32(b + 8), loadBig32(b + 4), loadBig32(b));
}

inline void storeBig16(uint8_t* b, uint16_t v) {
    b[0] = static_cast<uint8_t>(v >> 8);
    b[1] = static_cast<uint8_t>(v);
}

inline void storeBig32(uint8_t* b, uint32_t v) {
    b[0] = static_cast<uint8_t>(v >> 24);
    b[1] = static_cast<uint8_t>(v >> 16);
    b[2] = static_cast<uint8_t>(v >> 8);
    b[3] = static_cast<uint8_t>(v);
}

inline void storeBig64(uint8_t* b, uint64_t v) {
    storeBig32(b, static_cast<uint32_t>(v >> 32));
    storeBig32(b + 4, static_cast<uint32_t>(v));
}

/// Stores the 128-bit value as sixteen bytes, most significant first.
inline void storeBig128(uint8_t* b, const JHashCode& v) {
    storeBig32(b, v.w3);
    storeBig32(b + 4, v.w2);
    storeBig32(b + 8, v.w1);
    storeBig32(b + 12, v.w0);
}

} // namespace kel
