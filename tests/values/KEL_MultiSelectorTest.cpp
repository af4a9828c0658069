#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// A watched multi-selector over the list red=1 green=2 blue=3.
class KEL_MultiSelectorTest : public ::testing::Test {
protected:
    KEL_MultiSelectorTest() { watch(selector.get(), watcher); }

    std::string selected() const { return textsOf(*selector->getSelectedKeys()); }

    HeldValue red = stringOf("red"), green = stringOf("green"), blue = stringOf("blue");
    HeldValue otherRed = stringOf("red");
    HeldValue one = intOf(1), two = intOf(2), three = intOf(3), otherOne = intOf(1);
    HeldValue list = listOf(arrayOf(red, green, blue), arrayOf(one, two, three));
    Held<KEL_MultiSelector> selector{CreateKELMultiSelector(&asList(list))};
    Watcher watcher;
};

TEST_F(KEL_MultiSelectorTest, IsOfItsKindAndSelectsNothingAtFirst) {
    EXPECT_EQ(selector->getType(), 11);
    EXPECT_EQ(selector->getSelectedKeys()->getCount(), 0);
    EXPECT_TRUE(selector->isKeySelected(nullptr));
    EXPECT_TRUE(selector->isItemSelected(nullptr));
    EXPECT_EQ(selector->toString(), nullptr);
}

TEST_F(KEL_MultiSelectorTest, SharesItsListOrOwnsANewOne) {
    const Held<KEL_MultiSelector> alone(CreateKELMultiSelector(nullptr));
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), list.get());
    EXPECT_EQ(alone->getList()->getCount(), 0);
    alone->getList()->addPair(red.get(), one.get());
    EXPECT_TRUE(alone->selectKey(red.get()));
}

TEST_F(KEL_MultiSelectorTest, SelectsKeysInTheOrderOfTheirSelection) {
    EXPECT_TRUE(selector->selectKey(blue.get()));
    EXPECT_TRUE(selector->selectKey(red.get()));
    EXPECT_EQ(selected(), "blue red");
    EXPECT_EQ(selector->getSelectedKeys()->getVar(1), red.get());
    EXPECT_EQ(watcher.calls(), 2);
    EXPECT_EQ(watcher.told[0], selector.get());
}

TEST_F(KEL_MultiSelectorTest, SelectingAKeyTwiceKeepsOneEntryAndIsTrueBothTimes) {
    EXPECT_TRUE(selector->selectKey(red.get()));
    EXPECT_TRUE(selector->selectKey(red.get()));
    EXPECT_TRUE(selector->selectItem(one.get()));
    EXPECT_EQ(selected(), "red");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_MultiSelectorTest, WhatIsNotInTheListIsNotSelected) {
    EXPECT_FALSE(selector->selectKey(nullptr));
    EXPECT_FALSE(selector->selectKey(otherRed.get()));
    EXPECT_FALSE(selector->selectItem(nullptr));
    EXPECT_FALSE(selector->selectItem(otherOne.get()));
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_MultiSelectorTest, SelectsTheKeyOfAnItem) {
    EXPECT_TRUE(selector->selectItem(two.get()));
    EXPECT_EQ(selected(), "green");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_MultiSelectorTest, DeselectsKeys) {
    selector->selectKey(red.get());
    selector->selectKey(green.get());
    EXPECT_TRUE(selector->deselectKey(red.get()));
    EXPECT_EQ(selected(), "green");
    EXPECT_EQ(watcher.calls(), 3);
}

TEST_F(KEL_MultiSelectorTest, DeselectingAKeyThatIsNotSelectedIsFalse) {
    selector->selectKey(red.get());
    EXPECT_FALSE(selector->deselectKey(green.get()));
    EXPECT_FALSE(selector->deselectKey(otherRed.get()));
    EXPECT_FALSE(selector->deselectKey(nullptr));
    EXPECT_EQ(selected(), "red");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_MultiSelectorTest, DeselectsTheKeyOfAnItem) {
    selector->selectKey(red.get());
    EXPECT_FALSE(selector->deselectItem(two.get()));
    EXPECT_FALSE(selector->deselectItem(otherOne.get()));
    EXPECT_FALSE(selector->deselectItem(nullptr));
    EXPECT_TRUE(selector->deselectItem(one.get()));
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_MultiSelectorTest, BothClearingOperationsSelectNothing) {
    selector->selectKey(red.get());
    selector->selectKey(green.get());
    selector->clearSelection();
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(watcher.calls(), 3);
    selector->clearSelection();
    EXPECT_EQ(watcher.calls(), 3);
    selector->selectKey(red.get());
    selector->deselectAll();
    EXPECT_EQ(selected(), "");
}

TEST_F(KEL_MultiSelectorTest, ClearingTellsTheObserversOfTheArrayAlsoIfItWasEmpty) {
    Watcher ofKeys;
    selector->getSelectedKeys()->addObserver(&ofKeys);
    selector->clearSelection();
    selector->deselectAll();
    EXPECT_EQ(ofKeys.calls(), 2);
    EXPECT_EQ(watcher.calls(), 0); // the selection has not changed
}

TEST_F(KEL_MultiSelectorTest, TheArrayOfSelectedKeysIsTheSelectionItself) {
    selector->selectKey(red.get());
    selector->getSelectedKeys()->removeAllVars();
    EXPECT_TRUE(selector->isKeySelected(nullptr));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_MultiSelectorTest, SelectedItemsAreANewArrayInTheOrderOfTheKeys) {
    selector->selectKey(blue.get());
    selector->selectKey(red.get());
    const Held<KEL_Array> items(selector->getSelectedItems());
    EXPECT_EQ(textsOf(*items), "3 1");
    EXPECT_EQ(items->getVar(0), three.get());
    items->removeAllVars();
    EXPECT_EQ(selected(), "blue red");
}

