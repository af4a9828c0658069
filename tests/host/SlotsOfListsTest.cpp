// Calls index lists and selectors by slot.
#include "Host.h"
#include "RawSlots.h"

namespace {

using host::bySlot;
using host::callSlot;
using host::hold;

/// A list of the pairs a=1 b=2.
class SlotsOfAnIndexList : public testing::Test {
protected:
    SlotsOfAnIndexList() {
        list->addPair(a.get(), one.get());
        list->addPair(b.get(), two.get());
    }

    std::string texts() const {
        std::string all;
        for (int32_t i = 0; i < list->getCount(); ++i) {
            all.append(all.empty() ? "" : " ").append(list->getKeyAt(i)->toString());
            all.append("=").append(list->getItemAt(i)->toString());
        }
        return all;
    }

    host::Held<KEL_String> a = hold(CreateKELString("a")), b = hold(CreateKELString("b"));
    host::Held<KEL_String> otherA = hold(CreateKELString("a")), c = hold(CreateKELString("c"));
    host::Held<KEL_Int> one = hold(CreateKELInt(1)), two = hold(CreateKELInt(2));
    host::Held<KEL_IndexList> list = hold(CreateKELIndexList());
    const KELInterface_IndexList_V1* object = list.get();
    host::BySlot<KELInterface_IndexList_V1> raw = bySlot<KELInterface_IndexList_V1>(*list);
};

TEST_F(SlotsOfAnIndexList, RemovesAKeyAt5) {
    callSlot<void, const KEL*>(object, 5, a.get());
    EXPECT_EQ(texts(), "b=2");
}

TEST_F(SlotsOfAnIndexList, RemovesAnItemAt6) {
    callSlot<void, const KEL*>(object, 6, two.get());
    EXPECT_EQ(texts(), "a=1");
}

TEST_F(SlotsOfAnIndexList, RemovesAKeyValueAt15) {
    callSlot<void, const KEL*>(object, 15, otherA.get());
    EXPECT_EQ(texts(), "b=2");
}

TEST_F(SlotsOfAnIndexList, SetsTheKeyOfAnItemAt17) {
    callSlot<void, const KEL*, KEL*>(object, 17, one.get(), c.get());
    EXPECT_EQ(texts(), "c=1 b=2");
}

TEST_F(SlotsOfAnIndexList, SetsAKeyValueAt27) {
    callSlot<void, const KEL*, const KEL*>(object, 27, otherA.get(), c.get());
    EXPECT_EQ(texts(), "c=1 b=2");
    EXPECT_EQ(list->getKeyAt(0), a.get());
}

TEST_F(SlotsOfAnIndexList, ThrowsFromASlot) {
    EXPECT_EQ(host::thrownMessage<KELNoSuchElementException>(
                  [&] { callSlot<void, const KEL*>(object, 5, otherA.get()); }),
              "Key not found in list.");
}

TEST_F(SlotsOfAnIndexList, LooksUpByIdentity) {
    EXPECT_EQ(raw.call<KEL*(const KEL*)>("getItem", a.get()), one.get());
    EXPECT_EQ(raw.call<KEL*(const KEL*) const>("getItem", b.get()), two.get());
    EXPECT_EQ(raw.call<KEL*(const KEL*)>("getKey", one.get()), a.get());
    EXPECT_EQ(raw.call<KEL*(const KEL*) const>("getKey", two.get()), b.get());
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("containsKey", a.get()));
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("containsItem", two.get()));
    EXPECT_EQ(raw.call<int32_t(const KEL*) const>("indexOfKey", b.get()), 1);
    EXPECT_EQ(raw.call<int32_t(const KEL*) const>("indexOfItem", one.get()), 0);
}

TEST_F(SlotsOfAnIndexList, LooksUpByValue) {
    EXPECT_EQ(raw.call<KEL*(const KEL*)>("getItemOfKeyValue", otherA.get()), one.get());
    EXPECT_EQ(raw.call<KEL*(const KEL*) const>("getItemOfKeyValue", otherA.get()), one.get());
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("containsKeyValue", otherA.get()));
    EXPECT_EQ(raw.call<int32_t(const KEL*) const>("indexOfKeyValue", otherA.get()), 0);
    EXPECT_EQ(raw.call<KEL*(const char*) const>("getItemOfKeyText", "b"), two.get());
}

