// Tests of a lack of memory that tests/atomicity does not contain: whole trees are built, copied
// and compared without a leak, and some operations need no memory.
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/RandomTree.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>

namespace {

using kel::test::failEachAllocation;
using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

/// Returns a struct of an array, a string, a block and an inner struct, owned by the caller.
KEL_Struct* buildDocument() {
    Held<KEL_Struct> document(new KEL_Struct_Impl());
    document->putString("name", "a text that fits no small buffer of any string class");
    document->putInt("a name that fits no small buffer of any string class", 1);
    const auto list = make<KEL_Array_Impl>();
    for (int i = 0; i < 7; ++i) {
        list->addInt(i);
        list->addString("element");
    }
    document->addVar("list", list.get());
    document->addVar("again", list.get());
    document->addVar("block", make<KEL_MemBlock_Impl>(100, nullptr).get());
    const auto manager = make<KEL_Manager_Impl>();
    manager->addKel(list.get());
    document->addVar("manager", manager.get());
    return document.detach();
}

/// A document and an equal one.
class OutOfMemoryTest : public ::testing::Test {
protected:
    KEL_Array& list() const {
        return dynamic_cast<KEL_Array&>(*std::as_const(*document).getVar("list"));
    }

    Held<KEL_Struct> document{buildDocument()};
    const Held<KEL_Struct> expected{buildDocument()};
    const Held<KEL_Int_Impl> value = make<KEL_Int_Impl>(7);
};

TEST_F(OutOfMemoryTest, BuildingLeavesNothingBehind) {
    EXPECT_GT(failEachAllocation([] { Held<KEL_Struct>(buildDocument()).clear(); }), 20U);
}

TEST_F(OutOfMemoryTest, CopyingLeavesNothingBehind) {
    failEachAllocation([&] { Held<KEL>(document->copy()).clear(); });
    EXPECT_TRUE(document->equalsValue(expected.get()));
}

TEST_F(OutOfMemoryTest, CopyingRandomTreesLeavesNothingBehind) {
    for (uint64_t seed = 0; seed < 20; ++seed) {
        const Held<KEL_Impl> tree(kel::test::randomTree(seed));
        failEachAllocation([&] { Held<KEL>(tree->copy()).clear(); });
    }
}

TEST_F(OutOfMemoryTest, ComparingLeavesNothingBehind) {
    EXPECT_GT(failEachAllocation([&] { document->equalsValue(expected.get()); }), 1U);
}

TEST_F(OutOfMemoryTest, ConvertingIntoAStringSaysOutOfMemory) {
    const FailingAllocation failing(0);
    const auto convert = [&] { list().setVarValue(1, list().getVar(2)); };
    EXPECT_EQ(kel::test::thrownMessage<KELException>(convert),
              "(another JException: Out of memory!)");
}

TEST_F(OutOfMemoryTest, SettingAVariableNeedsNoMemory) {
    const FailingAllocation failing(0, true);
    document->setVar("name", value.get());
    document->removeVar("name");
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, ReplacingInAnIndexListNeedsNoMemory) {
    const auto key = make<KEL_String_Impl>("k");
    const auto pairs = make<KEL_IndexList_Impl>();
    pairs->addNamedInt("a", int32_t{1});
    pairs->addNamedInt("b", int32_t{2});
    const FailingAllocation failing(0, true);
    pairs->setItemAt(0, value.get());
    pairs->setKeyOfItem(value.get(), key.get());
    pairs->swapPairs(0, 1);
    pairs->removeKey(key.get());
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, TheFirstObserverIsRegisteredOrNot) {
    Watcher other;
    const auto observed = make<KEL_Int_Impl>(1);
    failEachAllocation([&] { observed->addObserver(&other); },
                       [&] {
                           EXPECT_LE(observed->countObservers(), 1);
                           observed->removeObserver(&other);
                           EXPECT_EQ(observed->countObservers(), 0);
                           observed->deleteObservers();
                       });
}

TEST_F(OutOfMemoryTest, NotifyingNeedsNoMemory) {
    const auto observed = make<KEL_Int_Impl>(1);
    Watcher watcher;
    watcher.told.reserve(1);
    observed->addObserver(&watcher);
    const FailingAllocation failing(0, true);
    observed->setValue(2);
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, DestroyingNeedsNoMemory) {
    Held<KEL_Impl> tree(kel::test::nestedMixed(1000));
    const FailingAllocation failing(0, true);
    tree.clear();
    document.clear();
    EXPECT_FALSE(failing.hasFailed());
}

} // namespace
