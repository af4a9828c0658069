/// \file
/// A stream of random words, keyed from the kernel. Not used on Windows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kel::platform {

/// The ChaCha key stream of eight rounds, several blocks at a time: random words at a few
/// nanoseconds each without a system call. Identities have to be distinct, not secret; eight rounds
/// are more than that takes. One thread uses a stream.
class RandomStream {
public:
    /// Draws a new key from the kernel and starts over; false when the kernel fails.
    bool key();

    /// The next four words, valid until the next call. Needs a key.
    const uint32_t* nextFourWords() {
        if (used_ == wordCount) {
            fill();
        }
        const uint32_t* words = words_ + used_;
        used_ += 4;
        return words;
    }

    /// The blocks that are computed side by side.
    static constexpr std::size_t lanes = 4;

private:
    static constexpr std::size_t wordCount = 16 * lanes;

    void fill();

    uint32_t key_[8] = {};
    uint64_t block_ = 0;
    std::size_t used_ = wordCount;
    uint32_t words_[wordCount] = {};
};

} // namespace kel::platform
