/// \file
/// IdentitySet: the values of a document by their identity.
#pragma once

#include "Values.h"

#include <array>
#include <vector>

namespace kel::tool {

/// Finds values whose identity another value already has. It is an open hash table, because it gets
/// every value of a document. Files choose identities, so the hash has a key that no file can know.
class IdentitySet {
public:
    IdentitySet();

    /// Adds the value, which must stay alive. \return false if another value with its identity was
    /// added before; the zero identity never counts as added
    bool insert(const KEL& value);

private:
    struct Slot {
        uint64_t hash = 0;
        const KEL* value = nullptr; ///< null for a free slot
    };

    uint64_t hashOf(const JHashCode& identity) const;
    Slot& slotOf(uint64_t hash, const JHashCode& identity);
    size_t firstPlaceOf(uint64_t hash) const {
        return static_cast<size_t>(hash >> 32U) & (slots_.size() - 1);
    }
    size_t nextPlace(size_t place) const { return (place + 1) & (slots_.size() - 1); }
    void grow();

    std::array<uint64_t, 4> key_;
    std::vector<Slot> slots_; ///< their number is a power of two, and at most half of them are used
    size_t count_ = 0;
};

} // namespace kel::tool
