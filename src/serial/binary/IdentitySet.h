/// \file
/// IdentitySet: which values the binary writer has written.
#pragma once

#include "serial/IdentityIndex.h"

namespace kel {

/// Remembers the identities of the values that a stream has written, never the zero one. Most trees
/// share nothing, so the set makes notes of values that cannot have been written before, and
/// searches only for the others, until askAlways.
class IdentitySet {
public:
    /// Enters an identity. `isNew` means that it cannot be there: then nobody searches for it.
    /// \return its number, or IdentityIndex::none if it is there already
    uint32_t insert(const JHashCode& identity, bool isNew) {
        const uint32_t number = index_.append(identity);
        if ((isNew && !asksAlways_) || index_.link(number) == number) {
            return number;
        }
        index_.truncate(number);
        return IdentityIndex::none;
    }

    /// From now on every insert searches, and finds what was only noted before.
    void askAlways() {
        if (!asksAlways_) {
            for (uint32_t number = 0; number < index_.size(); ++number) {
                index_.link(number);
            }
            asksAlways_ = true;
        }
    }

    /// Forgets the identity of a number; IdentityIndex::none is ignored.
    void erase(uint32_t number) noexcept {
        if (number != IdentityIndex::none) {
            index_.erase(number);
        }
    }

    /// How many identities were entered, to roll back to.
    uint32_t size() const { return index_.size(); }

    /// Forgets the identities entered since the set had this size.
    void rollBack(uint32_t size) noexcept { index_.truncate(size); }

private:
    IdentityIndex index_;
    bool asksAlways_ = false;
};

} // namespace kel
