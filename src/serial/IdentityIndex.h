/// \file
/// IdentityIndex: numbers for identities, found in constant time.
#pragma once

#include "runtime/IdentityKey.h"
#include "serial/BlockList.h"

#include <vector>

namespace kel {

/// Numbers identities from 0 in the order of their arrival, and finds the number of an identity.
/// The tables of the streams are built on it and can hold millions of identities. A place of the
/// index holds a tag and a number of 32 bits each, so a search rarely has to look elsewhere.
///
/// The places come from a secret key of its own (IdentityKey), so nobody can choose identities that
/// make searches long.
class IdentityIndex {
public:
    /// The result for an identity that is not in the index.
    static constexpr uint32_t none = UINT32_MAX;

    /// Makes an empty index.
    /// \throws JException by value, "Cannot create hash code.", if the platform has no GUID
    IdentityIndex();

    /// Returns how many identities were numbered.
    uint32_t size() const { return static_cast<uint32_t>(identities_.size()); }

    /// Numbers an identity. It cannot be found until it is linked. \return its number
    /// \throws JOutOfMemoryException "Out of memory!", also when all numbers are in use
    uint32_t append(const JHashCode& identity) {
        // not reached: so many identities take 64 GB
        if (identities_.size() >= none) {
            throwOutOfMemory();
        }
        identities_.append(identity);
        return size() - 1;
    }

    /// Returns the number that the identity of a given number leads to: the given number if the
    /// identity led nowhere before. Assign to the reference to change it; it is valid until the
    /// next call.
    uint32_t& link(uint32_t number);

    /// Returns the number that an identity leads to, or none.
    uint32_t find(const JHashCode& identity) const;

    /// Makes an identity that leads to one number lead to another number of the same identity.
    void redirect(const JHashCode& identity, uint32_t number) noexcept;

    /// Returns the identity of a number.
    const JHashCode& identityAt(uint32_t number) const { return identities_[number]; }

    /// Returns how many places a search for an identity passes over before it ends. For tests.
    std::size_t distanceOf(const JHashCode& identity) const;

    /// Replaces an identity by the zero identity. The callers of this function never look for that
    /// one.
    void erase(uint32_t number) noexcept { identities_[number] = JHashCode(); }

    /// Forgets the numbers from size on.
    void truncate(uint32_t size) noexcept { identities_.truncate(size); }

private:
    /// One place, which is empty if its number is none. A place whose number was forgotten, erased
    /// or given to another identity matches no search, and rebuilding drops it.
    struct Place {
        uint32_t tag = 0;
        uint32_t number = none;
    };

    bool isCurrent(const Place& place) const;
    std::size_t search(const JHashCode& identity, uint32_t tag) const;
    void rebuild();

    BlockList<JHashCode> identities_;
    std::vector<Place> places_; // a power of two, at most three quarters in use
    std::size_t used_ = 0;
    IdentityKey key_;
};

} // namespace kel