TEST_F(SlotsOfAnIndexList, ReplacesItems) {
    raw.call<void(const KEL*, KEL*)>("setItemOfKey", a.get(), two.get());
    EXPECT_EQ(texts(), "a=2 b=2");
    raw.call<void(const KEL*, KEL*)>("setItemOfKeyValue", otherA.get(), one.get());
    EXPECT_EQ(texts(), "a=1 b=2");
    raw.call<void(int32_t, KEL*)>("setItemAt", 1, one.get());
    EXPECT_EQ(texts(), "a=1 b=1");
}

TEST_F(SlotsOfAnIndexList, SetsATypedKey) {
    const auto numbers = hold(CreateKELIndexList());
    const auto number = hold(CreateKELInt(0));
    const auto real = hold(CreateKELDouble(0.0));
    const auto numbersRaw = bySlot<KELInterface_IndexList_V1>(*numbers);
    numbers->addPair(number.get(), one.get());
    numbersRaw.call<void(const KEL*, long)>("setKeyInt", number.get(), 1L);
    EXPECT_EQ(number->getValue(), 1);
    numbersRaw.call<void(const KEL*, unsigned long)>("setKeyInt", number.get(), 2UL);
    EXPECT_EQ(number->getValue(), 2);
    numbersRaw.call<void(const KEL*, int32_t)>("setKeyInt", number.get(), 3);
    EXPECT_EQ(number->getValue(), 3);
    numbersRaw.call<void(const KEL*, KEL*)>("setKeyOfItem", one.get(), real.get());
    numbersRaw.call<void(const KEL*, float)>("setKeyDouble", real.get(), 1.5F);
    EXPECT_EQ(real->getValue(), 1.5);
    numbersRaw.call<void(const KEL*, double)>("setKeyDouble", real.get(), 2.5);
    EXPECT_EQ(real->getValue(), 2.5);
    raw.call<void(const KEL*, const char*)>("setKeyString", otherA.get(), "z");
    EXPECT_EQ(texts(), "z=1 b=2");
}

TEST_F(SlotsOfAnIndexList, SetsAGuidOrATruthAsKey) {
    const auto guid = hold(CreateKELGuid());
    const auto truth = hold(CreateKELBoolean(false));
    list->addPair(guid.get(), one.get());
    list->addPair(truth.get(), two.get());
    raw.call<void(const KEL*, const JHashCode&)>("setKeyguid", guid.get(), JHashCode(4));
    raw.call<void(const KEL*, bool)>("setKeyBoolean", truth.get(), true);
    EXPECT_EQ(guid->toInt(), 4);
    EXPECT_TRUE(truth->getValue());
}

TEST_F(SlotsOfAnIndexList, LooksKeysUpByText) {
    const auto ofClass = bySlot<KEL_IndexList>(*list);
    EXPECT_TRUE(ofClass.call<bool(const char*) const>("containsKeyText", "b"));
    ofClass.call<void(const char*, KEL*)>("setItemOfKeyText", "b", one.get());
    EXPECT_EQ(list->getItemAt(1), one.get());
    ofClass.call<void(const char*)>("removeKeyText", "b");
    EXPECT_FALSE(list->containsKey(b.get()));
}

TEST_F(SlotsOfAnIndexList, AddsTypedKeys) {
    list->removeAllPairs();
    KEL* const item = one.get();
    EXPECT_EQ(raw.call<int32_t(const char*, KEL*)>("addKeyString", "k", item), 0);
    EXPECT_EQ(raw.call<int32_t(float, KEL*)>("addKeyDouble", 1.5F, item), 1);
    EXPECT_EQ(raw.call<int32_t(double, KEL*)>("addKeyDouble", 2.5, item), 2);
    EXPECT_EQ(raw.call<int32_t(long, KEL*)>("addKeyInt", 3L, item), 3);
    EXPECT_EQ(raw.call<int32_t(unsigned long, KEL*)>("addKeyInt", 4UL, item), 4);
    EXPECT_EQ(raw.call<int32_t(int32_t, KEL*)>("addKeyInt", 5, item), 5);
    EXPECT_EQ(raw.call<int32_t(bool, KEL*)>("addKeyBoolean", true, item), 6);
    EXPECT_EQ(texts(), "k=1 1.500000=1 2.500000=1 3=1 4=1 5=1 true=1");
    EXPECT_EQ(raw.call<int32_t(const JHashCode&, KEL*)>("addKeyguid", JHashCode(8), item), 7);
    EXPECT_EQ(list->getKeyAt(7)->toInt(), 8);
}

