#include "serial/IdentityIndex.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::size_t firstSize = 64; // number of places at first
constexpr std::size_t growth = 4;     // growth factor up to a million places; after that it is 2
constexpr std::size_t fastGrowthEnd = std::size_t{1} << 20;

} // namespace

IdentityIndex::IdentityIndex() : places_(firstSize) {}

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
    const uint32_t tag = key_.tagOf(identity);
    Place& place = places_[search(identity, tag)];
    if (place.number == none) {
        place = {tag, number};
        ++used_;
    }
    return place.number;
}

uint32_t IdentityIndex::find(const JHashCode& identity) const {
    return places_[search(identity, key_.tagOf(identity))].number;
}

std::size_t IdentityIndex::distanceOf(const JHashCode& identity) const {
    const uint32_t tag = key_.tagOf(identity);
    return (search(identity, tag) - tag) & (places_.size() - 1);
}

void IdentityIndex::redirect(const JHashCode& identity, uint32_t number) noexcept {
    places_[search(identity, key_.tagOf(identity))].number = number;
}

bool IdentityIndex::isCurrent(const Place& place) const {
    return place.number < identities_.size() && key_.tagOf(identities_[place.number]) == place.tag;
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
