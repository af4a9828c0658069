// The observer contract, sentence by sentence, inside the library; tests/host has the host's part.
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

using kel::test::Held;
using kel::test::LifeProbe;
using kel::test::make;
using kel::test::RuntimeWatcher;
using kel::test::Watcher;

/// An Int and watchers that write their letter into a log.
class Observers : public ::testing::Test {
protected:
    void SetUp() override {
        for (Watcher* watcher : {&a, &b, &c}) {
            onUpdate(*watcher, [] {});
        }
    }

    /// Lets watcher do something after it noted its call.
    void onUpdate(Watcher& watcher, const std::function<void()>& action) {
        const char letter = &watcher == &a ? 'a' : &watcher == &b ? 'b' : 'c';
        watcher.then = [this, letter, action] {
            log += letter;
            action();
        };
    }

    void watch(std::initializer_list<Watcher*> watchers) {
        for (Watcher* watcher : watchers) {
            value->addObserver(watcher);
        }
    }

    /// Changes the value and returns who was called.
    std::string change() {
        log.clear();
        value->setValue(value->getValue() + 1);
        return log;
    }

    std::string log;
    Watcher a;
    Watcher b;
    Watcher c;
    Held<KEL_Int_Impl> value = make<KEL_Int_Impl>(0);
};

TEST_F(Observers, AreCalledInTheOrderOfTheirRegistration) {
    watch({&b, &a, &c});
    EXPECT_EQ(change(), "bac");
}

TEST_F(Observers, GetTheValueThatChanged) {
    watch({&a});
    change();
    EXPECT_EQ(a.told, std::vector<KEL*>{value.get()});
}

TEST_F(Observers, AreCalledAfterTheChange) {
    int32_t seen = 0;
    onUpdate(a, [&] { seen = value->getValue(); });
    watch({&a});
    value->setValue(7);
    EXPECT_EQ(seen, 7);
}

TEST_F(Observers, AreRegisteredOnce) {
    watch({&a, &a});
    EXPECT_EQ(value->countObservers(), 1);
    EXPECT_EQ(change(), "a");
}

TEST_F(Observers, NullIsIgnored) {
    value->addObserver(static_cast<KEL_Observer*>(nullptr));
    value->addObserver(static_cast<JObserver*>(nullptr));
    value->removeObserver(static_cast<KEL_Observer*>(nullptr));
    value->removeObserver(static_cast<JObserver*>(nullptr));
    EXPECT_EQ(value->countObservers(), 0);
}

TEST_F(Observers, RemovingAStrangerChangesNothing) {
    value->removeObserver(&a);
    watch({&a});
    value->removeObserver(&b);
    EXPECT_EQ(change(), "a");
}

TEST_F(Observers, OnceRemovedAreNotCalled) {
    watch({&a, &b});
    value->removeObserver(&a);
    EXPECT_EQ(change(), "b");
}

TEST_F(Observers, MayWatchSeveralValues) {
    const auto other = make<KEL_Int_Impl>(0);
    watch({&a});
    other->addObserver(&a);
    change();
    other->setValue(1);
    EXPECT_EQ(a.told, (std::vector<KEL*>{value.get(), other.get()}));
}

TEST_F(Observers, TheLibraryNeverOwnsThem) {
    auto own = std::make_unique<Watcher>();
    value->addObserver(own.get());
    value->removeObserver(own.get());
    own.reset();
    EXPECT_EQ(change(), "");
}

TEST_F(Observers, HearNothingOfTheEndOfTheirValue) {
    watch({&a});
    value.clear();
    EXPECT_EQ(a.calls(), 0);
}

TEST_F(Observers, AnObserverOfTheRuntimeIsHeldAndCalledAmongTheOthers) {
    RuntimeWatcher runtime([this] { log += 'r'; });
    watch({&a});
    value->addObserver(&runtime);
    value->addObserver(&runtime);
    watch({&b});
    EXPECT_EQ(runtime.getRefCount(), 2);
    EXPECT_EQ(change(), "arb");
    value->removeObserver(&runtime);
    EXPECT_EQ(runtime.getRefCount(), 1);
    EXPECT_EQ(change(), "ab");
}

TEST_F(Observers, AnAddedOneIsCalledInTheSameRound) {
    onUpdate(a, [&] { watch({&c}); });
    watch({&a, &b});
    EXPECT_EQ(change(), "abc");
}

