#include "serial/IdentityTable.h"

#include <kel/JObject.h>
#include <new>

namespace kel {

namespace {

constexpr std::size_t firstSize = 64; // places of the index at first
constexpr std::size_t growth = 4;     // its factor, up to a million places; then 2
constexpr std::size_t fastGrowthEnd = std::size_t{1} << 20;

uint64_t pair(uint32_t low, uint32_t high) {
    return low | static_cast<uint64_t>(high) << 32;
}

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
        if (slot.entry == 0 || (slot.tag == tag && entryAt(slot.entry - 1).identity == identity)) {
            return &slot;
        }
    }
}

KEL_Impl* IdentityTable::find(const JHashCode& identity) const {
    const Slot* slot = const_cast<IdentityTable*>(this)->search(identity, tagOf(identity));
    return slot->entry == 0 ? nullptr : entryAt(slot->entry - 1).value;
}

/// The same with room for one more place in use.
IdentityTable::Slot* IdentityTable::searchWithRoom(const JHashCode& identity, uint32_t tag) {
    if ((used_ + 1) * 4 > slots_.size() * 3) {
        grow();
    }
    return search(identity, tag);
}

void IdentityTable::append(const JHashCode& identity, KEL_Impl* value) {
    if (count_ == blocks_.size() * blockSize) {
        blocks_.push_back(std::make_unique<Entry[]>(blockSize));
    }
    entryAt(count_++) = {identity, value};
}

bool IdentityTable::insert(const JHashCode& identity, KEL_Impl* value) {
    const uint32_t tag = tagOf(identity);
    Slot* slot = searchWithRoom(identity, tag);
    if (slot->entry != 0) {
        return false;
    }
    append(identity, value);
    *slot = {tag, static_cast<uint32_t>(count_)};
    ++used_;
    return true;
}

void IdentityTable::add(const JHashCode& identity, KEL_Impl* value) {
    append(identity, value);
}

void IdentityTable::indexAdded() {
    for (; indexedEnd_ < count_; ++indexedEnd_) {
        const JHashCode& identity = entryAt(indexedEnd_).identity;
        if (identity.isZero()) {
            continue;
        }
        const uint32_t tag = tagOf(identity);
        const auto number = static_cast<uint32_t>(indexedEnd_);
        Slot* slot = searchWithRoom(identity, tag);
        if (slot->entry == 0) {
            ++used_;
        } else if (slot->entry - 1 != number) {
            repetitions_.push_back({slot->entry - 1, number});
        }
        *slot = {tag, number + 1};
    }
}

/// Lets the index forget an entry, all behind which are forgotten already.
void IdentityTable::hideEntry(std::size_t number) noexcept {
    const JHashCode& identity = entryAt(number).identity;
    Slot* slot = search(identity, tagOf(identity));
    if (slot->entry != number + 1) {
        return; // it was not indexed yet
    }
    if (!repetitions_.empty() && repetitions_.back().later == number) {
        slot->entry = repetitions_.back().earlier + 1;
        repetitions_.pop_back();
    } else {
        eraseIndexed(identity);
    }
}

KEL_Impl* IdentityTable::put(const JHashCode& identity, KEL_Impl* value) {
    if (insert(identity, value)) {
        return nullptr;
    }
    KEL_Impl*& held = entryAt(search(identity, tagOf(identity))->entry - 1).value;
    KEL_Impl* before = held;
    held = value;
    return before;
}

void IdentityTable::erase(const JHashCode& identity) noexcept {
    try {
        indexAdded();
    } catch (const std::bad_alloc&) {
        for (std::size_t i = count_; i > indexedEnd_; --i) {
            if (entryAt(i - 1).identity == identity) {
                entryAt(i - 1).identity = JHashCode();
            }
        }
    }
    eraseIndexed(identity);
}

void IdentityTable::eraseIndexed(const JHashCode& identity) noexcept {
    Slot* slot = search(identity, tagOf(identity));
    if (slot->entry == 0) {
        return;
    }
    entryAt(slot->entry - 1).identity = JHashCode();
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
    const std::size_t factor = slots_.size() < fastGrowthEnd ? growth : 2;
    std::vector<Slot> before(slots_.size() * factor);
    before.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : before) {
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
