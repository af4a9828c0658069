// Copies whole trees: shared values, values that contain themselves, null variables.
#include "values/TreeCopy.h"
#include "meta/KEL_Manager_Impl.h"
#include "support/BoundedWalk.h"
#include "support/Kinds.h"
#include "support/Trees.h"
#include "values/UnfoldedSize.h"

#include <vector>

namespace {

using kel::unfoldedSize;
using kel::test::areEqual;
using kel::test::arrayOf;
using kel::test::asArray;
using kel::test::asManager;
using kel::test::asStruct;
using kel::test::at;
using kel::test::copyOf;
using kel::test::doublingChain;
using kel::test::failEachAllocation;
using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::HeldValue;
using kel::test::intOf;
using kel::test::listOf;
using kel::test::make;
using kel::test::managerOf;
using kel::test::metaOf;
using kel::test::referencesOf;
using kel::test::ring;
using kel::test::selfHeld;
using kel::test::structOf;
using kel::test::TakeApart;
using kel::test::valuesOf;
using Array = Held<KEL_Array_Impl>;
using Struct = Held<KEL_Struct_Impl>;

KEL* elementOf(KEL* array, int32_t index) {
    return dynamic_cast<KEL_Array&>(*array).getVar(index);
}

KEL* variableOf(KEL* structure, const char* name) {
    return dynamic_cast<const KEL_Struct&>(*structure).getVar(name);
}

// ---- Values in several places ------------------------------------------------------------------

TEST(TreeCopy, AValueThatStandsTwiceBecomesTwoValues) {
    for (const HeldValue& shared : {intOf(1), arrayOf(intOf(1)), managerOf(intOf(1))}) {
        const HeldValue source = arrayOf(shared, intOf(2), shared);
        const HeldValue copy(copyOf(*source));
        EXPECT_NE(at(copy, 0), at(copy, 2));
        EXPECT_EQ(referencesOf(*at(copy, 0)), 1);
        EXPECT_TRUE(areEqual(*source, *copy));
    }
}

TEST(TreeCopy, BothCopiesOfAValueCanBeChangedApart) {
    const HeldValue shared = arrayOf(intOf(1));
    const HeldValue copy(copyOf(*structOf("a", shared, "b", arrayOf(shared))));
    asArray(at(copy, "a")).setInt(0, int32_t{5});
    EXPECT_EQ(asArray(asArray(at(copy, "b")).getVar(0)).getInt(0), 1);
}

TEST(TreeCopy, TakingOverSharesNothingEither) {
    const HeldValue shared = arrayOf(intOf(1));
    const HeldValue source = arrayOf(shared, shared);
    const HeldValue target = arrayOf();
    target->assign(source.get());
    EXPECT_NE(at(target, 0), at(target, 1));
    const HeldValue converted = arrayOf();
    converted->assignConverted(source.get(), false);
    EXPECT_NE(at(converted, 0), at(converted, 1));
}

TEST(TreeCopy, AValueThatOthersHoldTooIsCopiedAsAnyOther) {
    const Array source = make<KEL_Array_Impl>();
    const auto held = make<KEL_Int_Impl>(1);
    source->addVar(held.get());
    const Held<KEL_Impl> copy(copyOf(*source));
    EXPECT_EQ(kel::test::referencesOf(*held), 2);
    EXPECT_EQ(kel::test::referencesOf(*elementOf(copy.get(), 0)), 1);
}

TEST(TreeCopy, ADoublingChainIsUnfolded) {
    const HeldValue chain(doublingChain(10));
    const HeldValue copy(copyOf(*chain));
    EXPECT_EQ(valuesOf(*copy).size(), (std::size_t{1} << 11) - 1);
    EXPECT_TRUE(areEqual(*chain, *copy));
}

TEST(TreeCopy, TheUnfoldedSizeCountsAValueInEachPlace) {
    const HeldValue pair = structOf("x", intOf(1), "nothing", nullptr);
    EXPECT_EQ(unfoldedSize(*intOf(1)), 1U);
    EXPECT_EQ(unfoldedSize(*pair), 3U);
    EXPECT_EQ(unfoldedSize(*arrayOf(pair, pair)), 7U);
    EXPECT_EQ(unfoldedSize(*arrayOf(managerOf(pair, arrayOf()))), 2U);
    EXPECT_EQ(unfoldedSize(*metaOf("list", listOf(arrayOf(pair), arrayOf(pair)))), 10U);
    EXPECT_EQ(unfoldedSize(*HeldValue(doublingChain(30))), uint64_t{kel::copyLimit});
    EXPECT_EQ(unfoldedSize(*HeldValue(doublingChain(1000))), uint64_t{1} << 62);
}

TEST(TreeCopy, TheUnfoldedSizeOfInnerStructsTakesLinearTime) {
    EXPECT_GT(unfoldedSize(*HeldValue(kel::test::chainOfInnerStructs(1000))), kel::copyLimit);
}

TEST(TreeCopy, MoreValuesThanTheLimitAreRefusedAtOnce) {
    const HeldValue chain(doublingChain(31));
    const HeldValue target = arrayOf(intOf(1));
    const FailingAllocation failing(200);
    EXPECT_THROW(chain->copy(), JOutOfMemoryException);
    EXPECT_THROW(target->assign(chain.get()), JOutOfMemoryException);
    EXPECT_FALSE(failing.hasFailed());
    EXPECT_EQ(asArray(target).getInt(0), 1);
}

TEST(TreeCopy, ATreeWithoutSharedContainersNeedsNoTable) {
    const auto allocationsOf = [](const HeldValue& source) {
        return failEachAllocation([&] { Held<KEL>(source->copy()).clear(); });
    };
    const HeldValue number = intOf(1);
    const HeldValue plain = arrayOf(intOf(1), intOf(1));
    const HeldValue sharesNumber = arrayOf(number, number);
    for (const HeldValue* source : {&plain, &sharesNumber}) {
        asArray(*source).addVar(arrayOf().get());
    }
    const std::size_t needed = allocationsOf(plain);
    EXPECT_EQ(allocationsOf(sharesNumber), needed);
    const HeldValue alsoHolds = arrayOf(plain);
    EXPECT_EQ(allocationsOf(plain), needed); // nothing inside refers back to the root
    const HeldValue inner = HeldValue(at(plain, 2));
    inner->addRef();
    EXPECT_GT(allocationsOf(plain), needed);
}

// ---- Values that contain themselves ------------------------------------------------------------

TEST(TreeCopy, AnArrayInItselfIsCopiedToAnArrayInItself) {
    const Array array = make<KEL_Array_Impl>();
    const TakeApart source(array.get());
    array->addVar(array.get());
    const Held<KEL_Impl> copy(copyOf(*array));
    const TakeApart copied(copy.get());
    EXPECT_NE(copy.get(), array.get());
    EXPECT_EQ(elementOf(copy.get(), 0), static_cast<KEL*>(copy.get()));
}

TEST(TreeCopy, AStructInItselfIsCopiedToAStructInItself) {
    const Struct structure = make<KEL_Struct_Impl>();
    const TakeApart source(structure.get());
    structure->addVar("me", structure.get());
    structure->putInt("x", 1);
    const Held<KEL_Impl> copy(copyOf(*structure));
    const TakeApart copied(copy.get());
    EXPECT_EQ(variableOf(copy.get(), "me"), static_cast<KEL*>(copy.get()));
    EXPECT_TRUE(areEqual(*structure, *copy));
}

TEST(TreeCopy, ValuesThatContainEachOtherAreCopiedWithThatShape) {
    const Array array = make<KEL_Array_Impl>();
    const Struct structure = make<KEL_Struct_Impl>();
    const TakeApart source(array.get());
    array->addVar(structure.get());
    structure->addVar("outer", array.get());
    const Held<KEL_Impl> copy(copyOf(*array));
    const TakeApart copied(copy.get());
    EXPECT_EQ(variableOf(elementOf(copy.get(), 0), "outer"), static_cast<KEL*>(copy.get()));
    EXPECT_EQ(valuesOf(*copy).size(), 2U);
}

TEST(TreeCopy, ACycleBelowTheRootIsCopiedOnce) {
    const Array outer = make<KEL_Array_Impl>();
    const std::vector<Array> arrays = ring(3);
    const TakeApart source(outer.get());
    outer->addVar(arrays[1].get());
    outer->addVar(arrays[2].get());
    const Held<KEL_Impl> copy(copyOf(*outer));
    const TakeApart copied(copy.get());
    EXPECT_EQ(valuesOf(*copy).size(), 4U);
    EXPECT_TRUE(areEqual(*outer, *copy));
}

TEST(TreeCopy, ACycleAnywhereKeepsAllSharing) {
    const HeldValue number = intOf(1);
    const HeldValue pair = arrayOf(number, number);
    const HeldValue cycle = arrayOf();
    const HeldValue source = arrayOf(number, pair, pair, cycle);
    asArray(cycle).addVar(cycle.get());
    const TakeApart apart(cycle.get());
    const HeldValue copy(copyOf(*source));
    const TakeApart apartToo(copy.get());
    EXPECT_EQ(at(copy, 1), at(copy, 2));
    EXPECT_EQ(elementOf(at(copy, 1), 0), at(copy, 0));
    EXPECT_EQ(valuesOf(*copy).size(), 4U);
}

TEST(TreeCopy, ACycleKeepsTheCopyFinite) {
    const HeldValue chain(doublingChain(100));
    const HeldValue source = arrayOf(chain);
    asArray(source).addVar(source.get());
    const TakeApart apart(source.get());
    const HeldValue copy(copyOf(*source));
    const TakeApart apartToo(copy.get());
    EXPECT_EQ(valuesOf(*copy).size(), 102U);
    EXPECT_FALSE(unfoldedSize(*source).has_value());
}

TEST(TreeCopy, AValueThatOnlyItselfHoldsIsCopied) {
    KEL_Array_Impl* array = selfHeld();
    const Held<KEL_Impl> copy(copyOf(*array));
    const TakeApart source(array);
    const TakeApart copied(copy.get());
    EXPECT_EQ(elementOf(copy.get(), 0), static_cast<KEL*>(copy.get()));
}

TEST(TreeCopy, AManagerInItselfIsCopiedAsAManagerOfTheSameElement) {
    const auto manager = make<KEL_Manager_Impl>();
    const TakeApart source(manager.get());
    manager->addKel(manager.get());
    const Held<KEL_Impl> copy(copyOf(*manager));
    JHashCode identity;
    const auto& copied = dynamic_cast<const KEL_Manager&>(*copy);
    EXPECT_EQ(copied.getKel(manager->getHashCode(identity)), manager.get());
}

TEST(TreeCopy, TakingOverAValueInItselfEqualsIt) {
    const Struct source = make<KEL_Struct_Impl>();
    const Struct target = make<KEL_Struct_Impl>();
    const TakeApart apart1(source.get());
    source->addVar("me", source.get());
    target->putInt("x", 1);
    target->assign(source.get());
    const TakeApart apart2(target.get());
    EXPECT_TRUE(areEqual(*target, *source));
}

TEST(TreeCopy, TakingOverAnArrayInItselfSharesNoStorage) {
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

TEST(TreeCopy, TakingOverAStructInItselfMakesTheTargetContainItself) {
    for (const bool checked : {false, true}) {
        const HeldValue source = checked ? metaOf() : structOf();
        const HeldValue target = checked ? metaOf() : structOf();
        asStruct(source).addVar("me", source.get());
        const TakeApart apart(source.get());
        target->assign(source.get());
        const TakeApart apartToo(target.get());
        EXPECT_EQ(at(target, "me"), target.get());
    }
}

TEST(TreeCopy, AnUnfinishedCopyOfACycleLeavesNothingBehind) {
    const HeldValue element = intOf(1);
    const HeldValue manager = managerOf(element); // its copies hold the element
    const HeldValue list = listOf(arrayOf(manager), arrayOf(manager));
    const HeldValue source = arrayOf(manager, metaOf("list", list));
    asArray(source).addVar(source.get());
    asArray(source).addVar(structOf("me", source, "m", manager).get());
    const TakeApart apart(source.get());
    const HeldValue target = arrayOf();
    const int32_t references = referencesOf(*element);
    const auto expectNothingLeft = [&] { ASSERT_EQ(referencesOf(*element), references); };
    const auto copy = [&] {
        const HeldValue copied(KEL_Impl::of(source->copy()));
        asArray(copied).removeAllVars();
    };
    const auto takeOver = [&] {
        target->assign(source.get());
        asArray(target).removeAllVars();
    };
    EXPECT_GT(failEachAllocation(copy, expectNothingLeft), 10U);
    EXPECT_GT(failEachAllocation(takeOver, expectNothingLeft), 10U);
}

// ---- Null variables ----------------------------------------------------------------------------

TEST(TreeCopy, TakingOverKeepsNullVariablesNull) {
    const HeldValue source = structOf("x", nullptr, "inner", structOf("y", nullptr));
    const HeldValue target = structOf();
    target->assign(source.get());
    EXPECT_TRUE(areEqual(*target, *source));
    const HeldValue converted = structOf();
    converted->assignConverted(source.get(), false);
    EXPECT_TRUE(areEqual(*converted, *source));
    EXPECT_EQ(at(target, "x"), nullptr);
    EXPECT_EQ(variableOf(at(target, "inner"), "y"), nullptr);
}

TEST(TreeCopy, NestedStructsFollowTheirOwnRuleForNullVariables) {
    const HeldValue plainInside(copyOf(*metaOf("plain", structOf("x", nullptr))));
    EXPECT_EQ(asStruct(at(plainInside, "plain")).getInt("x"), 0);
    EXPECT_NE(variableOf(at(plainInside, "plain"), "x"), nullptr);
    const HeldValue checkedInside(copyOf(*structOf("checked", metaOf("x", nullptr))));
    EXPECT_EQ(variableOf(at(checkedInside, "checked"), "x"), nullptr);
}

} // namespace
