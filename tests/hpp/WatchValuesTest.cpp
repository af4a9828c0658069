// kel::watch_values: subscriptions to the scalars of a tree that become others.
#include "RecordedCalls.h"
#include "References.h"

#include <functional>
#include <gtest/gtest.h>
#include <kel/kel.hpp>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

std::string text_of(const kel::value& v) {
    const char* text = v.raw()->toString();
    return text == nullptr ? "?" : text;
}

/// Watches the values of a tree and writes down the calls as "path=value".
class HppWatchValues : public RecordedCalls {
protected:
    void watch(const kel::value& root) {
        watched = kel::watch_values(root, [this](std::string_view path, const kel::value& now) {
            record(std::string(path) + '=' + text_of(now));
        });
    }
};

TEST_F(HppWatchValues, CallsOnceForEachWayToChangeAVariable) {
    kel::value tree = kel::object({{"n", 1}, {"size", kel::object({{"w", 2}, {"h", 3}})}});
    watch(tree);
    EXPECT_EQ(during([&] { tree["n"].assign(5); }), (Calls{"n=5"}));
    EXPECT_EQ(during([&] { tree["n"] = 6; }), (Calls{"n=6"}));
    EXPECT_EQ(during([&] { tree["n"].assign(7); }), (Calls{"n=7"})); // the new object is followed
    EXPECT_EQ(during([&] { tree["n"] = "x"; }), (Calls{"n=x"}));
    EXPECT_EQ(during([&] { tree["size"]["w"] = 4; }), (Calls{"size.w=4"}));
    EXPECT_EQ(during([&] {
                  tree["size"] = kel::object({{"w", 4}, {"h", 8}});
              }),
              (Calls{"size.h=8"}));
    EXPECT_EQ(during([&] {
                  tree["size"].assign(kel::object({{"w", 9}, {"h", 8}}));
              }),
              (Calls{"size.w=9"}));
    EXPECT_EQ(during([&] {
                  EXPECT_TRUE(tree["size"].merge(kel::object({{"w", 1}})).empty());
              }),
              (Calls{"size.w=1"}));
}

TEST_F(HppWatchValues, TheSameValueAgainIsNotAChange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    kel::value tree = kel::object({{"n", 1}, {"d", nan}, {"list", kel::array({1, "a"})}});
    watch(tree);
    EXPECT_EQ(during([&] {
                  tree["n"].assign(1);
                  tree["n"] = 1;
                  tree["n"] = 1.0;
                  tree["d"].assign(nan);
                  tree["d"] = -nan;
                  tree["list"] = kel::array({1, "a"});
                  tree["list"].assign(kel::array({1, "a"}));
                  tree.assign(tree.copy());
                  EXPECT_TRUE(tree.merge(tree.copy()).empty());
              }),
              Calls{});
    EXPECT_EQ(during([&] { tree["d"] = 0.5; }), (Calls{"d=0.500000"}));
}

// Checked structs

class HppWatchValuesOfChecked : public HppWatchValues {
protected:
    kel::checked panel{{{"gain", kel::describe<double>().range(-60, 6).fallback(0).step(6)},
                        {"mode", kel::describe<std::string>().one_of({"a", "b"}).fallback("a")},
                        {"free", kel::describe<int>()}}};
};

TEST_F(HppWatchValuesOfChecked, CallsWithTheEffectiveValue) {
    watch(panel);
    EXPECT_EQ(during([&] { panel.set("gain", 3); }), (Calls{"gain=3.000000"}));
    EXPECT_EQ(during([&] { panel.set("gain", 4); }), (Calls{"gain=4.000000"}));
    EXPECT_EQ(during([&] { panel.reset("gain"); }), (Calls{"gain=0.000000"}));
    EXPECT_EQ(during([&] { panel.set("gain", 0); }), Calls{}); // stored, but equal to the default
    EXPECT_EQ(during([&] { panel.reset("gain"); }), Calls{});
    EXPECT_EQ(during([&] { panel.set("gain", 6); }), (Calls{"gain=6.000000"}));
    EXPECT_EQ(during([&] { panel.step_by("gain", 1); }), Calls{}); // at the end already
    EXPECT_EQ(during([&] { kel::value(panel).set("gain", nullptr); }), (Calls{"gain=0.000000"}));
    EXPECT_EQ(during([&] { panel.set("free", 1); }), (Calls{"free=1"}));
    EXPECT_EQ(during([&] { panel.reset("free"); }), Calls{}); // it has nothing any more
}

