// Tests the parts of the observer contract that hosts cannot see: observers of the runtime, the
// changed flag, and the lifetime of values. tests/host/ObserversTest.cpp tests the rest.
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
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

    /// Lets watcher run an action after it has noted its call.
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

    /// Changes the value and returns the letters of the observers that were called.
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

TEST_F(Observers, ClearingTheListEndsTheRound) {
    onUpdate(a, [&] { value->deleteObservers(); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "");
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

TEST_F(Observers, AManagerIsMarkedChangedBeforeItNotifies) {
    const auto manager = make<KEL_Manager_Impl>();
    bool marked = false;
    onUpdate(a, [&] { marked = manager->hasChanged(); });
    manager->addObserver(&a);
    manager->addKel(value.get());
    EXPECT_TRUE(marked);
    EXPECT_FALSE(manager->hasChanged());
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
