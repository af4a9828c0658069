#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// A watched selector over the list red=1 green=2.
class KEL_SelectorTest : public ::testing::Test {
protected:
    KEL_SelectorTest() { watch(selector.get(), watcher); }

    HeldValue red = stringOf("red"), green = stringOf("green"), otherRed = stringOf("red");
    HeldValue one = intOf(1), two = intOf(2), otherOne = intOf(1);
    HeldValue list = listOf(arrayOf(red, green), arrayOf(one, two));
    Held<KEL_Selector> selector{CreateKELSelector(&asList(list))};
    Watcher watcher;
};

TEST_F(KEL_SelectorTest, IsOfItsKindAndSelectsNothingAtFirst) {
    EXPECT_EQ(selector->getType(), 10);
    EXPECT_EQ(selector->getSelectedKey(), nullptr);
    EXPECT_EQ(selector->getSelectedItem(), nullptr);
    EXPECT_TRUE(selector->isSelectedKey(nullptr));
    EXPECT_TRUE(selector->isSelectedItem(nullptr));
    EXPECT_FALSE(selector->isSelectedKey(red.get()));
    EXPECT_FALSE(selector->isSelectedItem(one.get()));
}

TEST_F(KEL_SelectorTest, SharesItsList) {
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), list.get());
    EXPECT_EQ(referencesOf(*list), 2);
}

TEST_F(KEL_SelectorTest, WithoutAListItOwnsANewEmptyOne) {
    const Held<KEL_Selector> alone(CreateKELSelector(nullptr));
    EXPECT_EQ(alone->getList()->getCount(), 0);
    EXPECT_FALSE(alone->selectKey(red.get()));
    alone->getList()->addPair(red.get(), one.get());
    EXPECT_TRUE(alone->selectKey(red.get()));
}

TEST_F(KEL_SelectorTest, SelectsAKeyOfTheListAndNotifiesOnce) {
    EXPECT_TRUE(selector->selectKey(red.get()));
    const KEL_Selector& constant = *selector;
    EXPECT_EQ(selector->getSelectedKey(), red.get());
    EXPECT_EQ(constant.getSelectedKey(), red.get());
    EXPECT_EQ(selector->getSelectedItem(), one.get());
    EXPECT_EQ(selector->getSelectedItemByKeyValue(), one.get());
    EXPECT_EQ(watcher.told, std::vector<KEL*>{selector.get()});
}

TEST_F(KEL_SelectorTest, AKeyThatIsOnlyEqualInTextIsNoKeyOfTheList) {
    selector->selectKey(green.get());
    EXPECT_FALSE(selector->selectKey(otherRed.get()));
    EXPECT_EQ(selector->getSelectedKey(), green.get());
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_SelectorTest, SelectsTheListsKeyAlsoByAnotherObjectOfItsIdentity) {
    const auto key = stringWith(codeOf(1), "key"), twin = stringWith(codeOf(1), "twin");
    asList(list).addPair(key.get(), one.get());
    EXPECT_TRUE(selector->selectKey(twin.get()));
    EXPECT_EQ(selector->getSelectedKey(), key.get());
    EXPECT_TRUE(selector->selectKey(key.get()));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_SelectorTest, SelectingNullClearsTheSelection) {
    selector->selectKey(red.get());
    EXPECT_TRUE(selector->selectKey(nullptr));
    EXPECT_EQ(selector->getSelectedKey(), nullptr);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_SelectorTest, SelectsTheKeyOfAnItem) {
    EXPECT_TRUE(selector->selectItem(two.get()));
    EXPECT_EQ(selector->getSelectedKey(), green.get());
    EXPECT_FALSE(selector->selectItem(otherOne.get()));
    EXPECT_FALSE(selector->selectItem(nullptr));
    EXPECT_EQ(selector->getSelectedKey(), green.get());
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_SelectorTest, BothClearingOperationsSelectNothing) {
    selector->selectKey(red.get());
    EXPECT_TRUE(selector->clearSelection());
    EXPECT_EQ(selector->getSelectedKey(), nullptr);
    selector->selectKey(red.get());
    EXPECT_TRUE(selector->deselect());
    EXPECT_EQ(selector->getSelectedKey(), nullptr);
    EXPECT_TRUE(selector->clearSelection());
}

TEST_F(KEL_SelectorTest, ASelectionThatDoesNotChangeNotifiesNobody) {
    selector->clearSelection();
    EXPECT_EQ(watcher.calls(), 0);
    selector->selectKey(red.get());
    selector->selectKey(red.get());
    selector->selectItem(one.get());
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_SelectorTest, IsSelectedComparesByIdentity) {
    selector->selectKey(red.get());
    EXPECT_TRUE(selector->isSelectedKey(red.get()));
    EXPECT_FALSE(selector->isSelectedKey(otherRed.get()));
    EXPECT_FALSE(selector->isSelectedKey(nullptr));
    EXPECT_TRUE(selector->isSelectedItem(one.get()));
    EXPECT_FALSE(selector->isSelectedItem(otherOne.get()));
    EXPECT_FALSE(selector->isSelectedItem(nullptr));
}

