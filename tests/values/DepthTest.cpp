// No operation uses the call stack for depth.
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/SmallStack.h"
#include "support/Trees.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"

#include <gtest/gtest.h>

namespace {

using kel::test::Held;
using kel::test::LifeProbe;
using kel::test::million;
using kel::test::runInSmallStack;

/// Builds, copies, compares and destroys a nesting in a thread with little stack.
void liveDeep(KEL_Impl* (*build)(int)) {
    runInSmallStack([build] {
        Held<KEL_Impl> value(build(million));
        Held<KEL> copy(value->copy());
        EXPECT_TRUE(copy->equalsValue(value.get()));
        copy.clear();
        value.clear();
    });
}

TEST(Depth, AMillionArraysAreBuiltCopiedComparedAndDestroyed) {
    liveDeep(kel::test::nestedArrays);
}

TEST(Depth, AMillionStructsAreBuiltCopiedComparedAndDestroyed) {
    liveDeep(kel::test::nestedStructs);
}

TEST(Depth, AMillionContainersOfAllKindsAreBuiltCopiedComparedAndDestroyed) {
    liveDeep(kel::test::nestedMixed);
}

TEST(Depth, ADifferenceAtTheBottomIsFound) {
    runInSmallStack([] {
        const Held<KEL_Impl> value(kel::test::nestedArrays(million / 4));
        const Held<KEL_Impl> other(kel::test::nestedArrays(million / 4 - 1));
        EXPECT_FALSE(value->equalsValue(other.get()));
        EXPECT_FALSE(other->equalsValue(value.get()));
    });
}

TEST(Depth, DestructionReachesTheBottom) {
    Held<KEL_Impl> value(kel::test::nestedMixed(million / 4));
    KEL_Impl* bottom = kel::test::valuesOf(*value).back();
    const LifeProbe probe(*bottom);
    runInSmallStack([&] { value.clear(); });
    EXPECT_FALSE(probe.isAlive());
}

TEST(Depth, ReplacingEmptyingAndAssigningDestroyDeepValuesToo) {
    runInSmallStack([] {
        const Held<KEL_Impl> holder(kel::test::nestedArrays(1));
        auto& array = dynamic_cast<KEL_Array&>(*holder);
        const auto addDeep = [&] {
            const Held<KEL_Impl> deep(kel::test::nestedMixed(million / 4));
            array.addVar(deep.get());
        };
        addDeep();
        array.setVar(array.getVar(0), 1);
        addDeep();
        array.removeVar(2);
        addDeep();
        array.removeAllVars();
        addDeep();
        const Held<KEL_Impl> other(kel::test::nestedArrays(3));
        array.assign(other.get());
        EXPECT_TRUE(array.equalsValue(other.get()));
    });
}

TEST(Depth, AFailedCopyIsDestroyedWithoutStack) {
    runInSmallStack([] {
        const Held<KEL_Impl> value(kel::test::nestedArrays(million / 4));
        const kel::test::FailingAllocation failing(million / 2, true);
        EXPECT_ANY_THROW(value->copy());
    });
}

} // namespace