TEST_F(HppWatchValuesOfChecked, WorksThroughAssignAndMergeOfTheWhole) {
    kel::value tree = kel::object({{"p", panel}});
    panel.set("gain", 3);
    watch(tree);
    kel::value other = kel::value(panel).copy();
    other["mode"] = "b";
    EXPECT_EQ(during([&] { kel::value(panel).assign(other); }), (Calls{"p.mode=b"}));
    EXPECT_EQ(during([&] { panel.set("gain", 4); }), (Calls{"p.gain=4.000000"}));
    const kel::value preset = kel::object({{"gain", 4.0}, {"mode", "a"}});
    EXPECT_EQ(during([&] { EXPECT_TRUE(panel.merge(preset).empty()); }), (Calls{"p.mode=a"}));
    EXPECT_EQ(during([&] { kel::value(panel).clear(); }), (Calls{"p.gain=0.000000"}));
}

TEST_F(HppWatchValuesOfChecked, ADefaultIsLentAsACopy) {
    panel.set("gain", 3);
    const kel::subscription writes =
        kel::watch_values(panel, [](std::string_view, kel::value now) { now.assign(-60); });
    panel.reset("gain");
    EXPECT_EQ(panel.get<double>("gain"), 0);
}

TEST_F(HppWatchValuesOfChecked, TheContentsOfADefaultHaveTheirOwnPathInEachStruct) {
    const kel::ref<MetaKel> first = kel::adopt(CreateMetaKel(nullptr));
    const kel::value pair = kel::array({1, 2});
    first->createVarWithDefault("pair", pair.raw(), pair.raw());
    first->removeVar("pair");
    kel::value tree = kel::object({{"a", kel::value(first)}, {"b", kel::value(first).copy()}});
    watch(tree);
    const auto store = [&](const char* name) {
        tree[name].as<MetaKel>()->setVar("pair", kel::array({1, 3}).raw());
    };
    EXPECT_EQ(during([&] { store("a"); }), (Calls{"a.pair[1]=3"}));
    EXPECT_EQ(during([&] { store("b"); }), (Calls{"b.pair[1]=3"}));
    EXPECT_EQ(during([&] { tree["b"].erase("pair"); }), (Calls{"b.pair[1]=2"}));
}

// Additions and removals

TEST_F(HppWatchValues, WhatIsAddedIsAChangeAndWhatIsRemovedIsNot) {
    kel::value tree = kel::object();
    watch(tree);
    EXPECT_EQ(during([&] {
                  tree["a"] = kel::object({{"n", 1}, {"m", kel::array({2})}});
              }),
              (Calls{"a.n=1", "a.m[0]=2"}));
    const kel::value before = tree["a"]["n"];
    EXPECT_EQ(during([&] { tree.erase("a"); }), Calls{});
    EXPECT_EQ(during([&] { kel::value(before).assign(7); }), Calls{});
    EXPECT_EQ(during([&] { tree["b"] = 1; }), (Calls{"b=1"}));
    EXPECT_EQ(references(before), 1); // what was remembered is released
    EXPECT_EQ(during([&] { tree["a"] = kel::object({{"n", 1}}); }), (Calls{"a.n=1"}));
    EXPECT_EQ(during([&] { tree["a"] = 5; }), (Calls{"a=5"}));
    EXPECT_EQ(during([&] { tree["a"] = kel::object({{"n", 1}}); }), (Calls{"a.n=1"}));
    EXPECT_EQ(during([&] { tree["a"].set("x", nullptr); }), Calls{});
    EXPECT_EQ(during([&] { tree.rename("a", "c"); }), (Calls{"c.n=1"}));
    EXPECT_EQ(during([&] { tree.clear(); }), Calls{});
}

