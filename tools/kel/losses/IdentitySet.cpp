#include "losses/IdentitySet.h"

namespace kel::tool {

IdentitySet::KeyedHash::KeyedHash() : key_{} {
    for (size_t i = 0; i < key_.size(); i += 2) {
        const JHashCode drawn = identityOf(*made(CreateKELInt(0)));
        key_[i] = drawn.w0 | uint64_t{drawn.w1} << 32U;
        key_[i + 1] = drawn.w2 | uint64_t{drawn.w3} << 32U;
    }
}

bool IdentitySet::insert(const KEL& value) {
    const JHashCode identity = identityOf(value);
    if (identity.isZero()) {
        return true;
    }
    const auto [place, isNew] = values_.try_emplace(identity, &value);
    return isNew || place->second == &value;
}

} // namespace kel::tool
