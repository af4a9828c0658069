// kel::watch: subscriptions to the changes of one value.
#include <functional>
#include <gtest/gtest.h>
#include <kel/kel.hpp>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

/// An observer of another make.
class ForeignObserver : public KEL_Observer {
public:
    explicit ForeignObserver(std::function<void()> action) : action_(std::move(action)) {}
    void update(KEL*) override { action_(); }

private:
    std::function<void()> action_;
};

KEL_Observable& observable(const kel::value& of) {
    return *dynamic_cast<KEL_Observable*>(of.raw());
}

/// Returns the real number of references.
int references(KEL* value) {
    value->addRef();
    return value->release();
}

/// An int, and subscriptions that write their letter into a log.
class HppWatch : public ::testing::Test {
protected:
    static void nothing() {}

    /// Returns a function that writes a letter and then runs an action.
    auto writing(char letter, std::function<void()> action = nothing) {
        return [this, letter, action = std::move(action)](const kel::value&) {
            log += letter;
            action();
        };
    }

    /// Changes the int and returns the letters of those that were called.
    std::string change() {
        log.clear();
        number.assign(number.get<int>() + 1);
        return log;
    }

    std::string log;
    kel::value number = 0;
    kel::subscription a;
    kel::subscription b;
    kel::subscription c;
};

TEST_F(HppWatch, CallsTheFunctionWithTheValueAfterEachChange) {
    int seen = 0;
    a = kel::watch(number, [&](kel::value v) {
        EXPECT_TRUE(same(v, number));
        seen = v.get<int>();
    });
    number.assign(7);
    EXPECT_EQ(seen, 7);
    number.assign(8);
    EXPECT_EQ(seen, 8);
}

TEST_F(HppWatch, WatchesAPlace) {
    kel::value config = kel::object({{"volume", 3}});
    a = kel::watch(config["volume"], writing('a'));
    kel::value volume = config["volume"];
    volume.assign(4);
    EXPECT_EQ(log, "a");
}

TEST_F(HppWatch, WatchesEveryKind) {
    const auto manager = kel::adopt(CreateKELManager());
    for (const KELKindFacts& facts : KELKinds) {
        const kel::value made(kel::adopt(manager->createKel(facts.kind)));
        log.clear();
        a = kel::watch(made, writing('a'));
        made.raw()->assign(kel::value(made.copy()).raw());
        EXPECT_EQ(log, "a") << facts.name;
    }
}

TEST_F(HppWatch, RefusesNull) {
    EXPECT_THROW(a = kel::watch(kel::value(), [](const kel::value&) {}), kel::type_error);
    EXPECT_THROW(a = kel::watch_tree(nullptr, [](std::string_view, const kel::value&) {}),
                 kel::type_error);
    EXPECT_FALSE(a);
}

TEST_F(HppWatch, ASubscriptionMovesAndCannotBeCopied) {
    static_assert(std::is_nothrow_move_constructible_v<kel::subscription>);
    static_assert(std::is_nothrow_move_assignable_v<kel::subscription>);
    static_assert(!std::is_copy_constructible_v<kel::subscription>);
    static_assert(!std::is_copy_assignable_v<kel::subscription>);
    a = kel::watch(number, writing('a'));
    b = std::move(a);
    EXPECT_FALSE(a);
    EXPECT_TRUE(b);
    EXPECT_EQ(change(), "a");
    kel::subscription& itself = b;
    b = std::move(itself);
    EXPECT_TRUE(b);
    EXPECT_EQ(change(), "a");
}

TEST_F(HppWatch, AssigningASubscriptionEndsTheOneBefore) {
    a = kel::watch(number, writing('a'));
    a = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "b");
}

TEST_F(HppWatch, EndAndDestructorStopTheCalls) {
    a = kel::watch(number, writing('a'));
    {
        const kel::subscription scoped = kel::watch(number, writing('b'));
        EXPECT_EQ(change(), "ab");
    }
    EXPECT_EQ(change(), "a");
    a.end();
    EXPECT_FALSE(a);
    a.end();
    EXPECT_EQ(change(), "");
}

