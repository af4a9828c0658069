// The notifications to observers of checked structs and descriptors: changes in place, and changes
// during which another observer throws.
#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

struct First {};
struct Second {};

/// A watched descriptor of the Ints from 1 to 10, a watched choice of "a", "a" and "b", and a
/// watched struct whose variable level is 3 under a descriptor that allows 0 to 10.
class MetaObserversTest : public ::testing::Test {
protected:
    MetaObserversTest() {
        meta.setVar("level", three.get());
        watch(heldRange.get(), ofRange);
        watch(heldChoice.get(), ofChoice);
        watch(held.get(), ofMeta);
    }

    HeldValue heldRange = intRange(1, 10);
    MetaKelVarDescriptor& range = asDescriptor(heldRange);
    HeldValue allowed = arrayOf(stringOf("a"), stringOf("b"), stringOf("a"));
    HeldValue heldChoice = enumOf(KELKind_String, allowed);
    MetaKelVarDescriptor& choice = asDescriptor(heldChoice);
    HeldValue descriptor = structDescriptorOf("level", intRange(0, 10));
    HeldValue held = metaOf("@desc", descriptor);
    MetaKel& meta = asMeta(held);
    HeldValue three = intOf(3), eleven = intOf(11);
    Watcher ofRange, ofChoice, ofMeta;
    Watcher throwing{[] { throw First(); }};
};

// ---- Changes in place --------------------------------------------------------------------------

TEST_F(MetaObserversTest, EverySetterThatChangesAVariableInPlaceIsOneChange) {
    Watcher ofMin;
    watch(range.getMin(), ofMin);
    const JHashCode guid(1, 0, 0, 0);
    range.setString("min", "2");
    range.setguid("min", guid);
    range.setDouble("min", 2.5);
    range.setDouble("min", 1.5F);
    range.setInt("min", 2L);
    range.setInt("min", 3UL);
    range.setInt("min", int32_t{4});
    range.setBoolean("min", true);
    range.setVarValue("min", three.get());
    EXPECT_EQ(ofRange.told, std::vector<KEL*>(9, &range));
    EXPECT_EQ(ofMin.told, std::vector<KEL*>(9, range.getMin()));
}

TEST_F(MetaObserversTest, ASetterThatFillsAnEmptyVariableIsOneChange) {
    range.addVar("min", nullptr);
    range.setInt("min", int32_t{2});
    EXPECT_EQ(ofRange.calls(), 2);
    EXPECT_EQ(range.getInt("min"), 2);
}

TEST_F(MetaObserversTest, ASetterWhoseValueIsNotTakenTellsNobody) {
    range.setVarValue("min", arrayOf().get());
    range.setVarValue("min", nullptr);
    range.setVarValue(nullptr, three.get());
    range.setString("min", nullptr);
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { range.setInt("gone", int32_t{1}); }),
              "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    EXPECT_EQ(ofRange.calls(), 0);
}

TEST_F(MetaObserversTest, SetVarValueOfACheckedStructIsOneChangeWhereItIsAllowed) {
    meta.setVarValue("level", intOf(9).get());
    EXPECT_EQ(ofMeta.told, std::vector<KEL*>{held.get()});
    meta.setVarValue("level", eleven.get());
    meta.setVarValue("level", arrayOf().get());
    meta.setVarValue("gone", three.get());
    EXPECT_EQ(ofMeta.calls(), 1);
    meta.setInt("level", int32_t{11}); // is not checked
    EXPECT_EQ(ofMeta.calls(), 2);
}

TEST_F(MetaObserversTest, AddingAndRemovingAllowedValuesIsOneChangeOfTheDescriptor) {
    choice.addEnumValue("c");
    EXPECT_EQ(ofChoice.calls(), 1);
    choice.removeEnumValue("a"); // two of them
    EXPECT_EQ(ofChoice.told, std::vector<KEL*>(2, heldChoice.get()));
    choice.removeEnumValue("gone");
    choice.addEnumValue(static_cast<KEL*>(nullptr));
    EXPECT_EQ(ofChoice.calls(), 2);
}

