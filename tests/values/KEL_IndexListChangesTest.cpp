// Replacing and adding pairs, and arrays that change without the list.
#include "support/IndexListFixture.h"

using namespace kel::test;

namespace {

class KEL_IndexListChangesTest : public IndexListFixture {};

// ---- Replacing ---------------------------------------------------------------------------------

TEST_F(KEL_IndexListChangesTest, SetKeyOfItemPutsAnotherKeyObjectInThePlace) {
    list->setKeyOfItem(two.get(), unknown.get());
    EXPECT_EQ(pairs(), "a=1 x=2 c=3");
    EXPECT_EQ(list->getKeyAt(1), unknown.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setKeyOfItem(intOf(2).get(), a.get()); }), itemNotFound);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListChangesTest, SetItemOfKeyPutsAnotherItemInThePlace) {
    list->setItemOfKey(b.get(), four.get());
    EXPECT_EQ(pairs(), "a=1 b=4 c=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setItemOfKey(otherA.get(), four.get()); }), keyNotFound);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListChangesTest, SetItemOfKeyValueReplacesTheFirstMatch) {
    list->addPair(otherA.get(), three.get());
    watcher.told.clear();
    list->setItemOfKeyValue(otherA.get(), four.get());
    EXPECT_EQ(pairs(), "a=4 b=2 c=3 a=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setItemOfKeyValue(unknown.get(), one.get()); }),
              keyValueNotFound);
}

TEST_F(KEL_IndexListChangesTest, SetItemAtReplacesByIndex) {
    list->setItemAt(2, four.get());
    EXPECT_EQ(pairs(), "a=1 b=2 c=4");
    list->setItemAt(2, nullptr);
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(badIndex([&] { list->setItemAt(3, four.get()); }), "Array index out of bounds.");
}

TEST_F(KEL_IndexListChangesTest, ReplacingWithNullDoesNothing) {
    list->setKeyOfItem(nullptr, a.get());
    list->setKeyOfItem(one.get(), nullptr);
    list->setItemOfKey(nullptr, one.get());
    list->setItemOfKey(a.get(), nullptr);
    list->setItemOfKeyValue(nullptr, one.get());
    list->setItemOfKeyValue(a.get(), nullptr);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_IndexListChangesTest, AReplacedKeyOrItemMayBeTheOnlyHoldersOwn) {
    list->addNamedInt("d", int32_t{4});
    list->setKeyOfItem(list->getItemAt(3), list->getKeyAt(3));
    list->setItemOfKey(list->getKeyAt(3), list->getItemAt(3));
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 d=4");
}

TEST_F(KEL_IndexListChangesTest, SetKeyValueAssignsToEveryMatchAndKeepsTheObjects) {
    list->addPair(otherA.get(), four.get());
    list->setKeyValue(stringOf("a").get(), stringOf("z").get());
    EXPECT_EQ(pairs(), "z=1 b=2 c=3 z=4");
    EXPECT_EQ(list->getKeyAt(0), a.get());
    EXPECT_EQ(list->getKeyAt(3), otherA.get());
}

TEST_F(KEL_IndexListChangesTest, SetKeyValueNotifiesTheObserversOfTheKeys) {
    Watcher ofKey;
    a->addObserver(&ofKey);
    list->setKeyValue(otherA.get(), unknown.get());
    EXPECT_EQ(ofKey.told, std::vector<KEL*>{a.get()});
    a->removeObserver(&ofKey);
}

TEST_F(KEL_IndexListChangesTest, SetKeyValueOfAnotherKindIsRefused) {
    EXPECT_EQ(
        thrownMessage<KELNoSuchTypeException>([&] { list->setKeyValue(otherA.get(), one.get()); }),
        "Can't set the value when types are not equal!");
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListChangesTest, SetKeyValueAssignsNothingIfOneMatchWouldRefuse) {
    const auto key = intOf(7), equalKey = doubleOf(7.0);
    list->addPair(key.get(), four.get());
    list->addPair(equalKey.get(), four.get());
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>(
                  [&] { list->setKeyValue(intOf(7).get(), intOf(8).get()); }),
              "Can't set the value when types are not equal!");
    EXPECT_EQ(key->toInt(), 7);
    EXPECT_EQ(equalKey->toDouble(), 7.0);
}