TEST_F(HppWatch, AContainerHoldsSubscriptions) {
    std::vector<kel::subscription> all;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        all.push_back(kel::watch(number, writing(letter)));
    }
    EXPECT_EQ(change(), "abcd");
    all.erase(all.begin() + 1);
    EXPECT_EQ(change(), "acd");
    all.clear();
    EXPECT_EQ(change(), "");
}

TEST_F(HppWatch, TheFunctionNeedsNoCopy) {
    a = kel::watch(
        number, [this, owned = std::make_unique<char>('x')](const kel::value&) { log += *owned; });
    EXPECT_EQ(change(), "x");
}

TEST_F(HppWatch, KeepsTheValueAlive) {
    KEL* raw = number.raw();
    a = kel::watch(number, writing('a'));
    number = nullptr;
    EXPECT_EQ(references(raw), 1);
    const kel::ref<KEL> held = kel::share(raw);
    a.end();
    EXPECT_EQ(references(raw), 1);
}

TEST_F(HppWatch, DestroysTheFunctionAtTheEnd) {
    const auto token = std::make_shared<int>();
    a = kel::watch(number, [token](const kel::value&) {});
    EXPECT_EQ(token.use_count(), 2);
    a.end();
    EXPECT_EQ(token.use_count(), 1);
}

// Inside a call

TEST_F(HppWatch, ASubscriptionNeedNotBeTheLastMember) {
    struct Owner {
        explicit Owner(int& calls) {
            all.push_back(kel::watch(tree, [&calls](const kel::value&) { ++calls; }));
            const auto count = [&calls](std::string_view, const kel::value&) { ++calls; };
            all.push_back(kel::watch_tree(tree, count));
            all.push_back(kel::watch_values(tree, count));
        }
        std::vector<kel::subscription> all;
        kel::value tree = kel::object({{"list", kel::array({1, 2})}}); // destroyed before
        kel::value list = tree["list"];
    };
    int calls = 0;
    {
        Owner owner(calls);
        owner.list.push_back(3);
        EXPECT_EQ(calls, 2);
        owner.tree.erase("list");
        EXPECT_EQ(calls, 4);
    }
    EXPECT_EQ(calls, 4) << "releasing a value is not a change";
}

TEST_F(HppWatch, OneThatEndsItselfMakesNobodyMissACall) {
    a = kel::watch(number, writing('a', [this] { a.end(); }));
    b = kel::watch(number, writing('b'));
    c = kel::watch(number, writing('c'));
    EXPECT_EQ(change(), "abc");
    EXPECT_EQ(change(), "bc");
}

TEST_F(HppWatch, OneThatIsDestroyedInItsCallMakesNobodyMissACall) {
    auto own = std::make_unique<kel::subscription>();
    *own = kel::watch(number, writing('a', [&] { own.reset(); }));
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "ab");
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(change(), "b");
}

TEST_F(HppWatch, OneThatEndsOthersMakesNobodyElseMissACall) {
    kel::subscription d;
    a = kel::watch(number, writing('a'));
    b = kel::watch(number, writing('b', [&] {
                       a.end(); // it has been called
                       c.end(); // it has not
                   }));
    c = kel::watch(number, writing('c'));
    d = kel::watch(number, writing('d'));
    EXPECT_EQ(change(), "abd");
    EXPECT_EQ(change(), "bd");
}

TEST_F(HppWatch, AllCanEndInside) {
    a = kel::watch(number, writing('a', [this] {
                       a.end();
                       b.end();
                       c.end();
                   }));
    b = kel::watch(number, writing('b'));
    c = kel::watch(number, writing('c'));
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(references(number.raw()), 1);
    EXPECT_EQ(change(), "");
}

TEST_F(HppWatch, ObserversOfAnotherMakeMissNoCallEither) {
    ForeignObserver between([this] { log += 'f'; });
    a = kel::watch(number, writing('a', [this] { a.end(); }));
    observable(number).addObserver(&between);
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "afb");
    EXPECT_EQ(change(), "fb");
    observable(number).removeObserver(&between);
}

