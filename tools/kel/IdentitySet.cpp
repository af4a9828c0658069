#include "IdentitySet.h"

#include <utility>

namespace kel::tool {

namespace {

constexpr size_t firstSize = 1024;

JHashCode identityOf(const KEL& value) {
    JHashCode identity;
    return value.getHashCode(identity);
}

/// Returns 256 unpredictable bits, drawn as the library draws the identities of new values.
std::array<uint64_t, 4> drawKey() {
    std::array<uint64_t, 4> key{};
    for (size_t i = 0; i < key.size(); i += 2) {
        const JHashCode drawn = identityOf(*made(CreateKELInt(0)));
        key[i] = drawn.w0 | uint64_t{drawn.w1} << 32U;
        key[i + 1] = drawn.w2 | uint64_t{drawn.w3} << 32U;
    }
    return key;
}

} // namespace

IdentitySet::IdentitySet() : key_(drawKey()), slots_(firstSize) {}

bool IdentitySet::insert(const KEL& value) {
    const JHashCode identity = identityOf(value);
    if (identity.isZero()) {
        return true;
    }
    if (2 * count_ == slots_.size()) {
        grow();
    }
    const uint64_t hash = hashOf(identity);
    Slot& slot = slotOf(hash, identity);
    if (slot.value == nullptr) {
        slot = {hash, &value};
        ++count_;
    }
    return slot.value == &value;
}

/// Returns the sum of products with unknown factors. Its upper half makes any two identities
/// collide about as rarely as random numbers do.
uint64_t IdentitySet::hashOf(const JHashCode& identity) const {
    return identity.w0 * key_[0] + identity.w1 * key_[1] + identity.w2 * key_[2] +
           identity.w3 * key_[3];
}

/// Returns the slot of the value with this identity, or the free one where it belongs.
IdentitySet::Slot& IdentitySet::slotOf(uint64_t hash, const JHashCode& identity) {
    size_t at = firstPlaceOf(hash);
    while (slots_[at].value != nullptr &&
           (slots_[at].hash != hash || identityOf(*slots_[at].value) != identity)) {
        at = nextPlace(at);
    }
    return slots_[at];
}

void IdentitySet::grow() {
    const std::vector<Slot> before = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    for (const Slot& slot : before) {
        if (slot.value != nullptr) {
            size_t at = firstPlaceOf(slot.hash);
            while (slots_[at].value != nullptr) {
                at = nextPlace(at);
            }
            slots_[at] = slot;
        }
    }
}

} // namespace kel::tool