TEST_F(KEL_SelectorTest, AKeyThatHasLeftTheListIsNotFound) {
    selector->selectKey(red.get());
    asList(list).removeKey(red.get());
    const auto messageOf = [](const auto& action) {
        return thrownMessage<KELNoSuchElementException>(action);
    };
    EXPECT_EQ(selector->getSelectedKey(), red.get());
    EXPECT_EQ(messageOf([&] { selector->getSelectedItem(); }), "Key not found in list.");
    EXPECT_EQ(messageOf([&] { selector->getSelectedItemByKeyValue(); }),
              "Key value not found in list.");
}

TEST_F(KEL_SelectorTest, AKeyThatHasLeftTheListHasNoItem) {
    selector->selectKey(red.get());
    asList(list).removeKey(red.get());
    EXPECT_FALSE(selector->isSelectedItem(one.get()));
    EXPECT_FALSE(selector->isSelectedItem(nullptr));
}

TEST_F(KEL_SelectorTest, TheNameSaysWhetherTheItemIsFoundByIdentityOrByValue) {
    const KEL_Selector& constant = *selector;
    selector->selectKey(red.get());
    asList(list).setKeyOfItem(one.get(), otherRed.get());
    EXPECT_EQ(selector->getSelectedItemByKeyValue(), one.get());
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { constant.getSelectedItem(); }),
              "Key not found in list.");
}

TEST_F(KEL_SelectorTest, SetListKeepsTheSelectionAndNotifies) {
    const auto other = listOf(arrayOf(green), arrayOf(two));
    selector->selectKey(red.get());
    watcher.told.clear();
    selector->setList(&asList(other));
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), other.get());
    EXPECT_EQ(selector->getSelectedKey(), red.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(referencesOf(*list), 1);
}

TEST_F(KEL_SelectorTest, SetListWithTheCurrentListOrNullDoesNothing) {
    selector->setList(&asList(list));
    selector->setList(nullptr);
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), list.get());
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_SelectorTest, AnEqualListIsStillAnotherList) {
    const auto equal = listOf(arrayOf(red, green), arrayOf(one, two));
    selector->setList(&asList(equal));
    EXPECT_EQ(static_cast<KEL*>(selector->getList()), equal.get());
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_SelectorTest, AnObserverMaySelectAgain) {
    watcher.then = [&] {
        watcher.then = nullptr;
        selector->selectKey(green.get());
    };
    selector->selectKey(red.get());
    EXPECT_EQ(selector->getSelectedKey(), green.get());
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_SelectorTest, ACopySharesListAndSelectionAndIsEqual) {
    selector->selectKey(red.get());
    const Held<KEL> copied(selector->copy());
    auto& copy = dynamic_cast<KEL_Selector&>(*copied.get());
    EXPECT_EQ(copy.getList(), selector->getList());
    EXPECT_EQ(copy.getSelectedKey(), red.get());
    EXPECT_TRUE(copy.equalsValue(selector.get()));
    copy.selectKey(green.get());
    EXPECT_EQ(selector->getSelectedKey(), red.get());
    EXPECT_FALSE(copy.equalsValue(selector.get()));
}

TEST_F(KEL_SelectorTest, SelectorsOverEqualListsAreNotEqual) {
    const auto equal = listOf(arrayOf(red, green), arrayOf(one, two));
    const Held<KEL_Selector> other(CreateKELSelector(&asList(equal)));
    const Held<KEL_MultiSelector> otherKind(CreateKELMultiSelector(&asList(list)));
    EXPECT_FALSE(selector->equalsValue(other.get()));
    EXPECT_FALSE(selector->equalsValue(otherKind.get()));
    EXPECT_FALSE(selector->equalsValue(nullptr));
}

TEST_F(KEL_SelectorTest, AssignTakesListAndSelection) {
    const Held<KEL_Selector> other(CreateKELSelector(nullptr));
    selector->selectKey(red.get());
    other->assign(selector.get());
    EXPECT_TRUE(other->equalsValue(selector.get()));
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { other->assign(one.get()); }),
              "Can't set the value when types are not equal!");
}

TEST_F(KEL_SelectorTest, ASelectedKeyOutlivesTheList) {
    auto key = stringOf("only here");
    asList(list).addPair(key.get(), one.get());
    selector->selectKey(key.get());
    key.clear();
    asList(list).removeAllPairs();
    EXPECT_STREQ(selector->getSelectedKey()->toString(), "only here");
}

TEST_F(KEL_SelectorTest, ASelectorInItsOwnListIsCopiedComparedAndDestroyed) {
    asList(list).addNamedInt("x", int32_t{1});
    asList(list).addPair(red.get(), selector.get());
    const LifeProbe probe(*KEL_Impl::of(list.get()));
    {
        const HeldValue copy(KEL_Impl::of(list->copy()));
        const Held<KEL> copied(selector->copy());
        EXPECT_TRUE(copied->equalsValue(selector.get()));
        // The copied list holds a copied selector, which selects from the old list.
        EXPECT_FALSE(copy->equalsValue(listOf(arrayOf(), arrayOf()).get()));
        EXPECT_TRUE(copy->equalsValue(list.get()));
    }
    asList(list).removeAllPairs();
    list.clear();
    EXPECT_TRUE(probe.isAlive());
    selector.clear();
    EXPECT_FALSE(probe.isAlive());
}

} // namespace
