#include "values/TreeWalk.h"

#include "values/ChildCursor.h"

#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kel {

namespace {

/// One container on the way down and what the walk keeps beside it.
template <class Partner> struct Level {
    ChildCursor cursor;
    Partner partner;
};

/// Visits every child of every level, depth first. A visit may push a level to go down, after
/// which it must not touch the one that it was given; it returns false to end the walk.
template <class Partner, class Visit>
bool walk(std::vector<Level<Partner>>& levels, const Visit& visit) {
    while (!levels.empty()) {
        Level<Partner>& level = levels.back();
        if (!level.cursor.next()) {
            levels.pop_back();
        } else if (!visit(level)) {
            return false;
        }
    }
    return true;
}

} // namespace

namespace {

/// \param standIn what stands for source inside the copy; null for the copy itself
KEL_Impl* copyTree(const KEL_Impl& source, KEL_Impl* standIn) {
    std::vector<Level<KEL_Impl*>> levels;
    std::unordered_map<const KEL_Impl*, KEL_Impl*> copies; // of the values that can be met again

    // The root's one holder may be inside it.
    const auto canMeetAgain = [&source](const KEL_Impl& value) {
        return value.isShared() || &value == &source;
    };

    // A copy belongs to its container as soon as it is made, so a failure leaves nothing behind.
    const auto copyOf = [&](const KEL_Impl& value) -> JPointer<KEL_Impl> {
        if (canMeetAgain(value)) {
            if (const auto known = copies.find(&value); known != copies.end()) {
                return JPointer<KEL_Impl>::share(known->second);
            }
        }
        JPointer<KEL_Impl> made(value.copyWithoutChildren());
        if (canMeetAgain(value)) {
            const bool isStoodInFor = &value == &source && standIn != nullptr;
            copies.emplace(&value, isStoodInFor ? standIn : made.get());
        }
        if (value.copiesChildren()) {
            levels.push_back({ChildCursor(value), made.get()});
        }
        return made;
    };

    JPointer<KEL_Impl> root = copyOf(source);
    walk(levels, [&](const Level<KEL_Impl*>& level) {
        KEL_Impl* target = level.partner;
        const std::string_view name = level.cursor.name; // points into the source
        JPointer<KEL_Impl> child =
            level.cursor.value == nullptr ? JPointer<KEL_Impl>() : copyOf(*level.cursor.value);
        target->adoptCopiedChild(name, std::move(child));
        return true;
    });
    return root.detach();
}

} // namespace

KEL_Impl* copyTree(const KEL_Impl& source) {
    return copyTree(source, nullptr);
}

KEL_Impl* copyTreeFor(const KEL_Impl& source, KEL_Impl& target) {
    return copyTree(source, &target);
}

bool treesEqual(const KEL_Impl& a, const KEL_Impl& b) {
    using Pair = std::pair<const KEL_Impl*, const KEL_Impl*>;
    struct HashPair {
        std::size_t operator()(const Pair& pair) const {
            const std::hash<const void*> hash;
            return hash(pair.first) * 31 + hash(pair.second);
        }
    };
    std::vector<Level<ChildCursor>> levels;
    std::unordered_set<Pair, HashPair> met; // being compared or found equal

    const auto compare = [&](const KEL_Impl& x, const KEL_Impl& y) {
        if (!x.equalsWithoutChildren(y)) {
            return false;
        }
        // One of the two is enough. A root's one holder may be inside it.
        const bool canMeetAgain = x.isShared() || y.isShared() || &x == &a || &y == &b;
        if (&x != &y && x.isContainer() && (!canMeetAgain || met.emplace(&x, &y).second)) {
            levels.push_back({ChildCursor(x), ChildCursor(y)});
        }
        return true;
    };

    return compare(a, b) && walk(levels, [&](Level<ChildCursor>& level) {
               ChildCursor& other = level.partner;
               if (!other.next() || level.cursor.name != other.name) {
                   return false;
               }
               if (level.cursor.value == nullptr || other.value == nullptr) {
                   return level.cursor.value == other.value;
               }
               return compare(*level.cursor.value, *other.value);
           });
}

} // namespace kel
