// Values that contain themselves through keyed lists, checked structs and descriptors, in text.
#include "support/Kinds.h"
#include "support/ValueStreams.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string containsItself = "Cannot write a value that contains itself.";

std::string refusalToWrite(const HeldValue& value) {
    return thrownMessage<KELIOException>([&] { textOf(value); });
}

TEST(TextCycles, ThroughTheItemsOrKeysOfAList) {
    for (const bool asKey : {false, true}) {
        const auto list = listOf(arrayOf(), arrayOf()), one = intOf(1);
        const auto outer = arrayOf(list);
        asList(list).addPair(asKey ? outer.get() : one.get(), asKey ? one.get() : outer.get());
        EXPECT_EQ(refusalToWrite(outer), containsItself);
        EXPECT_EQ(refusalToWrite(list), containsItself);
        asArray(outer).removeAllVars();
        EXPECT_EQ(refusalToWrite(list), "(nothing thrown)");
    }
}

TEST(TextCycles, ThroughAListsOwnArray) {
    const auto keys = arrayOf(), items = arrayOf(intOf(1));
    asArray(keys).addVar(keys.get());
    const auto list = listOf(keys, items);
    EXPECT_EQ(refusalToWrite(list), containsItself);
    asArray(keys).removeAllVars();
}

TEST(TextCycles, BeyondTheShorterArrayNothingIsWritten) {
    const auto keys = arrayOf(), items = arrayOf();
    asArray(keys).addVar(keys.get());
    EXPECT_EQ(refusalToWrite(listOf(keys, items)), "(nothing thrown)");
    asArray(keys).removeAllVars();
}

TEST(TextCycles, ThroughValuesBuiltOnStructs) {
    for (const HeldValue& value : {metaOf(), structDescriptorOf(), descriptorOf()}) {
        asStruct(value).putInt("before", int32_t{1});
        dynamic_cast<kel::StructHolder&>(*value).inner().addVar("self", value.get());
        EXPECT_EQ(refusalToWrite(value), containsItself);
        EXPECT_EQ(refusalToWrite(arrayOf(value)), containsItself);
        asStruct(value).removeVar("self");
        EXPECT_EQ(refusalToWrite(value), "(nothing thrown)");
    }
}

TEST(TextCycles, ThroughTheInnerStructOfADescriptor) {
    const auto descriptor = descriptorOf();
    KEL_Struct* inner = asDescriptor(descriptor).getStruct();
    asStruct(descriptor).addVar("inner", inner);
    EXPECT_EQ(refusalToWrite(descriptor), containsItself);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(inner); }), containsItself);
    asStruct(descriptor).removeVar("inner");
}

TEST(TextCycles, WhatIsSharedButNotInsideItselfIsWrittenEachTime) {
    const auto both = arrayOf(intOf(1));
    EXPECT_EQ(refusalToWrite(arrayOf(both, both)), "(nothing thrown)");
    EXPECT_EQ(refusalToWrite(metaOf("a", both, "b", both)), "(nothing thrown)");
}

} // namespace
