#include "diff/Moves.h"

#include "diff/Matching.h"

#include <algorithm>
#include <unordered_map>

namespace kel::tool {

namespace {

/// The changes that remove and add the same contents.
struct Ends {
    std::vector<size_t> removed;
    std::vector<size_t> added;
};

} // namespace

void findMoves(Changes& changes, const ContentDigests& digests) {
    std::unordered_map<KeyedDigest, Ends, KeyedDigestHash> ends;
    for (size_t i = 0; i < changes.list.size(); ++i) {
        const Change& change = changes.list[i];
        const bool isRemoved = change.kind == Change::Kind::removed;
        KEL* value = isRemoved ? change.before : change.after;
        if ((!isRemoved && change.kind != Change::Kind::added) || change.key != nullptr ||
            !isDistinctive(value)) {
            continue;
        }
        if (const KeyedDigest digest = digests.of(value); ContentDigests::isExact(digest)) {
            Ends& both = ends[digest];
            (isRemoved ? both.removed : both.added).push_back(i);
        }
    }
    std::vector<bool> isObsolete(changes.list.size());
    for (const auto& [digest, both] : ends) {
        if (both.removed.size() == 1 && both.added.size() == 1) {
            Change& change = changes.list[both.removed.front()];
            const Change& target = changes.list[both.added.front()];
            change.kind = Change::Kind::moved;
            change.after = target.after;
            change.other = target.place;
            isObsolete[both.added.front()] = true;
        }
    }
    size_t i = 0;
    std::erase_if(changes.list, [&](const Change&) { return isObsolete[i++]; });
}

} // namespace kel::tool
