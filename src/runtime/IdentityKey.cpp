#include "runtime/IdentityKey.h"

#include "platform/Guid.h"

#include <kel/JException.h>

namespace kel {

namespace {

/// Returns 64 random bits. They are the two words of an identity in which no bit is fixed.
uint64_t drawBits() {
    JHashCode identity;
    if (platform::isGuidAssured()) {
        platform::createAssuredGuid(identity);
    } else if (!platform::createGuid(identity)) {
        throw JException(JHashCode(), "Cannot create hash code.");
    }
    return identity.w0 | uint64_t{identity.w3} << 32;
}

constexpr uint64_t prime = (uint64_t{1} << 31) - 1;

/// Returns a number that has the same remainder by the prime as this one and at most 32 bits.
constexpr uint64_t reduce(uint64_t number) {
    const uint64_t once = (number & prime) + (number >> 31);
    return (once & prime) + (once >> 31);
}

} // namespace

IdentityKey::IdentityKey()
    : factors_{drawBits(), drawBits(), drawBits(), drawBits()}, addend_(drawBits()) {}

JHashCode IdentityKey::identityOf(std::string_view text) const {
    // The bytes are the coefficients of a polynomial, whose values at two unknown places are taken.
    const std::array<uint64_t, 2> places = {factors_[0] & prime, factors_[1] & prime};
    std::array<uint64_t, 2> sums = {1, 1};
    for (const char byte : text) {
        for (std::size_t i = 0; i < places.size(); ++i) {
            sums[i] = reduce(sums[i] * places[i] + static_cast<unsigned char>(byte));
        }
    }
    return {static_cast<uint32_t>(sums[0] % prime), static_cast<uint32_t>(sums[1] % prime),
            static_cast<uint32_t>(text.size()), 0};
}

} // namespace kel