TEST_F(MetaObserversTest, DescribingAVariableIsAChangeOfTheCheckedStruct) {
    meta.createVar("level", three.get(), &range); // level exists already
    meta.createVar("other", nullptr, &range);
    EXPECT_EQ(ofMeta.told, std::vector<KEL*>(2, held.get()));
}

TEST_F(MetaObserversTest, WhatIsChangedInsideByOthersIsNotTold) {
    three->assign(intOf(4).get());
    range.getStruct()->setInt("min", int32_t{2});
    dynamic_cast<KEL_Array&>(*allowed).removeAllVars();
    asStruct(descriptor).removeAllVars();
    EXPECT_EQ(ofMeta.calls() + ofRange.calls() + ofChoice.calls(), 0);
}

// ---- Observers that throw ----------------------------------------------------------------------

TEST_F(MetaObserversTest, AreToldAlsoWhenAnObserverOfTheInnerStructThrows) {
    watch(range.getStruct(), throwing);
    EXPECT_THROW(range.putInt("new", int32_t{1}), First);
    EXPECT_EQ(ofRange.told, std::vector<KEL*>{&range});
    EXPECT_EQ(range.getInt("new"), 1);
}

TEST_F(MetaObserversTest, AddVarsAddsAllAlsoWhenAnObserverThrows) {
    watch(range.getStruct(), throwing);
    const auto source = structOf("x", three, "y", three);
    EXPECT_THROW(range.addVars(&asStruct(source)), First);
    EXPECT_TRUE(range.containsVar("x"));
    EXPECT_TRUE(range.containsVar("y"));
    EXPECT_EQ(ofRange.calls(), 1);
}

TEST_F(MetaObserversTest, AreToldAlsoWhenAnObserverOfTheChangedVariableThrows) {
    watch(three.get(), throwing);
    EXPECT_THROW(meta.setVarValue("level", intOf(5).get()), First);
    EXPECT_EQ(meta.getInt("level"), 5);
    EXPECT_EQ(ofMeta.calls(), 1);
}

TEST_F(MetaObserversTest, AreToldAlsoWhenAnObserverOfTheAllowedValuesThrows) {
    watch(allowed.get(), throwing);
    EXPECT_THROW(choice.addEnumValue("c"), First);
    EXPECT_EQ(ofChoice.calls(), 1);
    EXPECT_THROW(choice.removeEnumValue("c"), First);
    EXPECT_EQ(ofChoice.calls(), 2);
}

TEST_F(MetaObserversTest, AreToldAlsoWhenAnObserverOfTheDescriptorThrows) {
    watch(descriptor.get(), throwing);
    EXPECT_THROW(meta.createVar("other", three.get(), &range), First);
    EXPECT_EQ(at(descriptor, "other"), heldRange.get());
    EXPECT_EQ(ofMeta.calls(), 1);
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { meta.createVar("\"", nullptr, &range); }),
              "KEL_Struct key can't contain a \"");
    EXPECT_EQ(ofMeta.calls(), 1);
}

TEST_F(MetaObserversTest, TheFirstOfTwoThatThrowReachesTheCaller) {
    watch(range.getStruct(), throwing);
    ofRange.then = [] { throw Second(); };
    EXPECT_THROW(range.putInt("new", int32_t{1}), First);
    ofRange.then = [&] { range.getVar("gone"); }; // throws an exception of the library
    EXPECT_THROW(range.putInt("new", int32_t{2}), First);
    EXPECT_EQ(ofRange.calls(), 2);
}

TEST_F(MetaObserversTest, AreToldOfTheNextChangeAsEver) {
    watch(range.getStruct(), throwing);
    EXPECT_THROW(range.putInt("new", int32_t{1}), First);
    throwing.then = nullptr;
    range.putInt("other", int32_t{1});
    EXPECT_EQ(ofRange.calls(), 2);
}

} // namespace