TEST_F(KEL_MultiSelectorTest, ASelectedKeyThatHasLeftTheListIsNotFound) {
    selector->selectKey(blue.get());
    selector->selectKey(red.get());
    asList(list).removeKey(red.get());
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { selector->getSelectedItems(); }),
              "Key not found in list.");
    EXPECT_EQ(selected(), "blue red");
    EXPECT_TRUE(selector->isKeySelected(red.get()));
    EXPECT_FALSE(selector->isItemSelected(one.get()));
    EXPECT_FALSE(selector->deselectItem(one.get()));
    EXPECT_TRUE(selector->deselectKey(red.get()));
}

TEST_F(KEL_MultiSelectorTest, TellsWhatIsSelected) {
    selector->selectKey(red.get());
    EXPECT_TRUE(selector->isKeySelected(red.get()));
    EXPECT_FALSE(selector->isKeySelected(otherRed.get()));
    EXPECT_FALSE(selector->isKeySelected(nullptr));
    EXPECT_TRUE(selector->isItemSelected(one.get()));
    EXPECT_FALSE(selector->isItemSelected(two.get()));
    EXPECT_FALSE(selector->isItemSelected(otherOne.get()));
    EXPECT_FALSE(selector->isItemSelected(nullptr));
}

TEST_F(KEL_MultiSelectorTest, SetListKeepsTheSelectionAndNotifies) {
    const auto other = listOf(arrayOf(), arrayOf());
    selector->selectKey(red.get());
    watcher.told.clear();
    selector->setList(&asList(other));
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), other.get());
    EXPECT_EQ(selected(), "red");
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_MultiSelectorTest, SetListWithTheCurrentListOrNullDoesNothing) {
    selector->setList(&asList(list));
    selector->setList(nullptr);
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), list.get());
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_MultiSelectorTest, ACopySharesTheListAndTheKeysButNotTheirArray) {
    selector->selectKey(red.get());
    const Held<KEL> copied(selector->copy());
    auto& copy = dynamic_cast<KEL_MultiSelector&>(*copied.get());
    EXPECT_EQ(copy.getList(), selector->getList());
    EXPECT_EQ(copy.getSelectedKeys()->getVar(0), red.get());
    EXPECT_TRUE(copy.equalsValue(selector.get()));
    copy.selectKey(green.get());
    EXPECT_EQ(selected(), "red");
    EXPECT_FALSE(copy.equalsValue(selector.get()));
}

TEST_F(KEL_MultiSelectorTest, ACopyHoldsAKeyAsOftenAsTheHostPutItThere) {
    selector->selectKey(red.get());
    selector->getSelectedKeys()->addVar(red.get());
    const Held<KEL> copied(selector->copy());
    EXPECT_TRUE(copied->equalsValue(selector.get()));
    EXPECT_EQ(textsOf(*dynamic_cast<KEL_MultiSelector&>(*copied).getSelectedKeys()), "red red");
}

TEST_F(KEL_MultiSelectorTest, SelectsTheListsKeyAlsoByAnotherObjectOfItsIdentity) {
    const auto key = stringWith(codeOf(1), "key"), twin = stringWith(codeOf(1), "twin");
    asList(list).addPair(key.get(), one.get());
    EXPECT_TRUE(selector->selectKey(twin.get()));
    EXPECT_EQ(selector->getSelectedKeys()->getVar(0), key.get());
    EXPECT_TRUE(selector->selectKey(key.get()));
    EXPECT_EQ(selected(), "key");
    EXPECT_TRUE(selector->deselectKey(twin.get()));
    EXPECT_EQ(selected(), "");
}

TEST_F(KEL_MultiSelectorTest, EqualityIsTheSameKeysInTheSameOrderOfTheSameList) {
    const Held<KEL_MultiSelector> other(CreateKELMultiSelector(&asList(list)));
    selector->selectKey(red.get());
    selector->selectKey(green.get());
    other->selectKey(green.get());
    other->selectKey(red.get());
    EXPECT_FALSE(selector->equalsValue(other.get()));
    other->deselectKey(green.get());
    other->selectKey(green.get());
    EXPECT_TRUE(selector->equalsValue(other.get()));
    other->setList(&asList(listOf(arrayOf(), arrayOf())));
    EXPECT_FALSE(selector->equalsValue(other.get()));
    EXPECT_FALSE(selector->equalsValue(Held<KEL>(CreateKELSelector(nullptr)).get()));
}

TEST_F(KEL_MultiSelectorTest, AssignTakesListAndSelection) {
    const Held<KEL_MultiSelector> other(CreateKELMultiSelector(nullptr));
    selector->selectKey(red.get());
    other->assign(selector.get());
    EXPECT_TRUE(other->equalsValue(selector.get()));
    other->clearSelection();
    EXPECT_EQ(selected(), "red");
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { other->assign(one.get()); }),
              "Can't set the value when types are not equal!");
}

TEST_F(KEL_MultiSelectorTest, AnObserverOfTheSelectedKeysMayReleaseTheSelector) {
    Held<KEL_Array> keys(selector->getSelectedKeys());
    keys->addRef();
    Watcher killer([&] { selector.clear(); });
    keys->addObserver(&killer);
    EXPECT_TRUE(selector->selectKey(red.get()));
    EXPECT_FALSE(selector);
    keys->removeObserver(&killer);
}

} // namespace
