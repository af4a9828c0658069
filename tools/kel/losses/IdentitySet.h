/// \file
/// IdentitySet: the values of a document by their identity.
#pragma once

#include "document/Values.h"

#include <array>
#include <cstdint>
#include <unordered_map>

namespace kel::tool {

/// Finds values whose identity another value already has. Files choose identities, so the hash has
/// a key that no file can know.
class IdentitySet {
public:
    IdentitySet() : values_(usualSize, KeyedHash()) {}

    /// Adds the value, which must stay alive. \return false if another value with its identity was
    /// added before; the zero identity never counts as added
    bool insert(const KEL& value);

private:
    static constexpr size_t usualSize = 1024;

    /// Places identities by unpredictable bits, drawn as the library draws the identities of new
    /// values.
    class KeyedHash {
    public:
        KeyedHash();

        /// Returns the upper half of a sum of products with unknown factors. It makes any two
        /// identities collide about as rarely as random numbers do.
        size_t operator()(const JHashCode& identity) const {
            const uint64_t sum = identity.w0 * key_[0] + identity.w1 * key_[1] +
                                 identity.w2 * key_[2] + identity.w3 * key_[3];
            return static_cast<size_t>(sum >> 32U);
        }

    private:
        std::array<uint64_t, 4> key_;
    };

    std::unordered_map<JHashCode, const KEL*, KeyedHash> values_;
};

} // namespace kel::tool
