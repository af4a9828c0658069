#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string keyNotFound = "Key not found in list.";
const std::string itemNotFound = "Item not found in list.";
const std::string keyValueNotFound = "Key value not found in list.";

template <class Action> std::string notFound(const Action& action) {
    return thrownMessage<KELNoSuchElementException>(action);
}
template <class Action> std::string badIndex(const Action& action) {
    return thrownMessage<KELArrayIndexOutOfBoundsException>(action);
}

/// The pairs of a list as "key=item key=item".
std::string pairsOf(const KEL_IndexList& list) {
    std::string pairs;
    for (int32_t i = 0; i < list.getCount(); ++i) {
        const char* item = list.getItemAt(i)->toString();
        pairs.append(pairs.empty() ? "" : " ").append(list.getKeyAt(i)->toString());
        pairs.append("=").append(item == nullptr ? "-" : item);
    }
    return pairs;
}

/// A watched list of the pairs a=1 b=2 c=3 and values that are not in it.
class KEL_IndexListTest : public ::testing::Test {
protected:
    KEL_IndexListTest() {
        list->addPair(a.get(), one.get());
        list->addPair(b.get(), two.get());
        list->addPair(c.get(), three.get());
        list->addObserver(&watcher);
    }

    std::string pairs() const { return pairsOf(*list); }

    HeldValue a = stringOf("a"), b = stringOf("b"), c = stringOf("c");
    HeldValue otherA = stringOf("a"), unknown = stringOf("x");
    HeldValue one = intOf(1), two = intOf(2), three = intOf(3), four = intOf(4);
    Watcher watcher;
    Held<KEL_IndexList_Impl> list = make<KEL_IndexList_Impl>();
};

TEST_F(KEL_IndexListTest, IsOfItsKindAndEmptyAtFirst) {
    const auto empty = make<KEL_IndexList_Impl>();
    EXPECT_EQ(empty->getType(), 12);
    EXPECT_EQ(empty->getCount(), 0);
    EXPECT_EQ(empty->getKeys()->getCount() + empty->getItems()->getCount(), 0);
}

TEST_F(KEL_IndexListTest, HasNoScalarForm) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_EQ(list->toString(), nullptr);
    EXPECT_FALSE(list->toBoolean());
    EXPECT_EQ(list->toInt(), 0);
    EXPECT_EQ(list->toDouble(), 0.0);
    EXPECT_TRUE(list->toGuid(guid).isZero());
}

// ---- Making a list from other values -----------------------------------------------------------

TEST_F(KEL_IndexListTest, AListOfItemsHasTheirTextsAsNewStringKeys) {
    const auto items = arrayOf(one, two);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asArray(items)));
    EXPECT_EQ(pairsOf(*made), "1=1 2=2");
    EXPECT_EQ(made->getKeyAt(0)->getType(), KELKind_String);
    EXPECT_EQ(made->getItemAt(0), one.get());
    EXPECT_EQ(made->getItemAt(1), two.get());
}

TEST_F(KEL_IndexListTest, AListOfItemsSharesTheArray) {
    const auto items = arrayOf(one);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asArray(items)));
    EXPECT_EQ(static_cast<KEL*>(made->getItems()), items.get());
    EXPECT_EQ(referencesOf(*items), 2);
}

TEST_F(KEL_IndexListTest, AnItemWithoutATextHasTheEmptyKey) {
    const auto items = arrayOf(arrayOf(), one, memBlockOf("x"));
    const Held<KEL_IndexList> made(CreateKELIndexList(&asArray(items)));
    EXPECT_STREQ(made->getKeyAt(0)->toString(), "");
    EXPECT_STREQ(made->getKeyAt(1)->toString(), "1");
    EXPECT_STREQ(made->getKeyAt(2)->toString(), "");
}

TEST_F(KEL_IndexListTest, AStringItemIsNotItsOwnKey) {
    const auto items = arrayOf(a);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asArray(items)));
    EXPECT_EQ(pairsOf(*made), "a=a");
    EXPECT_NE(made->getKeyAt(0), a.get());
}

