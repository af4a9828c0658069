// kel::watch_path: subscriptions to what is at a path.
#include "RecordedCalls.h"

#include <functional>
#include <gtest/gtest.h>
#include <kel/kel.hpp>
#include <string>
#include <string_view>

namespace {

/// Watches a path and writes down the values of the calls.
class HppWatchPath : public RecordedCalls {
protected:
    void watch(const kel::value& root, std::string_view path) {
        watched = kel::watch_path(root, path,
                                  [this](const kel::value& now) { record(kel::to_text(now)); });
    }
};

TEST_F(HppWatchPath, FollowsTheNameThroughEveryKindOfChange) {
    kel::value tree = kel::object({{"sound", kel::object({{"volume", 5}, {"other", 1}})}});
    watch(tree, "sound.volume");
    EXPECT_EQ(during([&] { tree["sound"]["volume"].assign(6); }), Calls{"6"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"] = 7; }), Calls{"7"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"] = "x"; }), Calls{"\"x\""});
    EXPECT_EQ(during([&] { tree["sound"] = kel::object({{"volume", 8}}); }), Calls{"8"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"].assign(9); }), Calls{"9"});
    EXPECT_EQ(during([&] {
                  tree.assign(kel::object({{"sound", kel::object({{"volume", 1}})}}));
              }),
              Calls{"1"});
    EXPECT_EQ(during([&] { (void)tree["sound"].merge(kel::object({{"volume", 2}})); }), Calls{"2"});
    EXPECT_EQ(during([&] { tree["sound"]["other"] = 3; }), Calls());
    EXPECT_EQ(during([&] {
                  tree["sound"]["volume"] = 2;
                  tree["sound"] = kel::object({{"volume", 2}});
              }),
              Calls())
        << "the same value";
}

TEST_F(HppWatchPath, FollowsTheDefaultOfACheckedStruct) {
    const auto volume = kel::describe<int>().range(0, 100);
    kel::value tree = kel::object({{"sound", kel::checked({{"volume", volume.fallback(70)}})}});
    const kel::value before = tree.copy();
    watch(tree, "sound.volume");
    EXPECT_EQ(during([&] { tree.at_path("sound.volume") = 30; }), Calls{"30"});
    EXPECT_EQ(during([&] { tree.at_path("sound.volume").reset(); }), Calls{"70"});
    EXPECT_EQ(during([&] { tree.at_path("sound.volume") = 70; }), Calls()) << "the default";
    EXPECT_EQ(during([&] {
                  tree["sound"] = kel::checked({{"volume", volume.fallback(50)}});
              }),
              Calls{"50"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"] = 40; }), Calls{"40"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"] = nullptr; }), Calls{"50"});
    EXPECT_EQ(during([&] { tree["sound"]["volume"] = 10; }), Calls{"10"});
    EXPECT_EQ(during([&] { tree.restore(before); }), Calls{"50"}) << "the struct that is there";
}

TEST_F(HppWatchPath, IsNotCalledWhileNothingIsThere) {
    kel::value tree = kel::object();
    watch(tree, "a.b[1]");
    EXPECT_EQ(during([&] { tree["a"] = kel::object({{"b", kel::array({1})}}); }), Calls());
    EXPECT_EQ(during([&] { tree["a"]["b"].push_back(2); }), Calls{"2"});
    EXPECT_EQ(during([&] { tree["a"]["b"].erase_at(1); }), Calls());
    EXPECT_EQ(during([&] { tree["a"] = 5; }), Calls());
    EXPECT_EQ(during([&] { tree.erase("a"); }), Calls());
    EXPECT_EQ(during([&] {
                  tree["a"] = kel::object({{"b", kel::array({0, 2})}});
              }),
              Calls())
        << "the value that was there last";
    EXPECT_EQ(during([&] { tree["a"]["b"].insert(0, 7); }), Calls{"0"});
    EXPECT_EQ(during([&] { tree["a"]["b"] = nullptr; }), Calls());
}

TEST_F(HppWatchPath, AContainerIsOneValue) {
    kel::value tree = kel::object({{"recent", kel::array({"a"})}});
    watch(tree, "recent");
    EXPECT_EQ(during([&] { tree["recent"].push_back("b"); }), Calls{"[\n\t\"a\"\n\t\"b\"\n]"});
    EXPECT_EQ(during([&] { tree["recent"][1].assign("c"); }), Calls{"[\n\t\"a\"\n\t\"c\"\n]"});
    EXPECT_EQ(during([&] { tree["recent"] = kel::array({"a", "c"}); }), Calls());
    EXPECT_EQ(during([&] { tree["recent"] = kel::array({}); }), Calls{"[\n]"});
}

