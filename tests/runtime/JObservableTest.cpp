#include "runtime/JObservable.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using kel::test::RuntimeWatcher;

/// An observable, and watchers that write their letter into a log.
class JObservableTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (RuntimeWatcher* watcher : {&a, &b, &c}) {
            watcher->then = [this, watcher] { note(watcher); };
        }
    }

    void note(const RuntimeWatcher* watcher) {
        log += watcher == &a ? 'a' : watcher == &b ? 'b' : 'c';
    }

    /// Lets watcher run an action after it has noted its call.
    void onUpdate(RuntimeWatcher& watcher, const std::function<void()>& action) {
        watcher.then = [this, &watcher, action] {
            note(&watcher);
            action();
        };
    }

    void watch(std::initializer_list<RuntimeWatcher*> watchers) {
        for (RuntimeWatcher* watcher : watchers) {
            observable->addObserver(watcher);
        }
    }

    /// Changes, notifies, and returns the letters of the observers that were called.
    std::string change() {
        log.clear();
        observable->setChanged();
        observable->notifyObservers();
        return log;
    }

    std::string log;
    RuntimeWatcher a;
    RuntimeWatcher b;
    RuntimeWatcher c;
    JPointer<JObservable> observable{new JObservable()};
};

TEST_F(JObservableTest, IsUnchangedAndUnwatchedAtFirst) {
    EXPECT_FALSE(observable->hasChanged());
    EXPECT_EQ(observable->countObservers(), 0);
    EXPECT_EQ(JObservable(1, 2, 3, 4).countObservers(), 0);
    EXPECT_FALSE(JObservable(1, 2, 3, 4).hasChanged());
}

TEST_F(JObservableTest, KeepsTheGivenIdentity) {
    JHashCode identity;
    EXPECT_EQ(JObservable(1, 2, 3, 4).getHashCode(identity), JHashCode(1, 2, 3, 4));
}

TEST_F(JObservableTest, TheFlagIsSetAndCleared) {
    observable->setChanged();
    EXPECT_TRUE(observable->hasChanged());
    observable->clearChanged();
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, CallsObserversInTheOrderOfTheirRegistration) {
    watch({&b, &a, &c});
    EXPECT_EQ(change(), "bac");
}

TEST_F(JObservableTest, PassesItself) {
    watch({&a});
    change();
    EXPECT_EQ(a.told, std::vector<JObservable*>{observable.get()});
}

TEST_F(JObservableTest, WithoutAChangeNobodyIsCalled) {
    watch({&a});
    observable->notifyObservers();
    EXPECT_EQ(log, "");
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, NotifyingClearsTheFlag) {
    watch({&a});
    change();
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, WithoutAListTheFlagStays) {
    observable->setChanged();
    observable->notifyObservers();
    EXPECT_TRUE(observable->hasChanged());
}

TEST_F(JObservableTest, AnEmptyListClearsTheFlag) {
    watch({&a});
    observable->deleteObserver(&a);
    change();
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, AddingTheSameObserverTwiceKeepsOneEntry) {
    watch({&a, &a});
    EXPECT_EQ(observable->countObservers(), 1);
    EXPECT_EQ(change(), "a");
}

TEST_F(JObservableTest, HoldsAReferenceToEachObserver) {
    watch({&a});
    EXPECT_EQ(a.getRefCount(), 2);
    observable->deleteObserver(&a);
    EXPECT_EQ(a.getRefCount(), 1);
}

TEST_F(JObservableTest, DestructionReleasesTheObservers) {
    watch({&a});
    observable.clear();
    EXPECT_EQ(a.getRefCount(), 1);
}

TEST_F(JObservableTest, NullRegistersNothing) {
    observable->addObserver(nullptr);
    EXPECT_EQ(observable->countObservers(), 0);
    EXPECT_EQ(change(), "");
}

TEST_F(JObservableTest, DeletingAStrangerOrWithoutAListDoesNothing) {
    observable->deleteObserver(&a);
    watch({&a});
    observable->deleteObserver(&b);
    observable->deleteObserver(nullptr);
    EXPECT_EQ(change(), "a");
}

