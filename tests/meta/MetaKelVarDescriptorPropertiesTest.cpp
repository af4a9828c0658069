// Type, default, adornments and hints of variable descriptors, and descriptors used as structs.
#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// A new descriptor and one of the Ints from 1 to 10.
class MetaKelVarDescriptorPropertiesTest : public ::testing::Test {
protected:
    HeldValue held = descriptorOf();
    MetaKelVarDescriptor& empty = asDescriptor(held);
    HeldValue heldRange = intRange(1, 10);
    MetaKelVarDescriptor& range = asDescriptor(heldRange);
    HeldValue five = intOf(5), text = stringOf("text"), nothing{};
    Watcher watcher;
};

// ---- A new descriptor --------------------------------------------------------------------------

TEST_F(MetaKelVarDescriptorPropertiesTest, ANewDescriptorIsNeitherRangedNorEnumerated) {
    EXPECT_FALSE(empty.isRanged());
    EXPECT_FALSE(empty.isEnumerated());
}

TEST_F(MetaKelVarDescriptorPropertiesTest, ForANewDescriptorEverythingIsValid) {
    EXPECT_TRUE(empty.isValid(five.get()));
    EXPECT_TRUE(empty.isValid(arrayOf().get()));
    EXPECT_TRUE(empty.isValid(nullptr));
}

TEST_F(MetaKelVarDescriptorPropertiesTest, WhatIsNotStatedHasItsUsualValue) {
    EXPECT_FALSE(empty.getWrapped());
    EXPECT_TRUE(empty.getInterpolated());
    EXPECT_EQ(empty.getStepsize(), 1.0);
    EXPECT_EQ(empty.getDefault(), nullptr);
    EXPECT_EQ(empty.getPreadorn(), nullptr);
    EXPECT_EQ(empty.getPostadorn(), nullptr);
    EXPECT_EQ(empty.getVariableType(), 0);
    EXPECT_FALSE(empty.hasDefault() || empty.hasPreadorn() || empty.hasPostadorn() ||
                 empty.hasWrapped() || empty.hasInterpolated() || empty.hasStepsize());
}

TEST_F(MetaKelVarDescriptorPropertiesTest, ReplaceOnlyPropertiesDoNotComeIntoBeingByTheirSetters) {
    empty.setDefault(five.get());
    empty.setPreadorn("x");
    empty.setPostadorn("x");
    EXPECT_FALSE(empty.hasDefault());
    EXPECT_FALSE(empty.hasPreadorn());
    EXPECT_FALSE(empty.hasPostadorn());
    EXPECT_EQ(kelMessageOf([&] { empty.setRange(five.get(), five.get()); }),
              "Not a ranged variable.");
    EXPECT_EQ(empty.getCount(), 0);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, RemovingWhatIsAbsentDoesNothing) {
    empty.getStruct()->addObserver(&watcher);
    empty.removeDefault();
    empty.removePreadorn();
    empty.removePostadorn();
    empty.removeWrapped();
    empty.removeInterpolated();
    empty.removeStepsize();
    empty.removeEnumerationList();
    EXPECT_EQ(watcher.calls(), 0);
}

// ---- Type --------------------------------------------------------------------------------------

TEST_F(MetaKelVarDescriptorPropertiesTest, TheTypeIsAddedAndReplaced) {
    empty.setType(KELKind_Double);
    EXPECT_EQ(empty.getVariableType(), 3);
    EXPECT_EQ(at(held, "type")->getType(), KELKind_Int);
    empty.setType(KELKind_String);
    EXPECT_EQ(empty.getVariableType(), 6);
    EXPECT_EQ(empty.getType(), 52);
}

// ---- Default, adornments and hints -------------------------------------------------------------

