/// \file
/// The layout of a record of the binary format; docs/binary-format.md describes the format.
///
///     offset  bytes  field
///          0      4  magic      "KEL" and a NUL
///          4     16  identity
///         20      4  kind       the code of the kind, or backReference, which ends the record
///         24      2  version    1
///         26      8  length     of the payload
///         34         payload    Int: 4 bytes, Boolean: 1, Double: 8; other kinds: any number
///
/// All numbers are little-endian.
#pragma once

#include "streams/ByteOrder.h"

#include <cstddef>
#include <cstring>

namespace kel::binary {

inline constexpr uint8_t magic[4] = {'K', 'E', 'L', 0};
/// The kind field of a record that refers to a value stored before.
inline constexpr int32_t backReference = 0x7FFFFFFF;
/// The one version of every kind.
inline constexpr int16_t version = 1;

// ---- Widths and places -------------------------------------------------------------------------

inline constexpr std::size_t identitySize = 16;
inline constexpr std::size_t kindSize = 4;
inline constexpr std::size_t versionSize = 2;
inline constexpr std::size_t lengthSize = 8;

inline constexpr std::size_t identityOffset = sizeof magic;
inline constexpr std::size_t kindOffset = identityOffset + identitySize;
inline constexpr std::size_t referenceSize = kindOffset + kindSize;
inline constexpr std::size_t versionOffset = referenceSize;
inline constexpr std::size_t lengthOffset = versionOffset + versionSize;
inline constexpr std::size_t prefixSize = lengthOffset + lengthSize;

inline constexpr std::size_t intLength = 4;
inline constexpr std::size_t booleanLength = 1;
inline constexpr std::size_t doubleLength = 8;

/// The longest payload of a String or MemBlock, in bytes.
inline constexpr uint64_t longestBytes = 0x7FFFFFFF;

// ---- The fields before a payload ---------------------------------------------------------------

/// Writes the fields that every record has to the beginning of the record.
inline void encodeHead(uint8_t* record, const JHashCode& identity, int32_t kind) {
    std::memcpy(record, magic, sizeof magic);
    storeLittle128(record + identityOffset, identity);
    storeLittle32(record + kindOffset, static_cast<uint32_t>(kind));
}
inline JHashCode decodeIdentity(const uint8_t* field) {
    return loadLittle128(field);
}
inline int32_t decodeKind(const uint8_t* field) {
    return static_cast<int32_t>(loadLittle32(field));
}

/// Writes the version to its place in a record.
inline void encodeVersion(uint8_t* record, int16_t value) {
    storeLittle16(record + versionOffset, static_cast<uint16_t>(value));
}
inline int16_t decodeVersion(const uint8_t* field) {
    return static_cast<int16_t>(loadLittle16(field));
}

/// Writes the length of the payload to its place in a record.
inline void encodeLength(uint8_t* record, uint64_t value) {
    storeLittle64(record + lengthOffset, value);
}
inline uint64_t decodeLength(const uint8_t* field) {
    return loadLittle64(field);
}

// ---- Payloads of fixed length ------------------------------------------------------------------

inline void encodeInt(uint8_t* payload, int32_t value) {
    storeLittle32(payload, static_cast<uint32_t>(value));
}
inline int32_t decodeInt(const uint8_t* payload) {
    return static_cast<int32_t>(loadLittle32(payload));
}

inline void encodeBoolean(uint8_t* payload, bool value) {
    *payload = value ? 1 : 0;
}
inline bool decodeBoolean(const uint8_t* payload) {
    return *payload != 0;
}

/// Stores a double given as its bits: passed as a double, a signalling NaN could change.
inline void encodeDouble(uint8_t* payload, uint64_t bits) {
    storeLittle64(payload, bits);
}
inline uint64_t decodeDouble(const uint8_t* payload) {
    return loadLittle64(payload);
}

// ---- Where the input ends ----------------------------------------------------------------------

/// The message for an input that ends before or inside a field. A name, and the payload of a String
/// or MemBlock, count as strings.
inline constexpr const char* noString = "BinaryDataInput::JReadString(). EOF reached.";
inline constexpr const char* noIdentity = "BinaryDataInput::JRead128(). EOF reached.";
inline constexpr const char* noKind = "BinaryDataInput::JRead32(). EOF reached.";
inline constexpr const char* noVersion = "BinaryDataInput::JRead16(). EOF reached.";
inline constexpr const char* noLength = "BinaryDataInput::JRead64(). EOF reached.";
inline constexpr const char* noInt = "BinaryDataInput::JRead32(). EOF reached.";
inline constexpr const char* noBoolean = "BinaryDataInput::JRead8(). EOF reached.";
inline constexpr const char* noDouble = "BinaryDataInput::JRead64(). EOF reached.";

} // namespace kel::binary
