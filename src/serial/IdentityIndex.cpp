#include "serial/IdentityIndex.h"

#include <algorithm>
#include <kel/JObject.h>

namespace kel {

namespace {

constexpr std::size_t firstSize = 64; // number of places at first
constexpr std::size_t growth = 4;     // growth factor up to a million places; after that it is 2
constexpr std::size_t fastGrowthEnd = std::size_t{1} << 20;

uint64_t pair(uint32_t low, uint32_t high) {
    return low | static_cast<uint64_t>(high) << 32;
}

} // namespace

IdentityIndex::IdentityIndex() : places_(firstSize) {
    // A fresh identity is the library's one source of random bits.
    JHashCode random;
    JObject().getHashCode(random);
    key0_ = pair(random.w0, random.w1);
    key1_ = pair(random.w2, random.w3);
}

uint32_t IdentityIndex::tagOf(const JHashCode& identity) const {
    uint64_t mixed = (pair(identity.w0, identity.w1) ^ key0_) * 0x9E3779B97F4A7C15U;
    mixed ^= mixed >> 32;
    mixed = (mixed ^ pair(identity.w2, identity.w3) ^ key1_) * 0xD6E8FEB86659FD93U;
    return static_cast<uint32_t>(mixed >> 32);
}

/// Returns the place of the identity, or the empty place where it belongs.
std::size_t IdentityIndex::search(const JHashCode& identity, uint32_t tag) const {
    const std::size_t mask = places_.size() - 1;
    for (std::size_t at = tag & mask;; at = (at + 1) & mask) {
        const Place& place = places_[at];
        if (place.number == none || (place.tag == tag && place.number < identities_.size() &&
                                     identities_[place.number] == identity)) {
            return at;
        }
    }
}

uint32_t& IdentityIndex::link(uint32_t number) {
    if ((used_ + 1) * 4 > places_.size() * 3) {
        rebuild();
    }
    const JHashCode& identity = identities_[number];
    const uint32_t tag = tagOf(identity);
    Place& place = places_[search(identity, tag)];
    if (place.number == none) {
        place = {tag, number};
        ++used_;
    }
    return place.number;
}

uint32_t IdentityIndex::find(const JHashCode& identity) const {
    return places_[search(identity, tagOf(identity))].number;
}

void IdentityIndex::redirect(const JHashCode& identity, uint32_t number) noexcept {
    places_[search(identity, tagOf(identity))].number = number;
}

bool IdentityIndex::isCurrent(const Place& place) const {
    return place.number < identities_.size() && tagOf(identities_[place.number]) == place.tag;
}

/// Drops the places that no longer match anything, and makes more places unless that freed half.
void IdentityIndex::rebuild() {
    const auto current = static_cast<std::size_t>(std::count_if(
        places_.begin(), places_.end(), [this](const Place& place) { return isCurrent(place); }));
    const std::size_t factor = current * 2 < used_              ? 1
                               : places_.size() < fastGrowthEnd ? growth
                                                                : 2;
    std::vector<Place> before(places_.size() * factor);
    before.swap(places_);
    used_ = current;
    const std::size_t mask = places_.size() - 1;
    for (const Place& place : before) {
        if (isCurrent(place)) {
            std::size_t at = place.tag & mask;
            while (places_[at].number != none) {
                at = (at + 1) & mask;
            }
            places_[at] = place;
        }
    }
}

} // namespace kel
