// Rules for every tree of values.
#include "meta/KELFactory.h"
#include "support/Held.h"
#include "support/RandomTree.h"
#include "support/SameTree.h"
#include "support/Trees.h"
#include "values/ChildCursor.h"
#include "values/UnfoldedSize.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <utility>
#include <vector>

namespace {

using kel::test::changeValue;
using kel::test::describe;
using kel::test::Held;
using kel::test::RandomNumbers;
using kel::test::randomTree;
using kel::test::RandomTreeOptions;
using kel::test::valuesOf;

constexpr uint64_t treeCount = 10000;

RandomTreeOptions withoutNulls() {
    RandomTreeOptions options;
    options.nullVariables = false; // a copy holds an Int 0 in their place
    return options;
}

/// Changes one value of the tree. Never changes a value inside a manager, because the copy shares
/// those. \return false if the tree has nothing to change
bool changeOneOf(KEL_Impl& root, RandomNumbers& numbers) {
    const std::vector<KEL_Impl*> values = valuesOf(root, false);
    const auto start = static_cast<std::size_t>(numbers.below(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (changeValue(*values[(start + i) % values.size()])) {
            return true;
        }
    }
    return false;
}

std::vector<KEL_Impl*> elementsOf(const KEL_Impl& container) {
    std::vector<KEL_Impl*> elements;
    for (kel::ChildCursor cursor(container); cursor.next();) {
        elements.push_back(cursor.value);
    }
    return elements;
}

TEST(RandomTrees, AreTheSameForTheSameSeed) {
    for (uint64_t seed = 0; seed < 200; ++seed) {
        const Held<KEL_Impl> first(randomTree(seed));
        const Held<KEL_Impl> second(randomTree(seed));
        ASSERT_TRUE(first->equalsValue(second.get())) << seed << ' ' << describe(*first);
    }
}

TEST(RandomTrees, HoldEveryKindSharingNullsAndDepth) {
    std::set<int32_t> kinds;
    bool sharing = false;
    std::size_t largest = 0;
    for (uint64_t seed = 0; seed < 200; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed));
        const std::vector<KEL_Impl*> values = valuesOf(*tree);
        largest = std::max(largest, values.size());
        for (const KEL_Impl* value : values) {
            kinds.insert(value->getType());
            sharing = sharing || value->isShared();
        }
    }
    EXPECT_EQ(kinds, (std::set<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_TRUE(sharing);
    EXPECT_GT(largest, 20U);
}

TEST(RandomTrees, ACopyEqualsItsSourceBothWays) {
    for (uint64_t seed = 0; seed < treeCount; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, withoutNulls()));
        const Held<KEL> copy(tree->copy());
        ASSERT_TRUE(copy->equalsValue(tree.get())) << seed << ' ' << describe(*tree);
        ASSERT_TRUE(tree->equalsValue(copy.get())) << seed << ' ' << describe(*tree);
    }
}

TEST(RandomTrees, ACopyOfACopyEqualsTheCopyAlsoWithNullVariables) {
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed));
        const Held<KEL> copy(tree->copy());
        const Held<KEL> second(copy->copy());
        ASSERT_TRUE(second->equalsValue(copy.get())) << seed << ' ' << describe(*tree);
    }
}

TEST(RandomTrees, ACopySharesNothingButWhatManagersHold) {
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, withoutNulls()));
        const Held<KEL_Impl> copy(KEL_Impl::of(tree->copy()));
        const std::vector<KEL_Impl*> mine = valuesOf(*tree, false);
        for (const KEL_Impl* value : valuesOf(*copy, false)) {
            ASSERT_EQ(std::count(mine.begin(), mine.end(), value), 0) << seed;
        }
        // Both trees are unfolded side by side.
        std::vector<std::pair<KEL_Impl*, KEL_Impl*>> pairs{{tree.get(), copy.get()}};
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            const auto [source, copied] = pairs[i];
            ASSERT_EQ(source->getType(), copied->getType()) << seed;
            ASSERT_FALSE(copied->isShared()) << seed << ' ' << describe(*tree);
            const std::vector<KEL_Impl*> inSource = elementsOf(*source);
            const std::vector<KEL_Impl*> inCopy = elementsOf(*copied);
            ASSERT_EQ(inSource.size(), inCopy.size()) << seed;
            if (source->getType() == KELKind_Manager) {
                ASSERT_EQ(inSource, inCopy) << seed;
                continue;
            }
            for (std::size_t k = 0; k < inSource.size(); ++k) {
                pairs.emplace_back(inSource[k], inCopy[k]);
            }
        }
        ASSERT_EQ(kel::unfoldedSize(*tree), pairs.size()) << seed;
    }
}

