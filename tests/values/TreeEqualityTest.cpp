// Compares whole trees that share parts or contain themselves.
#include "support/BoundedWalk.h"
#include "support/Kinds.h"
#include "support/RandomTree.h"
#include "support/Trees.h"

#include <set>
#include <utility>
#include <vector>

namespace {

using kel::test::areEqual;
using kel::test::copyOf;
using kel::test::Held;
using kel::test::HeldValue;
using kel::test::make;
using kel::test::RandomNumbers;
using kel::test::ring;
using kel::test::selfHeld;
using kel::test::TakeApart;
using kel::test::valuesOf;
using Array = Held<KEL_Array_Impl>;
using Struct = Held<KEL_Struct_Impl>;

TEST(TreeEquality, ValuesThatOnlyThemselvesHoldAreCompared) {
    KEL_Array_Impl* first = selfHeld();
    KEL_Array_Impl* second = selfHeld();
    EXPECT_TRUE(areEqual(*first, *second));
    second->addInt(1);
    EXPECT_FALSE(areEqual(*first, *second));
    const TakeApart apart1(first);
    const TakeApart apart2(second);
}

TEST(TreeEquality, ValuesThatContainThemselvesAreEqualWhenNoDifferenceCanBeFound) {
    const std::vector<Array> one = ring(1);
    const std::vector<Array> same = ring(1);
    const TakeApart first(one[0].get());
    const TakeApart second(same[0].get());
    EXPECT_TRUE(areEqual(*one[0], *same[0]));
    same[0]->addInt(1);
    EXPECT_FALSE(areEqual(*one[0], *same[0]));
}

TEST(TreeEquality, CyclesOfDifferentLengthsAreEqualWhenNoDifferenceCanBeFound) {
    const std::vector<Array> two = ring(2);
    const std::vector<Array> three = ring(3);
    const TakeApart first(two[0].get());
    const TakeApart second(three[0].get());
    EXPECT_TRUE(areEqual(*two[0], *three[0]));
    three[2]->addInt(1);
    EXPECT_FALSE(areEqual(*two[0], *three[0]));
}

TEST(TreeEquality, CyclesAreComparedWhereverTheirOneOtherHolderIs) {
    // The test holds the compared array of the first cycle, and the other array of the second.
    std::vector<Array> first = ring(2);
    std::vector<Array> second = ring(2);
    const KEL_Array* compared = second[0].get();
    const TakeApart apart1(first[0].get());
    const TakeApart apart2(second[1].get());
    first[1].clear();
    second[0].clear();
    EXPECT_TRUE(areEqual(*first[0], *compared));
}

TEST(TreeEquality, ATreeIsComparedWithACycleThatOnlyItselfHolds) {
    Array unrolled = make<KEL_Array_Impl>();
    for (int i = 0; i < 3; ++i) {
        Array outer = make<KEL_Array_Impl>();
        outer->addVar(unrolled.get());
        unrolled = std::move(outer);
    }
    KEL_Array_Impl* cycle = selfHeld();
    const bool isEqual = areEqual(*unrolled, *cycle) || areEqual(*cycle, *unrolled);
    const TakeApart apart(cycle); // from here on, the test holds it too
    EXPECT_FALSE(isEqual);
}

TEST(TreeEquality, ATreeIsComparedWithADescriptorWhoseInnerStructIsShared) {
    const auto holding = [](const HeldValue& value) { return kel::test::arrayOf(value); };
    const auto descriptor = [] { return kel::test::descriptorOf("min", kel::test::intOf(1)); };
    const HeldValue array = holding(descriptor());
    HeldValue other = descriptor();
    auto* structure = dynamic_cast<MetaKelVarDescriptor&>(*other).getStruct();
    const auto inner = JPointer<KEL_Impl>::share(KEL_Impl::of(structure));
    const HeldValue same = holding(other);
    other = HeldValue();
    EXPECT_TRUE(areEqual(*array, *same));
}

TEST(TreeEquality, ACycleEqualsItsUnrolledSelfOnlyAsFarAsThatGoes) {
    const std::vector<Array> cycle = ring(1);
    const TakeApart apart(cycle[0].get());
    Array unrolled = make<KEL_Array_Impl>();
    for (int i = 0; i < 10; ++i) {
        Array outer = make<KEL_Array_Impl>();
        outer->addVar(unrolled.get());
        unrolled = std::move(outer);
    }
    EXPECT_FALSE(areEqual(*cycle[0], *unrolled));
}

TEST(TreeEquality, StructsInACycleAreCompared) {
    const auto selfNamed = [](const char* name) {
        Struct structure = make<KEL_Struct_Impl>();
        structure->addVar(name, structure.get());
        return structure;
    };
    const Struct first = selfNamed("me");
    const Struct second = selfNamed("me");
    const Struct third = selfNamed("you");
    const TakeApart apart1(first.get());
    const TakeApart apart2(second.get());
    const TakeApart apart3(third.get());
    EXPECT_TRUE(areEqual(*first, *second));
    EXPECT_FALSE(areEqual(*first, *third));
}

TEST(TreeEquality, DoublingChainsAreComparedInLinearTime) {
    const Held<KEL_Impl> chain(kel::test::doublingChain(40));
    const Held<KEL_Impl> same(kel::test::doublingChain(40));
    const Held<KEL_Impl> other(kel::test::doublingChain(40));
    dynamic_cast<KEL_Int&>(*valuesOf(*other).back()).setValue(8);
    EXPECT_TRUE(areEqual(*chain, *same));
    EXPECT_FALSE(areEqual(*chain, *other));
}

TEST(TreeEquality, ChainsOfInnerStructsAreComparedInLinearTime) {
    const HeldValue chain(kel::test::chainOfInnerStructs(40));
    const HeldValue same(kel::test::chainOfInnerStructs(40));
    EXPECT_TRUE(areEqual(*chain, *same));
}

/// Returns a chain of levels. The array of each level holds two inner arrays, which are one object
/// or two. Both inner arrays hold the array of the next level, so that array is shared if they are
/// two objects. The array of the innermost level is empty.
Array doublingAtTurns(int levels, bool pairIsShared) {
    Array level = make<KEL_Array_Impl>();
    for (int i = 0; i < levels; ++i) {
        const Array left = make<KEL_Array_Impl>();
        const Array right = make<KEL_Array_Impl>();
        left->addVar(level.get());
        right->addVar(level.get());
        level = make<KEL_Array_Impl>();
        level->addVar(left.get());
        level->addVar(pairIsShared ? left.get() : right.get());
    }
    return level;
}

TEST(TreeEquality, ChainsThatShareAtDifferentLevelsAreComparedInLinearTime) {
    const Array first = doublingAtTurns(40, true);
    const Array second = doublingAtTurns(40, false);
    EXPECT_TRUE(areEqual(*first, *second));
}

TEST(TreeEquality, ComparingASharedValueWithItselfLooksNoFurther) {
    const Held<KEL_Impl> deep(kel::test::nestedArrays(1000));
    const Array first = make<KEL_Array_Impl>();
    const Array second = make<KEL_Array_Impl>();
    first->addVar(deep.get());
    second->addVar(deep.get());
    EXPECT_TRUE(areEqual(*first, *second));
}
// ---- Cost --------------------------------------------------------------------------------------

constexpr std::size_t fewMegabytes = 8 << 20; // for both directions of the comparison

TEST(TreeEquality, RingsWithoutACommonLengthNeedFewMegabytes) {
    const std::vector<Array> shorter = ring(4000);
    const std::vector<Array> longer = ring(4001);
    const TakeApart apart(shorter[0].get());
    const TakeApart apartToo(longer[0].get());
    EXPECT_TRUE(areEqual(*shorter[0], *longer[0], fewMegabytes));
    longer[4000]->addInt(1);
    EXPECT_FALSE(areEqual(*shorter[0], *longer[0], fewMegabytes));
}

/// Returns an array that holds the first of several levels. Each level has the same number of
/// arrays, and each array holds two of the next level, at the given distance.
Array grid(std::size_t size, std::size_t apart) {
    std::vector<Array> below;
    for (std::size_t level = 0; level < size; ++level) {
        std::vector<Array> arrays;
        for (std::size_t i = 0; i < size; ++i) {
            arrays.push_back(make<KEL_Array_Impl>());
            if (!below.empty()) {
                arrays[i]->addVar(below[i].get());
                arrays[i]->addVar(below[(i + apart) % size].get());
            }
        }
        below = std::move(arrays);
    }
    Array top = make<KEL_Array_Impl>();
    for (const Array& array : below) {
        top->addVar(array.get());
    }
    return top;
}

TEST(TreeEquality, GraphsThatShareDifferentlyNeedFewMegabytes) {
    const Array first = grid(127, 1); // 16,129 arrays
    const Array second = grid(127, 5);
    EXPECT_TRUE(areEqual(*first, *second, fewMegabytes));
}

TEST(TreeEquality, TreesWithoutSharingNeedNoTable) {
    const auto wide = [] {
        Array array = make<KEL_Array_Impl>();
        for (int i = 0; i < 10000; ++i) {
            array->addVar(kel::test::arrayOf(kel::test::structOf()).get());
        }
        return array;
    };
    const Array first = wide();
    const Array second = wide();
    const HeldValue alsoHolds = kel::test::arrayOf(first.get(), second.get());
    EXPECT_TRUE(areEqual(*first, *second, 2048));
}

// ---- Against the definition --------------------------------------------------------------------

/// Returns a few arrays. Each holds one or two of them.
std::vector<Array> randomGraph(RandomNumbers& numbers) {
    std::vector<Array> arrays;
    for (int i = 1 + numbers.below(6); i > 0; --i) {
        arrays.push_back(make<KEL_Array_Impl>());
    }
    for (const Array& array : arrays) {
        for (int i = 1 + (numbers.once(4) ? 1 : 0); i > 0; --i) {
            array->addVar(arrays[static_cast<std::size_t>(numbers.below(arrays.size()))].get());
        }
    }
    return arrays;
}

/// Compares every pair of arrays that two paths of the same indices lead to.
bool noDifferenceCanBeFound(KEL_Array& a, KEL_Array& b) {
    std::vector<std::pair<KEL_Array*, KEL_Array*>> open{{&a, &b}};
    std::set<std::pair<KEL_Array*, KEL_Array*>> known{open[0]};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (x->getCount() != y->getCount()) {
            return false;
        }
        for (int32_t i = 0; i < x->getCount(); ++i) {
            const std::pair next(dynamic_cast<KEL_Array*>(x->getVar(i)),
                                 dynamic_cast<KEL_Array*>(y->getVar(i)));
            if (known.insert(next).second) {
                open.push_back(next);
            }
        }
    }
    return true;
}

TEST(TreeEquality, RandomGraphsAreEqualWhenNoDifferenceCanBeFound) {
    RandomNumbers numbers(1);
    int equal = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::vector<Array> first = randomGraph(numbers);
        const std::vector<Array> second = randomGraph(numbers);
        const bool expected = noDifferenceCanBeFound(*first[0], *second[0]);
        ASSERT_EQ(areEqual(*first[0], *second[0]), expected) << i;
        equal += expected ? 1 : 0;
        for (const std::vector<Array>* arrays : {&first, &second}) {
            for (const Array& array : *arrays) {
                array->removeAllVars();
            }
        }
    }
    EXPECT_GT(equal, 500);
    EXPECT_LT(equal, 4500);
}

} // namespace
