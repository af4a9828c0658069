#include "meta/KEL_Manager_Impl.h"
#include "support/Samples.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/ChildCursor.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;
using kel::test::thrownMessage;
using kel::test::Watcher;

const std::string notHeld = "getKel: no such element";

JHashCode hashCodeOf(const KEL& value) {
    JHashCode identity;
    return value.getHashCode(identity);
}

/// A manager, watched, and values of the test's own.
class KEL_ManagerTest : public ::testing::Test {
protected:
    KEL_ManagerTest() { manager->addObserver(&watcher); }

    std::string messageOfGet(const JHashCode& identity) {
        const std::string message =
            thrownMessage<KELNoSuchElementException>([&] { manager->getKel(identity); });
        EXPECT_EQ(thrownMessage<KELNoSuchElementException>(
                      [&] { std::as_const(*manager).getKelBase(identity); }),
                  message);
        return message;
    }

    std::string messageOfRemove(const JHashCode& identity) {
        return thrownMessage<KELNoSuchElementException>([&] { manager->removeKel(identity); });
    }

    /// Returns the held values in their order.
    std::vector<KEL*> elements() const {
        std::vector<KEL*> found;
        kel::ChildCursor cursor(*manager);
        while (cursor.next()) {
            found.push_back(cursor.value);
        }
        return found;
    }

    Watcher watcher;
    Held<KEL_Manager_Impl> manager = make<KEL_Manager_Impl>();
    Held<KEL_Int_Impl> one = make<KEL_Int_Impl>(1);
    Held<KEL_Int_Impl> two = make<KEL_Int_Impl>(2);
};

TEST_F(KEL_ManagerTest, IsOfItsKindAndEmptyAtFirst) {
    EXPECT_EQ(manager->getType(), 9);
    EXPECT_EQ(manager->size(), 0);
    EXPECT_FALSE(manager->containsKel(JHashCode()));
    EXPECT_FALSE(manager->containsKel(JHashCode(1, 2, 3, 4)));
    EXPECT_EQ(messageOfGet(JHashCode(1, 2, 3, 4)), notHeld);
}

TEST_F(KEL_ManagerTest, FindsAValueByItsIdentity) {
    manager->addKel(one.get());
    EXPECT_EQ(manager->size(), 1);
    EXPECT_TRUE(manager->containsKel(hashCodeOf(*one)));
    EXPECT_FALSE(manager->containsKel(hashCodeOf(*two)));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_ManagerTest, GetKelIsBorrowedInBothForms) {
    manager->addKel(one.get());
    EXPECT_EQ(manager->getKel(hashCodeOf(*one)), one.get());
    EXPECT_EQ(std::as_const(*manager).getKel(hashCodeOf(*one)), one.get());
    EXPECT_EQ(manager->getKelBase(hashCodeOf(*one)), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
}

TEST_F(KEL_ManagerTest, AddingTheSameValueTwiceKeepsOneElementAndNotifiesTwice) {
    manager->addKel(one.get());
    manager->addKel(one.get());
    EXPECT_EQ(manager->size(), 1);
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_ManagerTest, AnotherValueOfTheSameIdentityTakesItsPlace) {
    const auto replacement = make<KEL_Int_Impl>(hashCodeOf(*one), 9);
    manager->addKel(one.get());
    manager->addKel(two.get());
    manager->addKel(replacement.get());
    EXPECT_EQ(elements(), (std::vector<KEL*>{replacement.get(), two.get()}));
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 3);
}

TEST_F(KEL_ManagerTest, AddingNullDoesNothing) {
    manager->addKel(nullptr);
    EXPECT_EQ(manager->size(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ManagerTest, KeepsTheOrderOfAdditionWhenOneGoes) {
    const auto three = make<KEL_Int_Impl>(3);
    for (KEL* value : {one.get(), two.get(), three.get()}) {
        manager->addKel(value);
    }
    manager->removeKel(hashCodeOf(*two));
    EXPECT_EQ(elements(), (std::vector<KEL*>{one.get(), three.get()}));
}

TEST_F(KEL_ManagerTest, ListsItsElementsInTheOrderOfAddition) {
    manager->addKel(two.get());
    manager->addKel(one.get());
    EXPECT_EQ(manager->getKelAt(0), two.get());
    EXPECT_EQ(manager->getKelAt(1), one.get());
    EXPECT_EQ(referencesOf(*one), 2); // borrowed
}

TEST_F(KEL_ManagerTest, HasNoElementOutsideItsPlaces) {
    manager->addKel(one.get());
    for (const int32_t index : {-1, 1, 2, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { manager->getKelAt(index); }),
                  notHeld);
    }
}

TEST_F(KEL_ManagerTest, RemovingTheOnlyElementLeavesNone) {
    manager->addKel(one.get());
    manager->removeKel(hashCodeOf(*one));
    EXPECT_EQ(manager->size(), 0);
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 2);
    EXPECT_EQ(messageOfRemove(hashCodeOf(*one)), "removeKel: KEL not found.");
}

