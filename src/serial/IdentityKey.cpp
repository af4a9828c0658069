#include "serial/IdentityKey.h"

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

} // namespace

IdentityKey::IdentityKey()
    : factors_{drawBits(), drawBits(), drawBits(), drawBits()}, addend_(drawBits()) {}

} // namespace kel
