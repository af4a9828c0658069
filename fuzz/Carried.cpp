#include "Carried.h"

#include "Property.h"
#include "support/Trees.h"
#include "values/ChildCursor.h"
#include "values/KEL_IndexList_Impl.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <kel/JHashCode.h>
#include <unordered_map>
#include <vector>

namespace kel::fuzz {

namespace {

/// Text changes the last decimal of doubles from here on.
constexpr double textIsExactBelow = 1073741824.0;

constexpr double manyValues = 20000;
constexpr double manyTabs = 1000000; // text indents each value by its depth

/// The values of a tree, counted once for each path to them, and its depth.
struct Size {
    double values = 1;
    double depth = 1;
    bool isComplete = false;
};

/// Looks for values that contain themselves, and counts values as often as there are paths to them.
class Unfolding {
public:
    /// Returns the size of the tree. It is not complete if a value contains itself.
    Size sizeOf(const KEL_Impl& root) {
        enter(root);
        while (!open_.empty()) {
            Level& level = open_.back();
            if (!level.cursor.next()) {
                leave();
            } else if (level.cursor.value != nullptr && !visit(*level.cursor.value)) {
                return {};
            }
        }
        return sizes_[&root];
    }

private:
    struct Level {
        const KEL_Impl* value;
        ChildCursor cursor;
    };

    void enter(const KEL_Impl& value) {
        sizes_[&value] = {};
        open_.push_back({&value, ChildCursor(value)});
    }

    void leave() {
        Size& size = sizes_[open_.back().value];
        size.isComplete = true;
        open_.pop_back();
        if (!open_.empty()) {
            add(size);
        }
    }

    void add(const Size& child) {
        Size& size = sizes_[open_.back().value];
        size.values += child.values;
        size.depth = std::max(size.depth, child.depth + 1);
    }

    bool visit(const KEL_Impl& child) {
        const auto known = sizes_.find(&child);
        if (known == sizes_.end()) {
            enter(child);
            return true;
        }
        add(known->second);
        return known->second.isComplete;
    }

    std::unordered_map<const KEL_Impl*, Size> sizes_;
    std::vector<Level> open_;
};

void lookAtValue(const KEL_Impl& value, Carried& facts) {
    const KELKindFacts& kind = *findKELKind(value.getType());
    facts.byBinary = facts.byBinary && kind.hasBinaryForm;
    facts.byText = facts.byText && kind.hasTextForm;
    if (value.kind() == KELKind_Double) {
        const double number = value.toDouble();
        facts.hasNaN = facts.hasNaN || std::isnan(number);
        // A number that is not a number fails this comparison too.
        facts.byText = facts.byText && std::fabs(number) < textIsExactBelow;
    } else if (value.kind() == KELKind_String) {
        facts.byText = facts.byText && std::strchr(value.toString(), '"') == nullptr;
    } else if (value.kind() == KELKind_IndexList) {
        const auto& list = dynamic_cast<const KEL_IndexList&>(value);
        facts.byText = facts.byText && list.getKeys()->getCount() == list.getItems()->getCount();
    }
}

struct IdentityHash {
    std::size_t operator()(const JHashCode& code) const {
        return code.w0 ^ code.w1 * 31U ^ code.w2 * 131U ^ code.w3 * 1031U;
    }
};

} // namespace

Carried carried(KEL_Impl& root) {
    Carried facts;
    std::unordered_map<JHashCode, const KEL_Impl*, IdentityHash> identities;
    for (const KEL_Impl* value : test::valuesOf(root)) {
        lookAtValue(*value, facts);
        const JHashCode identity = value->identity();
        if (identity != JHashCode() && !identities.emplace(identity, value).second) {
            facts.hasNamesakes = true;
        }
    }
    const Size size = Unfolding().sizeOf(root);
    facts.isCyclic = !size.isComplete;
    facts.byText = facts.byText && size.isComplete;
    facts.isSmall = size.values < manyValues && size.values * size.depth < manyTabs;
    return facts;
}

void requireExactCounts(const std::list<test::Held<KEL_Impl>>& roots) {
    std::unordered_map<KEL_Impl*, int32_t> places;
    std::vector<KEL_Impl*> found;
    const auto count = [&](KEL_Impl* value) {
        if (value != nullptr && ++places[value] == 1) {
            found.push_back(value);
        }
    };
    for (const test::Held<KEL_Impl>& root : roots) {
        count(root.get());
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (ChildCursor cursor(*found[i]); cursor.next();) {
            count(cursor.value);
        }
    }
    for (KEL_Impl* value : found) {
        require(test::referencesOf(*value) == places[value], "every count is exact");
    }
}

} // namespace kel::fuzz
