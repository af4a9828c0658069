/// \file
/// Digest: 128 bits that are different for different bytes.
#pragma once

#include "identities/Identity.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel::tool {

/// The hash function BLAKE2s with a result of 16 bytes and the personalization "KEL ids1". Nobody
/// can find two inputs with the same result.
class Digest {
public:
    Digest();

    /// Adds bytes to the input.
    Digest& add(std::string_view bytes);
    Digest& add(const Identity& bytes) {
        return add({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    /// Adds a number as eight bytes, the least significant first.
    Digest& add(uint64_t number);

    /// Returns the result. Call it once, after all input.
    Identity take();

private:
    static constexpr size_t blockSize = 64;

    void compress(bool isLast);

    std::array<uint32_t, 8> state_;
    std::array<unsigned char, blockSize> block_{};
    size_t used_ = 0;    ///< how many bytes of the block are input
    uint64_t count_ = 0; ///< the bytes of the blocks that were compressed
};

} // namespace kel::tool
