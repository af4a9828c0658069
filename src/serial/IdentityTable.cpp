#include "serial/IdentityTable.h"

#include <kel/JObject.h>

namespace kel {

namespace {

constexpr std::size_t firstSize = 64;

uint64_t pair(uint32_t low, uint32_t high) { return low | static_cast<uint64_t>(high) << 32; }

} // namespace

IdentityTable::IdentityTable() : slots_(firstSize) {
    // A fresh identity is the library's one source of random bits.
    JHashCode random;
    JObject().getHashCode(random);
    key0_ = pair(random.w0, random.w1);
    key1_ = pair(random.w2, random.w3);
}

uint32_t IdentityTable::tagOf(const JHashCode& identity) const {
    uint64_t mixed = (pair(identity.w0, identity.w1) ^ key0_) * 0x9E3779B97F4A7C15U;
    mixed ^= mixed >> 32;
    mixed = (mixed ^ pair(identity.w2, identity.w3) ^ key1_) * 0xD6E8FEB86659FD93U;
    return static_cast<uint32_t>(mixed >> 32);
}

/// The slot of the identity, or the empty one where it belongs.
IdentityTable::Slot* IdentityTable::search(const JHashCode& identity, uint32_t tag) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t place = placeOf(tag);; place = (place + 1) & mask) {
        Slot& slot = slots_[place];
        if (slot.entry == 0 ||
            (slot.tag == tag && entries_[slot.entry - 1].identity == identity)) {
            return &slot;
        }
    }
}

KEL_Impl* IdentityTable::find(const JHashCode& identity) const {
    const Slot* slot = const_cast<IdentityTable*>(this)->search(identity, tagOf(identity));
    return slot->entry == 0 ? nullptr : entries_[slot->entry - 1].value;
}

bool IdentityTable::insert(const JHashCode& identity, KEL_Impl* value) {
    const uint32_t tag = tagOf(identity);
    Slot* slot = search(identity, tag);
    if (slot->entry != 0) {
        return false;
    }
    if ((used_ + 1) * 4 > slots_.size() * 3) {
        grow();
        slot = search(identity, tag);
    }
    entries_.push_back({identity, value, true});
    *slot = {tag, static_cast<uint32_t>(entries_.size())};
    ++used_;
    return true;
}

KEL_Impl* IdentityTable::put(const JHashCode& identity, KEL_Impl* value) {
    if (insert(identity, value)) {
        return nullptr;
    }
    KEL_Impl*& held = entries_[search(identity, tagOf(identity))->entry - 1].value;
    KEL_Impl* before = held;
    held = value;
    return before;
}

void IdentityTable::erase(const JHashCode& identity) {
    Slot* slot = search(identity, tagOf(identity));
    if (slot->entry == 0) {
        return;
    }
    entries_[slot->entry - 1].live = false;
    --used_;
    // Close the gap: move back every follower that the gap would hide from its search.
    const std::size_t mask = slots_.size() - 1;
    auto gap = static_cast<std::size_t>(slot - slots_.data());
    for (std::size_t place = (gap + 1) & mask; slots_[place].entry != 0;
         place = (place + 1) & mask) {
        const std::size_t home = placeOf(slots_[place].tag);
        if (((place - home) & mask) >= ((place - gap) & mask)) {
            slots_[gap] = slots_[place];
            gap = place;
        }
    }
    slots_[gap] = {0, 0};
}

void IdentityTable::grow() {
    std::vector<Slot> larger(slots_.size() * 2);
    larger.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : larger) {
        if (slot.entry != 0) {
            std::size_t place = placeOf(slot.tag);
            while (slots_[place].entry != 0) {
                place = (place + 1) & mask;
            }
            slots_[place] = slot;
        }
    }
}

} // namespace kel