TEST_F(KEL_IndexListTest, AListOfNothingIsEmpty) {
    const Held<KEL_IndexList> none(CreateKELIndexList());
    const Held<KEL_IndexList> array(CreateKELIndexList(static_cast<KEL_Array*>(nullptr)));
    const Held<KEL_IndexList> structure(CreateKELIndexList(static_cast<KEL_Struct*>(nullptr)));
    EXPECT_EQ(none->getCount() + array->getCount() + structure->getCount(), 0);
    array->addNamedInt("a", int32_t{1});
    EXPECT_EQ(pairsOf(*array), "a=1");
}

TEST_F(KEL_IndexListTest, AListOfTwoArraysSharesBoth) {
    const auto keys = arrayOf(a), items = arrayOf(one);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asArray(keys), &asArray(items)));
    EXPECT_EQ(static_cast<KEL*>(made->getKeys()), keys.get());
    EXPECT_EQ(static_cast<KEL*>(made->getItems()), items.get());
}

TEST_F(KEL_IndexListTest, TwoArraysOfDifferentLengthsMakeNoList) {
    const auto keys = arrayOf(a, b), items = arrayOf(one);
    EXPECT_EQ(CreateKELIndexList(&asArray(keys), &asArray(items)), nullptr);
    EXPECT_EQ(CreateKELIndexList(&asArray(items), &asArray(keys)), nullptr);
}

TEST_F(KEL_IndexListTest, ANullArrayOfTwoMakesNoList) {
    const auto array = arrayOf();
    EXPECT_EQ(CreateKELIndexList(nullptr, &asArray(array)), nullptr);
    EXPECT_EQ(CreateKELIndexList(&asArray(array), nullptr), nullptr);
    EXPECT_EQ(CreateKELIndexList(nullptr, nullptr), nullptr);
}

TEST_F(KEL_IndexListTest, AListOfAStructHasItsVariablesInNameOrder) {
    const auto structure = structOf("b", two, "a", one, "C", three);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asStruct(structure)));
    EXPECT_EQ(pairsOf(*made), "C=3 a=1 b=2");
    EXPECT_EQ(made->getKeyAt(0)->getType(), KELKind_String);
}

TEST_F(KEL_IndexListTest, ChangingAnItemOfAStructsListChangesTheVariable) {
    const auto structure = structOf("a", one);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asStruct(structure)));
    made->getItemAt(0)->assign(four.get());
    EXPECT_EQ(made->getItemAt(0), at(structure, "a"));
    EXPECT_EQ(asStruct(structure).getInt("a"), 4);
}

TEST_F(KEL_IndexListTest, AVariableWithoutAValueGivesNoPair) {
    const auto structure = structOf("a", one, "b", nullptr, "c", three);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asStruct(structure)));
    EXPECT_EQ(pairsOf(*made), "a=1 c=3");
}

TEST_F(KEL_IndexListTest, ACheckedStructIsAStructToAListToo) {
    const auto meta = metaOf("a", one);
    const Held<KEL_IndexList> made(CreateKELIndexList(&asStruct(meta)));
    EXPECT_EQ(pairsOf(*made), "a=1");
}

// ---- Lookups -----------------------------------------------------------------------------------

TEST_F(KEL_IndexListTest, ItemsAreFoundByTheIdentityOfTheKey) {
    const KEL_IndexList& constant = *list;
    EXPECT_EQ(list->getItem(b.get()), two.get());
    EXPECT_EQ(constant.getItem(b.get()), two.get());
    EXPECT_EQ(notFound([&] { list->getItem(otherA.get()); }), keyNotFound);
    EXPECT_EQ(notFound([&] { constant.getItem(otherA.get()); }), keyNotFound);
    EXPECT_EQ(list->getItem(nullptr), nullptr);
    EXPECT_EQ(constant.getItem(nullptr), nullptr);
}

TEST_F(KEL_IndexListTest, KeysAreFoundByTheIdentityOfTheItem) {
    const KEL_IndexList& constant = *list;
    EXPECT_EQ(list->getKey(two.get()), b.get());
    EXPECT_EQ(constant.getKey(two.get()), b.get());
    EXPECT_EQ(notFound([&] { list->getKey(four.get()); }), itemNotFound);
    EXPECT_EQ(notFound([&] { constant.getKey(a.get()); }), itemNotFound);
    EXPECT_EQ(list->getKey(nullptr), nullptr);
    EXPECT_EQ(constant.getKey(nullptr), nullptr);
}

