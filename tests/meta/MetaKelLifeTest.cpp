// Checked structs: describing and adding at once, observers, identity, copies.
#include "support/MetaKelFixture.h"

using namespace kel::test;

namespace {

using MetaKelLifeTest = MetaKelFixture;

// ---- Describing and adding at once -------------------------------------------------------------

TEST_F(MetaKelLifeTest, CreateVarMakesADescriptorAndAdds) {
    const auto rules = intRange(0, 5);
    plain.createVar("x", three.get(), &asDescriptor(rules));
    ASSERT_NE(plain.getDescriptor(), nullptr);
    EXPECT_EQ(static_cast<const KEL_Struct*>(plain.getDescriptor())->getVar("x"), rules.get());
    EXPECT_EQ(at(plainHeld, "x"), three.get());
}

TEST_F(MetaKelLifeTest, CreateVarDescribesInTheDescriptorInUse) {
    const auto rules = intRange(0, 5);
    meta.createVar("level", eleven.get(), &asDescriptor(rules));
    EXPECT_EQ(at(descriptor, "level"), rules.get());
    EXPECT_FALSE(meta.containsVar("level")); // described, but not valid
    meta.createVar("level", nullptr, &asDescriptor(intRange(0, 20)));
    EXPECT_FALSE(meta.containsVar("level"));
    meta.createVar("level", eleven.get(), &asDescriptor(intRange(0, 20)));
    EXPECT_EQ(level(), 11);
}

TEST_F(MetaKelLifeTest, CreateVarDoesNothingWithoutNameOrDescriptor) {
    const auto rules = intRange(0, 5);
    meta.createVar(nullptr, three.get(), &asDescriptor(rules));
    meta.createVar("", three.get(), &asDescriptor(rules));
    meta.createVar("x", three.get(), nullptr);
    EXPECT_EQ(meta.getCount(), 1);
    EXPECT_EQ(asStruct(descriptor).getCount(), 3);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelLifeTest, CreateVarThatIsRefusedChangesNothing) {
    const auto rules = intRange(0, 5);
    EXPECT_EQ(thrownMessage<KELRenameException>(
                  [&] { plain.createVar("@x", three.get(), &asDescriptor(rules)); }),
              "Variable names beginning with '@' are reserved.");
    EXPECT_EQ(thrownMessage<KELRenameException>(
                  [&] { plain.createVar("\"", three.get(), &asDescriptor(rules)); }),
              "KEL_Struct key can't contain a \"");
    EXPECT_EQ(plain.getCount(), 0);
}

TEST_F(MetaKelLifeTest, CreateVarWithTypeStatesTheKind) {
    plain.createVarWithType("x", three.get());
    const HeldValue rules(KEL_Impl::of(plain.getDescriptor()->getVar("x")));
    EXPECT_TRUE(rules->equalsValue(descriptorOf("type", intOf(KELKind_Int)).get()));
    EXPECT_EQ(at(plainHeld, "x"), three.get());
}

TEST_F(MetaKelLifeTest, CreateVarWithDefaultStatesDefaultAndKind) {
    plain.createVarWithDefault("x", three.get(), seven.get());
    const HeldValue rules(KEL_Impl::of(plain.getDescriptor()->getVar("x")));
    EXPECT_EQ(asDescriptor(rules).getDefault(), seven.get());
    EXPECT_EQ(asDescriptor(rules).getVariableType(), 1);
    asDescriptor(rules).setDefault(8); // the descriptor has a default, so it can be replaced
    EXPECT_EQ(asDescriptor(rules).getDefault()->toInt(), 8);
    plain.createVarWithDefault("y", nullptr, seven.get());
    EXPECT_FALSE(plain.containsVar("y"));
    EXPECT_EQ(plain.getVar("y", false), seven.get());
    plain.createVarWithDefault("z", three.get(), nullptr);
    const HeldValue ofZ(KEL_Impl::of(plain.getDescriptor()->getVar("z")));
    EXPECT_FALSE(asDescriptor(ofZ).hasDefault());
}

TEST_F(MetaKelLifeTest, CreateVarWithEnumStatesTheAllowedValues) {
    const auto allowed = arrayOf(three, seven);
    plain.createVarWithEnum("x", three.get(), &asArray(allowed));
    plain.createVarWithEnum("y", eleven.get(), &asArray(allowed));
    const HeldValue rules(KEL_Impl::of(plain.getDescriptor()->getVar("x")));
    EXPECT_EQ(static_cast<KEL*>(asDescriptor(rules).getEnum()), allowed.get());
    EXPECT_EQ(asDescriptor(rules).getVariableType(), 1);
    EXPECT_EQ(at(plainHeld, "x"), three.get());
    EXPECT_FALSE(plain.containsVar("y"));
    plain.createVarWithEnum("z", three.get(), nullptr);
    const HeldValue ofZ(KEL_Impl::of(plain.getDescriptor()->getVar("z")));
    EXPECT_FALSE(asDescriptor(ofZ).isEnumerated());
}

TEST_F(MetaKelLifeTest, CreateVarWithEnumTakesTheKindOfTheFirstAllowedValueWhenThereIsNoValue) {
    plain.createVarWithEnum("x", nullptr, &asArray(arrayOf(stringOf("a"), three)));
    const HeldValue rules(KEL_Impl::of(plain.getDescriptor()->getVar("x")));
    EXPECT_EQ(asDescriptor(rules).getVariableType(), KELKind_String);
    EXPECT_TRUE(asDescriptor(rules).isEnumerated());
    EXPECT_FALSE(plain.containsVar("x"));
}

TEST_F(MetaKelLifeTest, WithoutAValueThatTellsTheKindNothingIsDescribed) {
    plain.createVarWithType("x", nullptr);
    plain.createVarWithDefault("x", nullptr, nullptr);
    plain.createVarWithEnum("x", nullptr, nullptr);
    plain.createVarWithEnum("x", nullptr, &asArray(arrayOf()));
    EXPECT_EQ(plain.getCount(), 0);
}

// ---- Observers ---------------------------------------------------------------------------------

TEST_F(MetaKelLifeTest, ObserversAreToldOnceOfEachChangeWithTheMetaValue) {
    meta.addVar("level", three.get());
    meta.setVar("level", seven.get()); // replaces
    meta.putInt("level", int32_t{1});  // replaces
    meta.clearVar("level");
    meta.setVarValue("level", three.get()); // fills the place
    meta.renameVar("level", "renamed");
    meta.removeVar("renamed");
    meta.setDescriptor(&asStructDescriptor(descriptor));
    meta.createVar("x", three.get(), &asDescriptor(intRange(0, 5)));
    meta.removeDescriptor();
    meta.removeAllVars();
    EXPECT_EQ(watcher.told, std::vector<KEL*>(11, held.get()));
}

TEST_F(MetaKelLifeTest, ObserversAreToldOnceWhenCreateVarMakesTheDescriptor) {
    Watcher ofPlain;
    watch(plainHeld.get(), ofPlain);
    plain.createVarWithDefault("x", three.get(), seven.get());
    EXPECT_EQ(ofPlain.told, std::vector<KEL*>{plainHeld.get()});
}

TEST_F(MetaKelLifeTest, AddVarsIsOneChangeHoweverManyVariablesItAdds) {
    const auto source = structOf("a", three, "b", seven, "level", eleven);
    EXPECT_EQ(meta.addVars(&asStruct(source)), 0);
    EXPECT_EQ(meta.getCount(), 4);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(MetaKelLifeTest, ARefusedValueNotifiesNobody) {
    meta.addVar("level", eleven.get());
    meta.setVar("level", eleven.get());
    meta.setVarValue("level", eleven.get());
    kelMessageOf([&] { meta.getVar("level"); });
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelLifeTest, AnObserverOfTheDescriptorMayReleaseTheValueThatCreateVarAdds) {
    auto value = intOf(4);
    const LifeProbe probe(*value);
    Watcher releaser([&] {
        value.clear();
        EXPECT_TRUE(probe.isAlive());
    });
    watch(descriptor.get(), releaser);
    meta.createVar("x", value.get(), &asDescriptor(intRange(0, 5)));
    EXPECT_EQ(meta.getInt("x"), 4);
}

// ---- Identity, copy, equality ------------------------------------------------------------------

TEST_F(MetaKelLifeTest, ACopyHasADescriptorOfItsOwn) {
    meta.addVar("level", three.get());
    const HeldValue copy(KEL_Impl::of(held->copy()));
    EXPECT_TRUE(copy->equalsValue(held.get()));
    ASSERT_NE(asMeta(copy).getDescriptor(), nullptr);
    EXPECT_NE(static_cast<KEL*>(asMeta(copy).getDescriptor()), descriptor.get());
    EXPECT_NE(at(copy, "level"), three.get());
    asMeta(copy).setVar("level", eleven.get());
    EXPECT_EQ(asMeta(copy).getInt("level"), 3); // the copy is checked too
}

TEST_F(MetaKelLifeTest, ACopyKeepsAClearedVariableCleared) {
    meta.addVar("level", three.get());
    meta.clearVar("level");
    const HeldValue copy(KEL_Impl::of(held->copy()));
    EXPECT_TRUE(asMeta(copy).containsVar("level"));
    EXPECT_EQ(at(copy, "level"), nullptr);
    EXPECT_TRUE(copy->equalsValue(held.get()));
}

TEST_F(MetaKelLifeTest, EqualityCoversVariablesAndDescriptor) {
    const HeldValue other(KEL_Impl::of(held->copy()));
    EXPECT_TRUE(held->equalsValue(other.get()));
    asMeta(other).removeDescriptor();
    EXPECT_FALSE(held->equalsValue(other.get()));
    EXPECT_FALSE(plainHeld->equalsValue(structOf().get()));
    EXPECT_FALSE(structOf()->equalsValue(plainHeld.get()));
    EXPECT_TRUE(plainHeld->equalsValue(metaOf().get()));
}

TEST_F(MetaKelLifeTest, AssignTakesVariablesAndDescriptorUnchecked) {
    const auto source = metaOf("level", eleven);
    held->assign(source.get());
    EXPECT_EQ(level(), 11);
    EXPECT_EQ(meta.getDescriptor(), nullptr);
    EXPECT_EQ(watcher.told, std::vector<KEL*>{held.get()});
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { held->assign(structOf().get()); }),
              "Can't set the value when types are not equal!");
}

} // namespace