TEST_F(HppWatch, AnObserverOfAnotherMakeCanWatchWhileOneWaitsForItsEnd) {
    const kel::value other = 0;
    ForeignObserver between([&] {
        log += 'f';
        c = kel::watch(other, [](const kel::value&) {});
        c.end();
    });
    a = kel::watch(number, writing('a', [this] { a.end(); }));
    observable(number).addObserver(&between);
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "afb");
    observable(number).removeObserver(&between);
}

TEST_F(HppWatch, ReleasesEverythingAtTheEndOfTheRound) {
    const auto token = std::make_shared<int>();
    a = kel::watch(number, [this, token](const kel::value&) { a.end(); });
    b = kel::watch(number, writing('b', [&] { EXPECT_EQ(token.use_count(), 1); }));
    change();
    EXPECT_EQ(references(number.raw()), 2); // the handle and b
    b.end();
    EXPECT_EQ(references(number.raw()), 1);
}

TEST_F(HppWatch, AFunctionThatEndsItsSubscriptionRunsToItsEnd) {
    auto token = std::make_shared<std::string>("still here");
    a = kel::watch(number, [this, token](const kel::value&) {
        a.end();
        log += *token;
    });
    EXPECT_EQ(change(), "still here");
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(HppWatch, ASubscriptionCanBeMovedInsideItsCall) {
    a = kel::watch(number, writing('a', [this] {
                       kel::subscription moved = std::move(a);
                       b = std::move(moved);
                   }));
    EXPECT_EQ(change(), "a");
    EXPECT_FALSE(a);
    EXPECT_TRUE(b);
}

TEST_F(HppWatch, OneMadeInsideIsFirstCalledForTheNextChange) {
    a = kel::watch(number, writing('a', [this] {
                       if (!b) {
                           b = kel::watch(number, writing('b'));
                       }
                   }));
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "ab");
}

TEST_F(HppWatch, OneCanReplaceItselfInItsCall) {
    std::function<void()> again = [&] { a = kel::watch(number, writing('a', again)); };
    again();
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(references(number.raw()), 2);
    again = nothing;
}

TEST_F(HppWatch, OneMadeInsideIsCalledForAChangeInside) {
    a = kel::watch(number, writing('a', [this] {
                       if (number.get<int>() == 1) {
                           b = kel::watch(number, writing('b'));
                           number.assign(2);
                       }
                   }));
    EXPECT_EQ(change(), "aab");
    EXPECT_EQ(change(), "ab");
}

TEST_F(HppWatch, AChangeInsideIsReportedAtOnce) {
    a = kel::watch(number, writing('a', [this] {
                       if (number.get<int>() == 1) {
                           number.assign(2);
                       }
                   }));
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "aabb");
}

TEST_F(HppWatch, OneThatEndsInANestedRoundMakesNobodyMissACall) {
    a = kel::watch(number, writing('a', [this] {
                       if (number.get<int>() == 1) {
                           number.assign(2);
                       } else {
                           a.end();
                       }
                   }));
    b = kel::watch(number, writing('b'));
    c = kel::watch(number, writing('c'));
    EXPECT_EQ(change(), "aabcbc");
    EXPECT_EQ(references(number.raw()), 3);
    EXPECT_EQ(change(), "bc");
}

TEST_F(HppWatch, OneEndsInsideTheRoundOfAnotherValue) {
    const kel::value other = 0;
    kel::subscription outer =
        kel::watch(other, [this](const kel::value&) { number.assign(number.get<int>() + 1); });
    a = kel::watch(number, writing('a', [&] {
                       a.end();
                       outer.end();
                   }));
    b = kel::watch(number, writing('b'));
    c = kel::watch(other, writing('c'));
    kel::value(other).assign(1);
    EXPECT_EQ(log, "abc");
    EXPECT_EQ(references(other.raw()), 2);
    EXPECT_EQ(references(number.raw()), 2);
}

