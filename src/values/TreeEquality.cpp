#include "values/TreeEquality.h"

#include "runtime/Storage.h"
#include "values/ChildCursor.h"

#include <utility>

namespace kel {

namespace {

/// Keeps containers in classes whose members are equal unless a difference is still found. Equality
/// is transitive, so each merge saves all later comparisons between the two classes, and there are
/// fewer merges than containers: this bounds the whole comparison.
class EqualContainers {
public:
    /// Puts two containers into one class. \return false if they already are in one
    bool merge(const KEL_Impl& a, const KEL_Impl& b) {
        std::size_t x = classOf(a);
        std::size_t y = classOf(b);
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

private:
    struct Member {
        std::size_t parent; ///< its own index in the member that represents the class
        int rank;
    };

    std::size_t classOf(const KEL_Impl& container) {
        const auto [place, isNew] = places_.try_emplace(&container, members_.size());
        std::size_t member = place->second;
        if (isNew) {
            members_.push_back({member, 0});
        }
        while (members_[member].parent != member) {
            std::size_t& parent = members_[member].parent;
            parent = members_[parent].parent; // halves the path for the next time
            member = parent;
        }
        return member;
    }

    HashMap<const KEL_Impl*, std::size_t> places_;
    Vector<Member> members_;
};

/// A pair of containers being compared child by child.
struct Level {
    ChildCursor a;
    ChildCursor b;
    bool isInTable; ///< one of the two, or a container around them, can be reached again
};

/// Compares two trees.
class TreeComparison {
public:
    TreeComparison(const KEL_Impl& a, const KEL_Impl& b)
        : rootA_(a.holderOfChildren()), rootB_(b.holderOfChildren()) {}

    bool areEqual(const KEL_Impl& a, const KEL_Impl& b) {
        if (!compare(a, b, false)) {
            return false;
        }
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (!level.a.next()) {
                levels_.pop_back();
                // not reached: equal contents of their own include equal numbers of children
            } else if (!level.b.next() || !compareChildren(level)) {
                return false;
            }
        }
        return true;
    }

private:
    bool compareChildren(const Level& level) {
        if (level.a.name != level.b.name) {
            return false;
        }
        if (level.a.value == nullptr || level.b.value == nullptr) {
            return level.a.value == level.b.value;
        }
        return compare(*level.a.value, *level.b.value, level.isInTable);
    }

    /// Compares two values, whose children follow. Below containers that cannot be reached again,
    /// each value has one place, so only the others are kept in the table.
    bool compare(const KEL_Impl& a, const KEL_Impl& b, bool isInTable) {
        if (&a == &b) {
            return true;
        }
        if (!a.equalsWithoutChildren(b)) {
            return false;
        }
        if (!a.isContainer()) {
            return true;
        }
        const KEL_Impl& holderA = a.holderOfChildren();
        const KEL_Impl& holderB = b.holderOfChildren();
        if (!levels_.empty()) { // the roots come first; their one holder can be inside
            isInTable = isInTable || a.isShared() || holderA.isShared() || b.isShared() ||
                        holderB.isShared() || &holderA == &rootA_ || &holderB == &rootB_;
        }
        if (!isInTable || classes_.merge(holderA, holderB)) {
            levels_.push_back({ChildCursor(holderA), ChildCursor(holderB), isInTable});
        }
        return true;
    }

    const KEL_Impl& rootA_;
    const KEL_Impl& rootB_;
    Vector<Level> levels_;
    EqualContainers classes_;
};

} // namespace

bool treesEqual(const KEL_Impl& a, const KEL_Impl& b) {
    return TreeComparison(a, b).areEqual(a, b);
}

} // namespace kel
