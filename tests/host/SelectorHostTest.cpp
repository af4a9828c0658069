// Selectors as a host sees them: every operation, through the public classes.
#include "Host.h"

using namespace host;

namespace {

/// The list red=1 green=2 and a selector of each kind over it.
class SelectorHost : public ::testing::Test {
protected:
    SelectorHost() {
        list->addPair(red.get(), one.get());
        list->addPair(green.get(), two.get());
    }

    Held<KEL_String> red{CreateKELString("red")}, green{CreateKELString("green")};
    Held<KEL_String> otherRed{CreateKELString("red")};
    Held<KEL_Int> one{CreateKELInt(1)}, two{CreateKELInt(2)};
    Held<KEL_IndexList> list{CreateKELIndexList()}, otherList{CreateKELIndexList()};
    Held<KEL_Selector> choice{CreateKELSelector(list.get())};
    Held<KEL_MultiSelector> choices{CreateKELMultiSelector(list.get())};
    const KEL_Selector& constant = *choice;
};

TEST_F(SelectorHost, AreValuesThatCanBeWatched) {
    EXPECT_EQ(choice->getType(), KELKind_Selector);
    EXPECT_EQ(choices->getType(), KELKind_MultiSelector);
    EXPECT_NE(dynamic_cast<KEL_Observable*>(static_cast<KEL*>(choice.get())), nullptr);
    EXPECT_NE(dynamic_cast<KEL_Observable*>(static_cast<KEL*>(choices.get())), nullptr);
}

TEST_F(SelectorHost, EveryOperationOfASelector) {
    EXPECT_TRUE(choice->isSelectedKey(nullptr));
    EXPECT_TRUE(choice->selectKey(red.get()));
    EXPECT_FALSE(choice->selectKey(otherRed.get()));
    EXPECT_EQ(choice->getSelectedKey(), red.get());
    EXPECT_TRUE(choice->selectItem(two.get()));
    EXPECT_EQ(constant.getSelectedKey(), green.get());
    EXPECT_EQ(choice->getSelectedItem(), two.get());
    EXPECT_EQ(constant.getSelectedItem(), two.get());
    EXPECT_TRUE(choice->isSelectedKey(green.get()));
    EXPECT_TRUE(choice->isSelectedItem(two.get()));
    EXPECT_TRUE(choice->clearSelection());
    EXPECT_TRUE(choice->deselect());
    EXPECT_EQ(choice->getSelectedItem(), nullptr);
    EXPECT_EQ(choice->getList(), list.get());
    choice->setList(otherList.get());
    EXPECT_EQ(choice->getList(), otherList.get());
}

TEST_F(SelectorHost, EveryOperationOfAMultiSelector) {
    EXPECT_TRUE(choices->isKeySelected(nullptr));
    EXPECT_TRUE(choices->selectKey(red.get()));
    EXPECT_TRUE(choices->selectKey(red.get()));
    EXPECT_TRUE(choices->selectItem(two.get()));
    EXPECT_EQ(choices->getSelectedKeys()->getCount(), 2);
    EXPECT_EQ(hold(choices->getSelectedItems())->getVar(1), two.get());
    EXPECT_TRUE(choices->isKeySelected(green.get()));
    EXPECT_TRUE(choices->isItemSelected(one.get()));
    EXPECT_TRUE(choices->deselectKey(red.get()));
    EXPECT_FALSE(choices->deselectKey(red.get()));
    EXPECT_TRUE(choices->deselectItem(two.get()));
    choices->selectKey(red.get());
    choices->clearSelection();
    choices->deselectAll();
    EXPECT_TRUE(choices->isItemSelected(nullptr));
    EXPECT_EQ(choices->getList(), list.get());
    choices->setList(otherList.get());
    EXPECT_EQ(choices->getList(), otherList.get());
}

TEST_F(SelectorHost, ObserversAreToldOfSelectionsThatChange) {
    Watcher ofChoice, ofChoices;
    watch(*choice, ofChoice);
    watch(*choices, ofChoices);
    choice->selectKey(red.get());
    choice->selectKey(red.get());
    choices->selectKey(red.get());
    choices->selectKey(red.get());
    EXPECT_EQ(ofChoice.told, std::vector<KEL*>{choice.get()});
    EXPECT_EQ(ofChoices.told, std::vector<KEL*>{choices.get()});
    unwatch(*choice, ofChoice);
    unwatch(*choices, ofChoices);
}

TEST_F(SelectorHost, CopiesSelectFromTheSameList) {
    choice->selectKey(red.get());
    choices->selectKey(green.get());
    const auto copy = hold(choice->copy()), copies = hold(choices->copy());
    EXPECT_EQ(dynamic_cast<KEL_Selector&>(*copy).getList(), list.get());
    EXPECT_EQ(dynamic_cast<KEL_MultiSelector&>(*copies).getList(), list.get());
    EXPECT_TRUE(copy->equalsValue(choice.get()));
    EXPECT_TRUE(copies->equalsValue(choices.get()));
}

TEST_F(SelectorHost, HaveNoTextForm) {
    const auto out = hold(CreateKELStringOutputStream());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { out->write(choice.get()); }),
              "General KEL exception.");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { out->write(choices.get()); }),
              "General KEL exception.");
}

TEST_F(SelectorHost, AKeyThatHasLeftTheListIsNotFound) {
    choice->selectKey(red.get());
    choices->selectKey(red.get());
    list->removeKey(red.get());
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { choice->getSelectedItem(); }),
              "Key not found in list.");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { constant.getSelectedItem(); }),
              "Key value not found in list.");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { choices->getSelectedItems(); }),
              "Key not found in list.");
}

} // namespace
