// kel::watch_tree: the keys and items of index lists.
#include "WatchTreeSupport.h"

using namespace watch_tree_test;

namespace {

class HppWatchTreeOfLists : public HppWatchTree {
protected:
    void SetUp() override {
        list->addPair(key.raw(), item.raw());
        tree["list"] = kel::value(list);
        watch(tree);
    }
    void TearDown() override {
        HppWatchTree::TearDown();
        list->getItems()->removeAllVars();
    }

    const kel::value key = "k";
    const kel::value item = 1;
    const kel::value added = 2;
    kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList());
    kel::value tree = kel::object();
};

TEST_F(HppWatchTreeOfLists, ReportsKeysAndItems) {
    EXPECT_EQ(reports_of(key), (Paths{"list[0].key"}));
    EXPECT_EQ(reports_of(item), (Paths{"list[0].item"}));
}

TEST_F(HppWatchTreeOfLists, ReportsAChangeOfTheListOnce) {
    EXPECT_EQ(reports([&] { list->addNamedInt("x", 5); }), (Paths{"list"}));
    EXPECT_EQ(reports([&] { list->setItemAt(0, added.raw()); }), (Paths{"list"}));
    EXPECT_EQ(reports_of(added), (Paths{"list[0].item"}));
    EXPECT_EQ(reports_of(item), Paths{});
    EXPECT_EQ(reports([&] { list->removePair(1); }), (Paths{"list"}));
    EXPECT_EQ(reports_of(tree["list"]), (Paths{"list"}));
    EXPECT_EQ(reports([&] { list->removeAllPairs(); }), (Paths{"list"}));
    EXPECT_EQ(references(key), 1);
    EXPECT_EQ(references(added), 1);
}

TEST_F(HppWatchTreeOfLists, FollowsDirectChangesOfTheArraysWithoutAReport) {
    EXPECT_EQ(reports([&] { list->getItems()->setVar(added.raw(), 0); }), Paths{});
    EXPECT_EQ(reports_of(added), (Paths{"list[0].item"}));
    EXPECT_EQ(reports_of(item), Paths{});
}

TEST_F(HppWatchTreeOfLists, WhatHasNoPartnerIsNotInTheTree) {
    list->getItems()->addVar(added.raw());
    EXPECT_EQ(reports_of(added), Paths{});
    list->getKeys()->addInt(7);
    EXPECT_EQ(reports_of(added), (Paths{"list[1].item"}));
    list->getKeys()->removeVar(0);
    EXPECT_EQ(reports_of(added), Paths{});
}

TEST_F(HppWatchTreeOfLists, AnArrayOfTheListThatIsInTheTreeIsReportedThere) {
    tree["items"] = kel::value(kel::share(list->getItems()));
    EXPECT_EQ(reports([&] { list->getItems()->addVar(added.raw()); }), (Paths{"items"}));
    EXPECT_EQ(reports_of(added), (Paths{"items[1]"}));
    EXPECT_EQ(reports([&] { list->setItemAt(0, added.raw()); }), (Paths{"items", "list"}));
}

TEST_F(HppWatchTreeOfLists, AListCanHoldItsOwnArrays) {
    list->addPair(added.raw(), list->getItems());
    EXPECT_EQ(reports_of(kel::value(kel::share(list->getItems()))), (Paths{"list[1].item"}));
    EXPECT_EQ(reports([&] { list->removePair(1); }), (Paths{"list"}));
    EXPECT_EQ(reports_of(kel::value(kel::share(list->getItems()))), Paths{});
}

} // namespace