TEST_F(KEL_ManagerTest, AFailedGetOrRemoveChangesNothingAndNotifiesNobody) {
    manager->addKel(one.get());
    watcher.told.clear();
    EXPECT_EQ(messageOfGet(hashCodeOf(*two)), notHeld);
    EXPECT_EQ(messageOfRemove(hashCodeOf(*two)), "removeKel: KEL not found.");
    EXPECT_EQ(manager->size(), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ManagerTest, RemoveAllKelsNotifiesNobody) {
    manager->addKel(one.get());
    manager->addKel(two.get());
    watcher.told.clear();
    manager->removeAllKels();
    EXPECT_EQ(manager->size(), 0);
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ManagerTest, EveryWordOfTheIdentityCounts) {
    manager->addKel(make<KEL_Int_Impl>(JHashCode(1, 2, 3, 4), 1).get());
    EXPECT_TRUE(manager->containsKel(JHashCode(1, 2, 3, 4)));
    for (const JHashCode& other : {JHashCode(0, 2, 3, 4), JHashCode(1, 0, 3, 4),
                                   JHashCode(1, 2, 0, 4), JHashCode(1, 2, 3, 0)}) {
        EXPECT_FALSE(manager->containsKel(other));
    }
}

TEST_F(KEL_ManagerTest, TheZeroIdentityIsAnIdentity) {
    manager->addKel(make<KEL_Int_Impl>(JHashCode(), 1).get());
    EXPECT_TRUE(manager->containsKel(JHashCode()));
}

TEST_F(KEL_ManagerTest, HoldsManyValues) {
    for (int i = 0; i < 100; ++i) {
        manager->addKel(make<KEL_Int_Impl>(i).get());
    }
    EXPECT_EQ(manager->size(), 100);
}

TEST_F(KEL_ManagerTest, ACopyHoldsTheSameElements) {
    manager->addKel(one.get());
    const Held<KEL> copy(manager->copy());
    auto& copied = dynamic_cast<KEL_Manager&>(*copy);
    dynamic_cast<KEL_Int*>(copied.getKel(hashCodeOf(*one)))->setValue(9);
    EXPECT_EQ(one->getValue(), 9);
    EXPECT_EQ(referencesOf(*one), 3);
}

TEST_F(KEL_ManagerTest, ACopyIsACollectionOfItsOwn) {
    manager->addKel(one.get());
    const Held<KEL> copy(manager->copy());
    manager->removeAllKels();
    EXPECT_EQ(dynamic_cast<KEL_Manager&>(*copy).size(), 1);
}

TEST_F(KEL_ManagerTest, ReleasesItsElementsWhenItGoes) {
    manager->addKel(one.get());
    manager.clear();
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_F(KEL_ManagerTest, DoesNotObserveItsElements) {
    manager->addKel(one.get());
    watcher.told.clear();
    one->setValue(9);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ManagerTest, WhatItCreatesIsNotAdded) {
    const Held<KEL> value(manager->createKel(KELKind_Int));
    EXPECT_EQ(manager->size(), 0);
    EXPECT_EQ(watcher.calls(), 0);
    EXPECT_EQ(referencesOf(*value), 1);
}

TEST_F(KEL_ManagerTest, CreatesWithAGivenIdentity) {
    const JHashCode given(1, 2, 3, 4);
    for (const KELKind kind : kel::test::everyKind) {
        const Held<KEL> value(manager->createKel(kind, given));
        EXPECT_EQ(hashCodeOf(*value), given) << kind;
        EXPECT_EQ(value->getType(), kind);
    }
    EXPECT_EQ(manager->size(), 0);
}

TEST_F(KEL_ManagerTest, CreatesWithAFreshIdentityOtherwise) {
    const Held<KEL> first(manager->createKel(KELKind_Int));
    const Held<KEL> second(manager->createKel(KELKind_Int));
    EXPECT_NE(hashCodeOf(*first), hashCodeOf(*second));
}

TEST_F(KEL_ManagerTest, RefusesAnUnknownKind) {
    for (const int32_t kind : {0, 13, 49, 53, 100, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { manager->createKel(kind); }),
                  "createKel: Unknown type.");
        EXPECT_EQ(thrownMessage<KELNoSuchTypeException>(
                      [&] { manager->createKel(kind, JHashCode(1, 2, 3, 4)); }),
                  "createKel: Unknown type.");
    }
}

} // namespace
