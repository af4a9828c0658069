/// \file
/// The constants of the binary format; docs/binary-format.md describes it.
#pragma once

#include <cstdint>

namespace kel::binary {

/// Every record begins with these bytes, the NUL included.
inline constexpr uint8_t magic[4] = {'K', 'E', 'L', 0};
/// The kind field of a record that refers to a value stored before.
inline constexpr int32_t backReference = 0x7FFFFFFF;
/// Magic, identity and kind: all of a back-reference.
inline constexpr uint32_t referenceSize = 4 + 16 + 4;
/// Where the payload length stands, behind a reference's fields and the version.
inline constexpr uint32_t lengthOffset = referenceSize + 2;
/// All that precedes the payload.
inline constexpr uint32_t prefixSize = lengthOffset + 8;
/// The one version of every kind.
inline constexpr int16_t version = 1;
inline constexpr uint64_t intLength = 4;
inline constexpr uint64_t booleanLength = 1;
inline constexpr uint64_t doubleLength = 8;

} // namespace kel::binary
