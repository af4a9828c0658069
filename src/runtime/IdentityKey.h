/// \file
/// IdentityKey: the secret that decides where a hash table looks for an identity.
#pragma once

#include <array>
#include <cstdint>
#include <kel/JHashCode.h>
#include <string_view>

namespace kel {

/// Makes a number of 32 bits from an identity, with a secret of its own. Files from strangers
/// contain identities of the strangers' choice. Without the secret, nobody can choose identities
/// whose numbers have any bits in common: for two identities that differ, all pairs of numbers are
/// about equally likely, wherever the two differ.
class IdentityKey {
public:
    /// Draws the secret from the source of identities.
    /// \throws JException by value, "Cannot create hash code.", if the platform has no GUID
    IdentityKey();

    /// Returns the number of the identity. All its bits can be used alike.
    uint32_t tagOf(const JHashCode& identity) const {
        // The upper half of a sum of products with unknown factors. Each bit of the lower half
        // depends on the bits below it alone.
        const uint64_t sum = identity.w0 * factors_[0] + identity.w1 * factors_[1] +
                             identity.w2 * factors_[2] + identity.w3 * factors_[3] + addend_;
        return scatter(static_cast<uint32_t>(sum >> 32));
    }

    /// Returns an identity that stands for a text in a table with this key. Equal texts have equal
    /// ones. Different texts can have equal ones too, although nobody can choose such texts, so a
    /// search compares the texts as well.
    JHashCode identityOf(std::string_view text) const;

private:
    /// Maps the numbers of 32 bits to one another. Identities that count up give sums in equal
    /// steps, which would lie side by side in a table.
    static uint32_t scatter(uint32_t number) {
        number = (number ^ number >> 16) * 0x85EBCA6BU;
        number = (number ^ number >> 13) * 0xC2B2AE35U;
        return number ^ number >> 16;
    }

    std::array<uint64_t, 4> factors_;
    uint64_t addend_;
};

} // namespace kel
