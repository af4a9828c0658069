/// \file
/// IdentityIndex: numbers for identities, found in constant time.
#pragma once

#include "serial/BlockList.h"

#include <cstdint>
#include <kel/JHashCode.h>
#include <vector>

namespace kel {

/// Numbers identities from 0 in the order of their arrival, and finds the number of an identity.
/// The tables of the streams stand on it, with millions of identities if need be: a place of the
/// index holds a tag and a number of 32 bits each, so a search rarely leaves it.
///
/// Identities come from strangers' files, so places are drawn with a key of the index's own: nobody
/// can choose identities that collide.
class IdentityIndex {
public:
    /// The number of an identity that is not there.
    static constexpr uint32_t none = UINT32_MAX;

    IdentityIndex();

    /// How many identities were numbered.
    uint32_t size() const { return static_cast<uint32_t>(identities_.size()); }

    /// Numbers an identity, which cannot be found before it is linked. \return its number
    uint32_t append(const JHashCode& identity);

    /// The number that the identity of a given number leads to: the given one if it led nowhere
    /// before. Assign to the reference to change it; it is valid until the next call.
    uint32_t& link(uint32_t number);

    /// The number that an identity leads to, or none.
    uint32_t find(const JHashCode& identity) const;

    /// Makes an identity that leads to one number lead to another number of the same identity.
    void redirect(const JHashCode& identity, uint32_t number) noexcept;

    /// The identity of a number.
    const JHashCode& identityAt(uint32_t number) const { return identities_[number]; }

    /// Replaces an identity by the zero identity, which whoever calls this never looks for.
    void erase(uint32_t number) noexcept { identities_[number] = JHashCode(); }

    /// Forgets the numbers from size on.
    void truncate(uint32_t size) noexcept { identities_.truncate(size); }

private:
    /// One place: empty when its number is none. A place whose number was forgotten, erased or
    /// given to another identity matches no search; rebuilding drops it.
    struct Place {
        uint32_t tag = 0;
        uint32_t number = none;
    };

    uint32_t tagOf(const JHashCode& identity) const;
    bool isCurrent(const Place& place) const;
    std::size_t search(const JHashCode& identity, uint32_t tag) const;
    void rebuild();

    BlockList<JHashCode> identities_;
    std::vector<Place> places_; // a power of two, at most three quarters in use
    std::size_t used_ = 0;
    uint64_t key0_;
    uint64_t key1_;
};

} // namespace kel
