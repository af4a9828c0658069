// Keyed lists, selectors and descriptors whose allocations fail one by one.
#include "support/AllocationFailure.h"
#include "support/IndexListFixture.h"

#include <kel/kel.h>

using namespace kel::test;

namespace {

/// A watched list of five pairs, which is all that there is room for, and a pair to add.
class KindsOutOfMemory : public ::testing::Test {
protected:
    KindsOutOfMemory() {
        watcher.told.reserve(100); // the observer is not what fails
        renew();
    }

    void renew() {
        keys = arrayOf(a, arrayOf(intOf(0)), intOf(3), intOf(4), arrayOf(intOf(0)));
        items = arrayOf(intOf(1), intOf(2), intOf(3), intOf(4), intOf(5));
        list = listOf(keys, items);
        watcher.told.clear();
        for (const HeldValue& watched : {std::cref(keys), std::cref(items), std::cref(list)}) {
            watch(watched.get(), watcher);
        }
    }

    /// Fails each allocation of a change. Wherever it failed, there are five pairs and nobody was
    /// told.
    template <class Change> void expectAllOrNothing(const Change& change) {
        bool done = false;
        const auto changeAndNote = [&] {
            change(asList(list));
            done = true;
        };
        EXPECT_GT(failEachAllocation(changeAndNote,
                                     [&] {
                                         if (!done) {
                                             EXPECT_EQ(asArray(keys).getCount(), 5);
                                             EXPECT_EQ(asArray(items).getCount(), 5);
                                             EXPECT_EQ(watcher.calls(), 0);
                                         }
                                         EXPECT_EQ(asArray(keys).getCount(),
                                                   asArray(items).getCount());
                                         done = false;
                                         renew();
                                     }),
                  0U);
    }

    HeldValue a = stringOf("a"), x = stringOf("x"), six = intOf(6);
    HeldValue keys, items, list;
    Watcher watcher;
};

TEST_F(KindsOutOfMemory, AddingAPairAddsItToBothOrDoesNot) {
    expectAllOrNothing([&](KEL_IndexList& pairs) { pairs.addPair(x.get(), six.get()); });
    expectAllOrNothing([&](KEL_IndexList& pairs) { pairs.insertPair(x.get(), six.get(), 2); });
    expectAllOrNothing([&](KEL_IndexList& pairs) { pairs.addKeyString("x", six.get()); });
    expectAllOrNothing([&](KEL_IndexList& pairs) { pairs.addItemString(x.get(), "text"); });
    expectAllOrNothing([&](KEL_IndexList& pairs) { pairs.addNamedInt("x", int32_t{6}); });
}

TEST_F(KindsOutOfMemory, RemovingByValueRemovesAllOrNone) {
    const auto equalKey = arrayOf(intOf(0)); // comparing containers needs memory
    expectAllOrNothing([&](KEL_IndexList& pairs) {
        pairs.removeKeyValue(equalKey.get());
        EXPECT_EQ(pairs.getCount(), 3);
    });
}

TEST_F(KindsOutOfMemory, ReplacingNeedsNoMemory) {
    const FailingAllocation failing(0, true);
    asList(list).setItemAt(0, six.get());
    asList(list).setKeyOfItem(six.get(), x.get());
    asList(list).swapPairs(0, 1);
    asList(list).removeKey(x.get());
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(KindsOutOfMemory, CopyingAListLeavesNothingBehind) {
    EXPECT_GT(failEachAllocation([&] { Held<KEL>(list->copy()).clear(); }), 10U);
}

TEST_F(KindsOutOfMemory, AListOfItemsHasTheirTextsAsKeysOrIsNull) {
    std::size_t nulls = 0;
    Held<KEL_IndexList> made;
    const auto create = [&] {
        made = Held<KEL_IndexList>(CreateKELIndexList(&asArray(items)));
        nulls += made ? 0 : 1;
    };
    EXPECT_GT(failEachAllocation(create,
                                 [&] {
                                     if (made) {
                                         EXPECT_EQ(pairsOf(*made), "1=1 2=2 3=3 4=4 5=5");
                                     }
                                 }),
              10U);
    EXPECT_GT(nulls, 10U);
}

TEST_F(KindsOutOfMemory, SelectingSelectsOrDoesNot) {
    const Held<KEL_MultiSelector> selector(CreateKELMultiSelector(&asList(list)));
    for (int32_t i = 1; i < 5; ++i) {
        selector->selectKey(asArray(keys).getVar(i));
    }
    selector->getSelectedKeys()->addInt(1); // the place is full now
    watch(selector.get(), watcher);
    bool done = false;
    int failures = 0;
    failEachAllocation(
        [&] {
            selector->selectKey(a.get());
            done = true;
        },
        [&] {
            EXPECT_EQ(selector->isKeySelected(a.get()), done);
            EXPECT_EQ(watcher.calls(), done ? 1 : 0);
            failures += done ? 0 : 1;
            selector->deselectKey(a.get());
            watcher.told.clear();
            done = false;
        });
    EXPECT_EQ(failures, 1);
}

TEST_F(KindsOutOfMemory, CopyingASelectorLeavesNothingBehind) {
    const Held<KEL_Selector> one(CreateKELSelector(&asList(list)));
    const Held<KEL_MultiSelector> many(CreateKELMultiSelector(&asList(list)));
    one->selectKey(a.get());
    for (int32_t i = 0; i < 5; ++i) {
        many->selectKey(asArray(keys).getVar(i));
    }
    EXPECT_GT(failEachAllocation([&] { Held<KEL>(one->copy()).clear(); }), 0U);
    EXPECT_GT(failEachAllocation([&] { Held<KEL>(many->copy()).clear(); }), 0U);
}

TEST_F(KindsOutOfMemory, FactoriesAnswerNull) {
    const auto answersNull = [](auto create) {
        std::size_t nulls = 0;
        failEachAllocation([&] {
            KEL* made = create();
            nulls += made == nullptr ? 1 : 0;
            DeleteKEL(made);
        });
        return nulls > 0;
    };
    const auto variables = structOf("x", intOf(1), "y", intOf(2));
    const auto descriptor = structDescriptorOf("x", intRange(0, 1));
    EXPECT_TRUE(answersNull([] { return CreateKELIndexList(); }));
    EXPECT_TRUE(answersNull([&] { return CreateKELIndexList(&asArray(items)); }));
    EXPECT_TRUE(answersNull([&] { return CreateKELIndexList(&asArray(keys), &asArray(items)); }));
    EXPECT_TRUE(answersNull([&] { return CreateKELIndexList(&asStruct(variables)); }));
    EXPECT_TRUE(answersNull([&] { return CreateKELSelector(&asList(list)); }));
    EXPECT_TRUE(answersNull([] { return CreateKELSelector(nullptr); }));
    EXPECT_TRUE(answersNull([&] { return CreateKELMultiSelector(&asList(list)); }));
    EXPECT_TRUE(answersNull([] { return CreateKELMultiSelector(nullptr); }));
    EXPECT_TRUE(answersNull([] { return CreateMetaKel(nullptr); }));
    EXPECT_TRUE(answersNull([&] { return CreateMetaKel(&asStructDescriptor(descriptor)); }));
    EXPECT_TRUE(answersNull([] { return CreateMetaKelDescriptor(); }));
    EXPECT_TRUE(answersNull([] { return CreateMetaKelVarDescriptor(); }));
}

} // namespace
