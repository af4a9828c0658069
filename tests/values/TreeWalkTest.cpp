// Copying and comparing values that share parts or contain themselves.
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Trees.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using kel::test::AllocationBudget;
using kel::test::Held;
using kel::test::make;
using kel::test::TakeApart;
using kel::test::valuesOf;
using Array = Held<KEL_Array_Impl>;
using Struct = Held<KEL_Struct_Impl>;

constexpr std::size_t walkBudget = 16 << 20; // far more than any walk below needs

/// The copy, owned by the caller. A walk that does not end runs out of memory instead of time.
KEL_Impl& copyOf(const KEL& value) {
    const AllocationBudget budget(walkBudget);
    return *KEL_Impl::of(value.copy());
}

/// Equality of contents, asked both ways.
bool areEqual(const KEL& a, const KEL& b) {
    const AllocationBudget budget(walkBudget);
    const bool equal = a.equalsValue(&b);
    EXPECT_EQ(b.equalsValue(&a), equal);
    return equal;
}

KEL* elementOf(KEL* array, int32_t index) {
    return dynamic_cast<KEL_Array&>(*array).getVar(index);
}

KEL* variableOf(KEL* structure, const char* name) {
    return dynamic_cast<const KEL_Struct&>(*structure).getVar(name);
}

/// So many arrays, each the only element of the one before, the first that of the last.
std::vector<Array> ring(std::size_t length) {
    std::vector<Array> arrays;
    for (std::size_t i = 0; i < length; ++i) {
        arrays.push_back(make<KEL_Array_Impl>());
    }
    for (std::size_t i = 0; i < length; ++i) {
        arrays[i]->addVar(arrays[(i + 1) % length].get());
    }
    return arrays;
}

TEST(TreeWalk, WhatIsSharedInTheSourceIsSharedAlikeInTheCopy) {
    const Array source = make<KEL_Array_Impl>();
    const auto shared = make<KEL_Int_Impl>(1);
    source->addVar(shared.get());
    source->addInt(2);
    source->addVar(shared.get());
    const Held<KEL_Impl> copy(&copyOf(*source));
    EXPECT_EQ(elementOf(copy.get(), 0), elementOf(copy.get(), 2));
    EXPECT_NE(elementOf(copy.get(), 0), static_cast<KEL*>(shared.get()));
    EXPECT_EQ(kel::test::referencesOf(*elementOf(copy.get(), 0)), 2);
}

TEST(TreeWalk, AValueThatOthersHoldTooIsCopiedAsAnyOther) {
    const Array source = make<KEL_Array_Impl>();
    const auto held = make<KEL_Int_Impl>(1);
    source->addVar(held.get());
    const Held<KEL_Impl> copy(&copyOf(*source));
    EXPECT_EQ(kel::test::referencesOf(*held), 2);
    EXPECT_EQ(kel::test::referencesOf(*elementOf(copy.get(), 0)), 1);
}

TEST(TreeWalk, AnArrayInItselfIsCopiedToAnArrayInItself) {
    const Array array = make<KEL_Array_Impl>();
    const TakeApart source(array.get());
    array->addVar(array.get());
    const Held<KEL_Impl> copy(&copyOf(*array));
    const TakeApart copied(copy.get());
    EXPECT_NE(copy.get(), array.get());
    EXPECT_EQ(elementOf(copy.get(), 0), static_cast<KEL*>(copy.get()));
}

TEST(TreeWalk, AStructInItselfIsCopiedToAStructInItself) {
    const Struct structure = make<KEL_Struct_Impl>();
    const TakeApart source(structure.get());
    structure->addVar("me", structure.get());
    structure->putInt("x", 1);
    const Held<KEL_Impl> copy(&copyOf(*structure));
    const TakeApart copied(copy.get());
    EXPECT_EQ(variableOf(copy.get(), "me"), static_cast<KEL*>(copy.get()));
    EXPECT_TRUE(areEqual(*structure, *copy));
}

TEST(TreeWalk, ValuesThatContainEachOtherAreCopiedWithThatShape) {
    const Array array = make<KEL_Array_Impl>();
    const Struct structure = make<KEL_Struct_Impl>();
    const TakeApart source(array.get());
    array->addVar(structure.get());
    structure->addVar("outer", array.get());
    const Held<KEL_Impl> copy(&copyOf(*array));
    const TakeApart copied(copy.get());
    EXPECT_EQ(variableOf(elementOf(copy.get(), 0), "outer"), static_cast<KEL*>(copy.get()));
    EXPECT_EQ(valuesOf(*copy).size(), 2U);
}

TEST(TreeWalk, ACycleThatIsMetOnTheWayIsCopiedOnce) {
    const Array outer = make<KEL_Array_Impl>();
    const std::vector<Array> arrays = ring(3);
    const TakeApart source(outer.get());
    outer->addVar(arrays[1].get());
    outer->addVar(arrays[2].get());
    const Held<KEL_Impl> copy(&copyOf(*outer));
    const TakeApart copied(copy.get());
    EXPECT_EQ(valuesOf(*copy).size(), 4U);
    EXPECT_TRUE(areEqual(*outer, *copy));
}

/// An array in itself that nobody else holds, borrowed.
KEL_Array_Impl* selfHeld() {
    auto* array = new KEL_Array_Impl();
    array->addVar(array);
    array->release();
    return array;
}

TEST(TreeWalk, AValueThatOnlyItselfHoldsIsCopied) {
    KEL_Array_Impl* array = selfHeld();
    const Held<KEL_Impl> copy(&copyOf(*array));
    const TakeApart source(array);
    const TakeApart copied(copy.get());
    EXPECT_EQ(elementOf(copy.get(), 0), static_cast<KEL*>(copy.get()));
}

