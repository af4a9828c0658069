// Keys remain paired with their items, whatever the observers of the two arrays do.
#include "support/IndexListFixture.h"

using namespace kel::test;

namespace {

/// The exception of an observer.
struct Refusal {};

/// The list a=1 b=2 c=3 d=4. Its keys or items have observers too.
class KEL_IndexListPairsTest : public IndexListFixture {
protected:
    KEL_IndexListPairsTest() {
        list->addPair(d.get(), four.get());
        watcher.told.clear();
    }

    /// Returns the texts of both arrays in full.
    std::string arrays() const {
        return textsOf(*list->getKeys()) + " | " + textsOf(*list->getItems());
    }

    /// Makes a change while an observer of the keys throws. Returns the texts of both arrays.
    template <class Change> std::string refusedByKeys(const Change& change) {
        return refusedBy(*list->getKeys(), change);
    }

    /// Does the same with an observer of the items.
    template <class Change> std::string refusedByItems(const Change& change) {
        return refusedBy(*list->getItems(), change);
    }

    /// Makes a change during which an observer of the keys makes another one.
    template <class Change, class Other>
    std::string changedInside(const Change& change, const Other& other) {
        Watcher meddler;
        meddler.then = [&] {
            meddler.then = nullptr;
            other();
        };
        list->getKeys()->addObserver(&meddler);
        change();
        list->getKeys()->removeObserver(&meddler);
        return arrays();
    }

    HeldValue d = stringOf("d"), five = intOf(5);

private:
    template <class Change> std::string refusedBy(KEL_Array& array, const Change& change) {
        Watcher thrower([] { throw Refusal(); });
        array.addObserver(&thrower);
        EXPECT_THROW(change(), Refusal);
        array.removeObserver(&thrower);
        EXPECT_EQ(thrower.calls(), 1);
        return arrays();
    }
};

// ---- Observers that throw ----------------------------------------------------------------------

TEST_F(KEL_IndexListPairsTest, ARemovedPairIsGoneFromBothThoughAnObserverThrows) {
    EXPECT_EQ(refusedByKeys([&] { list->removePair(0); }), "b c d | 2 3 4");
    EXPECT_EQ(refusedByItems([&] { list->removePair(0); }), "c d | 3 4");
    EXPECT_EQ(refusedByKeys([&] { list->removeKey(d.get()); }), "c | 3");
}

TEST_F(KEL_IndexListPairsTest, SwappedPairsAreSwappedInBothThoughAnObserverThrows) {
    EXPECT_EQ(refusedByKeys([&] { list->swapPairs(0, 1); }), "b a c d | 2 1 3 4");
    EXPECT_EQ(refusedByItems([&] { list->swapPairs(2, 3); }), "b a d c | 2 1 4 3");
}

TEST_F(KEL_IndexListPairsTest, AnAddedPairIsInBothThoughAnObserverThrows) {
    EXPECT_EQ(refusedByKeys([&] { list->addPair(unknown.get(), five.get()); }),
              "a b c d x | 1 2 3 4 5");
    EXPECT_EQ(refusedByItems([&] { list->insertPair(otherA.get(), five.get(), 1); }),
              "a a b c d x | 1 5 2 3 4 5");
}

TEST_F(KEL_IndexListPairsTest, RemovedValuesAreGoneFromBothThoughAnObserverThrows) {
    list->addPair(otherA.get(), five.get());
    EXPECT_EQ(refusedByKeys([&] { list->removeKeyValue(a.get()); }), "b c d | 2 3 4");
}

TEST_F(KEL_IndexListPairsTest, AllPairsAreGoneFromBothThoughAnObserverThrows) {
    EXPECT_EQ(refusedByKeys([&] { list->removeAllPairs(); }), " | ");
}

TEST_F(KEL_IndexListPairsTest, TheListsObserversAreCalledAlsoWhenOneOfTheArraysThrows) {
    refusedByKeys([&] { list->removePair(0); });
    EXPECT_EQ(watcher.calls(), 1);
}

// ---- Observers that change the list again ------------------------------------------------------

TEST_F(KEL_IndexListPairsTest, APairMayBeRemovedInsideARemoval) {
    const auto remove = [&](int32_t index) { return [=, this] { list->removePair(index); }; };
    EXPECT_EQ(changedInside(remove(2), remove(0)), "b d | 2 4");
}

TEST_F(KEL_IndexListPairsTest, APairMayBeAddedInsideAnAddition) {
    EXPECT_EQ(changedInside([&] { EXPECT_EQ(list->addNamedInt("x", int32_t{3}), 4); },
                            [&] { EXPECT_EQ(list->addNamedInt("y", int32_t{9}), 5); }),
              "a b c d x y | 1 2 3 4 3 9");
}

TEST_F(KEL_IndexListPairsTest, PairsMayBeSwappedInsideASwap) {
    EXPECT_EQ(changedInside([&] { list->swapPairs(0, 1); }, [&] { list->swapPairs(1, 2); }),
              "b c a d | 2 3 1 4");
}

TEST_F(KEL_IndexListPairsTest, AllPairsMayBeRemovedInsideAChange) {
    EXPECT_EQ(changedInside([&] { list->insertPair(unknown.get(), five.get(), 2); },
                            [&] { list->removeAllPairs(); }),
              " | ");
}

TEST_F(KEL_IndexListPairsTest, AnObserverOfTheKeysMayGiveTheListOtherArrays) {
    const auto other = listOf(arrayOf(unknown), arrayOf(five));
    EXPECT_EQ(changedInside([&] { list->removePair(0); }, [&] { list->assign(other.get()); }),
              "x | 5");
}

// ---- Notifications -----------------------------------------------------------------------------

TEST_F(KEL_IndexListPairsTest, KeysItemsAndListAreToldInThisOrderWhenTheChangeIsComplete) {
    std::string told;
    const auto tell = [&](const char* who) { return [&, who] { told += who + arrays() + "; "; }; };
    Watcher ofKeys(tell("keys ")), ofItems(tell("items "));
    watcher.then = tell("list ");
    list->getKeys()->addObserver(&ofKeys);
    list->getItems()->addObserver(&ofItems);
    list->removePair(3);
    EXPECT_EQ(told, "keys a b c | 1 2 3; items a b c | 1 2 3; list a b c | 1 2 3; ");
    list->getKeys()->removeObserver(&ofKeys);
    list->getItems()->removeObserver(&ofItems);
}

TEST_F(KEL_IndexListPairsTest, RemovingSeveralPairsByValueIsOneChangeOfEachArray) {
    Watcher ofKeys, ofItems;
    list->addPair(otherA.get(), five.get());
    watcher.told.clear();
    list->getKeys()->addObserver(&ofKeys);
    list->getItems()->addObserver(&ofItems);
    list->removeKeyValue(a.get());
    EXPECT_EQ(arrays(), "b c d | 2 3 4");
    EXPECT_EQ(ofKeys.calls(), 1);
    EXPECT_EQ(ofItems.calls(), 1);
    EXPECT_EQ(watcher.calls(), 1);
    list->getKeys()->removeObserver(&ofKeys);
    list->getItems()->removeObserver(&ofItems);
}

} // namespace
