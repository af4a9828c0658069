#include "diff/Matching.h"

#include "diff/Alignment.h"
#include "diff/ChildCount.h"
#include "diff/Similarity.h"
#include "document/ValueShape.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <unordered_map>
#include <unordered_set>

namespace kel::tool {

namespace {

using StepKind = PairedStep::Kind;
using DigestSet = std::unordered_set<KeyedDigest, KeyedDigestHash>;

Match removed(const PairedStep& step, KEL* value) {
    return {step, value, nullptr, true, false};
}

Match added(const PairedStep& step, KEL* value) {
    return {step, nullptr, value, false, true};
}

std::vector<KEL*> elementsOf(const KEL& array) {
    const auto& elements = dynamic_cast<const KEL_Array&>(array);
    std::vector<KEL*> all;
    all.reserve(static_cast<size_t>(elements.getCount()));
    for (int32_t i = 0; i < elements.getCount(); ++i) {
        all.push_back(elements.getVar(i));
    }
    return all;
}

std::vector<KEL*> rootsOf(const Document& document) {
    std::vector<KEL*> roots;
    for (const Value& root : document.roots()) {
        roots.push_back(root.get());
    }
    return roots;
}

/// Keeps the order of the common values if it is another one.
void keepOrder(Matches& matches, std::vector<size_t>&& order) {
    if (!std::is_sorted(order.begin(), order.end())) {
        matches.order = std::move(order);
    }
}

/// Two sequences of values and what they have in common.
class SequenceMatching {
public:
    SequenceMatching(const ContentDigests& digests, const std::vector<KEL*>& before,
                     const std::vector<KEL*>& after)
        : digests_(digests), before_(before), after_(after), digestsBefore_(digestsOf(before)),
          digestsAfter_(digestsOf(after)) {}

    /// Returns all pairs.
    Alignment pairs() {
        Alignment common = commonSubsequence(digestsBefore_, digestsAfter_);
        findWanderers(common);
        Alignment all;
        size_t i = 0;
        size_t j = 0;
        common.emplace_back(before_.size(), after_.size());
        for (const auto& [x, y] : common) {
            addSimilar(all, i, x, j, y);
            if (x < before_.size()) {
                all.emplace_back(x, y);
            }
            i = x + 1;
            j = y + 1;
        }
        return all;
    }

private:
    std::vector<KeyedDigest> digestsOf(const std::vector<KEL*>& values) const {
        std::vector<KeyedDigest> all;
        all.reserve(values.size());
        for (KEL* value : values) {
            all.push_back(digests_.of(value));
        }
        return all;
    }

    /// Finds the values that were moved inside the sequence.
    void findWanderers(const Alignment& common) {
        DigestSet onlyBefore;
        auto next = common.begin();
        for (size_t i = 0; i < before_.size(); ++i) {
            if (next != common.end() && next->first == i) {
                ++next;
            } else if (isDistinctive(before_[i]) && ContentDigests::isExact(digestsBefore_[i])) {
                onlyBefore.insert(digestsBefore_[i]);
            }
        }
        next = common.begin();
        for (size_t j = 0; j < after_.size() && !onlyBefore.empty(); ++j) {
            if (next != common.end() && next->second == j) {
                ++next;
            } else if (onlyBefore.contains(digestsAfter_[j])) {
                wanderers_.insert(digestsAfter_[j]);
            }
        }
    }

    /// Adds pairs of similar values between two common ones.
    void addSimilar(Alignment& all, size_t beginBefore, size_t endBefore, size_t beginAfter,
                    size_t endAfter) const {
        const std::vector<size_t> before = staying(digestsBefore_, beginBefore, endBefore);
        const std::vector<size_t> after = staying(digestsAfter_, beginAfter, endAfter);
        if (before.empty() || after.empty()) {
            return;
        }
        const auto valuesAt = [](const std::vector<KEL*>& values,
                                 const std::vector<size_t>& places) {
            std::vector<KEL*> some;
            some.reserve(places.size());
            for (const size_t place : places) {
                some.push_back(values[place]);
            }
            return some;
        };
        for (const auto& [x, y] :
             pairSimilar(digests_, valuesAt(before_, before), valuesAt(after_, after))) {
            all.emplace_back(before[x], after[y]);
        }
    }