TEST_F(KEL_IndexListTest, ItemsAreFoundByTheValueOfTheKey) {
    const KEL_IndexList& constant = *list;
    EXPECT_EQ(list->getItemOfKeyValue(otherA.get()), one.get());
    EXPECT_EQ(constant.getItemOfKeyValue(otherA.get()), one.get());
    EXPECT_EQ(notFound([&] { list->getItemOfKeyValue(unknown.get()); }), keyValueNotFound);
    EXPECT_EQ(notFound([&] { constant.getItemOfKeyValue(one.get()); }), keyValueNotFound);
    EXPECT_EQ(list->getItemOfKeyValue(nullptr), nullptr);
    EXPECT_EQ(constant.getItemOfKeyValue(nullptr), nullptr);
}

TEST_F(KEL_IndexListTest, ItemsAreFoundByTheTextOfAStringKey) {
    list->addKeyInt(int32_t{7}, four.get());
    EXPECT_EQ(list->getItemOfKeyText("c"), three.get());
    EXPECT_EQ(notFound([&] { list->getItemOfKeyText("7"); }), keyValueNotFound);
    EXPECT_EQ(list->getItemOfKeyText(nullptr), nullptr);
}

TEST_F(KEL_IndexListTest, ContainmentAndIndicesOfKeys) {
    EXPECT_TRUE(list->containsKey(c.get()));
    EXPECT_FALSE(list->containsKey(otherA.get()));
    EXPECT_FALSE(list->containsKey(one.get()));
    EXPECT_FALSE(list->containsKey(nullptr));
    EXPECT_EQ(list->indexOfKey(c.get()), 2);
    EXPECT_EQ(list->indexOfKey(otherA.get()), -1);
    EXPECT_EQ(list->indexOfKey(nullptr), -1);
}

TEST_F(KEL_IndexListTest, ContainmentAndIndicesOfItems) {
    EXPECT_TRUE(list->containsItem(one.get()));
    EXPECT_FALSE(list->containsItem(a.get()));
    EXPECT_FALSE(list->containsItem(nullptr));
    EXPECT_EQ(list->indexOfItem(two.get()), 1);
    EXPECT_EQ(list->indexOfItem(four.get()), -1);
    EXPECT_EQ(list->indexOfItem(nullptr), -1);
}

TEST_F(KEL_IndexListTest, ContainmentAndIndicesOfKeyValues) {
    EXPECT_TRUE(list->containsKeyValue(otherA.get()));
    EXPECT_FALSE(list->containsKeyValue(unknown.get()));
    EXPECT_FALSE(list->containsKeyValue(nullptr));
    EXPECT_EQ(list->indexOfKeyValue(otherA.get()), 0);
    EXPECT_EQ(list->indexOfKeyValue(unknown.get()), -1);
    EXPECT_EQ(list->indexOfKeyValue(nullptr), -1);
}

TEST_F(KEL_IndexListTest, TheFirstOfEqualKeysIsFound) {
    list->addPair(otherA.get(), four.get());
    list->addPair(a.get(), four.get());
    EXPECT_EQ(list->getItem(a.get()), one.get());
    EXPECT_EQ(list->getItemOfKeyValue(otherA.get()), one.get());
    EXPECT_EQ(list->getItem(otherA.get()), four.get());
}

TEST_F(KEL_IndexListTest, KeysOfAnyKindAreComparedByContents) {
    const auto key = arrayOf(intOf(1), stringOf("x"));
    list->addPair(key.get(), four.get());
    EXPECT_EQ(list->getItemOfKeyValue(arrayOf(doubleOf(1.0), stringOf("x")).get()), four.get());
}

