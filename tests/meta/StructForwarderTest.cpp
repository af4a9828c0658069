// The rules for all kinds that are built on a struct.
#include "support/Samples.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// Every test below runs for checked structs and for both kinds of descriptors.
class StructForwarderTest : public ::testing::TestWithParam<KELKind> {
protected:
    StructForwarderTest() { watch(held.get(), watcher); }

    static const KEL* innerOf(const HeldValue& holder) {
        return &dynamic_cast<kel::StructHolder&>(*holder).inner();
    }

    HeldValue held{kel::createValue(GetParam(), nullptr)};
    KEL_Struct& value = asStruct(held);
    HeldValue one = intOf(1), two = intOf(2);
    Watcher watcher;
};

INSTANTIATE_TEST_SUITE_P(Kinds, StructForwarderTest,
                         ::testing::Values(KELKind_MetaKel, KELKind_MetaKelDescriptor,
                                           KELKind_MetaKelVarDescriptor));

TEST_P(StructForwarderTest, ObserversAreToldOnceOfEachCallWithTheValue) {
    value.addVar("x", one.get());
    value.setVar("x", two.get());
    value.putInt("x", int32_t{3}); // replaces
    value.renameVar("x", "y");
    value.removeVar("y");
    value.removeAllVars();
    EXPECT_EQ(watcher.told, std::vector<KEL*>(6, held.get()));
}

TEST_P(StructForwarderTest, AnObserverMayChangeTheValueAgain) {
    watcher.then = [&] {
        watcher.then = nullptr;
        value.removeAllVars();
    };
    value.addVar("x", one.get());
    EXPECT_EQ(value.getCount(), 0);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_P(StructForwarderTest, AnObserverMayReleaseTheValue) {
    const LifeProbe probe(*held);
    watcher.then = [&] { held.clear(); };
    value.addVar("x", one.get());
    EXPECT_EQ(watcher.calls(), 1);
    EXPECT_FALSE(probe.isAlive());
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_P(StructForwarderTest, TheInnerStructHasTheIdentityOfTheValue) {
    const JHashCode given = codeOf(7);
    const HeldValue made(kel::createValue(GetParam(), &given));
    EXPECT_EQ(identityOf(made), "00000000-0000-0000-0000-000000000007");
    EXPECT_EQ(identityOf(innerOf(made)), identityOf(made));
    EXPECT_EQ(identityOf(innerOf(held)), identityOf(held));
}

TEST_P(StructForwarderTest, EqualsOnlyItsOwnKindWithEqualVariables) {
    value.addVar("x", one.get());
    for (const KELKind kind : structKinds) {
        const HeldValue other(kel::createValue(kind, nullptr));
        asStruct(other).putInt("x", int32_t{1});
        EXPECT_EQ(held->equalsValue(other.get()), kind == GetParam()) << kind;
        EXPECT_EQ(other->equalsValue(held.get()), kind == GetParam()) << kind;
        asStruct(other).putInt("x", int32_t{2});
        EXPECT_FALSE(held->equalsValue(other.get()));
    }
}

TEST_P(StructForwarderTest, ACopyIsAValueOfItsOwn) {
    value.addVar("x", one.get());
    const HeldValue copy(KEL_Impl::of(held->copy()));
    EXPECT_TRUE(copy->equalsValue(held.get()));
    EXPECT_NE(at(copy, "x"), one.get());
    EXPECT_NE(identityOf(copy), identityOf(held));
    asStruct(copy).removeVar("x");
    EXPECT_TRUE(value.containsVar("x"));
}

TEST_P(StructForwarderTest, AssignTakesCopiesAndNotifiesOnce) {
    const HeldValue source(kel::createValue(GetParam(), nullptr));
    asStruct(source).addVar("x", one.get());
    held->assign(source.get());
    EXPECT_TRUE(held->equalsValue(source.get()));
    EXPECT_NE(at(held, "x"), one.get());
    EXPECT_EQ(watcher.calls(), 1);
}

} // namespace