    std::vector<size_t> staying(const std::vector<KeyedDigest>& digests, size_t begin,
                                size_t end) const {
        std::vector<size_t> places;
        for (size_t i = begin; i < end; ++i) {
            if (!wanderers_.contains(digests[i])) {
                places.push_back(i);
            }
        }
        return places;
    }

    const ContentDigests& digests_;
    const std::vector<KEL*>& before_;
    const std::vector<KEL*>& after_;
    std::vector<KeyedDigest> digestsBefore_;
    std::vector<KeyedDigest> digestsAfter_;
    DigestSet wanderers_;
};

} // namespace

bool isDistinctive(const KEL* value) {
    constexpr size_t leastLength = 8;
    if (value == nullptr) {
        return false;
    }
    return value->getType() == KELKind_String ? std::strlen(value->toString()) >= leastLength
                                              : childCountOf(*value) > 0;
}

Matches Matching::match(KEL& before, KEL& after) const {
    Matches matches;
    switch (shapeOf(before)) {
    case ValueShape::array:
        matchSequences(matches, StepKind::element, elementsOf(before), elementsOf(after));
        break;
    case ValueShape::pairs:
        matchPairs(matches, dynamic_cast<const KEL_IndexList&>(before),
                   dynamic_cast<const KEL_IndexList&>(after));
        break;
    case ValueShape::managed:
        matchManaged(matches, dynamic_cast<const KEL_Manager&>(before),
                     dynamic_cast<const KEL_Manager&>(after));
        break;
    case ValueShape::variables:
        matchVariables(matches, before, after);
        break;
    // not reached: only containers have contents to match
    case ValueShape::scalar:
        break;
    }
    return matches;
}

Matches Matching::match(const Document& before, const Document& after) const {
    Matches matches;
    const std::vector<KEL*> rootsBefore = rootsOf(before);
    const std::vector<KEL*> rootsAfter = rootsOf(after);
    if (rootsBefore.size() != rootsAfter.size()) {
        matchSequences(matches, StepKind::root, rootsBefore, rootsAfter);
        return matches;
    }
    for (size_t i = 0; i < rootsBefore.size(); ++i) {
        addPair(matches, {{StepKind::root, nullptr, nullptr, i, i}, rootsBefore[i], rootsAfter[i]});
    }
    return matches;
}

/// Adds a pair unless it is equal and such pairs are left out.
void Matching::addPair(Matches& matches, const Match& match) const {
    if (!includesEqual_) {
        const KeyedDigest digest = digests_.of(match.before);
        if (ContentDigests::isExact(digest) && digest == digests_.of(match.after)) {
            return;
        }
    }
    matches.list.push_back(match);
}

void Matching::matchVariables(Matches& matches, const KEL& before, const KEL& after) const {
    const auto& variablesBefore = dynamic_cast<const KELInterface_Struct_V2&>(before);
    const auto& variablesAfter = dynamic_cast<const KELInterface_Struct_V2&>(after);
    KELVarCursor a;
    KELVarCursor b;
    bool hasA = variablesBefore.nextVar(a);
    bool hasB = variablesAfter.nextVar(b);
    while (hasA || hasB) {
        const int order = !hasA ? 1 : !hasB ? -1 : std::strcmp(a.name, b.name);
        const PairedStep step{StepKind::variable, order <= 0 ? a.name : b.name};
        if (order < 0) {
            matches.list.push_back(removed(step, a.value));
        } else if (order > 0) {
            matches.list.push_back(added(step, b.value));
        } else {
            addPair(matches, {step, a.value, b.value});
        }
        hasA = order <= 0 ? variablesBefore.nextVar(a) : hasA;
        hasB = order >= 0 ? variablesAfter.nextVar(b) : hasB;
    }
}

void Matching::matchSequences(Matches& matches, StepKind kind, const std::vector<KEL*>& before,
                              const std::vector<KEL*>& after) const {
    Alignment pairs = SequenceMatching(digests_, before, after).pairs();
    pairs.emplace_back(before.size(), after.size());
    size_t i = 0;
    size_t j = 0;
    const auto step = [&] { return PairedStep{kind, nullptr, nullptr, i, j}; };
    for (const auto& [x, y] : pairs) {
        for (; i < x; ++i) {
            matches.list.push_back(removed(step(), before[i]));
        }
        for (; j < y; ++j) {
            matches.list.push_back(added(step(), after[j]));
        }
        // not reached: the end of one is the end of both
        if (i < before.size() && j < after.size()) {
            addPair(matches, {step(), before[i++], after[j++]});
        }
    }
}

void Matching::matchPairs(Matches& matches, const KEL_IndexList& before,
                          const KEL_IndexList& after) const {
    // Several pairs can have equal keys. Then the first ones belong together, and so on.
    std::unordered_map<KeyedDigest, std::deque<int32_t>, KeyedDigestHash> places;
    for (int32_t j = 0; j < after.getCount(); ++j) {
        places[digests_.of(after.getKeyAt(j))].push_back(j);
    }
    std::vector<size_t> counterparts(static_cast<size_t>(after.getCount()), SIZE_MAX);
    const auto stepOf = [](StepKind kind, int32_t i, int32_t j) {
        return PairedStep{kind, nullptr, nullptr, static_cast<size_t>(i), static_cast<size_t>(j)};
    };
    for (int32_t i = 0; i < before.getCount(); ++i) {
        KEL* key = before.getKeyAt(i);
        const auto place = places.find(digests_.of(key));
        if (place == places.end() || place->second.empty()) {
            matches.list.push_back(removed(stepOf(StepKind::item, i, 0), before.getItemAt(i)));
            matches.list.back().key = key;
            continue;
        }
        const int32_t j = place->second.front();
        place->second.pop_front();
        counterparts[static_cast<size_t>(j)] = static_cast<size_t>(i);
        addPair(matches, {stepOf(StepKind::key, i, j), key, after.getKeyAt(j)});
        addPair(matches, {stepOf(StepKind::item, i, j), before.getItemAt(i), after.getItemAt(j)});
    }
    std::vector<size_t> order;
    for (int32_t j = 0; j < after.getCount(); ++j) {
        if (counterparts[static_cast<size_t>(j)] != SIZE_MAX) {
            order.push_back(counterparts[static_cast<size_t>(j)]);
            continue;
        }
        matches.list.push_back(added(stepOf(StepKind::item, 0, j), after.getItemAt(j)));
        matches.list.back().key = after.getKeyAt(j);
    }
    keepOrder(matches, std::move(order));
}

void Matching::matchManaged(Matches& matches, const KEL_Manager& before,
                            const KEL_Manager& after) const {
    const auto stepTo = [](const KEL* value) {
        return PairedStep{StepKind::managed, nullptr, value};
    };
    for (int32_t i = 0; i < before.size(); ++i) {
        KEL* value = before.getKelAt(i);
        const JHashCode identity = identityOf(*value);
        if (after.containsKel(identity)) {
            addPair(matches, {stepTo(value), value, after.getKel(identity)});
        } else {
            matches.list.push_back(removed(stepTo(value), value));
        }
    }
    std::unordered_map<const KEL*, size_t> numbers;
    for (int32_t i = 0; i < before.size(); ++i) {
        numbers[before.getKelAt(i)] = static_cast<size_t>(i);
    }
    std::vector<size_t> order;
    for (int32_t j = 0; j < after.size(); ++j) {
        KEL* value = after.getKelAt(j);
        const JHashCode identity = identityOf(*value);
        if (before.containsKel(identity)) {
            order.push_back(numbers[before.getKel(identity)]);
        } else {
            matches.list.push_back(added(stepTo(value), value));
        }
    }
    keepOrder(matches, std::move(order));
}

} // namespace kel::tool