TEST_F(MetaKelVarDescriptorPropertiesTest, TheDefaultIsReplacedWhereThereIsOne) {
    range.addVar("default", five.get());
    EXPECT_TRUE(range.hasDefault());
    EXPECT_EQ(range.getDefault(), five.get());
    range.setDefault(text.get());
    EXPECT_EQ(range.getDefault(), text.get());
    range.setDefault(true);
    EXPECT_STREQ(range.getDefault()->toString(), "true");
    range.setDefault("words");
    EXPECT_STREQ(range.getDefault()->toString(), "words");
    range.setDefault(2.5);
    EXPECT_STREQ(range.getDefault()->toString(), "2.500000");
    range.setDefault(7);
    EXPECT_STREQ(range.getDefault()->toString(), "7");
    range.setDefault(nothing.get());
    range.setDefault(static_cast<const char*>(nullptr));
    EXPECT_STREQ(range.getDefault()->toString(), "7");
    range.setDefault(range.getDefault());
    EXPECT_STREQ(range.getDefault()->toString(), "7");
}

TEST_F(MetaKelVarDescriptorPropertiesTest, TheDefaultIsNotChecked) {
    range.addVar("default", intOf(99).get());
    EXPECT_EQ(range.getDefault()->toInt(), 99);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, TheDefaultCanBeRemoved) {
    range.addVar("default", five.get());
    range.removeDefault();
    EXPECT_FALSE(range.hasDefault());
    EXPECT_EQ(range.getDefault(), nullptr);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, TextBeforeTheValue) {
    empty.putString("preadorn", "x");
    EXPECT_TRUE(empty.hasPreadorn());
    EXPECT_STREQ(empty.getPreadorn(), "x");
    empty.setPreadorn("about ");
    EXPECT_STREQ(empty.getPreadorn(), "about ");
    empty.setPreadorn(text.get());
    EXPECT_EQ(at(held, "preadorn"), text.get());
    empty.setPreadorn(five.get()); // kept as a String
    EXPECT_EQ(at(held, "preadorn")->getType(), KELKind_String);
    EXPECT_STREQ(empty.getPreadorn(), "5");
    empty.setPreadorn(nothing.get());
    empty.setPreadorn(static_cast<const char*>(nullptr));
    empty.setPreadorn(arrayOf().get());
    EXPECT_STREQ(empty.getPreadorn(), "5");
    empty.removePreadorn();
    EXPECT_EQ(empty.getPreadorn(), nullptr);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, TextBehindTheValue) {
    empty.putString("postadorn", "x");
    EXPECT_TRUE(empty.hasPostadorn());
    empty.setPostadorn(" dB");
    EXPECT_STREQ(empty.getPostadorn(), " dB");
    empty.setPostadorn(text.get());
    EXPECT_EQ(at(held, "postadorn"), text.get());
    empty.setPostadorn(nothing.get());
    empty.setPostadorn(static_cast<const char*>(nullptr));
    EXPECT_STREQ(empty.getPostadorn(), "text");
    empty.removePostadorn();
    EXPECT_FALSE(empty.hasPostadorn());
    EXPECT_EQ(empty.getPostadorn(), nullptr);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, WhetherItWrapsIsAddedReplacedAndRemoved) {
    empty.setWrapped(true);
    EXPECT_TRUE(empty.hasWrapped());
    EXPECT_TRUE(empty.getWrapped());
    EXPECT_EQ(at(held, "wrapped")->getType(), KELKind_Boolean);
    empty.setWrapped(intOf(0).get());
    EXPECT_FALSE(empty.getWrapped());
    empty.setWrapped(intOf(2).get());
    EXPECT_TRUE(empty.getWrapped());
    empty.setWrapped(static_cast<const KEL*>(nullptr));
    EXPECT_TRUE(empty.getWrapped());
    empty.removeWrapped();
    EXPECT_FALSE(empty.hasWrapped());
}

TEST_F(MetaKelVarDescriptorPropertiesTest, WhetherItIsInterpolatedIsAddedReplacedAndRemoved) {
    empty.setInterpolated(false);
    EXPECT_TRUE(empty.hasInterpolated());
    EXPECT_FALSE(empty.getInterpolated());
    empty.setInterpolated(booleanOf(true).get());
    EXPECT_TRUE(empty.getInterpolated());
    EXPECT_EQ(at(held, "interpolated")->getType(), KELKind_Boolean);
    empty.setInterpolated(static_cast<const KEL*>(nullptr));
    EXPECT_TRUE(empty.getInterpolated());
    empty.removeInterpolated();
    EXPECT_FALSE(empty.hasInterpolated());
}