TEST_F(SlotsOfAnIndexList, AddsTypedItems) {
    list->removeAllPairs();
    KEL* const key = a.get();
    EXPECT_EQ(raw.call<int32_t(KEL*, const char*)>("addItemString", key, "i"), 0);
    EXPECT_EQ(raw.call<int32_t(KEL*, float)>("addItemDouble", key, 1.5F), 1);
    EXPECT_EQ(raw.call<int32_t(KEL*, double)>("addItemDouble", key, 2.5), 2);
    EXPECT_EQ(raw.call<int32_t(KEL*, long)>("addItemInt", key, 3L), 3);
    EXPECT_EQ(raw.call<int32_t(KEL*, unsigned long)>("addItemInt", key, 4UL), 4);
    EXPECT_EQ(raw.call<int32_t(KEL*, int32_t)>("addItemInt", key, 5), 5);
    EXPECT_EQ(raw.call<int32_t(KEL*, bool)>("addItemBoolean", key, true), 6);
    EXPECT_EQ(texts(), "a=i a=1.500000 a=2.500000 a=3 a=4 a=5 a=true");
    EXPECT_EQ(raw.call<int32_t(KEL*, const JHashCode&)>("addItemguid", key, JHashCode(8)), 7);
    EXPECT_EQ(list->getItemAt(7)->toInt(), 8);
}

TEST_F(SlotsOfAnIndexList, AddsNamedItems) {
    list->removeAllPairs();
    EXPECT_EQ(raw.call<int32_t(const char*, const char*)>("addNamedString", "s", "t"), 0);
    EXPECT_EQ(raw.call<int32_t(const char*, float)>("addNamedDouble", "f", 1.5F), 1);
    EXPECT_EQ(raw.call<int32_t(const char*, double)>("addNamedDouble", "d", 2.5), 2);
    EXPECT_EQ(raw.call<int32_t(const char*, long)>("addNamedInt", "l", 3L), 3);
    EXPECT_EQ(raw.call<int32_t(const char*, unsigned long)>("addNamedInt", "u", 4UL), 4);
    EXPECT_EQ(raw.call<int32_t(const char*, int32_t)>("addNamedInt", "i", 5), 5);
    EXPECT_EQ(raw.call<int32_t(const char*, bool)>("addNamedBoolean", "b", true), 6);
    EXPECT_EQ(texts(), "s=t f=1.500000 d=2.500000 l=3 u=4 i=5 b=true");
    EXPECT_EQ(raw.call<int32_t(const char*, const JHashCode&)>("addNamedguid", "g", JHashCode(8)),
              7);
    EXPECT_EQ(list->getItemAt(7)->toInt(), 8);
}

TEST_F(SlotsOfAnIndexList, MovesPairs) {
    const auto more = hold(CreateKELIndexList());
    more->addPair(otherA.get(), one.get());
    EXPECT_EQ(raw.call<int32_t(KEL*, KEL*)>("addPair", c.get(), two.get()), 2);
    raw.call<void(KEL*, KEL*, int32_t)>("insertPair", c.get(), one.get(), 0);
    EXPECT_EQ(texts(), "c=1 a=1 b=2 c=2");
    raw.call<void(int32_t, int32_t)>("swapPairs", 0, 3);
    raw.call<void(int32_t)>("removePair", 3);
    EXPECT_EQ(texts(), "c=2 a=1 b=2");
    raw.call<int32_t(KEL_IndexList*)>("addPairs", more.get());
    EXPECT_EQ(raw.call<int32_t() const>("getCount"), list->getCount());
    raw.call<void()>("removeAllPairs");
    EXPECT_EQ(texts(), "");
}

