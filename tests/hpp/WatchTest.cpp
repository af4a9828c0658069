// kel::watch: subscriptions to the changes of one value.
#include "WatchSupport.h"

#include <memory>
#include <type_traits>
#include <vector>

using namespace watch_test;

namespace {

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

TEST(Watch, AMemberOfAnObjectThatCannotBeMoved) {
    kel::value panel = kel::object({{"gain", 1}});
    struct meter {
        explicit meter(const kel::value& of)
            : watching(kel::watch(of["gain"], [this](const kel::value&) { ++count; })) {}
        int count = 0;
        kel::pinned_subscription watching;
    };
    static_assert(!std::is_move_constructible_v<meter> && !std::is_copy_constructible_v<meter>);
    static_assert(!std::is_move_assignable_v<meter> && !std::is_copy_assignable_v<meter>);
    {
        meter drawn(panel);
        panel["gain"].assign(2);
        EXPECT_EQ(drawn.count, 1);
        EXPECT_TRUE(drawn.watching);
        drawn.watching = kel::watch(panel, [](const kel::value&) {});
        panel["gain"].assign(3);
        EXPECT_EQ(drawn.count, 1) << "the first one has ended";
        drawn.watching.end();
        EXPECT_FALSE(drawn.watching);
    }
    panel["gain"].assign(4);
    kel::pinned_subscription later;
    EXPECT_FALSE(later);
    int calls = 0;
    {
        later = kel::watch_values(panel, [&](std::string_view, const kel::value&) { ++calls; });
        const kel::pinned_subscription other =
            kel::watch_path(panel, "gain", [&](const kel::value&) { ++calls; });
        panel["gain"].assign(5);
    }
    EXPECT_EQ(calls, 2);
    panel["gain"].assign(6);
    EXPECT_EQ(calls, 3);
}

} // namespace