TEST_F(KEL_IndexListTest, PairsAreReachedByIndex) {
    EXPECT_EQ(list->getKeyAt(2), c.get());
    EXPECT_EQ(list->getItemAt(0), one.get());
    for (const int32_t bad : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(badIndex([&] { list->getKeyAt(bad); }), "Array index out of bounds.");
        EXPECT_EQ(badIndex([&] { list->getItemAt(bad); }), "Array index out of bounds.");
    }
}

TEST_F(KEL_IndexListTest, TheArraysAreThoseInUse) {
    const KEL_IndexList& constant = *list;
    EXPECT_EQ(list->getKeys()->getVar(1), b.get());
    EXPECT_EQ(list->getItems()->getVar(1), two.get());
    EXPECT_EQ(constant.getKeys(), list->getKeys());
    EXPECT_EQ(constant.getItems(), list->getItems());
    EXPECT_EQ(list->getCount(), 3);
}

TEST_F(KEL_IndexListTest, LookupsNotifyNobody) {
    list->getItem(a.get());
    list->getKeys();
    notFound([&] { list->getKey(four.get()); });
    EXPECT_EQ(watcher.calls(), 0);
}

// ---- Removing ----------------------------------------------------------------------------------

TEST_F(KEL_IndexListTest, RemoveKeyRemovesThePairAndNotifiesOnce) {
    list->removeKey(b.get());
    EXPECT_EQ(pairs(), "a=1 c=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(watcher.told[0], list.get());
}

TEST_F(KEL_IndexListTest, RemoveKeyOfAnEqualStringIsNotFoundButRemoveKeyValueIs) {
    EXPECT_EQ(notFound([&] { list->removeKey(otherA.get()); }), keyNotFound);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
    list->removeKeyValue(otherA.get());
    EXPECT_EQ(pairs(), "b=2 c=3");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, RemoveItemRemovesThePairByIdentity) {
    list->removeItem(two.get());
    EXPECT_EQ(pairs(), "a=1 c=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->removeItem(intOf(1).get()); }), itemNotFound);
    EXPECT_EQ(pairs(), "a=1 c=3");
}

TEST_F(KEL_IndexListTest, RemovingNullDoesNothing) {
    list->removeKey(nullptr);
    list->removeItem(nullptr);
    list->removeKeyValue(nullptr);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_IndexListTest, RemoveKeyValuePassesOverThePairThatMovesIn) {
    list->removeAllPairs();
    for (const char* key : {"x", "x", "y", "x", "x", "x"}) {
        list->addNamedInt(key, list->getCount());
    }
    watcher.told.clear();
    list->removeKeyValue(unknown.get());
    EXPECT_EQ(pairs(), "x=1 y=2 x=4");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, RemoveKeyValueThatFindsNothingChangesNothing) {
    EXPECT_EQ(notFound([&] { list->removeKeyValue(unknown.get()); }), keyValueNotFound);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_IndexListTest, AKeyThatOnlyTheListHoldsMayBeTheArgument) {
    list->addNamedInt("d", int32_t{4});
    list->removeKeyValue(list->getKeyAt(3));
    list->addNamedInt("d", int32_t{4});
    list->removeKey(list->getKeyAt(3));
    list->addNamedInt("d", int32_t{4});
    list->removeItem(list->getItemAt(3));
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListTest, RemovePairRemovesByIndex) {
    list->removePair(0);
    EXPECT_EQ(pairs(), "b=2 c=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(badIndex([&] { list->removePair(2); }), "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->removePair(-1); }), "Array index out of bounds.");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, RemoveAllPairsNotifiesOnceAlsoWhenThereIsNone) {
    list->removeAllPairs();
    EXPECT_EQ(list->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 1);
    list->removeAllPairs();
    EXPECT_EQ(watcher.calls(), 2);
}

// ---- Replacing ---------------------------------------------------------------------------------

