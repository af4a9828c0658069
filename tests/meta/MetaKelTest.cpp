// Checked structs: the descriptor in use, and the checks of setters and getters.
#include "support/MetaKelFixture.h"

using namespace kel::test;

namespace {

const std::string notFound = "Variable not found.";
const std::string notFoundAtAll = "Variable not found and no descriptor.";

using MetaKelTest = MetaKelFixture;

// ---- The descriptor ----------------------------------------------------------------------------

TEST_F(MetaKelTest, IsOfItsKindAndEmptyWithoutADescriptor) {
    const Held<MetaKel> made(CreateMetaKel(nullptr));
    EXPECT_EQ(made->getType(), 50);
    EXPECT_EQ(made->getCount(), 0);
    EXPECT_EQ(made->getDescriptor(), nullptr);
    EXPECT_EQ(made->toString(), nullptr);
}

TEST_F(MetaKelTest, IsMadeWithADescriptorThatItShares) {
    const Held<MetaKel> made(CreateMetaKel(&asStructDescriptor(descriptor)));
    EXPECT_EQ(static_cast<KEL*>(made->getDescriptor()), descriptor.get());
    EXPECT_TRUE(made->containsVar("@desc"));
    EXPECT_EQ(made->getCount(), 1);
}

TEST_F(MetaKelTest, SetDescriptorStoresAndReplaces) {
    const auto other = structDescriptorOf();
    plain.setDescriptor(&asStructDescriptor(descriptor));
    EXPECT_EQ(static_cast<KEL*>(plain.getDescriptor()), descriptor.get());
    plain.setDescriptor(&asStructDescriptor(other));
    EXPECT_EQ(static_cast<KEL*>(plain.getDescriptor()), other.get());
    plain.setDescriptor(nullptr);
    EXPECT_EQ(static_cast<KEL*>(plain.getDescriptor()), other.get());
}

TEST_F(MetaKelTest, ReplaceDescriptorNeedsOneThatIsThere) {
    const auto other = structDescriptorOf();
    plain.replaceDescriptor(&asStructDescriptor(other));
    EXPECT_FALSE(plain.containsVar("@desc"));
    meta.replaceDescriptor(nullptr);
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), descriptor.get());
    meta.replaceDescriptor(&asStructDescriptor(other));
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), other.get());
}

TEST_F(MetaKelTest, RemoveDescriptorLeavesNone) {
    meta.removeDescriptor();
    EXPECT_EQ(meta.getDescriptor(), nullptr);
    EXPECT_FALSE(meta.containsVar("@desc"));
    meta.addVar("level", eleven.get());
    EXPECT_EQ(level(), 11);
    meta.removeDescriptor();
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(MetaKelTest, TheDescriptorInUseIsWhatStandsUnderItsName) {
    meta.renameVar("@desc", "kept");
    EXPECT_EQ(meta.getDescriptor(), nullptr);
    meta.renameVar("kept", "@desc");
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), descriptor.get());
    meta.removeVar("@desc");
    EXPECT_EQ(meta.getDescriptor(), nullptr);
    meta.setVar("@desc", descriptor.get());
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), descriptor.get());
    meta.removeAllVars();
    EXPECT_EQ(meta.getDescriptor(), nullptr);
}

TEST_F(MetaKelTest, SomethingElseUnderTheNameCountsAsNoDescriptor) {
    for (const HeldValue& other : {intOf(5), structOf("level", intRange(0, 1)), intRange(0, 1)}) {
        meta.setVar("@desc", other.get());
        EXPECT_EQ(meta.getDescriptor(), nullptr);
        meta.setVar("level", eleven.get());
        EXPECT_EQ(level(), 11);
        EXPECT_EQ(kelMessageOf([&] { meta.getVar("pan"); }), notFoundAtAll);
    }
    meta.clearVar("@desc");
    EXPECT_EQ(meta.getDescriptor(), nullptr);
    meta.replaceDescriptor(&asStructDescriptor(descriptor)); // the name exists
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), descriptor.get());
}

TEST_F(MetaKelTest, AnEntryThatIsNoVariableDescriptorDescribesNothing) {
    asStruct(descriptor).addVar("level", structOf("min", intOf(0)).get());
    meta.addVar("level", eleven.get());
    EXPECT_EQ(level(), 11);
    asStruct(descriptor).addVar("x", nullptr);
    EXPECT_EQ(kelMessageOf([&] { meta.getVar("x"); }), notFoundAtAll);
}

TEST_F(MetaKelTest, AChangeOfTheDescriptorCountsAtOnce) {
    meta.addVar("level", eleven.get());
    EXPECT_FALSE(meta.containsVar("level"));
    asDescriptor(HeldValue(KEL_Impl::of(asStruct(descriptor).getVar("level")))).setRange(0, 20);
    meta.addVar("level", eleven.get());
    EXPECT_EQ(level(), 11);
}

// ---- The checked add ---------------------------------------------------------------------------

