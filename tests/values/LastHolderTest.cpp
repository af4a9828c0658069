// Operations that drop the last holder of their own value. The value lives exactly until the
// operation is done. A sanitizer reports every access to a value that was destroyed too early.
#include "support/Held.h"
#include "support/Kinds.h"
#include "support/Values.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::test;

/// Runs an operation on a value. `held` is the caller's last reference to it. The other references
/// are inside the value.
template <class T, class Operation>
void expectGoneAfter(HeldValue held, const Operation& operation) {
    T& value = dynamic_cast<T&>(*held);
    const LifeProbe probe(*held);
    held.clear();
    ASSERT_TRUE(probe.isAlive());
    operation(value);
    EXPECT_FALSE(probe.isAlive());
}

HeldValue selfHoldingArray() {
    HeldValue array = arrayOf();
    asArray(array).addVar(array.get());
    return array;
}

HeldValue selfHoldingStruct() {
    HeldValue structure = structOf();
    asStruct(structure).addVar("x", structure.get());
    return structure;
}

HeldValue selfHoldingManager() {
    HeldValue manager(new KEL_Manager_Impl());
    dynamic_cast<KEL_Manager&>(*manager).addKel(manager.get());
    return manager;
}

TEST(LastHolder, AnArrayOutlivesWhatItDrops) {
    const HeldValue other = intOf(1);
    const HeldValue empty = arrayOf();
    expectGoneAfter<KEL_Array>(selfHoldingArray(), [](KEL_Array& a) { a.removeVar(0); });
    expectGoneAfter<KEL_Array>(selfHoldingArray(), [](KEL_Array& a) { a.removeAllVars(); });
    expectGoneAfter<KEL_Array>(selfHoldingArray(), [&](KEL_Array& a) { a.setVar(other.get(), 0); });
    expectGoneAfter<KEL_Array>(selfHoldingArray(), [&](KEL_Array& a) { a.assign(empty.get()); });
    expectGoneAfter<KEL_Array>(selfHoldingArray(),
                               [&](KEL_Array& a) { a.setVarValue(0, empty.get()); });
}

TEST(LastHolder, AStructOutlivesWhatItDrops) {
    const HeldValue other = intOf(1);
    const HeldValue empty = structOf();
    expectGoneAfter<KEL_Struct>(selfHoldingStruct(), [](KEL_Struct& s) { s.removeVar("x"); });
    expectGoneAfter<KEL_Struct>(selfHoldingStruct(), [](KEL_Struct& s) { s.removeAllVars(); });
    expectGoneAfter<KEL_Struct>(selfHoldingStruct(),
                                [&](KEL_Struct& s) { s.setVar("x", other.get()); });
    expectGoneAfter<KEL_Struct>(selfHoldingStruct(),
                                [&](KEL_Struct& s) { s.addVar("x", other.get()); });
    expectGoneAfter<KEL_Struct>(selfHoldingStruct(), [&](KEL_Struct& s) { s.assign(empty.get()); });
}

TEST(LastHolder, AManagerOutlivesWhatItDrops) {
    const auto removeSelf = [](KEL_Manager& m) {
        JHashCode own;
        m.removeKel(m.getHashCode(own));
    };
    expectGoneAfter<KEL_Manager>(selfHoldingManager(), removeSelf);
    expectGoneAfter<KEL_Manager>(selfHoldingManager(), [](KEL_Manager& m) { m.removeAllKels(); });
    expectGoneAfter<KEL_Manager>(selfHoldingManager(), [](KEL_Manager& m) {
        JHashCode own;
        const HeldValue twin(new KEL_Int_Impl(m.getHashCode(own), 1));
        m.addKel(twin.get());
    });
}

TEST(LastHolder, ASelectorOutlivesItsSelection) {
    const HeldValue key = arrayOf();
    const HeldValue list = listOf(arrayOf(key), arrayOf(intOf(1)));
    HeldValue selector(new KEL_Selector_Impl(dynamic_cast<KEL_IndexList_Impl*>(list.get())));
    dynamic_cast<KEL_Selector&>(*selector).selectKey(key.get());
    asArray(key).addVar(selector.get());
    asList(list).removePair(0);
    const LifeProbe probe(*selector);
    auto& raw = dynamic_cast<KEL_Selector&>(*selector);
    selector.clear();
    const_cast<HeldValue&>(key).clear();
    ASSERT_TRUE(probe.isAlive());
    raw.clearSelection();
    EXPECT_FALSE(probe.isAlive());
}

template <class Selector> void expectToOutliveItsList(HeldValue selector, HeldValue list) {
    asList(list).addPair(intOf(1).get(), selector.get());
    const LifeProbe probe(*selector);
    auto& raw = dynamic_cast<Selector&>(*selector);
    const HeldValue other = listOf(arrayOf(), arrayOf());
    selector.clear();
    list.clear();
    ASSERT_TRUE(probe.isAlive());
    raw.setList(&asList(other));
    EXPECT_FALSE(probe.isAlive());
}

TEST(LastHolder, ASelectorOutlivesItsList) {
    HeldValue list = listOf(arrayOf(), arrayOf());
    auto* raw = dynamic_cast<KEL_IndexList_Impl*>(list.get());
    expectToOutliveItsList<KEL_Selector>(HeldValue(new KEL_Selector_Impl(raw)), std::move(list));
}

TEST(LastHolder, AMultiSelectorOutlivesItsList) {
    HeldValue list = listOf(arrayOf(), arrayOf());
    auto* raw = dynamic_cast<KEL_IndexList_Impl*>(list.get());
    expectToOutliveItsList<KEL_MultiSelector>(HeldValue(new KEL_MultiSelector_Impl(raw)),
                                              std::move(list));
}

TEST(LastHolder, ANameCanBeTheTextOfTheValueThatItReplaces) {
    const HeldValue rules = descriptorOf("x", stringOf("x"));
    const HeldValue one = intOf(1);
    auto& structure = dynamic_cast<KEL_Struct&>(*rules);
    structure.setVar(std::as_const(structure).getVar("x")->toString(), one.get());
    EXPECT_EQ(structure.getInt("x"), 1);
}

TEST(LastHolder, AssigningTellsThePartsOfTheTarget) {
    const HeldValue list = listOf(arrayOf(), arrayOf());
    const HeldValue source = listOf(arrayOf(intOf(1)), arrayOf(intOf(2)));
    Watcher ofKeys, ofItems, ofList;
    watch(asList(list).getKeys(), ofKeys);
    watch(asList(list).getItems(), ofItems);
    watch(list.get(), ofList);
    list->assign(source.get());
    EXPECT_EQ(ofKeys.calls() + ofItems.calls() + ofList.calls(), 3);
    const HeldValue rules = intRange(1, 2);
    Watcher ofInner;
    watch(asDescriptor(rules).getStruct(), ofInner);
    rules->assign(intRange(3, 4).get());
    EXPECT_EQ(ofInner.calls(), 1);
}

} // namespace