TEST_F(HppWatchValues, AnElementBelongsToItsIndex) {
    kel::value tree = kel::array({1, 1, 2, kel::object({{"n", 8}}), kel::object({{"n", 9}})});
    watch(tree);
    EXPECT_EQ(during([&] { tree.insert(0, 1); }), (Calls{"[2]=1", "[3]=2", "[4].n=8", "[5].n=9"}));
    EXPECT_EQ(during([&] { tree[5]["n"] = 10; }), (Calls{"[5].n=10"}));
    EXPECT_EQ(during([&] { tree.erase_at(0); }), (Calls{"[2]=2", "[3].n=8", "[4].n=10"}));
    EXPECT_EQ(during([&] { tree[3]["n"].assign(7); }), (Calls{"[3].n=7"}));
    EXPECT_EQ(during([&] { tree.as<KEL_Array>()->swapVars(3, 4); }),
              (Calls{"[3].n=10", "[4].n=7"}));
}

TEST_F(HppWatchValues, FollowsListsAndManagers) {
    const kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList());
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    list->addNamedInt("k", 1);
    watch(kel::object({{"l", kel::value(list)}, {"m", kel::value(manager)}}));
    EXPECT_EQ(during([&] { list->setItemAt(0, kel::value(2).raw()); }), (Calls{"l[0].item=2"}));
    EXPECT_EQ(during([&] { list->addNamedInt("x", 5); }), (Calls{"l[1].item=5", "l[1].key=x"}));
    EXPECT_EQ(during([&] { list->getItems()->setVar(kel::value(8).raw(), 1); }),
              (Calls{"l[1].item=8"}));
    EXPECT_EQ(during([&] { list->swapPairs(0, 1); }).size(), 4U);
    EXPECT_EQ(during([&] { manager->addKel(kel::value(6).raw()); }), (Calls{"m[0]=6"}));
    EXPECT_EQ(during([&] { kel::value(kel::share(manager->getKelAt(0))).assign(7); }),
              (Calls{"m[0]=7"}));
}

TEST_F(HppWatchValues, AScalarIsATreeToo) {
    kel::value number = 1;
    watch(number);
    EXPECT_EQ(during([&] { number.assign(1); }), Calls{});
    EXPECT_EQ(during([&] { number.assign(2); }), (Calls{"=2"}));
}

TEST_F(HppWatchValues, ASilentReplacementIsFoundAtTheNextChangeInside) {
    kel::value tree = kel::object({{"x", kel::object({{"n", 1}, {"m", 2}})}});
    watch(tree);
    kel::value inner = tree["x"];
    tree.as<KEL_Struct>()->setVar("x", kel::object({{"n", 3}, {"m", 2}}).raw());
    EXPECT_EQ(during([&] { inner["n"].assign(7); }), Calls{}); // it is not in the tree
    EXPECT_EQ(during([&] { tree["y"] = 1; }), (Calls{"y=1", "x.n=3"}));
}

// Sharing and cycles

TEST_F(HppWatchValues, ASharedContainerIsReportedAtOnePlace) {
    kel::value shared = kel::object({{"n", 1}});
    kel::value tree = kel::object({{"a", shared}, {"b", shared}});
    watch(tree);
    EXPECT_EQ(during([&] { shared["n"] = 2; }), (Calls{"a.n=2"}));
    EXPECT_EQ(during([&] { tree.erase("a"); }), (Calls{"b.n=2"}));
    EXPECT_EQ(during([&] { shared["n"] = 3; }), (Calls{"b.n=3"}));
    EXPECT_EQ(during([&] { tree.erase("b"); }), Calls{});
    EXPECT_EQ(during([&] { shared["n"] = 4; }), Calls{});
}

TEST_F(HppWatchValues, ASharedScalarIsReportedAtEachPlace) {
    kel::value tree = kel::object({{"b", kel::array()}});
    const kel::value shared = 1;
    tree["a"] = shared;
    tree["b"].push_back(shared);
    watch(tree);
    const Calls both = during([&] { tree["a"].assign(2); });
    EXPECT_EQ(both.size(), 2U);
    EXPECT_EQ((std::map<std::string, int>{{both.at(0), 0}, {both.at(1), 0}}),
              (std::map<std::string, int>{{"a=2", 0}, {"b[0]=2", 0}}));
    tree.erase("a");
    EXPECT_EQ(during([&] { tree["b"][0].assign(3); }), (Calls{"b[0]=3"}));
}