TEST_F(MetaKelTest, LevelsAreCheckedOnTheirWayIn) {
    meta.addVar("level", eleven.get());
    EXPECT_FALSE(meta.containsVar("level"));
    meta.addVar("level", three.get());
    EXPECT_EQ(valueOf("level"), three.get());
    meta.addVar("level", intOf(4).get()); // the name exists
    EXPECT_EQ(valueOf("level"), three.get());
    meta.setVar("level", intOf(12).get());
    EXPECT_EQ(level(), 3);
    meta.setVar("level", seven.get());
    EXPECT_EQ(valueOf("level"), seven.get());
}

TEST_F(MetaKelTest, NamesThatBeginWithAnAtAreReserved) {
    const auto add = [&](const char* name) {
        return thrownMessage<KELRenameException>([&] { meta.addVar(name, three.get()); });
    };
    EXPECT_EQ(add("@desc"), "Variable names beginning with '@' are reserved.");
    EXPECT_EQ(add("@"), "Variable names beginning with '@' are reserved.");
    EXPECT_EQ(static_cast<KEL*>(meta.getDescriptor()), descriptor.get());
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelTest, NullAndEmptyNamesAndNullValuesAreNotAdded) {
    meta.addVar(nullptr, three.get());
    meta.addVar("", three.get());
    meta.addVar("x", nullptr);
    meta.addVar("@x", nullptr); // not even refused
    EXPECT_EQ(meta.getCount(), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelTest, AnInvalidValueWithADefaultAddsTheNameWithoutAValue) {
    meta.addVar("pan", doubleOf(2.0).get());
    EXPECT_TRUE(meta.containsVar("pan"));
    EXPECT_EQ(valueOf("pan"), nullptr);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(MetaKelTest, WhatIsNotDescribedIsNotChecked) {
    meta.addVar("other", eleven.get());
    EXPECT_EQ(valueOf("other"), eleven.get());
    plain.addVar("level", eleven.get());
    EXPECT_EQ(at(plainHeld, "level"), eleven.get());
}

TEST_F(MetaKelTest, AddVarRefusesAQuoteAsAStructDoes) {
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { meta.addVar("a\"b", three.get()); }),
              "KEL_Struct key can't contain a \"");
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { meta.setVar("a\"b", three.get()); }),
              "KEL_Struct key can't contain a \"");
}

TEST_F(MetaKelTest, ABrokenDescriptionNeverThrowsOnTheWayIn) {
    const HeldValue broken[] = {descriptorOf("enum", intOf(1)), descriptorOf("enum", nullptr),
                                descriptorOf("min", intOf(0), "max", intOf(9)),
                                descriptorOf("type", intOf(99), "min", nullptr, "max", nullptr)};
    for (const HeldValue& rules : broken) {
        asStruct(descriptor).addVar("level", rules.get());
        meta.addVar("level", three.get());
        meta.setVar("level", three.get());
        EXPECT_FALSE(meta.containsVar("level"));
    }
}

// ---- Setting -----------------------------------------------------------------------------------

TEST_F(MetaKelTest, SetVarAddsAMissingName) {
    meta.setVar("level", three.get());
    EXPECT_EQ(valueOf("level"), three.get());
    plain.setVar("x", three.get());
    EXPECT_EQ(at(plainHeld, "x"), three.get());
}

TEST_F(MetaKelTest, SetVarIgnoresNullAndInvalidValues) {
    meta.setVar(nullptr, three.get());
    meta.setVar("level", nullptr);
    meta.setVar("level", eleven.get());
    meta.setVar("mode", stringOf("idle").get());
    meta.setVar("", three.get());
    EXPECT_EQ(meta.getCount(), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelTest, SetVarKeepsAValueThatItReplacesByItself) {
    meta.putInt("x", int32_t{5});
    meta.setVar("x", valueOf("x"));
    EXPECT_EQ(valueOf("x")->toInt(), 5);
}

TEST_F(MetaKelTest, SetVarValueActsOnNamesThatAreThere) {
    meta.setVarValue("level", three.get());
    EXPECT_FALSE(meta.containsVar("level"));
    meta.setVar("level", three.get());
    meta.setVarValue("level", seven.get());
    EXPECT_EQ(valueOf("level"), three.get()); // the same object
    EXPECT_EQ(level(), 7);
    meta.setVarValue("level", eleven.get());
    EXPECT_EQ(level(), 7);
    meta.setVarValue("level", nullptr);
    meta.setVarValue(nullptr, three.get());
    EXPECT_EQ(level(), 7);
}

TEST_F(MetaKelTest, SetVarValueConvertsAfterTheCheck) {
    meta.setVar("level", three.get());
    meta.setVarValue("level", stringOf("9").get());
    EXPECT_EQ(level(), 9);
    EXPECT_EQ(valueOf("level")->getType(), KELKind_Int);
    meta.setVarValue("level", stringOf("12").get());
    EXPECT_EQ(level(), 9);
}

TEST_F(MetaKelTest, ClearVarTakesTheValueAway) {
    meta.setVar("level", three.get());
    meta.clearVar("level");
    EXPECT_TRUE(meta.containsVar("level"));
    EXPECT_EQ(valueOf("level"), nullptr);
    EXPECT_EQ(watcher.calls(), 2);
    meta.clearVar(nullptr);
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { meta.clearVar("gone"); }),
              "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(MetaKelTest, TypedOperationsAreNotChecked) {
    meta.putInt("level", int32_t{99});
    EXPECT_EQ(level(), 99);
    meta.setInt("level", int32_t{98});
    EXPECT_EQ(level(), 98);
    meta.putString("mode", "idle");
    EXPECT_STREQ(valueOf("mode")->toString(), "idle");
    meta.putBoolean("@x", true);
    EXPECT_TRUE(meta.containsVar("@x"));
}

