// Writes and copies random trees of all fifteen kinds.
#include "support/RandomTree.h"
#include "support/SameTree.h"
#include "support/Samples.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/ChildCursor.h"

#include <gtest/gtest.h>
#include <set>
#include <unordered_set>
#include <vector>

using namespace kel::test;

namespace {

constexpr uint64_t trees = 10000;

constexpr RandomTreeOptions allKinds() {
    RandomTreeOptions options;
    options.lists = options.metas = options.selectors = true;
    return options;
}

/// Returns options for all kinds that have a text form, with only the contents that text carries.
constexpr RandomTreeOptions forText() {
    RandomTreeOptions options = allKinds();
    options.memBlocks = options.quotes = options.anyDoubles = options.selectors = false;
    return options;
}

HeldValue tree(uint64_t seed, const RandomTreeOptions& options) {
    return HeldValue(randomTree(seed, options));
}

/// Returns the identities that a text holds, in its order. These are the identities of managed
/// values and of struct descriptors.
std::vector<std::string> writtenIdentities(const KEL_Impl& root) {
    std::vector<std::string> identities;
    std::vector<kel::ChildCursor> levels{kel::ChildCursor(root)};
    while (!levels.empty()) {
        kel::ChildCursor& level = levels.back();
        if (!level.next()) {
            levels.pop_back();
        } else if (const KEL_Impl* value = level.value; value != nullptr) {
            if (level.container->getType() == KELKind_Manager ||
                value->getType() == KELKind_MetaKelDescriptor) {
                identities.push_back(identityOf(value));
            }
            levels.emplace_back(*value);
        }
    }
    return identities;
}

TEST(KindsProperty, TheTreesHoldEveryKind) {
    std::set<KELKind> kinds;
    for (uint64_t seed = 1; seed <= 200; ++seed) {
        const auto value = tree(seed, allKinds());
        for (const KEL_Impl* each : valuesOf(*value)) {
            kinds.insert(each->kind());
        }
    }
    EXPECT_EQ(kinds, std::set<KELKind>(everyKind.begin(), everyKind.end()));
}

TEST(KindsProperty, TextReadAndWrittenAgainIsTheSameText) {
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, forText());
        const std::string text = textOf(value);
        const auto back = read(text);
        ASSERT_EQ(textOf(back), text) << "seed " << seed;
    }
}

TEST(KindsProperty, TextKeepsKindsValuesAndNames) {
    RandomTreeOptions options = forText();
    options.sharing = false; // the text holds a shared value twice
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, options);
        const auto back = read(textOf(value));
        ASSERT_EQ(differenceOf(*value, *back, Kept::inText), "")
            << "seed " << seed << ": " << describe(*value);
    }
}

TEST(KindsProperty, IdentitiesOfManagedValuesAndDescriptorsSurvive) {
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, forText());
        const auto back = read(textOf(value));
        ASSERT_EQ(writtenIdentities(*back), writtenIdentities(*value)) << "seed " << seed;
    }
}

TEST(KindsProperty, ADeepCopyIsEqualAndSharesOnlyWhatManagersHold) {
    RandomTreeOptions options = allKinds();
    options.nullVariables = false; // a copy holds an Int 0 in their place
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, options);
        const HeldValue copy(KEL_Impl::of(value->copy()));
        ASSERT_TRUE(copy->equalsValue(value.get())) << "seed " << seed << ": " << describe(*value);
        const std::vector<KEL_Impl*> originals = valuesOf(*value, false);
        const std::unordered_set<KEL_Impl*> known(originals.begin(), originals.end());
        for (KEL_Impl* each : valuesOf(*copy, false)) {
            ASSERT_FALSE(known.contains(each)) << "seed " << seed << ": " << describe(*each);
        }
    }
}

TEST(KindsProperty, AChangeOfACopyIsSeenThereAndNowhereElse) {
    RandomTreeOptions options = allKinds();
    options.nullVariables = false;
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, options);
        const HeldValue copy(KEL_Impl::of(value->copy())), witness(KEL_Impl::of(value->copy()));
        RandomNumbers numbers(seed);
        const std::vector<KEL_Impl*> values = valuesOf(*copy, false);
        if (changeValue(*values[static_cast<std::size_t>(numbers.below(values.size()))])) {
            ASSERT_FALSE(copy->equalsValue(value.get())) << "seed " << seed;
        }
        ASSERT_TRUE(value->equalsValue(witness.get())) << "seed " << seed;
    }
}

TEST(KindsProperty, ValuesThatContainThemselvesAreCopiedAndCompared) {
    RandomTreeOptions options = allKinds();
    options.nullVariables = options.selectors = false;
    options.cycles = true;
    for (uint64_t seed = 1; seed <= trees / 10; ++seed) {
        const auto value = tree(seed, options);
        const TakeApart apart(value.get());
        const HeldValue copy(KEL_Impl::of(value->copy()));
        const TakeApart apartToo(copy.get());
        ASSERT_TRUE(copy->equalsValue(value.get())) << "seed " << seed;
    }
}

} // namespace