TEST_F(HppWatchValues, StandsCycles) {
    kel::value tree = kel::object();
    kel::value left = kel::object({{"n", 1}});
    kel::value right = kel::array({left, tree});
    tree["left"] = left;
    left["right"] = right;
    watch(tree);
    EXPECT_EQ(during([&] { left["n"] = 2; }), (Calls{"left.n=2"}));
    EXPECT_EQ(during([&] { tree.erase("left"); }), Calls{}); // left and right hold each other
    EXPECT_EQ(during([&] { left["n"] = 3; }), Calls{});
    EXPECT_EQ(during([&] { tree["right"] = right; }), (Calls{"right[0].n=3"}));
    EXPECT_EQ(during([&] { left["n"] = 4; }), (Calls{"right[0].n=4"}));
    watched.end();
    right.clear();
    EXPECT_EQ(references(left), 1);
}

TEST_F(HppWatchValues, FollowsATreeOfManyLevels) {
    const kel::value leaf = 1;
    kel::value top = kel::array({leaf});
    for (int level = 1; level < 200000; ++level) {
        top = kel::array({top});
    }
    kel::value tree = kel::object({{"top", top}});
    watch(tree);
    const Calls deep = during([&] { kel::value(leaf).assign(2); });
    ASSERT_EQ(deep.size(), 1U);
    EXPECT_EQ(deep[0].size(), 3U + 3U * 200000U + 2U);
    EXPECT_EQ(during([&] { tree["top"] = 3; }), (Calls{"top=3"}));
}

// Inside a call

TEST_F(HppWatchValues, TheSubscriptionCanEndInside) {
    kel::value tree = kel::object({{"n", 1}});
    watch(tree);
    then = [&] { watched.end(); };
    EXPECT_EQ(during([&] { tree["a"] = kel::array({1, 2}); }), (Calls{"a[0]=1"}));
    EXPECT_EQ(during([&] { tree["n"] = 2; }), Calls{});
    EXPECT_EQ(references(tree), 1);
}

TEST_F(HppWatchValues, AChangeInsideIsReportedOnceAfterTheCall) {
    kel::value tree = kel::object({{"a", 1}, {"b", 1}});
    watch(tree);
    then = [&] {
        then = nullptr;
        tree["b"].assign(3); // before the call for the 2
        tree["c"] = 4;
        tree["a"] = 1; // what it was before
        tree["a"] = 2; // and what has just been reported
        EXPECT_EQ(calls, (Calls{"a=2"}));
    };
    EXPECT_EQ(during([&] {
                  tree.assign(kel::object({{"a", 2}, {"b", 2}}));
              }),
              (Calls{"a=2", "b=3", "c=4"}));
}

TEST_F(HppWatchValues, WhatIsRemovedInsideIsNotReported) {
    kel::value tree = kel::object();
    watch(tree);
    then = [&] { tree.erase("list"); };
    EXPECT_EQ(during([&] { tree["list"] = kel::array({1, 2, 3}); }), (Calls{"list[0]=1"}));
}

TEST_F(HppWatchValues, AnExceptionReachesTheCallerAfterTheOtherCalls) {
    struct Refusal {};
    kel::value tree = kel::object();
    watch(tree);
    then = [] { throw Refusal(); };
    EXPECT_THROW(tree["list"] = kel::array({1, 2}), Refusal);
    EXPECT_EQ(calls, (Calls{"list[0]=1", "list[1]=2"}));
    then = nullptr;
    EXPECT_EQ(during([&] { tree["list"][1] = 3; }), (Calls{"list[1]=3"}));
}

TEST_F(HppWatchValues, NullIsRefused) {
    EXPECT_THROW(watch(kel::value()), kel::type_error);
}

} // namespace
