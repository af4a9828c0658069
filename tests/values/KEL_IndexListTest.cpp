#include "support/IndexListFixture.h"

using namespace kel::test;

namespace {

class KEL_IndexListTest : public IndexListFixture {};

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

TEST_F(KEL_IndexListTest, OneArrayGivenTwiceMakesNoList) {
    const auto array = arrayOf(a), empty = arrayOf();
    EXPECT_EQ(CreateKELIndexList(&asArray(array), &asArray(array)), nullptr);
    EXPECT_EQ(CreateKELIndexList(&asArray(empty), &asArray(empty)), nullptr);
    EXPECT_EQ(referencesOf(*array), 1);
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

TEST_F(KEL_IndexListTest, AKeyIsFoundByItsText) {
    EXPECT_TRUE(list->containsKeyText("c"));
    EXPECT_FALSE(list->containsKeyText("1"));
    EXPECT_FALSE(list->containsKeyText(nullptr));
}

TEST_F(KEL_IndexListTest, TheItemOfAKeyTextIsReplaced) {
    list->setItemOfKeyText("b", four.get());
    EXPECT_EQ(pairs(), "a=1 b=4 c=3");
    EXPECT_EQ(notFound([&] { list->setItemOfKeyText("7", four.get()); }), keyValueNotFound);
    list->setItemOfKeyText(nullptr, four.get());
    list->setItemOfKeyText("b", nullptr);
    EXPECT_EQ(pairs(), "a=1 b=4 c=3");
}

TEST_F(KEL_IndexListTest, PairsAreRemovedByKeyTextAsByKeyValue) {
    list->addPair(otherA.get(), four.get());
    list->removeKeyText("a");
    EXPECT_EQ(pairs(), "b=2 c=3");
    EXPECT_EQ(notFound([&] { list->removeKeyText("a"); }), keyValueNotFound);
    list->removeKeyText(nullptr);
    EXPECT_EQ(pairs(), "b=2 c=3");
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
