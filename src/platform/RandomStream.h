/// \file
/// A stream of random words, keyed from the kernel. Not used on Windows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kel::platform {

/// Requests count random bytes. Like getrandom, it can give fewer, and it returns how many it gave,
/// or -1 and sets errno.
using RandomSource = std::ptrdiff_t (*)(void* bytes, std::size_t count);

/// Where keys come from. Kernels from before 3.17 lack the call, and a sandbox can forbid it. A
/// process can lack the device instead, because its root folder can be any folder.
struct RandomSources {
    RandomSource call;   ///< used first
    RandomSource device; ///< used if the call fails
};

/// Replaces the sources of keys and returns the previous ones. For tests.
RandomSources exchangeRandomSources(const RandomSources& sources);

/// Computes the ChaCha key stream of eight rounds, several blocks at a time. A random word takes a
/// few nanoseconds and no system call. Identities have to be distinct, not secret; eight rounds are
/// more than enough for that. Each stream is for one thread only.
class RandomStream {
public:
    struct Key {
        uint32_t words[8] = {};
    };

    /// Draws a key from the kernel. Goes on after interruptions by signals.
    /// \return false when both sources fail; the key is then not to be used
    static bool drawKey(Key& key);

    /// Draws a new key from the kernel and starts over. \return false when the kernel fails
    bool keyFromKernel();

    /// Starts over with a given key. Streams with one key differ if their two numbers do.
    void keyWith(const Key& key, uint32_t number, uint32_t subNumber);

    /// Returns the next four words, valid until the next call. The stream must have a key.
    const uint32_t* nextFourWords() {
        if (used_ == wordCount) {
            fill();
        }
        const uint32_t* words = words_ + used_;
        used_ += 4;
        return words;
    }

    /// The number of blocks that are computed side by side.
    static constexpr std::size_t lanes = 4;

private:
    static constexpr std::size_t wordCount = 16 * lanes;

    void fill();

    Key key_;
    uint32_t numbers_[2] = {};
    uint64_t block_ = 0;
    std::size_t used_ = wordCount;
    uint32_t words_[wordCount] = {};
};

} // namespace kel::platform
