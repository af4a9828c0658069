// kel::watch_tree: subscriptions to the changes of all values in a tree.
#include "WatchTreeSupport.h"

#include <memory>
#include <utility>

using namespace watch_tree_test;

namespace {

TEST_F(HppWatchTree, ReportsEveryValueWithItsPath) {
    kel::value tree = kel::object({{"n", 1},
                                   {"list", kel::array({10, kel::object({{"deep", "x"}})})},
                                   {"odd name", kel::object({{"q.r", 2}})}});
    watch(tree);
    EXPECT_EQ(reports_of(tree), (Paths{""}));
    EXPECT_EQ(reports_of(tree["n"]), (Paths{"n"}));
    EXPECT_EQ(reports_of(tree["list"]), (Paths{"list"}));
    EXPECT_EQ(reports_of(tree["list"][0]), (Paths{"list[0]"}));
    EXPECT_EQ(reports_of(tree["list"][1]["deep"]), (Paths{"list[1].deep"}));
    EXPECT_EQ(reports_of(tree["odd name"]["q.r"]), (Paths{"[\"odd name\"][\"q.r\"]"}));
}

TEST_F(HppWatchTree, ReportsTheElementsOfAManager) {
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    const kel::value element = 5;
    watch(kel::object({{"m", kel::value(manager)}}));
    EXPECT_EQ(reports([&] { manager->addKel(element.raw()); }), (Paths{"m"}));
    EXPECT_EQ(reports_of(element), (Paths{"m[0]"}));
    EXPECT_EQ(reports([&] { manager->removeKel(element.identity()); }), (Paths{"m"}));
    EXPECT_EQ(reports_of(element), Paths{});
}

TEST_F(HppWatchTree, AScalarIsATreeToo) {
    const kel::value number = 1;
    watch(number);
    EXPECT_EQ(reports_of(number), (Paths{""}));
}

TEST_F(HppWatchTree, FollowsWhatIsPutReplacedAndRemoved) {
    kel::value tree = kel::object();
    kel::value inner = kel::object({{"n", 1}});
    watch(tree);
    EXPECT_EQ(reports([&] { tree["a"] = inner; }), (Paths{""}));
    EXPECT_EQ(reports([&] { inner["m"] = kel::array(); }), (Paths{"a"}));
    EXPECT_EQ(reports([&] { tree["a"]["m"].push_back(1); }), (Paths{"a.m"}));
    EXPECT_EQ(reports_of(tree["a"]["m"][0]), (Paths{"a.m[0]"}));
    // A replacement is a removal and an addition.
    EXPECT_EQ(reports([&] { tree["a"] = 7; }), (Paths{"", ""}));
    EXPECT_EQ(reports([&] { inner["n"] = 2; }), Paths{});
    EXPECT_EQ(reports_of(inner["m"]), Paths{});
    EXPECT_EQ(reports_of(tree["a"]), (Paths{"a"}));
    EXPECT_EQ(reports([&] { tree.rename("a", "b"); }), (Paths{""}));
    EXPECT_EQ(reports_of(tree["b"]), (Paths{"b"}));
}

TEST_F(HppWatchTree, FollowsTheElementsOfAnArray) {
    kel::value tree = kel::array({0, 1, 2});
    std::vector<kel::value> before;
    for (const kel::value& each : tree.elements()) {
        before.push_back(each);
    }
    const kel::value added = 9;
    watch(tree);
    tree.insert(1, added);
    EXPECT_EQ(reports_of(before[2]), (Paths{"[3]"}));
    EXPECT_EQ(reports_of(added), (Paths{"[1]"}));
    tree.erase_at(0);
    EXPECT_EQ(reports_of(before[0]), Paths{});
    EXPECT_EQ(reports_of(before[1]), (Paths{"[1]"}));
    tree[0] = before[0];
    EXPECT_EQ(reports_of(added), Paths{});
    EXPECT_EQ(reports_of(before[0]), (Paths{"[0]"}));
    tree.as<KEL_Array>()->swapVars(0, 2);
    EXPECT_EQ(reports_of(before[0]), (Paths{"[2]"}));
    kel::value other = kel::array({3, 4});
    tree.assign(other);
    EXPECT_EQ(reports_of(before[0]), Paths{});
    EXPECT_EQ(reports_of(tree[1]), (Paths{"[1]"}));
    EXPECT_EQ(reports([&] { tree.clear(); }), (Paths{""}));
}

TEST_F(HppWatchTree, ReportsASharedValueOnceWithThePathOfOnePlace) {
    const kel::value shared = kel::object({{"n", 1}});
    kel::value tree = kel::object({{"a", shared}, {"b", kel::array({shared, shared})}});
    watch(tree);
    EXPECT_EQ(reports_of(shared).size(), 1U);
    EXPECT_EQ(reports_of(shared.find("n")).size(), 1U);
    tree.erase("a");
    EXPECT_EQ(reports_of(shared), (Paths{"b[0]"}));
    tree["b"].as<KEL_Array>()->removeVar(0);
    EXPECT_EQ(reports_of(shared.find("n")), (Paths{"b[0].n"}));
    tree["b"].as<KEL_Array>()->removeVar(0);
    EXPECT_EQ(reports_of(shared), Paths{});
    EXPECT_EQ(reports_of(shared.find("n")), Paths{});
    EXPECT_EQ(references(shared), 1);
}

TEST_F(HppWatchTree, AValueThatMovesIsReportedAtItsNewPlace) {
    const kel::value moving = kel::object({{"n", 1}});
    kel::value tree = kel::object({{"a", kel::array({moving})}, {"b", kel::array()}});
    watch(tree);
    tree["b"].push_back(moving);
    tree["a"].as<KEL_Array>()->removeAllVars();
    EXPECT_EQ(reports_of(moving.find("n")), (Paths{"b[0].n"}));
}

TEST_F(HppWatchTree, StandsCycles) {
    kel::value tree = kel::object();
    kel::value left = kel::object();
    kel::value right = kel::array();
    tree["left"] = left;
    left["right"] = right;
    right.push_back(left);
    right.push_back(tree);
    watch(tree);
    EXPECT_EQ(reports_of(tree), (Paths{""}));
    EXPECT_EQ(reports_of(left), (Paths{"left"}));
    EXPECT_EQ(reports_of(right), (Paths{"left.right"}));
    tree.erase("left"); // left and right hold each other
    EXPECT_EQ(reports_of(left), Paths{});
    EXPECT_EQ(reports_of(right), Paths{});
    EXPECT_EQ(references(left), 2);
    tree["right"] = right;
    EXPECT_EQ(reports_of(left), (Paths{"right[0]"}));
    right.clear();
}

TEST_F(HppWatchTree, AValueThatHoldsItselfLeavesTheTree) {
    kel::value tree = kel::object();
    kel::value self = kel::array();
    self.push_back(self);
    tree["self"] = self;
    watch(tree);
    EXPECT_EQ(reports_of(self), (Paths{"self"}));
    tree.erase("self");
    EXPECT_EQ(reports_of(self), Paths{});
    self.clear();
    EXPECT_EQ(references(self), 1);
}

TEST_F(HppWatchTree, KeepsTheTreeAliveAndReleasesItAtTheEnd) {
    const kel::value leaf = 1;
    kel::value tree = kel::object({{"a", kel::array({leaf})}});
    watch(tree);
    EXPECT_EQ(references(leaf), 3);
    all.end();
    EXPECT_FALSE(all);
    EXPECT_EQ(references(leaf), 2);
    EXPECT_EQ(reports_of(leaf), Paths{});
}

// Checked structs

TEST_F(HppWatchTree, ReportsCheckedStructsAndTheirDescriptors) {
    const kel::ref<MetaKel> checked = kel::adopt(CreateMetaKel(nullptr));
    const kel::value allowed = kel::array({1, 2});
    const kel::value number = 1;
    watch(kel::object({{"c", kel::value(checked)}}));
    EXPECT_EQ(reports([&] {
                  checked->createVarWithEnum("n", number.raw(), allowed.as<KEL_Array>().get());
              }),
              (Paths{"c"}));
    EXPECT_EQ(reports_of(number), (Paths{"c.n"}));
    EXPECT_EQ(reports_of(allowed), (Paths{"c.@desc.n.enum"}));
    const kel::value other = 2;
    EXPECT_EQ(reports([&] { checked->setVar("n", other.raw()); }), (Paths{"c"}));
    EXPECT_EQ(reports_of(number), Paths{});
    EXPECT_EQ(reports_of(other), (Paths{"c.n"}));
    EXPECT_EQ(reports([&] { checked->setInt("n", 1); }), (Paths{"c.n", "c"}));
    EXPECT_EQ(reports([&] { checked->removeDescriptor(); }), (Paths{"c"}));
    EXPECT_EQ(reports_of(allowed), Paths{});
}

// Changes that notify nobody

TEST_F(HppWatchTree, ASilentReplacementIsFoundAtTheNextChangeOfTheStruct) {
    const kel::value before = 1;
    const kel::value after = 2;
    kel::value tree = kel::object({{"inner", kel::object({{"n", before}})}});
    watch(tree);
    tree["inner"].as<KEL_Struct>()->setVar("n", after.raw());
    EXPECT_EQ(references(before), 2);
    EXPECT_EQ(reports_of(after), Paths{});
    touch(tree["inner"]);
    EXPECT_EQ(references(before), 1);
    EXPECT_EQ(reports_of(after), (Paths{"inner.n"}));
    EXPECT_EQ(reports_of(before), Paths{});
}

TEST_F(HppWatchTree, AValueThatLeftSilentlyIsNotReported) {
    const kel::value before = kel::object({{"n", 1}});
    const kel::value after = 2;
    kel::value tree = kel::object({{"inner", kel::object({{"x", before}})}});
    watch(tree);
    tree["inner"].as<KEL_Struct>()->setVar("x", after.raw());
    EXPECT_EQ(reports_of(before.find("n")), Paths{});
    EXPECT_EQ(references(before), 1); // the watcher has noticed
    EXPECT_EQ(reports_of(after), (Paths{"inner.x"}));
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    manager->addKel(before.raw());
    tree["m"] = kel::value(manager);
    manager->removeAllKels();
    EXPECT_EQ(reports_of(before), Paths{});
    EXPECT_EQ(references(before), 1);
}

// Inside a call

TEST_F(HppWatchTree, TheSubscriptionCanEndInside) {
    kel::value tree = kel::object({{"n", 1}, {"list", kel::array({1})}});
    watch(tree);
    then = [&] { all.end(); };
    EXPECT_EQ(reports_of(tree["n"]), (Paths{"n"}));
    EXPECT_EQ(reports([&] { tree["list"].push_back(1); }), Paths{});
    EXPECT_EQ(references(tree), 2); // the handles of the test
    watch(tree);
    EXPECT_EQ(reports([&] { tree["n"] = 2; }), (Paths{""}));
    EXPECT_EQ(references(tree), 2);
}

TEST_F(HppWatchTree, TheEndDestroysTheFunction) {
    const auto token = std::make_shared<int>();
    kel::value tree = kel::object({{"n", 1}});
    all = kel::watch_tree(tree, [&, token](std::string_view, const kel::value&) {
        all.end();
        EXPECT_EQ(token.use_count(), 2);
    });
    touch(tree);
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(references(tree), 1);
}

TEST_F(HppWatchTree, NobodyMissesACallWhenOneEnds) {
    kel::value tree = kel::object({{"n", 1}});
    std::string log;
    kel::subscription before = kel::watch_tree(tree, [&](std::string_view, const kel::value&) {
        log += 'a';
        before.end();
    });
    watch(tree);
    const kel::subscription single = kel::watch(tree["n"], [&](const kel::value&) { log += 'b'; });
    then = [&] { all.end(); };
    EXPECT_EQ(reports_of(tree["n"]), (Paths{"n"}));
    EXPECT_EQ(log, "ab");
    touch(tree["n"]);
    EXPECT_EQ(log, "abb");
}

TEST_F(HppWatchTree, TheFunctionCanChangeTheTree) {
    kel::value tree = kel::object({{"n", 1}, {"count", kel::object({{"value", 0}})}});
    watch(tree);
    const kel::value number = tree["n"];
    then = [&] {
        then = nullptr;
        tree.erase("n"); // the value that has just changed
        tree["list"] = kel::array({number});
        kel::value(tree["count"]["value"]).assign(1);
    };
    EXPECT_EQ(reports_of(number), (Paths{"n", "", "", "count.value"}));
    EXPECT_EQ(reports_of(number), (Paths{"list[0]"}));
}

TEST_F(HppWatchTree, AValueThatLeavesAndReturnsInItsCallIsReportedOnce) {
    kel::value tree = kel::object({{"n", 1}});
    const kel::value number = tree["n"];
    watch(tree);
    then = [&] {
        if (paths == Paths{"n"}) {
            tree.erase("n");
            tree["m"] = number;
        }
    };
    EXPECT_EQ(reports_of(number), (Paths{"n", "", ""}));
    then = nullptr;
    EXPECT_EQ(reports_of(number), (Paths{"m"}));
    EXPECT_EQ(references(number), 3);
}

TEST_F(HppWatchTree, AValueThatAnotherCallRemovesIsNotReported) {
    kel::value tree = kel::object({{"n", 1}});
    const kel::value number = tree["n"];
    const kel::subscription first = kel::watch(number, [&](const kel::value&) { tree.erase("n"); });
    watch(tree);
    EXPECT_EQ(reports_of(number), (Paths{""}));
}

TEST_F(HppWatchTree, AnExceptionReachesWhoeverMadeTheChange) {
    struct Refusal {};
    kel::value tree = kel::object({{"list", kel::array()}});
    watch(tree);
    then = [] { throw Refusal(); };
    EXPECT_THROW(tree["list"].push_back(1), Refusal);
    EXPECT_THROW(tree["list"].push_back(2), Refusal);
    then = nullptr;
    EXPECT_EQ(reports_of(tree["list"][1]), (Paths{"list[1]"}));
    then = [&] {
        all.end();
        throw kel::not_found("end");
    };
    EXPECT_THROW(tree["list"].push_back(3), kel::not_found);
    EXPECT_FALSE(all);
    EXPECT_EQ(references(tree), 2);
}

TEST_F(HppWatchTree, TheLastHandleCanBeReleasedInside) {
    kel::value tree = kel::object({{"n", 1}});
    const kel::value number = tree["n"];
    all = kel::watch_tree(tree, [&](std::string_view path, const kel::value& changed) {
        tree = nullptr;
        all.end();
        paths.emplace_back(path);
        EXPECT_EQ(changed.get<int>(), 1);
    });
    EXPECT_EQ(reports_of(number), (Paths{"n"}));
    EXPECT_EQ(references(number), 1);
}

TEST_F(HppWatchTree, OneContainerHoldsBothKindsOfSubscriptions) {
    kel::value tree = kel::object({{"n", 1}});
    int calls = 0;
    std::vector<kel::subscription> subscriptions;
    subscriptions.push_back(kel::watch(tree["n"], [&](const kel::value&) { ++calls; }));
    subscriptions.push_back(
        kel::watch_tree(tree, [&](std::string_view, const kel::value&) { ++calls; }));
    touch(tree["n"]);
    EXPECT_EQ(calls, 2);
    subscriptions.clear();
    touch(tree["n"]);
    EXPECT_EQ(calls, 2);
}

// Large trees

TEST_F(HppWatchTree, FollowsATreeOfAMillionLevels) {
    const kel::value leaf = 1;
    kel::value top = kel::array({leaf});
    for (int level = 1; level < 1000000; ++level) {
        top = kel::array({top});
    }
    kel::value tree = kel::object({{"top", top}});
    std::size_t length = 0;
    all = kel::watch_tree(tree,
                          [&](std::string_view path, const kel::value&) { length = path.size(); });
    touch(leaf);
    EXPECT_EQ(length, 3U + 3U * 1000000U);
    tree["other"] = leaf;
    tree.erase("top");
    touch(leaf);
    EXPECT_EQ(length, 5U);
    top = nullptr;
}

TEST_F(HppWatchTree, ManyPlacesOfOneValueCostNoMoreThanManyValues) {
    const kel::value shared = 1;
    kel::value rows = kel::array();
    for (int row = 0; row < 100000; ++row) {
        rows.push_back(kel::array({shared, shared}));
    }
    kel::value tree = kel::object({{"rows", rows}});
    watch(tree);
    EXPECT_EQ(reports_of(shared), (Paths{"rows[0][0]"}));
    EXPECT_EQ(reports([&] { rows.clear(); }), (Paths{"rows"}));
    EXPECT_EQ(references(shared), 1);
}

} // namespace