TEST_F(KEL_IndexListTest, SetKeyOfItemPutsAnotherKeyObjectInThePlace) {
    list->setKeyOfItem(two.get(), unknown.get());
    EXPECT_EQ(pairs(), "a=1 x=2 c=3");
    EXPECT_EQ(list->getKeyAt(1), unknown.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setKeyOfItem(intOf(2).get(), a.get()); }), itemNotFound);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, SetItemOfKeyPutsAnotherItemInThePlace) {
    list->setItemOfKey(b.get(), four.get());
    EXPECT_EQ(pairs(), "a=1 b=4 c=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setItemOfKey(otherA.get(), four.get()); }), keyNotFound);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, SetItemOfKeyValueReplacesTheFirstMatch) {
    list->addPair(otherA.get(), three.get());
    watcher.told.clear();
    list->setItemOfKeyValue(otherA.get(), four.get());
    EXPECT_EQ(pairs(), "a=4 b=2 c=3 a=3");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(notFound([&] { list->setItemOfKeyValue(unknown.get(), one.get()); }),
              keyValueNotFound);
}

TEST_F(KEL_IndexListTest, SetItemAtReplacesByIndex) {
    list->setItemAt(2, four.get());
    EXPECT_EQ(pairs(), "a=1 b=2 c=4");
    list->setItemAt(2, nullptr);
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(badIndex([&] { list->setItemAt(3, four.get()); }), "Array index out of bounds.");
}

TEST_F(KEL_IndexListTest, ReplacingWithNullDoesNothing) {
    list->setKeyOfItem(nullptr, a.get());
    list->setKeyOfItem(one.get(), nullptr);
    list->setItemOfKey(nullptr, one.get());
    list->setItemOfKey(a.get(), nullptr);
    list->setItemOfKeyValue(nullptr, one.get());
    list->setItemOfKeyValue(a.get(), nullptr);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_IndexListTest, AReplacedKeyOrItemMayBeTheOnlyHoldersOwn) {
    list->addNamedInt("d", int32_t{4});
    list->setKeyOfItem(list->getItemAt(3), list->getKeyAt(3));
    list->setItemOfKey(list->getKeyAt(3), list->getItemAt(3));
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 d=4");
}

TEST_F(KEL_IndexListTest, SetKeyValueAssignsToEveryMatchAndKeepsTheObjects) {
    list->addPair(otherA.get(), four.get());
    list->setKeyValue(stringOf("a").get(), stringOf("z").get());
    EXPECT_EQ(pairs(), "z=1 b=2 c=3 z=4");
    EXPECT_EQ(list->getKeyAt(0), a.get());
    EXPECT_EQ(list->getKeyAt(3), otherA.get());
}

TEST_F(KEL_IndexListTest, SetKeyValueNotifiesTheObserversOfTheKeys) {
    Watcher ofKey;
    a->addObserver(&ofKey);
    list->setKeyValue(otherA.get(), unknown.get());
    EXPECT_EQ(ofKey.told, std::vector<KEL*>{a.get()});
    a->removeObserver(&ofKey);
}

TEST_F(KEL_IndexListTest, SetKeyValueOfAnotherKindIsRefused) {
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>(
                  [&] { list->setKeyValue(otherA.get(), one.get()); }),
              "Can't set the value when types are not equal!");
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListTest, SetKeyValueAssignsNothingIfOneMatchWouldRefuse) {
    const auto key = intOf(7), equalKey = doubleOf(7.0);
    list->addPair(key.get(), four.get());
    list->addPair(equalKey.get(), four.get());
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>(
                  [&] { list->setKeyValue(intOf(7).get(), intOf(8).get()); }),
              "Can't set the value when types are not equal!");
    EXPECT_EQ(key->toInt(), 7);
    EXPECT_EQ(equalKey->toDouble(), 7.0);
}

TEST_F(KEL_IndexListTest, SetKeyValueThatFindsNothingOrGetsNull) {
    EXPECT_EQ(notFound([&] { list->setKeyValue(unknown.get(), a.get()); }), keyValueNotFound);
    EXPECT_EQ(notFound([&] { list->setKeyValue(unknown.get(), one.get()); }), keyValueNotFound);
    list->setKeyValue(nullptr, a.get());
    list->setKeyValue(a.get(), nullptr);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListTest, TypedFormsOfSetKeyValue) {
    const JHashCode guid(1, 2, 3, 4), otherGuid(5, 6, 7, 8);
    list->addKeyguid(guid, four.get());
    list->addKeyInt(int32_t{1}, four.get());
    list->addKeyDouble(2.5, four.get());
    list->addKeyBoolean(false, four.get());
    list->setKeyString(a.get(), "z");
    list->setKeyguid(guidOf(guid).get(), otherGuid);
    list->setKeyInt(intOf(1).get(), int32_t{2});
    list->setKeyDouble(doubleOf(2.5).get(), 0.5);
    list->setKeyBoolean(booleanOf(false).get(), true);
    EXPECT_EQ(textsOf(*list->getKeys()), "z b c " + std::string(guidOf(otherGuid)->toString()) +
                                             " 2 0.500000 true");
    list->setKeyString(b.get(), nullptr);
    EXPECT_EQ(list->getKeyAt(1), b.get());
    EXPECT_STREQ(b->toString(), "b");
}