TEST(TreeWalk, ValuesThatOnlyThemselvesHoldAreCompared) {
    KEL_Array_Impl* first = selfHeld();
    KEL_Array_Impl* second = selfHeld();
    EXPECT_TRUE(areEqual(*first, *second));
    second->addInt(1);
    EXPECT_FALSE(areEqual(*first, *second));
    const TakeApart apart1(first);
    const TakeApart apart2(second);
}

TEST(TreeWalk, AManagerInItselfIsCopiedAsAManagerOfTheSameElement) {
    const auto manager = make<KEL_Manager_Impl>();
    const TakeApart source(manager.get());
    manager->addKel(manager.get());
    const Held<KEL_Impl> copy(&copyOf(*manager));
    JHashCode identity;
    const auto& copied = dynamic_cast<const KEL_Manager&>(*copy);
    EXPECT_EQ(copied.getKel(manager->getHashCode(identity)), manager.get());
}

TEST(TreeWalk, ValuesThatContainThemselvesAreEqualWhenNoDifferenceCanBeFound) {
    const std::vector<Array> one = ring(1);
    const std::vector<Array> same = ring(1);
    const TakeApart first(one[0].get());
    const TakeApart second(same[0].get());
    EXPECT_TRUE(areEqual(*one[0], *same[0]));
    same[0]->addInt(1);
    EXPECT_FALSE(areEqual(*one[0], *same[0]));
}

TEST(TreeWalk, CyclesOfDifferentLengthsAreEqualWhenNoDifferenceCanBeFound) {
    const std::vector<Array> two = ring(2);
    const std::vector<Array> three = ring(3);
    const TakeApart first(two[0].get());
    const TakeApart second(three[0].get());
    EXPECT_TRUE(areEqual(*two[0], *three[0]));
    three[2]->addInt(1);
    EXPECT_FALSE(areEqual(*two[0], *three[0]));
}

TEST(TreeWalk, CyclesAreComparedWhereverTheirOneOtherHolderIs) {
    // Of the first cycle the test holds the array that is compared, of the second the other one.
    std::vector<Array> first = ring(2);
    std::vector<Array> second = ring(2);
    const KEL_Array* compared = second[0].get();
    const TakeApart apart1(first[0].get());
    const TakeApart apart2(second[1].get());
    first[1].clear();
    second[0].clear();
    EXPECT_TRUE(areEqual(*first[0], *compared));
}

TEST(TreeWalk, ACycleEqualsItsUnrolledSelfOnlyAsFarAsThatGoes) {
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

TEST(TreeWalk, StructsInACycleAreCompared) {
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

TEST(TreeWalk, ADoublingChainIsCopiedInLinearTime) {
    const Held<KEL_Impl> chain(kel::test::doublingChain(40));
    const Held<KEL_Impl> copy(&copyOf(*chain));
    EXPECT_EQ(valuesOf(*copy).size(), 41U);
}

TEST(TreeWalk, DoublingChainsAreComparedInLinearTime) {
    const Held<KEL_Impl> chain(kel::test::doublingChain(40));
    const Held<KEL_Impl> same(kel::test::doublingChain(40));
    const Held<KEL_Impl> copy(&copyOf(*chain));
    EXPECT_TRUE(areEqual(*chain, *same));
    EXPECT_TRUE(areEqual(*chain, *copy));
    dynamic_cast<KEL_Int&>(*valuesOf(*copy).back()).setValue(8);
    EXPECT_FALSE(areEqual(*chain, *copy));
}

/// Levels of an array that holds two arrays, which are one or two objects; the innermost level
/// holds nothing. The array of the next level is held by both, so it is shared where they are two.
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

TEST(TreeWalk, ChainsThatShareAtDifferentLevelsAreComparedInLinearTime) {
    const Array first = doublingAtTurns(40, true);
    const Array second = doublingAtTurns(40, false);
    EXPECT_TRUE(areEqual(*first, *second));
}

TEST(TreeWalk, TakingOverAValueInItselfEqualsIt) {
    const Struct source = make<KEL_Struct_Impl>();
    const Struct target = make<KEL_Struct_Impl>();
    const TakeApart apart1(source.get());
    source->addVar("me", source.get());
    target->putInt("x", 1);
    target->assign(source.get());
    const TakeApart apart2(target.get());
    EXPECT_TRUE(areEqual(*target, *source));
}

TEST(TreeWalk, TakingOverAnArrayInItselfSharesNoStorage) {
    const Array source = make<KEL_Array_Impl>();
    const Array target = make<KEL_Array_Impl>();
    const TakeApart apart1(source.get());
    source->addVar(source.get());
    target->assign(source.get());
    const TakeApart apart2(target.get());
    EXPECT_TRUE(areEqual(*target, *source));
    KEL* inner = elementOf(target.get(), 0);
    target->addInt(1);
    if (inner != static_cast<KEL*>(target.get())) {
        EXPECT_EQ(dynamic_cast<KEL_Array&>(*inner).getCount(), 1);
    }
}

TEST(TreeWalk, ComparingASharedValueWithItselfLooksNoFurther) {
    const Held<KEL_Impl> deep(kel::test::nestedArrays(1000));
    const Array first = make<KEL_Array_Impl>();
    const Array second = make<KEL_Array_Impl>();
    first->addVar(deep.get());
    second->addVar(deep.get());
    EXPECT_TRUE(areEqual(*first, *second));
}

} // namespace