TEST_F(Observers, ARemovedOneIsNotCalledAnyMore) {
    onUpdate(a, [&] { value->removeObserver(&c); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
}

TEST_F(Observers, RemovingItselfPassesOverTheNextInThisRound) {
    onUpdate(a, [&] { value->removeObserver(&a); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ac");
    EXPECT_EQ(change(), "bc");
}

TEST_F(Observers, RemovingAnEarlierOnePassesOverTheNextInThisRound) {
    onUpdate(b, [&] { value->removeObserver(&a); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
    EXPECT_EQ(change(), "bc");
}

TEST_F(Observers, RemovingAllEndsTheRound) {
    onUpdate(a, [&] {
        for (Watcher* watcher : {&a, &b, &c}) {
            value->removeObserver(watcher);
        }
    });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "");
}

TEST_F(Observers, ClearingTheListEndsTheRound) {
    onUpdate(a, [&] { value->deleteObservers(); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "");
}

TEST_F(Observers, OneThatRemovesItselfMayGo) {
    auto own = std::make_unique<Watcher>();
    own->then = [&] {
        value->removeObserver(own.get());
        own.reset();
    };
    value->addObserver(own.get());
    change();
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(value->countObservers(), 0);
}

TEST_F(Observers, AChangeInsideStartsARoundOfItsOwn) {
    onUpdate(a, [&] {
        if (value->getValue() == 1) {
            value->setValue(2);
        }
    });
    std::vector<int32_t> seenByB;
    onUpdate(b, [&] { seenByB.push_back(value->getValue()); });
    watch({&a, &b});
    EXPECT_EQ(change(), "aabb");
    EXPECT_EQ(seenByB, (std::vector<int32_t>{2, 2}));
}

TEST_F(Observers, DeletingTheValueInsideEndsItAfterTheRound) {
    const LifeProbe probe(*value);
    bool aliveInside = false;
    onUpdate(a, [&] { value.clear(); });
    onUpdate(b, [&] { aliveInside = probe.isAlive(); });
    watch({&a, &b});
    KEL_Int* raw = value.get();
    raw->setValue(1);
    EXPECT_EQ(log, "ab");
    EXPECT_TRUE(aliveInside);
    EXPECT_FALSE(probe.isAlive());
}

TEST_F(Observers, WhatOneThrowsReachesWhoeverMadeTheChange) {
    onUpdate(a, [] { throw new KELIOException_Impl("from the observer"); });
    watch({&a, &b});
    EXPECT_EQ(kel::test::thrownMessage<KELIOException>([&] { change(); }), "from the observer");
    EXPECT_EQ(log, "a");
    EXPECT_EQ(value->getValue(), 1);
    onUpdate(a, [] {});
    EXPECT_EQ(change(), "ab");
}

TEST_F(Observers, AContainerDoesNotWatchItsElements) {
    const auto array = make<KEL_Array_Impl>();
    array->addVar(value.get());
    array->addObserver(&a);
    change();
    EXPECT_EQ(a.calls(), 0);
}

TEST_F(Observers, AManagerIsMarkedChangedBeforeItNotifies) {
    const auto manager = make<KEL_Manager_Impl>();
    bool marked = false;
    onUpdate(a, [&] { marked = manager->hasChanged(); });
    manager->addObserver(&a);
    manager->addKel(value.get());
    EXPECT_TRUE(marked);
    EXPECT_FALSE(manager->hasChanged());
}

TEST_F(Observers, AreNoPartOfEqualityOrOfACopy) {
    const auto same = make<KEL_Int_Impl>(0);
    watch({&a});
    EXPECT_TRUE(value->equalsValue(same.get()));
    const Held<KEL> copy(value->copy());
    dynamic_cast<KEL_Int&>(*copy).setValue(1);
    EXPECT_EQ(a.calls(), 0);
}

TEST_F(Observers, MayReleaseTheContainerOfTheElementThatChanges) {
    auto array = make<KEL_Array_Impl>();
    array->addVar(value.get());
    KEL_Array* raw = array.get();
    value.clear(); // only the array holds it now
    onUpdate(a, [&] { array.clear(); });
    dynamic_cast<KEL_Observable*>(raw->getVar(0))->addObserver(&a);
    raw->setInt(0, 5);
    EXPECT_EQ(log, "a");
}

TEST_F(Observers, MayChangeTheContainerThatIsBeingChanged) {
    const auto array = make<KEL_Array_Impl>();
    onUpdate(a, [&] {
        if (array->getCount() == 1) {
            array->addInt(2);
        }
    });
    array->addObserver(&a);
    EXPECT_EQ(array->addInt(1), 0); // the index of the new element, not of the last
    EXPECT_EQ(array->getCount(), 2);
}

TEST_F(Observers, MayAddTheVariableThatIsBeingReplaced) {
    const auto structure = make<KEL_Struct_Impl>();
    structure->putInt("x", 1);
    onUpdate(a, [&] {
        if (!structure->containsVar("x")) {
            structure->putInt("x", 2);
        }
    });
    structure->addObserver(&a);
    structure->putInt("x", 3);
    EXPECT_EQ(structure->getInt("x"), 3);
    EXPECT_EQ(structure->getCount(), 1);
}

} // namespace
