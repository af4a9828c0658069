// Observers that release a container while an operation changes it.
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>

namespace {

using kel::test::Held;
using kel::test::LifeProbe;
using kel::test::make;
using kel::test::Watcher;

/// Every change of a container by an operation on it, with an observer that releases the last
/// reference to the container at its n-th call. The container is destroyed after the operation, not
/// inside it.
template <class Container> class Released : public ::testing::Test {
protected:
    template <class Change> void releaseAtCall(int n, const Change& action) {
        Container* raw = container.get();
        const LifeProbe probe(*raw);
        int calls = 0;
        Watcher watcher([&] {
            if (++calls == n) {
                container.clear();
            }
        });
        raw->addObserver(&watcher);
        action(*raw);
        EXPECT_GE(calls, n);
        EXPECT_FALSE(probe.isAlive());
    }

    Held<Container> container = make<Container>();
    Held<KEL_Int_Impl> value = make<KEL_Int_Impl>(0);
};

class ReleasedArray : public Released<KEL_Array_Impl> {
protected:
    ReleasedArray() { container->addInt(1); }
};

TEST_F(ReleasedArray, ByAddVar) {
    releaseAtCall(1, [&](KEL_Array& array) { EXPECT_EQ(array.addVar(value.get()), 1); });
}

TEST_F(ReleasedArray, ByAnAdder) {
    releaseAtCall(1, [](KEL_Array& array) { EXPECT_EQ(array.addInt(2), 1); });
}

TEST_F(ReleasedArray, ByAddVars) {
    const auto other = make<KEL_Array_Impl>();
    other->addInt(1);
    other->addInt(2);
    releaseAtCall(1, [&](KEL_Array& array) { EXPECT_EQ(array.addVars(other.get()), 0); });
}

TEST_F(ReleasedArray, TheArrayThatAddVarsTakesFrom) {
    auto other = make<KEL_Array_Impl>();
    other->addInt(1);
    other->addInt(2);
    const LifeProbe probe(*other);
    Watcher watcher([&] { other.clear(); });
    container->addObserver(&watcher);
    container->addVars(other.get());
    EXPECT_EQ(container->getCount(), 3);
    EXPECT_FALSE(probe.isAlive());
}

TEST_F(ReleasedArray, ByInsertVarSetVarSwapVarsRemoveVarAndRemoveAllVars) {
    const auto change = [&](int operation, KEL_Array& array) {
        switch (operation) {
        case 0:
            return array.insertVar(value.get(), 0);
        case 1:
            return array.setVar(value.get(), 0);
        case 2:
            return array.swapVars(0, 0);
        case 3:
            return array.removeVar(0);
        default:
            return array.removeAllVars();
        }
    };
    for (int operation = 0; operation < 5; ++operation) {
        container = make<KEL_Array_Impl>();
        container->addInt(1);
        releaseAtCall(1, [&](KEL_Array& array) { change(operation, array); });
    }
}

TEST_F(ReleasedArray, ByAssign) {
    const auto other = make<KEL_Array_Impl>();
    releaseAtCall(1, [&](KEL_Array& array) { array.assign(other.get()); });
}

class ReleasedStruct : public Released<KEL_Struct_Impl> {
protected:
    ReleasedStruct() { container->putInt("x", 1); }
};

TEST_F(ReleasedStruct, ByANewVariable) {
    releaseAtCall(1, [](KEL_Struct& structure) { structure.putInt("y", 2); });
}

TEST_F(ReleasedStruct, ByTheRemovalInsideAReplacement) {
    releaseAtCall(1, [](KEL_Struct& structure) { structure.putInt("x", 2); });
}

TEST_F(ReleasedStruct, ByTheAdditionInsideAReplacement) {
    releaseAtCall(2, [](KEL_Struct& structure) { structure.putInt("x", 2); });
}

TEST_F(ReleasedStruct, ByAddVars) {
    const auto other = make<KEL_Struct_Impl>();
    other->putInt("y", 1);
    other->putInt("z", 2);
    releaseAtCall(1, [&](KEL_Struct& structure) { structure.addVars(other.get()); });
}

TEST_F(ReleasedStruct, TheStructThatAddVarsTakesFrom) {
    auto other = make<KEL_Struct_Impl>();
    other->putInt("y", 1);
    other->putInt("z", 2);
    const LifeProbe probe(*other);
    Watcher watcher([&] { other.clear(); });
    container->addObserver(&watcher);
    container->addVars(other.get());
    EXPECT_EQ(container->getCount(), 3);
    EXPECT_FALSE(probe.isAlive());
}

TEST_F(ReleasedStruct, ByRemoveVar) {
    releaseAtCall(1, [](KEL_Struct& structure) { structure.removeVar("x"); });
}

TEST_F(ReleasedStruct, ByRemoveAllVars) {
    releaseAtCall(1, [](KEL_Struct& structure) { structure.removeAllVars(); });
}

TEST_F(ReleasedStruct, ByRenameVar) {
    releaseAtCall(1, [](KEL_Struct& structure) { structure.renameVar("x", "y"); });
}

class ReleasedManager : public Released<KEL_Manager_Impl> {};

TEST_F(ReleasedManager, ByAddKel) {
    releaseAtCall(1, [&](KEL_Manager& manager) { manager.addKel(value.get()); });
}

TEST_F(ReleasedManager, ByRemoveKel) {
    JHashCode identity;
    value->getHashCode(identity);
    container->addKel(value.get());
    releaseAtCall(1, [&](KEL_Manager& manager) { manager.removeKel(identity); });
}

} // namespace