TEST_F(KEL_IndexListChangesTest, SetKeyValueThatFindsNothingOrGetsNull) {
    EXPECT_EQ(notFound([&] { list->setKeyValue(unknown.get(), a.get()); }), keyValueNotFound);
    EXPECT_EQ(notFound([&] { list->setKeyValue(unknown.get(), one.get()); }), keyValueNotFound);
    list->setKeyValue(nullptr, a.get());
    list->setKeyValue(a.get(), nullptr);
    list->setKeyString(a.get(), nullptr);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListChangesTest, SwapPairsExchangesKeysAndItems) {
    list->swapPairs(0, 2);
    EXPECT_EQ(pairs(), "c=3 b=2 a=1");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(badIndex([&] { list->swapPairs(0, 3); }), "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->swapPairs(-1, 0); }), "Array index out of bounds.");
    EXPECT_EQ(pairs(), "c=3 b=2 a=1");
}

// ---- Adding ------------------------------------------------------------------------------------

TEST_F(KEL_IndexListChangesTest, AddPairAppendsSharesAndNotifiesOnce) {
    EXPECT_EQ(list->addPair(unknown.get(), four.get()), 3);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 x=4");
    EXPECT_EQ(list->getItemAt(3), four.get());
    EXPECT_EQ(referencesOf(*four), 2);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListChangesTest, AddingNullChangesNothing) {
    EXPECT_EQ(list->addPair(nullptr, four.get()), -1);
    EXPECT_EQ(list->addPair(unknown.get(), nullptr), -1);
    EXPECT_EQ(list->addKeyInt(int32_t{1}, nullptr), -1);
    EXPECT_EQ(list->addItemInt(nullptr, int32_t{1}), -1);
    EXPECT_EQ(list->addNamedInt(nullptr, int32_t{1}), -1);
    EXPECT_EQ(list->addPairs(nullptr), -1);
    list->insertPair(nullptr, four.get(), 0);
    list->insertPair(four.get(), nullptr, 0);
    EXPECT_EQ(list->getKeys()->getCount(), 3);
    EXPECT_EQ(list->getItems()->getCount(), 3);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_IndexListChangesTest, InsertPairOpensAPlace) {
    list->insertPair(unknown.get(), four.get(), 1);
    EXPECT_EQ(pairs(), "a=1 x=4 b=2 c=3");
    list->insertPair(otherA.get(), four.get(), 4);
    EXPECT_EQ(pairs(), "a=1 x=4 b=2 c=3 a=4");
    EXPECT_EQ(watcher.calls(), 2);
    EXPECT_EQ(badIndex([&] { list->insertPair(a.get(), one.get(), 6); }),
              "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->insertPair(a.get(), one.get(), -1); }),
              "Array index out of bounds.");
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_IndexListChangesTest, AddPairsTakesThePairsWithNewKeysByIdentity) {
    const auto other = listOf(arrayOf(a, otherA, unknown), arrayOf(four, four, four));
    EXPECT_EQ(list->addPairs(&asList(other)), 0);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 a=4 x=4");
    EXPECT_EQ(watcher.calls(), 2);
    EXPECT_EQ(list->addPairs(list.get()), 0);
    EXPECT_EQ(list->getCount(), 5);
}

TEST_F(KEL_IndexListChangesTest, ANullTextIsNeitherKeyNorItem) {
    EXPECT_EQ(list->addKeyString(nullptr, one.get()), -1);
    EXPECT_EQ(list->addItemString(a.get(), nullptr), -1);
    EXPECT_EQ(list->addNamedString("k", nullptr), -1);
    EXPECT_EQ(list->addNamedString(nullptr, "text"), -1);
    EXPECT_EQ(list->addNamedInt(nullptr, int32_t{1}), -1);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
}

// ---- Arrays that change without the list -------------------------------------------------------

TEST_F(KEL_IndexListChangesTest, PairsExistUpToTheShorterArray) {
    list->getItems()->removeVar(2);
    EXPECT_EQ(list->getCount(), 2);
    EXPECT_EQ(pairs(), "a=1 b=2");
    EXPECT_FALSE(list->containsKey(c.get()));
    EXPECT_EQ(list->indexOfKeyValue(c.get()), -1);
    EXPECT_EQ(notFound([&] { list->getItem(c.get()); }), keyNotFound);
    EXPECT_EQ(notFound([&] { list->removeKeyValue(c.get()); }), keyValueNotFound);
    EXPECT_EQ(notFound([&] { list->setKeyValue(c.get(), a.get()); }), keyValueNotFound);
    EXPECT_EQ(badIndex([&] { list->getKeyAt(2); }), "Array index out of bounds.");
}

TEST_F(KEL_IndexListChangesTest, AnItemWithoutAKeyIsNoItem) {
    list->getKeys()->removeAllVars();
    EXPECT_FALSE(list->containsItem(one.get()));
    EXPECT_EQ(notFound([&] { list->getKey(one.get()); }), itemNotFound);
    EXPECT_EQ(notFound([&] { list->removeItem(one.get()); }), itemNotFound);
    EXPECT_EQ(notFound([&] { list->setKeyOfItem(one.get(), a.get()); }), itemNotFound);
    EXPECT_EQ(badIndex([&] { list->swapPairs(0, 0); }), "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->insertPair(a.get(), one.get(), 1); }),
              "Array index out of bounds.");
}

TEST_F(KEL_IndexListChangesTest, APairAddedToUnequalArraysIsAPair) {
    list->getItems()->removeVar(2);
    EXPECT_EQ(list->addPair(unknown.get(), four.get()), 2);
    EXPECT_EQ(list->getItem(unknown.get()), four.get());
    EXPECT_EQ(pairs(), "a=1 b=2 x=4");
}

TEST_F(KEL_IndexListChangesTest, AnObserverOfTheKeysMayEmptyTheItemsMeanwhile) {
    Watcher emptier([&] { list->getItems()->removeAllVars(); });
    dynamic_cast<KEL_Observable&>(*list->getKeys()).addObserver(&emptier);
    list->removeKey(a.get());
    EXPECT_EQ(textsOf(*list->getKeys()), "b c");
    EXPECT_EQ(list->addPair(unknown.get(), four.get()), 0);
    EXPECT_EQ(textsOf(*list->getKeys()), "x b c");
    EXPECT_EQ(list->getCount(), 0);
    list->getItems()->addInt(5);
    list->removeKeyValue(unknown.get());
    list->getItems()->addInt(5);
    list->setKeyOfItem(list->getItemAt(0), a.get());
    EXPECT_EQ(textsOf(*list->getKeys()), "a c");
    EXPECT_EQ(list->getCount(), 0);
    dynamic_cast<KEL_Observable&>(*list->getKeys()).removeObserver(&emptier);
}

TEST_F(KEL_IndexListChangesTest, AnObserverOfTheKeysMayReleaseTheListAndTheItem) {
    auto doomed = make<KEL_IndexList_Impl>();
    auto item = intOf(9);
    const auto keys = Held<KEL_Array>(doomed->getKeys());
    keys->addRef();
    Watcher killer([&] {
        doomed.clear();
        item.clear();
    });
    keys->addObserver(&killer);
    doomed->addPair(a.get(), item.get());
    EXPECT_EQ(keys->getCount(), 1);
    keys->removeObserver(&killer);
}

} // namespace
