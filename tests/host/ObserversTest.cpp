// The observer contract: each sentence of docs/observers.md has its test here.
#include "Host.h"

#include <memory>
#include <thread>
#include <type_traits>

namespace {

using host::Held;
using host::hold;
using host::thrownMessage;
using host::unwatch;
using host::watch;
using host::Watcher;

/// An Int and watchers that write their letter into a log.
class HostObservers : public ::testing::Test {
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

    void watchInt(std::initializer_list<Watcher*> watchers) {
        for (Watcher* watcher : watchers) {
            watch(*value, *watcher);
        }
    }

    /// Changes the Int and returns the letters of the observers that were called.
    std::string change() {
        log.clear();
        value->setValue(value->getValue() + 1);
        return log;
    }

    std::string log;
    Watcher a;
    Watcher b;
    Watcher c;
    Held<KEL_Int> value = hold(CreateKELInt(0));
};

/// Returns the number of times that a change calls an observer of watched.
template <class Change> int callsOf(KEL& watched, const Change& change) {
    Watcher watcher;
    watch(watched, watcher);
    change();
    unwatch(watched, watcher);
    return watcher.calls();
}

// Registration

TEST_F(HostObservers, EveryValueCanBeWatched) {
    for (KEL* made : std::initializer_list<KEL*>{
             CreateKELInt(1), CreateKELBoolean(true), CreateKELDouble(1.5), CreateKELGuid(),
             CreateKELMemBlock(4, nullptr), CreateKELString(""), CreateKELArray(),
             CreateKELStruct(), CreateKELManager()}) {
        const Held<KEL> watched(made);
        const Held<KEL> same(watched->copy());
        EXPECT_EQ(callsOf(*watched, [&] { watched->assign(same.get()); }), 1);
    }
}

TEST_F(HostObservers, ValuesOfEveryKindLeadToTheirObservable) {
    const auto manager = hold(CreateKELManager());
    for (const KELKindFacts& facts : KELKinds) {
        const auto made = hold(manager->createKel(facts.kind));
        EXPECT_NE(dynamic_cast<KEL_Observable*>(made.get()), nullptr) << facts.name;
    }
}

TEST_F(HostObservers, ContainersAreObservablesByDeclaration) {
    static_assert(std::is_base_of_v<KEL_Observable, KEL_Array>);
    static_assert(std::is_base_of_v<KEL_Observable, KEL_Struct>);
    static_assert(std::is_base_of_v<KEL_Observable, KEL_IndexList>);
    static_assert(std::is_base_of_v<KEL_Observable, KEL_Manager>);
    const auto array = hold(CreateKELArray());
    KEL_Observable& observable = *array;
    observable.addObserver(&a);
    array->addInt(1);
    observable.removeObserver(&a);
    array->addInt(2);
    EXPECT_EQ(a.calls(), 1);
}

TEST_F(HostObservers, AddingOneTwiceOrNullChangesNothing) {
    watchInt({&a, &a});
    dynamic_cast<KEL_Observable&>(*value).addObserver(static_cast<KEL_Observer*>(nullptr));
    EXPECT_EQ(change(), "a");
}

TEST_F(HostObservers, RemovingAStrangerOrNullChangesNothing) {
    watchInt({&a});
    unwatch(*value, b);
    dynamic_cast<KEL_Observable&>(*value).removeObserver(static_cast<KEL_Observer*>(nullptr));
    EXPECT_EQ(change(), "a");
}

TEST_F(HostObservers, OneObserverMayWatchManyValuesAndIsToldWhich) {
    const auto other = hold(CreateKELInt(0));
    watchInt({&a});
    watch(*other, a);
    other->setValue(1);
    change();
    EXPECT_EQ(a.told, (std::vector<KEL*>{other.get(), value.get()}));
}

TEST_F(HostObservers, TheLibraryNeverDeletesAnObserver) {
    struct Counted : Watcher {
        explicit Counted(int& deaths) : deaths_(deaths) {}
        ~Counted() override { ++deaths_; }
        int& deaths_;
    };
    int deaths = 0;
    auto observer = std::make_unique<Counted>(deaths);
    watch(*value, *observer);
    value.clear();
    EXPECT_EQ(deaths, 0);
}

TEST_F(HostObservers, NobodyIsToldThatAValueGoes) {
    watchInt({&a});
    value.clear();
    EXPECT_EQ(a.calls(), 0);
}

TEST_F(HostObservers, ACopyHasNoObservers) {
    watchInt({&a});
    const Held<KEL> copy(value->copy());
    dynamic_cast<KEL_Int&>(*copy).setValue(5);
    EXPECT_EQ(a.calls(), 0);
}

TEST_F(HostObservers, ObserversAreNoPartOfAValuesContents) {
    watchInt({&a});
    EXPECT_TRUE(value->equalsValue(hold(CreateKELInt(0)).get()));
    const auto unwatched = hold(CreateKELInt(5));
    value->assign(unwatched.get()); // takes the contents, not the observers
    EXPECT_EQ(change(), "a");
}

// Notifications

TEST_F(HostObservers, AreCalledAfterTheChange) {
    int32_t seen = 0;
    onUpdate(a, [&] { seen = value->getValue(); });
    watchInt({&a});
    value->setValue(7);
    EXPECT_EQ(seen, 7);
}

TEST_F(HostObservers, AreCalledInsideTheCallThatMadeTheChangeOnItsThread) {
    std::thread::id where;
    onUpdate(a, [&] { where = std::this_thread::get_id(); });
    watchInt({&a});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST_F(HostObservers, AreCalledInTheOrderOfTheirRegistration) {
    watchInt({&b, &a, &c});
    EXPECT_EQ(change(), "bac");
}

TEST_F(HostObservers, SettingAScalarIsOneChangeAlsoToTheSameValue) {
    EXPECT_EQ(callsOf(*value, [&] { value->setValue(0); }), 1);
    EXPECT_EQ(callsOf(*value, [&] { value->setString("0"); }), 1);
    EXPECT_EQ(callsOf(*value, [&] { value->setString(nullptr); }), 0);
}

TEST_F(HostObservers, WritingIntoABlockIsOneChangeAndReadingIsNone) {
    const auto block = hold(CreateKELMemBlock(4, nullptr));
    char byte = 0;
    EXPECT_EQ(callsOf(*block, [&] { block->write(0, "x", 1); }), 1);
    EXPECT_EQ(callsOf(*block, [&] { block->read(0, &byte, 1); }), 0);
}

TEST_F(HostObservers, EachOperationOnAnArrayIsOneChange) {
    const auto array = hold(CreateKELArray());
    EXPECT_EQ(callsOf(*array, [&] { array->addVar(value.get()); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->addString("x"); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->insertVar(value.get(), 0); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->setVar(value.get(), 0); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->swapVars(0, 0); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->removeVar(0); }), 1);
    EXPECT_EQ(callsOf(*array, [&] { array->removeAllVars(); }), 1);
}

TEST_F(HostObservers, AddingAContainersValuesIsOneChangeForEachThatWasMissing) {
    const auto other = hold(CreateKELArray());
    const auto array = hold(CreateKELArray());
    other->addInt(1);
    other->addInt(2);
    EXPECT_EQ(callsOf(*array, [&] { array->addVars(other.get()); }), 2);
    EXPECT_EQ(callsOf(*array, [&] { array->addVars(other.get()); }), 0);
}

TEST_F(HostObservers, EachOperationOnAStructIsOneChange) {
    const auto structure = hold(CreateKELStruct());
    EXPECT_EQ(callsOf(*structure, [&] { structure->addVar("x", value.get()); }), 1);
    EXPECT_EQ(callsOf(*structure, [&] { structure->putInt("y", 1); }), 1);
    EXPECT_EQ(callsOf(*structure, [&] { structure->renameVar("x", "z"); }), 1);
    EXPECT_EQ(callsOf(*structure, [&] { structure->removeVar("z"); }), 1);
    EXPECT_EQ(callsOf(*structure, [&] { structure->removeAllVars(); }), 1);
}

TEST_F(HostObservers, ReplacingAVariableIsTwoChangesARemovalAndAnAddition) {
    const auto structure = hold(CreateKELStruct());
    structure->putInt("x", 1);
    std::vector<bool> there;
    Watcher watcher([&] { there.push_back(structure->containsVar("x")); });
    watch(*structure, watcher);
    structure->putInt("x", 2);
    EXPECT_EQ(there, (std::vector<bool>{false, true}));
}

TEST_F(HostObservers, SetVarOfAStructTellsNobody) {
    const auto structure = hold(CreateKELStruct());
    structure->putInt("x", 1);
    EXPECT_EQ(callsOf(*structure, [&] { structure->setVar("x", value.get()); }), 0);
}

TEST_F(HostObservers, AManagerTellsOfAdditionsAndRemovalsButNotOfItsEmptying) {
    JHashCode identity;
    value->getHashCode(identity);
    const auto manager = hold(CreateKELManager());
    EXPECT_EQ(callsOf(*manager, [&] { manager->addKel(value.get()); }), 1);
    EXPECT_EQ(callsOf(*manager, [&] { manager->removeKel(identity); }), 1);
    EXPECT_EQ(callsOf(*manager, [&] { manager->removeAllKels(); }), 0);
}

TEST_F(HostObservers, TypedSettersOfAContainerChangeTheElementNotTheContainer) {
    const auto array = hold(CreateKELArray());
    array->addVar(value.get());
    const auto set = [&] {
        array->setInt(0, 5);
        array->setVarValue(0, value.get());
    };
    EXPECT_EQ(callsOf(*value, set), 2);
    EXPECT_EQ(callsOf(*array, set), 0);
}

TEST_F(HostObservers, ATypedSetterOnANullVariableChangesTheStruct) {
    const auto structure = hold(CreateKELStruct());
    structure->addVar("x", nullptr);
    EXPECT_EQ(callsOf(*structure, [&] { structure->setInt("x", 5); }), 2);
}

TEST_F(HostObservers, AContainerDoesNotWatchWhatItHolds) {
    const auto structure = hold(CreateKELStruct());
    structure->addVar("x", value.get());
    EXPECT_EQ(callsOf(*structure, [&] { value->setValue(5); }), 0);
}

TEST_F(HostObservers, AssignIsOneChangeAndAssignConvertedTellsWhenAskedTo) {
    const auto source = hold(CreateKELInt(5));
    const auto block = hold(CreateKELMemBlock(1, nullptr));
    EXPECT_EQ(callsOf(*value, [&] { value->assign(source.get()); }), 1);
    EXPECT_EQ(callsOf(*value, [&] { value->assignConverted(source.get(), true); }), 1);
    EXPECT_EQ(callsOf(*value, [&] { value->assignConverted(source.get(), false); }), 0);
    EXPECT_EQ(callsOf(*value, [&] { value->assignConverted(block.get(), true); }), 0);
}

TEST_F(HostObservers, WhatIsRefusedOrIgnoredTellsNobody) {
    const auto array = hold(CreateKELArray());
    const auto act = [&] {
        array->addVar(nullptr);
        thrownMessage<KELArrayIndexOutOfBoundsException>([&] { array->removeVar(0); });
    };
    EXPECT_EQ(callsOf(*array, act), 0);
}

// Inside update

TEST_F(HostObservers, OneAddedMeanwhileIsCalledInTheSameRound) {
    onUpdate(a, [&] { watchInt({&c}); });
    watchInt({&a, &b});
    EXPECT_EQ(change(), "abc");
}

TEST_F(HostObservers, OneRemovedBeforeItsTurnIsNotCalled) {
    onUpdate(a, [&] { unwatch(*value, c); });
    watchInt({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
}

TEST_F(HostObservers, RemovingOneselfPassesOverTheNextInThisRoundOnly) {
    onUpdate(a, [&] { unwatch(*value, a); });
    watchInt({&a, &b, &c});
    EXPECT_EQ(change(), "ac");
    EXPECT_EQ(change(), "bc");
}

TEST_F(HostObservers, RemovingOneThatWasCalledPassesOverTheNextInThisRoundOnly) {
    onUpdate(b, [&] { unwatch(*value, a); });
    watchInt({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
    EXPECT_EQ(change(), "bc");
}

TEST_F(HostObservers, RemovingAllEndsTheRound) {
    onUpdate(a, [&] {
        for (Watcher* watcher : {&a, &b, &c}) {
            unwatch(*value, *watcher);
        }
    });
    watchInt({&a, &b, &c});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "");
}

TEST_F(HostObservers, OneThatTookItselfOffMayBeDeleted) {
    auto own = std::make_unique<Watcher>();
    own->then = [&] {
        unwatch(*value, *own);
        own.reset();
    };
    watch(*value, *own);
    change();
    EXPECT_EQ(own, nullptr);
}

TEST_F(HostObservers, AChangeInsideIsToldAtOnceInARoundOfItsOwn) {
    std::vector<int32_t> seen;
    onUpdate(a, [&] {
        if (value->getValue() == 1) {
            value->setValue(2);
        }
    });
    onUpdate(b, [&] { seen.push_back(value->getValue()); });
    watchInt({&a, &b});
    EXPECT_EQ(change(), "aabb");
    EXPECT_EQ(seen, (std::vector<int32_t>{2, 2}));
}

TEST_F(HostObservers, AValueThatIsDeletedInsideLivesUntilTheRoundIsOver) {
    int32_t seen = 0;
    KEL_Int* raw = value.get();
    onUpdate(a, [&] { value.clear(); });
    onUpdate(b, [&] { seen = raw->getValue(); });
    watchInt({&a, &b});
    raw->setValue(7);
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(seen, 7);
}

TEST_F(HostObservers, AContainerThatIsDeletedInsideEndsAfterTheOperation) {
    auto array = hold(CreateKELArray());
    KEL_Array* raw = array.get();
    Watcher watcher([&] { array.clear(); });
    watch(*raw, watcher);
    EXPECT_EQ(raw->addInt(1), 0);
    auto structure = hold(CreateKELStruct());
    structure->putInt("x", 1);
    KEL_Struct* rawStruct = structure.get();
    watcher.then = [&] { structure.clear(); };
    watch(*rawStruct, watcher);
    rawStruct->putInt("x", 2);
    EXPECT_EQ(watcher.calls(), 3);
}

TEST_F(HostObservers, WhatUpdateThrowsReachesWhoeverMadeTheChange) {
    struct Refusal {};
    onUpdate(a, [] { throw Refusal(); });
    watchInt({&a, &b});
    EXPECT_THROW(change(), Refusal);
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(value->getValue(), 1);
    onUpdate(a, [] {});
    EXPECT_EQ(change(), "ab");
}

} // namespace
