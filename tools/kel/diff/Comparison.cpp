#include "diff/Comparison.h"

#include "diff/ContentDigests.h"
#include "diff/Matching.h"
#include "diff/Moves.h"
#include "diff/PairsSeen.h"

#include <unordered_map>
#include <utility>

namespace kel::tool {

namespace {

using Kind = Change::Kind;

/// Two containers whose values are being compared.
struct Level {
    size_t place;
    std::vector<Match> matches;
    bool isSharingKnown; ///< whether a container around them is shared differently
    size_t next = 0;
};

/// Walks through both documents side by side, with a stack of its own.
class Walk {
public:
    Walk(const Document& before, const Document& after, const ComparisonOptions& options)
        : before_(before), after_(after), options_(options),
          matching_(digests_, includesEqual(options)), changes_{PlacePairs(before.roots().size(),
                                                                           after.roots().size()),
                                                                {}} {
        digests_.add(before);
        digests_.add(after);
    }

    Changes run() {
        push(PlacePairs::outside, matching_.match(before_, after_), false);
        while (!levels_.empty() && !isOver()) {
            Level& level = levels_.back();
            if (level.next == level.matches.size()) {
                levels_.pop_back();
            } else {
                visit(level.matches[level.next++], level.place, level.isSharingKnown);
            }
        }
        findMoves(changes_, digests_);
        return std::move(changes_);
    }

private:
    static bool includesEqual(const ComparisonOptions& options) {
        return options.countsIdentities || options.countsSharing;
    }

    bool isOver() const { return options_.endsAtFirst && !changes_.list.empty(); }

    Change& report(Kind kind, size_t place, KEL* before, KEL* after) {
        changes_.list.push_back({kind, place, before, after});
        return changes_.list.back();
    }

    void push(size_t place, Matches&& matches, bool isSharingKnown) {
        if (!matches.order.empty()) {
            report(Kind::reordered, place, nullptr, nullptr).order = std::move(matches.order);
        }
        if (!matches.list.empty()) {
            levels_.push_back({place, std::move(matches.list), isSharingKnown});
        }
    }

    // The match is copied, because new levels move the one in the list.
    void visit(const Match match, size_t from, bool isSharingKnown) {
        const size_t place = changes_.places.add(from, match.step);
        if (!match.isBefore || !match.isAfter) {
            report(match.isBefore ? Kind::removed : Kind::added, place, match.before, match.after)
                .key = match.key;
        } else if (match.before == nullptr || match.after == nullptr) {
            if (match.before != match.after) {
                report(Kind::changed, place, match.before, match.after);
            }
        } else {
            compareIdentities(place, *match.before, *match.after);
            isSharingKnown = compareSharing(place, *match.before, *match.after, isSharingKnown);
            compareContents(place, *match.before, *match.after, isSharingKnown);
        }
    }

    void compareIdentities(size_t place, KEL& before, KEL& after) {
        if (options_.countsIdentities && !before.equals(&after)) {
            report(Kind::identity, place, &before, &after);
        }
    }

    /// Compares which other places share the value of a place.
    /// \param isKnown whether a container around the place is shared differently, so that the
    ///        values in it are too
    /// \return whether that is so for the values in this one
    bool compareSharing(size_t place, KEL& before, KEL& after, bool isKnown) {
        if (!options_.countsSharing) {
            return false;
        }
        const size_t firstBefore = firstBefore_.try_emplace(&before, place).first->second;
        const size_t firstAfter = firstAfter_.try_emplace(&after, place).first->second;
        if (firstBefore == firstAfter || isKnown) {
            return isKnown;
        }
        Change& change = report(Kind::sharing, place, &before, &after);
        const auto other = [place](size_t first) {
            return first != place ? std::optional(first) : std::nullopt;
        };
        change.sharedBefore = other(firstBefore);
        change.sharedAfter = other(firstAfter);
        return true;
    }

    void compareContents(size_t place, KEL& before, KEL& after, bool isSharingKnown) {
        if (before.getType() != after.getType()) {
            report(Kind::changed, place, &before, &after);
            return;
        }
        const KeyedDigest digest = digests_.of(&before);
        const KeyedDigest other = digests_.of(&after);
        const bool isExact = ContentDigests::isExact(digest) && ContentDigests::isExact(other);
        const bool areEqual = isExact && digest == other;
        const bool isContainer = kindOf(before).isContainer;
        if (areEqual && !(isContainer && includesEqual(options_))) {
            return;
        }
        if (!isContainer || (isExact && options_.endsAtFirst && !areEqual)) {
            report(Kind::changed, place, &before, &after);
        } else if (!isExact) {
            if (cycles_.merge(before, after)) {
                push(place, matching_.match(before, after), isSharingKnown);
            }
        } else {
            compareValuesIn(place, before, after, areEqual, isSharingKnown);
        }
    }

    /// Compares the values in two containers without cycles, unless both have been compared. So
    /// each container is compared at most once more than there are containers.
    void compareValuesIn(size_t place, KEL& before, KEL& after, bool areEqual,
                         bool isSharingKnown) {
        const PairsSeen::Result seen = seen_.add(before, after, place);
        if (seen.areNew) {
            push(place, matching_.match(before, after), isSharingKnown);
        } else if (!areEqual && seen.first) {
            report(Kind::repeated, place, &before, &after).other = seen.first;
        } else if (!areEqual) {
            report(Kind::changed, place, &before, &after);
        }
    }

    const Document& before_;
    const Document& after_;
    ComparisonOptions options_;
    ContentDigests digests_;
    Matching matching_;
    std::vector<Level> levels_;
    PairsSeen seen_;
    EqualClasses cycles_;
    std::unordered_map<const KEL*, size_t> firstBefore_; ///< the first place of each value
    std::unordered_map<const KEL*, size_t> firstAfter_;
    Changes changes_;
};

} // namespace

Changes compare(const Document& before, const Document& after, const ComparisonOptions& options) {
    return Walk(before, after, options).run();
}

} // namespace kel::tool