TEST_F(JObservableTest, DeleteObserversEmptiesTheList) {
    observable->deleteObservers();
    watch({&a, &b});
    EXPECT_EQ(observable->countObservers(), 2);
    observable->deleteObservers();
    EXPECT_EQ(observable->countObservers(), 0);
    EXPECT_EQ(a.getRefCount(), 1);
}

TEST_F(JObservableTest, AfterDeleteObserversThereIsNoListAgain) {
    watch({&a});
    observable->deleteObservers();
    change();
    EXPECT_TRUE(observable->hasChanged());
}

TEST_F(JObservableTest, TellsWhetherAnObserverIsRegistered) {
    EXPECT_FALSE(observable->containsObserver(&a)); // no list
    watch({&a, &b});
    EXPECT_TRUE(observable->containsObserver(&a));
    EXPECT_TRUE(observable->containsObserver(&b));
    EXPECT_FALSE(observable->containsObserver(&c));
    EXPECT_FALSE(observable->containsObserver(nullptr));
}

TEST_F(JObservableTest, AnObserverAddedMeanwhileIsCalledInTheSameRound) {
    onUpdate(a, [&] { observable->addObserver(&c); });
    watch({&a, &b});
    EXPECT_EQ(change(), "abc");
}

TEST_F(JObservableTest, OneRemovedBeforeItsTurnIsNotCalled) {
    onUpdate(a, [&] { observable->deleteObserver(&c); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
}

TEST_F(JObservableTest, RemovingItselfPassesOverTheNextInThisRound) {
    onUpdate(a, [&] { observable->deleteObserver(&a); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ac");
    EXPECT_EQ(change(), "bc");
}

TEST_F(JObservableTest, RemovingAnEarlierOnePassesOverTheNextInThisRound) {
    onUpdate(b, [&] { observable->deleteObserver(&a); });
    watch({&a, &b, &c});
    EXPECT_EQ(change(), "ab");
    EXPECT_EQ(change(), "bc");
}

TEST_F(JObservableTest, ClearingTheListEndsTheRound) {
    onUpdate(a, [&] { observable->deleteObservers(); });
    watch({&a, &b});
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(observable->countObservers(), 0);
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, AListMadeAnewInsideACallbackIsWalkedFromTheSamePlace) {
    onUpdate(a, [&] {
        observable->deleteObservers();
        watch({&c, &b});
    });
    watch({&a});
    EXPECT_EQ(change(), "ab");
}

TEST_F(JObservableTest, OutlivesTheWalk) {
    onUpdate(a, [&] { observable.clear(); });
    watch({&a, &b});
    JObservable* raw = observable.get();
    raw->setChanged();
    raw->notifyObservers();
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(a.getRefCount(), 1); // the observable is gone
}

TEST_F(JObservableTest, AnObserverIsHeldWhileItIsCalled) {
    int32_t countInside = 0;
    auto* own = new RuntimeWatcher();
    own->then = [&] {
        observable->deleteObserver(own);
        countInside = own->getRefCount();
    };
    observable->addObserver(own);
    own->release(); // only the observable holds it
    change();
    EXPECT_EQ(countInside, 1);
}

TEST_F(JObservableTest, AChangeInsideACallbackStartsARoundOfItsOwn) {
    watch({&a, &b});
    int rounds = 0;
    onUpdate(a, [&] {
        if (++rounds == 1) {
            observable->setChanged();
            observable->notifyObservers();
        }
    });
    EXPECT_EQ(change(), "aabb");
    EXPECT_FALSE(observable->hasChanged());
}

TEST_F(JObservableTest, TheFirstExceptionOfARoundReachesTheCallerWhenAllWereCalled) {
    onUpdate(a, [] { throw JIOException("from the observer"); });
    onUpdate(b, [] { throw new JNoSuchElementException("freed"); });
    watch({&a, &b, &c});
    EXPECT_THROW(change(), JIOException);
    EXPECT_EQ(log, "abc");
    EXPECT_FALSE(observable->hasChanged());
    EXPECT_EQ(observable->getRefCount(), 1);
}

} // namespace