TEST(RandomTrees, ChangingOneValueOfACopyMakesItUnequal) {
    for (uint64_t seed = 0; seed < treeCount; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, withoutNulls()));
        const Held<KEL_Impl> copy(KEL_Impl::of(tree->copy()));
        RandomNumbers numbers(seed);
        const bool changed = changeOneOf(*copy, numbers);
        ASSERT_NE(copy->equalsValue(tree.get()), changed) << seed << ' ' << describe(*tree);
        ASSERT_NE(tree->equalsValue(copy.get()), changed) << seed << ' ' << describe(*tree);
    }
}

TEST(RandomTrees, EqualityIsSymmetric) {
    Held<KEL_Impl> previous(randomTree(0));
    for (uint64_t seed = 1; seed < treeCount; ++seed) {
        RandomTreeOptions options;
        options.maxValues = 3; // small trees are equal now and then
        Held<KEL_Impl> tree(randomTree(seed, options));
        ASSERT_EQ(tree->equalsValue(previous.get()), previous->equalsValue(tree.get())) << seed;
        previous = std::move(tree);
    }
}

TEST(RandomTrees, WithCyclesTooACopyEqualsItsSource) {
    RandomTreeOptions options = withoutNulls();
    options.cycles = true;
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, options));
        const kel::test::TakeApart source(tree.get());
        const Held<KEL_Impl> copy(KEL_Impl::of(tree->copy()));
        const kel::test::TakeApart copied(copy.get());
        ASSERT_TRUE(copy->equalsValue(tree.get())) << seed << ' ' << describe(*tree);
        ASSERT_TRUE(tree->equalsValue(copy.get())) << seed << ' ' << describe(*tree);
    }
}

TEST(RandomTrees, ACopyOfATreeWithACycleHasItsShape) {
    RandomTreeOptions options = withoutNulls();
    options.cycles = true;
    options.managers = false; // their elements are shared
    uint64_t count = 0;
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, options));
        const kel::test::TakeApart source(tree.get());
        if (kel::unfoldedSize(*tree).has_value()) {
            continue; // no cycle
        }
        ++count;
        const Held<KEL_Impl> copy(KEL_Impl::of(tree->copy()));
        const kel::test::TakeApart copied(copy.get());
        ASSERT_EQ(differenceOf(*tree, *copy, kel::test::Kept::inText), "") << seed;
    }
    EXPECT_GT(count, 100U);
}

TEST(RandomTrees, TakingOverATreeOfAnyKindsEqualsIt) {
    RandomTreeOptions options;
    options.lists = options.metas = options.selectors = true;
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, options));
        if (tree->isContainer()) {
            const Held<KEL_Impl> target(kel::createValue(tree->getType(), nullptr));
            target->assign(tree.get());
            ASSERT_TRUE(target->equalsValue(tree.get())) << seed << ' ' << describe(*tree);
        }
    }
}

TEST(RandomTrees, WithCyclesTooAChangeMakesTheCopyUnequal) {
    RandomTreeOptions options = withoutNulls();
    options.cycles = true;
    for (uint64_t seed = 0; seed < treeCount / 4; ++seed) {
        const Held<KEL_Impl> tree(randomTree(seed, options));
        const kel::test::TakeApart source(tree.get());
        const Held<KEL_Impl> copy(KEL_Impl::of(tree->copy()));
        const kel::test::TakeApart copied(copy.get());
        RandomNumbers numbers(seed);
        ASSERT_TRUE(changeOneOf(*copy, numbers));
        ASSERT_FALSE(copy->equalsValue(tree.get())) << seed << ' ' << describe(*tree);
    }
}

} // namespace
