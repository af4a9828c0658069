// Managers, each operation called through the interface.
#include "Host.h"

#include <utility>

namespace {

using host::Held;
using host::hold;
using host::referencesOf;
using host::thrownMessage;

class HostManager : public ::testing::Test {
protected:
    HostManager() { seven->getHashCode(identity); }

    JHashCode identity;
    Held<KEL_Int> seven = hold(CreateKELInt(7));
    Held<KEL_Manager> owner = hold(CreateKELManager());
    KELInterface_Manager_V1& manager = *owner;
};

TEST_F(HostManager, FindsAValueByItsIdentity) {
    manager.addKel(seven.get());
    EXPECT_TRUE(manager.containsKel(identity));
    EXPECT_EQ(manager.getKel(identity), seven.get());
    EXPECT_NE(std::as_const(manager).getKel(identity), nullptr); // the library's own form
    EXPECT_EQ(manager.size(), 1);
    EXPECT_EQ(referencesOf(*seven), 2);
}

TEST_F(HostManager, ListsItsValues) {
    const auto eight = hold(CreateKELInt(8));
    manager.addKel(seven.get());
    manager.addKel(eight.get());
    EXPECT_EQ(owner->getKelAt(0), seven.get());
    EXPECT_EQ(owner->getKelAt(1), eight.get());
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { owner->getKelAt(2); }),
              "getKel: no such element");
}

TEST_F(HostManager, LosesValues) {
    manager.addKel(seven.get());
    manager.removeKel(identity);
    EXPECT_EQ(manager.size(), 0);
    manager.addKel(seven.get());
    manager.removeAllKels();
    EXPECT_FALSE(manager.containsKel(identity));
    EXPECT_EQ(referencesOf(*seven), 1);
}

TEST_F(HostManager, RefusesAnUnknownIdentity) {
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { manager.getKel(identity); }),
              "getKel: no such element");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { manager.removeKel(identity); }),
              "removeKel: KEL not found.");
    manager.addKel(nullptr);
}

TEST_F(HostManager, MakesValuesOfEveryKind) {
    for (const int32_t kind : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 50, 51, 52}) {
        EXPECT_EQ(hold(manager.createKel(kind))->getType(), kind);
        EXPECT_EQ(hold(manager.createKel(kind, JHashCode(1, 2, 3, 4)))->getType(), kind);
    }
    EXPECT_EQ(manager.size(), 0);
}

TEST_F(HostManager, MakesValuesOfAGivenIdentity) {
    JHashCode out;
    const auto value = hold(manager.createKel(KELKind_Int, JHashCode(1, 2, 3, 4)));
    EXPECT_EQ(value->getHashCode(out), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(dynamic_cast<KEL_Int&>(*value).getValue(), 0);
}

TEST_F(HostManager, RefusesKindsThatAreNone) {
    for (const int32_t kind : {0, 13, 49, 53, -1}) {
        EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { manager.createKel(kind); }),
                  "createKel: Unknown type.");
    }
}

TEST_F(HostManager, ACopyHoldsTheSameElements) {
    manager.addKel(seven.get());
    const auto copy = hold(owner->copy());
    EXPECT_EQ(dynamic_cast<KEL_Manager&>(*copy).getKel(identity), seven.get());
}

} // namespace
