/// \file
/// IdentitySet: the values that the binary writer has written.
#pragma once

#include "serial/IdentityIndex.h"

namespace kel {

/// Remembers the identities of the values that a stream has written, except the zero identity. Most
/// trees share nothing. So the set only notes values that cannot have been written before, and
/// searches for the others, until askAlways is called.
class IdentitySet {
public:
    /// Enters an identity. `isNew` means that the set cannot contain it, so the set does not search
    /// for it.
    /// \return its number, or IdentityIndex::none if the set contains it already
    uint32_t insert(const JHashCode& identity, bool isNew) {
        const uint32_t number = index_.append(identity);
        if ((isNew && !asksAlways_) || index_.link(number) == number) {
            return number;
        }
        index_.truncate(number);
        return IdentityIndex::none;
    }

    /// Makes every later insert search, and links everything that was only noted before.
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

    /// Returns how many identities were entered; rollBack takes this number.
    uint32_t size() const { return index_.size(); }

    /// Forgets the identities entered since the set had this size.
    void rollBack(uint32_t size) noexcept { index_.truncate(size); }

private:
    IdentityIndex index_;
    bool asksAlways_ = false;
};

} // namespace kel
