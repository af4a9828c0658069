/// \file
/// KeyedHash: a hash of words with a secret key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace kel::tool {

/// 128 bits that stand for contents.
struct KeyedDigest {
    uint64_t low = 0;
    uint64_t high = 0;

    friend bool operator==(const KeyedDigest& a, const KeyedDigest& b) {
        // not reached: half of a random digest decides
        return a.low == b.low && a.high == b.high;
    }
};

/// Hashes a digest for the standard containers. Digests are random to whoever wrote the file.
struct KeyedDigestHash {
    size_t operator()(const KeyedDigest& digest) const { return static_cast<size_t>(digest.low); }
};

/// A key that nobody outside the process can know.
struct HashKey {
    uint64_t low = 0;
    uint64_t high = 0;

    /// Returns a new key, drawn as the library draws the identities of new values.
    static HashKey draw();
};

/// SipHash with one round for each word, three rounds at the end and a result of 128 bits. Files
/// choose what is hashed, and without the key they cannot choose two contents of one digest.
class KeyedHash {
public:
    explicit KeyedHash(const HashKey& key);

    /// Adds 64 bits.
    void add(uint64_t word);

    /// Adds bytes and their number, so that no two sequences of calls add the same.
    void add(std::string_view bytes);

    void add(const KeyedDigest& digest) {
        add(digest.low);
        add(digest.high);
    }

    /// Returns the digest of all that was added.
    KeyedDigest digest() const;

private:
    void mix();

    uint64_t a_;
    uint64_t b_;
    uint64_t c_;
    uint64_t d_;
};

} // namespace kel::tool
