#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

class MetaKelDescriptorTest : public ::testing::Test {
protected:
    MetaKelDescriptorTest() { watch(held.get(), watcher); }

    HeldValue held = structDescriptorOf("level", intRange(0, 10));
    MetaKelDescriptor& descriptor = asStructDescriptor(held);
    HeldValue rules = intRange(5, 6);
    Watcher watcher;
};

TEST_F(MetaKelDescriptorTest, IsOfItsKindAndEmptyAtFirst) {
    const Held<MetaKelDescriptor> made(CreateMetaKelDescriptor());
    EXPECT_EQ(made->getType(), 51);
    EXPECT_EQ(made->getCount(), 0);
    EXPECT_EQ(made->toString(), nullptr);
}

TEST_F(MetaKelDescriptorTest, IsAStructOfVariableDescriptors) {
    descriptor.addVar("gain", rules.get());
    EXPECT_EQ(at(held, "gain"), rules.get());
    EXPECT_TRUE(descriptor.containsVar("level"));
    descriptor.renameVar("level", "volume");
    descriptor.removeVar("gain");
    EXPECT_EQ(descriptor.getCount(), 1);
    const Held<StringEnumeration> names(descriptor.getVarNames());
    EXPECT_STREQ(names->nextElement(), "volume");
}

TEST_F(MetaKelDescriptorTest, HasTheMessagesOfAStruct) {
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { descriptor.getVar("gone"); }),
              "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { descriptor.removeVar("gone"); }),
              "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { descriptor.addVar("\"", rules.get()); }),
              "KEL_Struct key can't contain a \"");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { descriptor.renameVar("x", "y"); }),
              "KEL_Struct: Cannot rename variable - name does not exist.");
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { descriptor.renameVar("level", "level"); }),
              "KEL_Struct: Cannot rename variable - new name already exists.");
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(MetaKelDescriptorTest, EveryStructOperationReachesTheVariables) {
    const JHashCode guid(1, 2, 3, 4);
    JHashCode out;
    descriptor.removeAllVars();
    descriptor.putString("s", "5");
    descriptor.putguid("g", guid);
    descriptor.putDouble("d", 1.5);
    descriptor.putDouble("f", 0.5F);
    descriptor.putInt("i", int32_t{7});
    descriptor.putInt("l", 8L);
    descriptor.putInt("u", 9UL);
    descriptor.putBoolean("b", true);
    EXPECT_TRUE(descriptor.getBoolean("b"));
    EXPECT_EQ(descriptor.getInt("l") + descriptor.getInt("u"), 17);
    EXPECT_EQ(descriptor.getDouble("f"), 0.5);
    EXPECT_EQ(descriptor.getguid("g", out), guid);
    const Held<KEL_String> text(descriptor.getString("s"));
    EXPECT_STREQ(text->getValue(), "5");
    const Held<KEL> borrowedNot(descriptor.getVar("i"));
    EXPECT_EQ(referencesOf(*borrowedNot.get()), 2);
}

TEST_F(MetaKelDescriptorTest, EverySetterConvertsIntoTheVariable) {
    const JHashCode guid(1, 0, 0, 0);
    descriptor.putInt("i", int32_t{0});
    const auto afterwards = [&](auto&& operation) {
        operation();
        return descriptor.getInt("i");
    };
    EXPECT_EQ(afterwards([&] { descriptor.setString("i", "12"); }), 12);
    EXPECT_EQ(afterwards([&] { descriptor.setguid("i", guid); }), 1);
    EXPECT_EQ(afterwards([&] { descriptor.setDouble("i", 3.5); }), 3);
    EXPECT_EQ(afterwards([&] { descriptor.setDouble("i", 4.5F); }), 4);
    EXPECT_EQ(afterwards([&] { descriptor.setInt("i", 5L); }), 5);
    EXPECT_EQ(afterwards([&] { descriptor.setInt("i", 6UL); }), 6);
    EXPECT_EQ(afterwards([&] { descriptor.setInt("i", int32_t{7}); }), 7);
    EXPECT_EQ(afterwards([&] { descriptor.setBoolean("i", true); }), 1);
    EXPECT_EQ(afterwards([&] { descriptor.setVarValue("i", intOf(9).get()); }), 9);
}