TEST_F(MetaKelVarDescriptorPropertiesTest, TheStepIsAddedReplacedAndRemoved) {
    empty.setStepsize(0.5);
    EXPECT_TRUE(empty.hasStepsize());
    EXPECT_EQ(empty.getStepsize(), 0.5);
    empty.setStepsize(2);
    EXPECT_EQ(empty.getStepsize(), 2.0);
    EXPECT_EQ(at(held, "stepsize")->getType(), KELKind_Double);
    empty.setStepsize(stringOf("0.25").get());
    EXPECT_EQ(empty.getStepsize(), 0.25);
    empty.setStepsize(static_cast<const KEL*>(nullptr));
    EXPECT_EQ(empty.getStepsize(), 0.25);
    empty.removeStepsize();
    EXPECT_FALSE(empty.hasStepsize());
    EXPECT_EQ(empty.getStepsize(), 1.0);
}

// ---- Being a struct ----------------------------------------------------------------------------

TEST_F(MetaKelVarDescriptorPropertiesTest, PropertiesAreVariables) {
    empty.putInt("min", int32_t{1});
    empty.putInt("max", int32_t{3});
    empty.putInt("type", int32_t{KELKind_Int});
    EXPECT_TRUE(empty.inRange(2));
    empty.renameVar("max", "MAX");
    EXPECT_FALSE(empty.isRanged());
    EXPECT_EQ(empty.getStruct()->getInt("MAX"), 3);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, ObserversAreToldOnceOfEachChangeWithTheDescriptor) {
    watch(&range, watcher);
    range.setRange(2, 3);
    range.setType(KELKind_Double);
    range.setWrapped(true);
    range.setStepsize(1);
    range.enumerationFromRange(nullptr);
    range.rangeFromEnumeration();
    range.setVar("min", five.get());
    range.removeWrapped();
    EXPECT_EQ(watcher.told, std::vector<KEL*>(8, &range));
}

TEST_F(MetaKelVarDescriptorPropertiesTest, WhatChangesNothingNotifiesNobody) {
    watch(&range, watcher);
    range.setDefault(five.get());
    range.setRange(nullptr, nullptr);
    range.removeStepsize();
    range.enumerationFromRange(nullptr);
    kelMessageOf([&] { range.getEnum(); });
    range.setVar(nullptr, five.get());
    thrownMessage<KELNoSuchElementException>([&] { range.setVar("gone", five.get()); });
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, AChangeThroughTheInnerStructIsToldToo) {
    watch(&range, watcher);
    range.getStruct()->putInt("new", int32_t{1});
    range.getStruct()->removeVar("new");
    EXPECT_EQ(watcher.told, std::vector<KEL*>(2, &range));
}

TEST_F(MetaKelVarDescriptorPropertiesTest, AnObserverOfTheInnerStructMayReleaseTheDescriptor) {
    auto doomed = intRange(1, 2);
    const Held<KEL_Struct> inner(asDescriptor(doomed).getStruct());
    inner->addRef();
    Watcher killer([&] { doomed.clear(); });
    inner->addObserver(&killer);
    asDescriptor(doomed).setType(KELKind_Double);
    EXPECT_EQ(inner->getInt("type"), 3);
    inner->removeObserver(&killer);
}

TEST_F(MetaKelVarDescriptorPropertiesTest, ACopyHoldsAnInt0ForANullVariable) {
    for (const HeldValue& source : {descriptorOf("x", nullptr), structDescriptorOf("x", nullptr)}) {
        const HeldValue copy(KEL_Impl::of(source->copy()));
        ASSERT_NE(at(copy, "x"), nullptr);
        EXPECT_EQ(at(copy, "x")->getType(), KELKind_Int);
    }
}

} // namespace