TEST_F(SlotsOfAnIndexList, LendsTheWhole) {
    EXPECT_EQ(raw.call<KEL_Array*()>("getKeys"), list->getKeys());
    EXPECT_EQ(raw.call<const KEL_Array*() const>("getKeys"), list->getKeys());
    EXPECT_EQ(raw.call<KEL_Array*()>("getItems"), list->getItems());
    EXPECT_EQ(raw.call<const KEL_Array*() const>("getItems"), list->getItems());
    EXPECT_EQ(raw.call<KEL*(int32_t) const>("getKeyAt", 1), b.get());
    EXPECT_EQ(raw.call<KEL*(int32_t) const>("getItemAt", 1), two.get());
}

TEST_F(SlotsOfAnIndexList, AreChosenFromByASelector) {
    const auto selector = hold(CreateKELSelector(list.get()));
    const auto choice = bySlot<KELInterface_Selector_V1>(*selector);
    EXPECT_TRUE(choice.call<bool(KEL*)>("selectKey", a.get()));
    EXPECT_TRUE(choice.call<bool(const KEL*) const>("isSelectedKey", a.get()));
    EXPECT_EQ(choice.call<KEL*()>("getSelectedKey"), a.get());
    EXPECT_TRUE(choice.call<bool(KEL*)>("selectItem", two.get()));
    EXPECT_TRUE(choice.call<bool(const KEL*) const>("isSelectedItem", two.get()));
    EXPECT_EQ(choice.call<KEL*() const>("getSelectedKey"), b.get());
    EXPECT_TRUE(choice.call<bool()>("clearSelection"));
    EXPECT_TRUE(choice.call<bool()>("deselect"));
    EXPECT_EQ(selector->getSelectedKey(), nullptr);
    EXPECT_EQ(choice.call<KEL_IndexList*() const>("getList"), list.get());
    const auto other = hold(CreateKELIndexList());
    choice.call<void(KEL_IndexList*)>("setList", other.get());
    EXPECT_EQ(selector->getList(), other.get());
}

TEST_F(SlotsOfAnIndexList, FindTheSelectedItemByIdentityOrByValue) {
    const auto selector = hold(CreateKELSelector(list.get()));
    const auto choice = bySlot<KELInterface_Selector_V1>(*selector);
    selector->selectKey(a.get());
    list->setKeyOfItem(one.get(), otherA.get());
    EXPECT_EQ(choice.call<KEL*() const>("getSelectedItemByKeyValue"), one.get());
    EXPECT_EQ(host::thrownMessage<KELNoSuchElementException>(
                  [&] { choice.call<KEL*() const>("getSelectedItem"); }),
              "Key not found in list.");
}

TEST_F(SlotsOfAnIndexList, AreChosenFromByAMultiSelector) {
    const auto selector = hold(CreateKELMultiSelector(list.get()));
    const auto choice = bySlot<KELInterface_MultiSelector_V1>(*selector);
    EXPECT_TRUE(choice.call<bool(KEL*)>("selectKey", a.get()));
    EXPECT_TRUE(choice.call<bool(KEL*)>("selectItem", two.get()));
    EXPECT_TRUE(choice.call<bool(const KEL*) const>("isKeySelected", b.get()));
    EXPECT_TRUE(choice.call<bool(const KEL*) const>("isItemSelected", one.get()));
    EXPECT_EQ(choice.call<KEL_Array*() const>("getSelectedKeys")->getCount(), 2);
    const auto items = hold(choice.call<KEL_Array*() const>("getSelectedItems"));
    EXPECT_EQ(items->getVar(0), one.get());
    EXPECT_TRUE(choice.call<bool(KEL*)>("deselectKey", a.get()));
    EXPECT_TRUE(choice.call<bool(KEL*)>("deselectItem", two.get()));
    EXPECT_EQ(selector->getSelectedKeys()->getCount(), 0);
    selector->selectKey(a.get());
    choice.call<void()>("clearSelection");
    EXPECT_EQ(selector->getSelectedKeys()->getCount(), 0);
    selector->selectKey(a.get());
    choice.call<void()>("deselectAll");
    EXPECT_EQ(selector->getSelectedKeys()->getCount(), 0);
    EXPECT_EQ(choice.call<KEL_IndexList*() const>("getList"), list.get());
    const auto other = hold(CreateKELIndexList());
    choice.call<void(KEL_IndexList*)>("setList", other.get());
    EXPECT_EQ(selector->getList(), other.get());
}

} // namespace