TEST_F(KEL_IndexListTest, NeighbouringTypesOfSetKeyValueForward) {
    list->addKeyInt(int32_t{1}, four.get());
    list->addKeyDouble(2.5, four.get());
    list->setKeyInt(intOf(1).get(), 5L);
    list->setKeyInt(intOf(5).get(), 6UL);
    list->setKeyDouble(doubleOf(2.5).get(), 1.5F);
    EXPECT_EQ(textsOf(*list->getKeys()), "a b c 6 1.500000");
}

TEST_F(KEL_IndexListTest, SwapPairsExchangesKeysAndItems) {
    list->swapPairs(0, 2);
    EXPECT_EQ(pairs(), "c=3 b=2 a=1");
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(badIndex([&] { list->swapPairs(0, 3); }), "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->swapPairs(-1, 0); }), "Array index out of bounds.");
    EXPECT_EQ(pairs(), "c=3 b=2 a=1");
}

// ---- Adding ------------------------------------------------------------------------------------

TEST_F(KEL_IndexListTest, AddPairAppendsSharesAndNotifiesOnce) {
    EXPECT_EQ(list->addPair(unknown.get(), four.get()), 3);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 x=4");
    EXPECT_EQ(list->getItemAt(3), four.get());
    EXPECT_EQ(referencesOf(*four), 2);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_IndexListTest, AddingNullChangesNothing) {
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

TEST_F(KEL_IndexListTest, InsertPairOpensAPlace) {
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

TEST_F(KEL_IndexListTest, AddPairsTakesThePairsWithNewKeysByIdentity) {
    const auto other = listOf(arrayOf(a, otherA, unknown), arrayOf(four, four, four));
    EXPECT_EQ(list->addPairs(&asList(other)), 0);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3 a=4 x=4");
    EXPECT_EQ(watcher.calls(), 2);
    EXPECT_EQ(list->addPairs(list.get()), 0);
    EXPECT_EQ(list->getCount(), 5);
}

TEST_F(KEL_IndexListTest, KeysAreMadeFromPlainTypes) {
    const JHashCode guid(1, 2, 3, 4);
    list->removeAllPairs();
    EXPECT_EQ(list->addKeyString("s", one.get()), 0);
    EXPECT_EQ(list->addKeyString(nullptr, one.get()), 1);
    EXPECT_EQ(list->addKeyguid(guid, one.get()), 2);
    EXPECT_EQ(list->addKeyDouble(1.5, one.get()), 3);
    EXPECT_EQ(list->addKeyInt(int32_t{-7}, one.get()), 4);
    EXPECT_EQ(list->addKeyBoolean(true, one.get()), 5);
    EXPECT_EQ(list->addKeyDouble(0.5F, one.get()), 6);
    EXPECT_EQ(list->addKeyInt(8L, one.get()), 7);
    EXPECT_EQ(list->addKeyInt(9UL, one.get()), 8);
    EXPECT_EQ(pairs(), "s=1 =1 " + std::string(guidOf(guid)->toString()) +
                           "=1 1.500000=1 -7=1 true=1 0.500000=1 8=1 9=1");
    EXPECT_EQ(list->getItemAt(8), one.get());
}

TEST_F(KEL_IndexListTest, ItemsAreMadeFromPlainTypes) {
    const JHashCode guid(1, 2, 3, 4);
    list->removeAllPairs();
    EXPECT_EQ(list->addItemString(a.get(), "s"), 0);
    EXPECT_EQ(list->addItemString(a.get(), nullptr), 1);
    EXPECT_EQ(list->addItemguid(a.get(), guid), 2);
    EXPECT_EQ(list->addItemDouble(a.get(), 1.5), 3);
    EXPECT_EQ(list->addItemInt(a.get(), int32_t{-7}), 4);
    EXPECT_EQ(list->addItemBoolean(a.get(), true), 5);
    EXPECT_EQ(list->addItemDouble(a.get(), 0.5F), 6);
    EXPECT_EQ(list->addItemInt(a.get(), 8L), 7);
    EXPECT_EQ(list->addItemInt(a.get(), 9UL), 8);
    EXPECT_EQ(textsOf(*list->getItems()), "s  " + std::string(guidOf(guid)->toString()) +
                                              " 1.500000 -7 true 0.500000 8 9");
    EXPECT_EQ(list->getKeyAt(8), a.get());
}

TEST_F(KEL_IndexListTest, KeyAndItemAreMadeFromPlainTypes) {
    const JHashCode guid(1, 2, 3, 4);
    list->removeAllPairs();
    EXPECT_EQ(list->addNamedString("k", "s"), 0);
    EXPECT_EQ(list->addNamedString("k", nullptr), 1);
    EXPECT_EQ(list->addNamedguid("k", guid), 2);
    EXPECT_EQ(list->addNamedDouble("k", 1.5), 3);
    EXPECT_EQ(list->addNamedInt("k", int32_t{-7}), 4);
    EXPECT_EQ(list->addNamedBoolean("k", true), 5);
    EXPECT_EQ(list->addNamedDouble("k", 0.5F), 6);
    EXPECT_EQ(list->addNamedInt("k", 8L), 7);
    EXPECT_EQ(list->addNamedInt("k", 9UL), 8);
    EXPECT_EQ(pairs(), "k=s k= k=" + std::string(guidOf(guid)->toString()) +
                           " k=1.500000 k=-7 k=true k=0.500000 k=8 k=9");
}

// ---- Arrays that change behind the list's back -------------------------------------------------

TEST_F(KEL_IndexListTest, PairsExistUpToTheShorterArray) {
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

TEST_F(KEL_IndexListTest, AnItemWithoutAKeyIsNoItem) {
    list->getKeys()->removeAllVars();
    EXPECT_FALSE(list->containsItem(one.get()));
    EXPECT_EQ(notFound([&] { list->getKey(one.get()); }), itemNotFound);
    EXPECT_EQ(notFound([&] { list->removeItem(one.get()); }), itemNotFound);
    EXPECT_EQ(notFound([&] { list->setKeyOfItem(one.get(), a.get()); }), itemNotFound);
    EXPECT_EQ(badIndex([&] { list->swapPairs(0, 0); }), "Array index out of bounds.");
    EXPECT_EQ(badIndex([&] { list->insertPair(a.get(), one.get(), 1); }),
              "Array index out of bounds.");
}

TEST_F(KEL_IndexListTest, APairAddedToUnequalArraysIsAPair) {
    list->getItems()->removeVar(2);
    EXPECT_EQ(list->addPair(unknown.get(), four.get()), 2);
    EXPECT_EQ(list->getItem(unknown.get()), four.get());
    EXPECT_EQ(pairs(), "a=1 b=2 x=4");
}

TEST_F(KEL_IndexListTest, OneArrayForBothIsReadInBounds) {
    const auto both = arrayOf(a, b, c);
    const auto twice = listOf(both, both);
    EXPECT_EQ(pairsOf(asList(twice)), "a=a b=b c=c");
    asList(twice).swapPairs(0, 2);
    asList(twice).removeKey(b.get());
    EXPECT_EQ(pairsOf(asList(twice)), "c=c a=a");
    asList(twice).removeAllPairs();
    EXPECT_EQ(asList(twice).getCount(), 0);
}

TEST_F(KEL_IndexListTest, AnObserverOfTheKeysMayEmptyTheItemsMeanwhile) {
    Watcher emptier([&] { list->getItems()->removeAllVars(); });
    dynamic_cast<KEL_Observable&>(*list->getKeys()).addObserver(&emptier);
    list->removeKey(a.get());
    list->addPair(unknown.get(), four.get());
    EXPECT_EQ(list->getItems()->getCount(), 1);
    list->insertPair(otherA.get(), four.get(), 1);
    list->removeKeyValue(unknown.get());
    EXPECT_EQ(list->getCount(), 0);
    list->addPair(unknown.get(), four.get());
    list->setKeyOfItem(four.get(), c.get());
    EXPECT_EQ(list->getCount(), 0);
    dynamic_cast<KEL_Observable&>(*list->getKeys()).removeObserver(&emptier);
}

TEST_F(KEL_IndexListTest, AnObserverOfTheKeysMayReleaseTheListAndTheItem) {
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

// ---- Observers ---------------------------------------------------------------------------------

TEST_F(KEL_IndexListTest, AnObserverMayChangeTheListAgain) {
    watcher.then = [&] {
        watcher.then = nullptr;
        list->removeKey(a.get());
    };
    list->addPair(unknown.get(), four.get());
    EXPECT_EQ(pairs(), "b=2 c=3 x=4");
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_IndexListTest, AChangeOfTheArraysThemselvesIsTheirOwn) {
    list->getItems()->addInt(int32_t{9});
    one->assign(four.get());
    EXPECT_EQ(watcher.calls(), 0);
}

// ---- Copy, equality, assignment ----------------------------------------------------------------

TEST_F(KEL_IndexListTest, ACopySharesNothing) {
    const HeldValue copy(KEL_Impl::of(list->copy()));
    EXPECT_TRUE(copy->equalsValue(list.get()));
    EXPECT_NE(asList(copy).getKeys(), list->getKeys());
    EXPECT_NE(asList(copy).getKeyAt(0), a.get());
    EXPECT_NE(asList(copy).getItemAt(0), one.get());
    asList(copy).removePair(0);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
}

TEST_F(KEL_IndexListTest, ACopyOfAListOverOneArrayIsAListOverOneArray) {
    const auto both = arrayOf(a);
    const HeldValue copy(KEL_Impl::of(listOf(both, both)->copy()));
    EXPECT_EQ(asList(copy).getKeys(), asList(copy).getItems());
}

TEST_F(KEL_IndexListTest, EqualityLooksAtKeysAndItemsInOrder) {
    const auto equal = listOf(arrayOf(otherA, b, c), arrayOf(one, two, three));
    const auto otherOrder = listOf(arrayOf(b, a, c), arrayOf(two, one, three));
    const auto otherItem = listOf(arrayOf(a, b, c), arrayOf(one, two, four));
    EXPECT_TRUE(list->equalsValue(equal.get()));
    EXPECT_FALSE(list->equalsValue(otherOrder.get()));
    EXPECT_FALSE(list->equalsValue(otherItem.get()));
    EXPECT_FALSE(list->equalsValue(arrayOf(a, b, c).get()));
    EXPECT_FALSE(list->equalsValue(nullptr));
}

TEST_F(KEL_IndexListTest, AssignTakesDeepCopiesAndNotifiesOnce) {
    const auto source = listOf(arrayOf(unknown), arrayOf(four));
    list->assign(source.get());
    EXPECT_EQ(pairs(), "x=4");
    EXPECT_NE(list->getItemAt(0), four.get());
    EXPECT_EQ(watcher.calls(), 1);
    list->assign(list.get());
    EXPECT_EQ(pairs(), "x=4");
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { list->assign(one.get()); }),
              "Can't set the value when types are not equal!");
}

TEST_F(KEL_IndexListTest, OnlyAListConvertsIntoAList) {
    list->assignConverted(arrayOf(one).get(), true);
    EXPECT_EQ(pairs(), "a=1 b=2 c=3");
    EXPECT_EQ(watcher.calls(), 0);
    list->assignConverted(listOf(arrayOf(unknown), arrayOf(four)).get(), true);
    EXPECT_EQ(pairs(), "x=4");
    EXPECT_EQ(watcher.calls(), 1);
}

} // namespace
