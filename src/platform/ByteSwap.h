/// \file
/// swapBytes: reverses the bytes of a number in one instruction.
#pragma once

#include <cstdint>
#ifdef _MSC_VER
#include <cstdlib>
#endif

namespace kel::platform {

/// Returns the number whose bytes are those of value in reverse order.
inline uint64_t swapBytes(uint64_t value) {
#ifdef _MSC_VER
    return _byteswap_uint64(value);
#else
    return __builtin_bswap64(value);
#endif
}

} // namespace kel::platform
