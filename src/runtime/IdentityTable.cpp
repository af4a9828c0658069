#include "runtime/IdentityTable.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>

namespace kel {

namespace {

constexpr std::size_t fewestPlaces = 128;
/// An index less a shift must be a number of 32 bits. The limit is smaller, so that a test reaches
/// it.
constexpr int32_t furthestShift = 1 << 22;

} // namespace

IdentityTable* IdentityTable::make() noexcept {
    void* storage = platform::allocateSized(sizeof(IdentityTable));
    if (storage == nullptr) {
        return nullptr;
    }
    try {
        return ::new (storage) IdentityTable();
    } catch (const JException&) {
        platform::deallocateSized(storage, sizeof(IdentityTable));
        return nullptr;
    }
}

IdentityTable::~IdentityTable() {
    platform::deallocate(entries_);
}

std::size_t IdentityTable::placeOf(const JHashCode& identity) const {
    std::size_t place = firstPlaceOf(identity);
    while (entries_[place].count != 0 && entries_[place].identity != identity) {
        place = (place + 1) & mask_;
    }
    return place;
}

IdentityTable::Entry* IdentityTable::find(const JHashCode& identity) noexcept {
    if (used_ == 0) {
        return nullptr;
    }
    Entry& entry = entries_[placeOf(identity)];
    return entry.count == 0 ? nullptr : &entry;
}

bool IdentityTable::reserve(int32_t count) noexcept {
    const auto elements = static_cast<std::size_t>(count);
    const std::size_t places = std::bit_ceil(std::max(elements + elements / 2 + 1, fewestPlaces));
    return (entries_ != nullptr && places <= mask_ + 1) || resize(places);
}

bool IdentityTable::resize(std::size_t places) noexcept {
    auto* made = static_cast<Entry*>(platform::allocateZeroed(places, sizeof(Entry)));
    if (made == nullptr) {
        return false;
    }
    Entry* before = std::exchange(entries_, made);
    const std::size_t end = before == nullptr ? 0 : mask_ + 1;
    mask_ = places - 1;
    for (std::size_t i = 0; i < end; ++i) {
        if (before[i].count != 0) {
            entries_[placeOf(before[i].identity)] = before[i];
        }
    }
    platform::deallocate(before);
    return true;
}

bool IdentityTable::add(const JHashCode& identity, int32_t index) noexcept {
    if (entries_ == nullptr || 3 * (used_ + 1) > 2 * (mask_ + 1)) {
        if (!resize(std::max(2 * (mask_ + 1), fewestPlaces))) {
            return false;
        }
    }
    Entry& entry = entries_[placeOf(identity)];
    if (entry.count == 0) {
        entry.identity = identity;
        ++used_;
    }
    if (entry.count == 0 || index < leastIndexOf(entry)) {
        setLeastIndex(entry, index);
    }
    ++entry.count;
    return true;
}

void IdentityTable::takeOut(const JHashCode& identity) noexcept {
    std::size_t free = placeOf(identity);
    if (--entries_[free].count > 0) {
        return;
    }
    --used_;
    // The entries up to the next free place move up, unless their search begins after the free one.
    for (std::size_t place = (free + 1) & mask_; entries_[place].count != 0;
         place = (place + 1) & mask_) {
        const std::size_t first = firstPlaceOf(entries_[place].identity);
        if (((place - first) & mask_) >= ((place - free) & mask_)) {
            entries_[free] = std::exchange(entries_[place], Entry());
            free = place;
        }
    }
}

bool IdentityTable::insert(const JHashCode& identity, int32_t index) noexcept {
    if (index == 0 && size_ > 0) {
        shift(1);
    }
    ++size_;
    return add(identity, index);
}

void IdentityTable::remove(const JHashCode& identity, int32_t index) noexcept {
    takeOut(identity);
    if (index < --size_) {
        shift(-1);
    }
}

bool IdentityTable::replace(const JHashCode& before, const JHashCode& now, int32_t index) noexcept {
    takeOut(before);
    return add(now, index);
}

void IdentityTable::clear() noexcept {
    if (used_ > 0) {
        std::fill_n(entries_, mask_ + 1, Entry());
    }
    used_ = 0;
    size_ = 0;
    shifted_ = 0;
}

void IdentityTable::shift(int32_t distance) noexcept {
    shifted_ += static_cast<uint32_t>(distance);
    if (std::abs(static_cast<int32_t>(shifted_)) == furthestShift) {
        clear(); // the next search records all elements again
    }
}

} // namespace kel