TEST_F(MetaKelDescriptorTest, AddVarsTakesWhatIsMissingWithOneNotification) {
    const auto other = structOf("level", rules, "a", rules, "b", rules);
    EXPECT_EQ(descriptor.addVars(&asStruct(other)), 0);
    EXPECT_EQ(descriptor.getCount(), 3);
    EXPECT_NE(at(held, "level"), rules.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(descriptor.addVars(nullptr), -1);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(MetaKelDescriptorTest, ObserversAreToldOnceOfEachCallWithTheDescriptor) {
    descriptor.addVar("level", rules.get()); // replaces
    descriptor.putInt("x", int32_t{1});
    descriptor.setVar("x", rules.get());
    descriptor.renameVar("x", "y");
    descriptor.removeVar("y");
    descriptor.removeAllVars();
    EXPECT_EQ(watcher.told, std::vector<KEL*>(6, held.get()));
}

TEST_F(MetaKelDescriptorTest, AVariableTakesAValueAndNotifies) {
    descriptor.addVar("x", nullptr);
    watcher.told.clear();
    descriptor.setInt("x", int32_t{1});
    EXPECT_EQ(watcher.calls(), 1);
    descriptor.setInt("x", int32_t{2}); // in place
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(MetaKelDescriptorTest, AnObserverMayChangeTheDescriptorAgain) {
    watcher.then = [&] {
        watcher.then = nullptr;
        descriptor.removeAllVars();
    };
    descriptor.addVar("x", rules.get());
    EXPECT_EQ(descriptor.getCount(), 0);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(MetaKelDescriptorTest, AnObserverMayReleaseTheDescriptor) {
    watcher.then = [&] { held.clear(); };
    descriptor.addVar("x", rules.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(referencesOf(*rules), 1);
}

TEST_F(MetaKelDescriptorTest, TheInnerStructHasTheIdentityOfTheDescriptor) {
    const Held<KEL> made(KEL_Manager_Impl().createKel(51, codeOf(7)));
    EXPECT_EQ(identityOf(made.get()), "00000000-0000-0000-0000-000000000007");
    EXPECT_EQ(identityOf(&dynamic_cast<MetaKelDescriptor_Impl&>(*made.get()).inner()),
              "00000000-0000-0000-0000-000000000007");
    EXPECT_EQ(identityOf(&dynamic_cast<MetaKelDescriptor_Impl&>(*held).inner()), identityOf(held));
}

TEST_F(MetaKelDescriptorTest, ACopyDescribesByItself) {
    const HeldValue copy(KEL_Impl::of(held->copy()));
    EXPECT_TRUE(copy->equalsValue(held.get()));
    EXPECT_NE(at(copy, "level"), at(held, "level"));
    EXPECT_EQ(at(copy, "level")->getType(), KELKind_MetaKelVarDescriptor);
    EXPECT_NE(identityOf(copy), identityOf(held));
    asStruct(copy).removeVar("level");
    EXPECT_TRUE(descriptor.containsVar("level"));
}

TEST_F(MetaKelDescriptorTest, EqualsOnlyItsOwnKind) {
    const auto equal = structDescriptorOf("level", intRange(0, 10));
    const auto plain = structOf("level", intRange(0, 10));
    const auto checked = metaOf("level", intRange(0, 10));
    EXPECT_TRUE(held->equalsValue(equal.get()));
    EXPECT_FALSE(held->equalsValue(plain.get()));
    EXPECT_FALSE(held->equalsValue(checked.get()));
    EXPECT_FALSE(held->equalsValue(structDescriptorOf("level", intRange(0, 9)).get()));
}

TEST_F(MetaKelDescriptorTest, AssignTakesCopiesAndNotifiesOnce) {
    const auto source = structDescriptorOf("gain", rules);
    held->assign(source.get());
    EXPECT_TRUE(held->equalsValue(source.get()));
    EXPECT_NE(at(held, "gain"), rules.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { held->assign(rules.get()); }),
              "Can't set the value when types are not equal!");
}

} // namespace
