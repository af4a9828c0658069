#include "diff/PairsSeen.h"

namespace kel::tool {

PairsSeen::Result PairsSeen::add(const KEL& before, const KEL& after, size_t place) {
    const std::pair<const KEL*, const KEL*> pair(&before, &after);
    if (const auto known = pairs_.find(pair); known != pairs_.end()) {
        return {false, known->second};
    }
    const bool isNewBefore = before_.insert(&before).second;
    const bool isNewAfter = after_.insert(&after).second;
    if (!isNewBefore && !isNewAfter) {
        return {false, std::nullopt};
    }
    pairs_.emplace(pair, place);
    return {true, std::nullopt};
}

bool EqualClasses::merge(const KEL& a, const KEL& b) {
    size_t x = classOf(a);
    size_t y = classOf(b);
    if (x == y) {
        return false;
    }
    if (members_[x].rank < members_[y].rank) {
        std::swap(x, y);
    }
    members_[y].parent = x;
    members_[x].rank += members_[x].rank == members_[y].rank ? 1 : 0;
    return true;
}

size_t EqualClasses::classOf(const KEL& container) {
    const auto [place, isNew] = places_.try_emplace(&container, members_.size());
    size_t member = place->second;
    if (isNew) {
        members_.push_back({member, 0});
    }
    while (members_[member].parent != member) {
        size_t& parent = members_[member].parent;
        parent = members_[parent].parent; // halves the path for the next time
        member = parent;
    }
    return member;
}

} // namespace kel::tool