// ---- Getting -----------------------------------------------------------------------------------

TEST_F(MetaKelTest, AVariableThatIsThereIsAnswered) {
    meta.setVar("level", three.get());
    const Held<KEL> owned(meta.getVar("level"));
    EXPECT_EQ(owned.get(), three.get());
    EXPECT_EQ(referencesOf(*three), 3); // the test's, the variable's and the new one
    EXPECT_EQ(valueOf("level"), three.get());
    EXPECT_EQ(meta.getVar("level", true), three.get());
    EXPECT_EQ(referencesOf(*three), 3);
}

TEST_F(MetaKelTest, AVariableWithoutAValueIsAnsweredAsNull) {
    meta.addVar("pan", doubleOf(2.0).get());
    EXPECT_EQ(meta.getVar("pan"), nullptr);
    EXPECT_EQ(meta.getVar("pan", true), nullptr);
    EXPECT_EQ(valueOf("pan"), nullptr);
}

TEST_F(MetaKelTest, AMissingVariableAnswersItsDefault) {
    const Held<KEL> owned(meta.getVar("pan"));
    EXPECT_EQ(owned.get(), zero.get());
    EXPECT_EQ(valueOf("pan"), zero.get());
    EXPECT_EQ(meta.getVar("pan", false), zero.get());
    EXPECT_FALSE(meta.containsVar("pan"));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelTest, TheFlagStoresTheDefault) {
    EXPECT_EQ(meta.getVar("pan", true), zero.get());
    EXPECT_TRUE(meta.containsVar("pan"));
    EXPECT_EQ(valueOf("pan"), zero.get());
    EXPECT_EQ(watcher.calls(), 1);
    meta.getVar("pan", true);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(MetaKelTest, ADescribedVariableWithoutADefaultIsNotFound) {
    EXPECT_EQ(kelMessageOf([&] { meta.getVar("level"); }), notFound);
    EXPECT_EQ(kelMessageOf([&] { valueOf("level"); }), notFound);
    EXPECT_EQ(kelMessageOf([&] { meta.getVar("level", true); }), notFound);
    EXPECT_EQ(kelMessageOf([&] { meta.getVar("level", false); }), notFound);
}

TEST_F(MetaKelTest, AVariableThatIsNotDescribedIsNotFoundEither) {
    EXPECT_EQ(kelMessageOf([&] { meta.getVar("other"); }), notFoundAtAll);
    EXPECT_EQ(kelMessageOf([&] { valueOf("other"); }), notFoundAtAll);
    EXPECT_EQ(kelMessageOf([&] { plain.getVar("level"); }), notFoundAtAll);
    EXPECT_EQ(kelMessageOf([&] { plain.getVar("level", true); }), notFoundAtAll);
}

TEST_F(MetaKelTest, ANullOrEmptyNameIsIgnored) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(meta.getVar(name), nullptr);
        EXPECT_EQ(meta.getVar(name, true), nullptr);
        EXPECT_EQ(valueOf(name), nullptr);
        EXPECT_EQ(meta.getInt(name), 0);
        meta.clearVar(name);
        meta.removeVar(name);
        meta.renameVar(name, "x");
        meta.setVar(name, three.get());
        meta.setVarValue(name, three.get());
        meta.setInt(name, 3);
        meta.createVarWithType(name, three.get());
        asStructDescriptor(descriptor).setVar(name, three.get());
    }
    EXPECT_EQ(meta.getCount(), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelTest, ANullTextIsIgnored) {
    meta.putString("x", nullptr);
    meta.putInt("y", int32_t{5});
    meta.setString("y", nullptr);
    EXPECT_FALSE(meta.containsVar("x"));
    EXPECT_EQ(meta.getInt("y"), 5);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(MetaKelTest, TypedGettersAreThoseOfTheStruct) {
    meta.setVar("level", three.get());
    EXPECT_EQ(meta.getInt("level"), 3);
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { meta.getDouble("pan"); }),
              "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
}

} // namespace