TEST_F(HppWatch, TheLastHandleCanBeReleasedInside) {
    KEL* raw = number.raw();
    const auto token = std::make_shared<int>();
    a = kel::watch(number, [this, token](const kel::value& v) {
        log += 'a';
        number = nullptr;
        a.end();
        EXPECT_EQ(v.get<int>(), 5);
    });
    b = kel::watch(number, writing('b', [this] { b.end(); }));
    dynamic_cast<KEL_Int*>(raw)->setValue(5);
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(HppWatch, AnExceptionReachesWhoeverMadeTheChange) {
    struct Refusal {};
    a = kel::watch(number, writing('a', [this] {
                       a.end();
                       throw Refusal();
                   }));
    b = kel::watch(number, writing('b', [] { throw kel::not_found("b"); }));
    c = kel::watch(number, writing('c'));
    EXPECT_THROW(change(), Refusal);
    EXPECT_EQ(log, "abc");
    EXPECT_EQ(number.get<int>(), 1);
    EXPECT_THROW(change(), kel::not_found);
    EXPECT_EQ(log, "bc");
    b.end();
    EXPECT_EQ(change(), "c");
    EXPECT_EQ(references(number.raw()), 2);
}

TEST_F(HppWatch, AFunctionCanOwnSubscriptions) {
    a = kel::watch(number, writing('a', [this] { b.end(); }));
    b = kel::watch(number, [this, owned = kel::watch(number, writing('c'))](const kel::value&) {
        log += 'b';
    });
    EXPECT_EQ(change(), "a"); // the end of b destroys its function, and so c
    EXPECT_EQ(change(), "a");
    EXPECT_EQ(references(number.raw()), 2);
}

TEST_F(HppWatch, AFunctionCanOwnItsOwnSubscription) {
    auto own = std::make_shared<kel::subscription>();
    *own = kel::watch(number, [own, this](const kel::value&) {
        log += 'a';
        own->end();
    });
    const std::weak_ptr<kel::subscription> left = own;
    own.reset();
    EXPECT_EQ(change(), "a");
    EXPECT_TRUE(left.expired());
    EXPECT_EQ(change(), "");
}

TEST_F(HppWatch, TwoThreadsWatchTwoTrees) {
    const auto work = [] {
        kel::value tree = kel::object({{"n", 0}, {"list", kel::array()}});
        kel::value n = tree["n"];
        int calls = 0;
        int reports = 0;
        for (int i = 0; i < 200; ++i) {
            kel::subscription once;
            once = kel::watch(n, [&](const kel::value&) {
                ++calls;
                once.end();
            });
            const kel::subscription all =
                kel::watch_tree(tree, [&](std::string_view, const kel::value&) { ++reports; });
            n.assign(i);
            tree["list"].push_back(i);
        }
        EXPECT_EQ(calls, 200);
        EXPECT_EQ(reports, 400);
    };
    std::thread other(work);
    work();
    other.join();
}

TEST_F(HppWatch, AThreadCanEndWithASubscriptionThatEndedInside) {
    std::thread([this] {
        const auto own = std::make_shared<kel::subscription>();
        *own = kel::watch(number, [own](const kel::value&) { own->end(); });
        change();
    }).join();
    EXPECT_EQ(references(number.raw()), 1);
}

TEST_F(HppWatch, AValueChangesHandsBetweenThreads) {
    std::thread([this] { a = kel::watch(number, writing('a', [this] { a.end(); })); }).join();
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "ab");
    std::thread([this] { b.end(); }).join();
    EXPECT_EQ(change(), "");
    EXPECT_EQ(references(number.raw()), 1);
}

// A round whose end is not seen, because an observer of another make removes itself just before it.
TEST_F(HppWatch, OneThatCouldNotBeTakenOffIsTakenOffLater) {
    ForeignObserver foreign([] {});
    ForeignObserver last([&] {
        log += 'l';
        observable(number).removeObserver(&last);
    });
    a = kel::watch(number, writing('a', [&] {
                       observable(number).addObserver(&last);
                       a.end();
                   }));
    EXPECT_EQ(change(), "al");
    EXPECT_EQ(references(number.raw()), 2);
    EXPECT_EQ(change(), "");
    EXPECT_EQ(references(number.raw()), 1);
}

kel::subscription outlives_the_thread;
kel::value outlives_too;

TEST_F(HppWatch, ASubscriptionCanOutliveItsThread) {
    outlives_too = number;
    std::thread([&] {
        outlives_the_thread = kel::watch(outlives_too, [](const kel::value&) {});
    }).join();
    EXPECT_TRUE(outlives_the_thread); // it ends after the objects of the main thread
}

} // namespace