TEST_F(HppWatchPath, FollowsAContainerThatIsInSeveralPlaces) {
    const kel::value shared = kel::object({{"n", 1}});
    kel::value tree = kel::object({{"a", shared}, {"b", shared}});
    watch(tree, "b.n");
    EXPECT_EQ(during([&] { tree["a"]["n"].assign(2); }), Calls{"2"});
    tree["up"] = tree;
    EXPECT_EQ(during([&] { tree["a"]["n"] = 3; }), Calls{"3"}) << "a tree that holds itself";
    tree.erase("up");
}

TEST_F(HppWatchPath, FollowsListsAndManagers) {
    const kel::ref<KEL_IndexList> raw = kel::adopt(CreateKELIndexList(
        kel::array({"k"}).as<KEL_Array>().get(), kel::array({1}).as<KEL_Array>().get()));
    kel::value list(raw);
    watch(list, "[0].item");
    EXPECT_EQ(during([&] { list.at_path("[0].item").assign(2); }), Calls{"2"});
    EXPECT_EQ(during([&] { raw->getItems()->setVar(kel::value(3).raw(), 0); }), Calls{"3"});
    watch(list, "[0].key");
    EXPECT_EQ(during([&] { list.at_path("[0].key").assign("l"); }), Calls{"\"l\""});
    watch(list, "[0]");
    EXPECT_EQ(during([&] { list.at_path("[0].item").assign(4); }), Calls()) << "a pair is no value";
    const kel::ref<KEL_Manager> pool = kel::adopt(CreateKELManager());
    kel::value manager(pool);
    watch(manager, "[0]");
    EXPECT_EQ(during([&] { pool->addKel(kel::value(7).raw()); }), Calls{"7"});
}

TEST_F(HppWatchPath, TheEmptyPathIsTheRoot) {
    kel::value number(3);
    watch(number, "");
    EXPECT_EQ(during([&] {
                  number.assign(3);
                  number.assign(4);
              }),
              Calls{"4"});
}

TEST_F(HppWatchPath, AChangeInsideIsReportedAfterTheCall) {
    kel::value tree = kel::object({{"n", 1}});
    watch(tree, "n");
    then = [&] {
        if (tree["n"].get<int>() < 4) {
            tree["n"] = tree["n"].get<int>() + 1;
            calls.push_back("returned");
        }
    };
    EXPECT_EQ(during([&] { tree["n"] = 3; }), (Calls{"3", "returned", "4"}));
    then = [&] {
        watched.end();
        tree["n"] = 8;
    };
    EXPECT_EQ(during([&] { tree["n"] = 7; }), Calls{"7"});
    EXPECT_EQ(during([&] { tree["n"] = 9; }), Calls());
}

TEST_F(HppWatchPath, AnExceptionReachesWhoeverMadeTheChange) {
    kel::value tree = kel::object({{"n", 1}});
    watch(tree, "n");
    then = [] { throw std::runtime_error("enough"); };
    EXPECT_THROW(tree["n"].assign(2), std::runtime_error);
    EXPECT_EQ(tree["n"].get<int>(), 2);
    then = nullptr;
    EXPECT_EQ(during([&] { tree["n"].assign(3); }), Calls{"3"});
}

TEST_F(HppWatchPath, RefusesNullAndATextThatIsNoPath) {
    EXPECT_THROW(watch(kel::value(), "n"), kel::type_error);
    EXPECT_THROW(watch(kel::object(), "a..b"), kel::not_found);
    EXPECT_THROW(watch(kel::object(), "[x]"), kel::not_found);
}

TEST_F(HppWatchPath, KeepsTheTreeAlive) {
    {
        kel::value tree = kel::object({{"n", 1}});
        watch(tree, "n");
    }
    watched.end();
    kel::checked panel({{"gain", kel::describe<double>().fallback(1)}});
    kel::value rack = kel::object({{"panel", panel}});
    watched = kel::watch_path(rack["panel"], "gain",
                              [this](const kel::value& v) { calls.push_back(kel::to_text(v)); });
    rack = nullptr;
    EXPECT_EQ(during([&] { panel.set("gain", 2); }), Calls{"2.000000"});
}

} // namespace
