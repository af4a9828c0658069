// Places to which a path leads.
#include "ValueSupport.h"

using namespace value_test;

namespace {

kel::checked makeVoices() {
    return kel::checked({{"level", kel::describe<int>().range(-60, 0).fallback(-12)},
                         {"voices", kel::describe<int>().range(1, 16)}});
}

int number(const kel::value& given) {
    return given.get<int>();
}

TEST(Path, LeadsToAValue) {
    const kel::value tree =
        kel::object({{"window", kel::object({{"size", kel::array({640, 480})}})},
                     {"odd name", kel::object({{"a\\", 1}})}});
    EXPECT_EQ(tree.at_path("window.size[0]").get<int>(), 640);
    EXPECT_EQ(tree.at_path("[\"odd name\"][\"a\\\\\"]").get<int>(), 1);
    EXPECT_TRUE(kel::same(tree.at_path(""), tree));
    EXPECT_EQ(thrown<kel::not_found>([&] { tree.at_path("window.size[2]"); }),
              "window.size[2]: the array has 2 elements.");
    EXPECT_EQ(thrown<kel::not_found>([&] { tree.at_path("window.width.x"); }),
              "window.width: no such variable.");
    EXPECT_EQ(thrown<kel::type_error>([&] { tree.at_path("window.size.x"); }),
              "window.size: wanted a struct, found an array.");
}

TEST(Path, OneThatCannotBeReadSaysWhere) {
    const kel::value tree = kitchen();
    for (const char* path : {".", "tags.", "tags..b", "[", "[]", "[x]", "[1", "[\"a", "[\"a\"",
                             "tags[0]x", "[\"", "tags["}) {
        const std::string message = thrown<kel::not_found>([&] { tree.at_path(path); });
        EXPECT_NE(message.find(path), std::string::npos) << message;
    }
}

TEST(Path, ContainsNoNul) {
    kel::value tree = kel::object({{"volume", 5}});
    constexpr std::string_view path("volume\0x", 8);
    const std::string refused = "The path volume\\u0000x cannot be read at character 7.";
    EXPECT_EQ(thrown<kel::not_found>([&] { tree.at_path(path) = 7; }), refused);
    EXPECT_EQ(thrown<kel::not_found>([&] { tree["volume"].at_path(path); }), refused);
    EXPECT_EQ(thrown<kel::not_found>([&] { (void)kel::take(tree, path, kel::describe<int>()); }),
              refused);
    EXPECT_EQ(thrown<kel::not_found>(
                  [&] { (void)kel::watch_path(tree, path, [](const kel::value&) {}); }),
              refused);
    EXPECT_THROW(tree.at_path(std::string_view("[\"volume\0x\"]", 13)), kel::not_found);
    EXPECT_EQ(tree, kel::object({{"volume", 5}}));
}

TEST(Path, GoesThroughPairsAndManagers) {
    const kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList());
    list->addPair(kel::value("red").raw(), kel::value(7).raw());
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    manager->addKel(kel::value(3).raw());
    const kel::value tree = kel::array({kel::value(list), kel::value(manager)});
    EXPECT_EQ(tree.at_path("[0][0].key").get<std::string>(), "red");
    EXPECT_EQ(tree.at_path("[0][0].item").get<int>(), 7);
    EXPECT_EQ(tree.at_path("[1][0]").get<int>(), 3);
    EXPECT_THROW(tree.at_path("[0][1].key"), kel::not_found);
    EXPECT_THROW(tree.at_path("[0][0]"), kel::not_found);
    EXPECT_THROW(tree.at_path("[0][0].value"), kel::not_found);
}

TEST(Path, StoresAndChangesAsABracketDoes) {
    kel::value room = kel::object({{"a", kel::object({{"b", kel::array({1, 2})}})}});
    const kel::value before = room["a"]["b"][1];
    room.at_path("a.b[0]") = 3;
    room.at_path("a.b[1]").assign(4);
    EXPECT_EQ(before.get<int>(), 4) << "in place";
    room.at_path("a.new") = "text";
    room.at_path("a[\"odd name\"]") = room.at_path("a.b[0]");
    room.at_path("a.b").push_back(5);
    room.at_path("a")["c"] = 6;
    EXPECT_EQ(kel::to_text(room["a"]["b"]), "[\n\t3\n\t4\n\t5\n]");
    EXPECT_EQ(room["a"]["new"].get<std::string>(), "text");
    EXPECT_TRUE(kel::same(room["a"]["odd name"], room["a"]["b"][0]));
    EXPECT_EQ(room.at_path("a").at_path("c").get<int>(), 6);
    EXPECT_EQ(room["a"].at_path("b[2]").get<int>(), 5);
    room["a"].at_path("b[2]") = 7;
    EXPECT_EQ(number(room.at_path("a.b[2]")), 7);
}

TEST(Path, IsAValueWhereOneIsWanted) {
    kel::value room = kel::object({{"a", kel::array({1, 2})}});
    const kel::value copied = room.at_path("a[1]");
    const kel::value made(room.at_path("a[1]"));
    kel::value later;
    later = room.at_path("a[1]");
    EXPECT_TRUE(kel::same(copied, made) && kel::same(copied, later));
    EXPECT_EQ(room.at_path("a[1]"), 2);
    EXPECT_EQ(room.at_path("a[1]").get_or(7), 2);
    EXPECT_EQ(room.at_path("b").get_or(7), 7);
    EXPECT_FALSE(room.at_path("b").exists());
    const auto kept = room.at_path("a[1]"); // which holds the array
    const auto found = [] { return kel::object({{"x", kel::array({8})}}).at_path("x[0]"); };
    room = nullptr;
    EXPECT_EQ(number(kept), 2);
    EXPECT_EQ(found().get<int>(), 8);
    int calls = 0;
    kel::value tree = kel::object({{"n", 1}});
    const kel::subscription watching =
        kel::watch(tree.at_path("n"), [&](const kel::value&) { ++calls; });
    tree.at_path("n").assign(2);
    EXPECT_EQ(calls, 1);
}

TEST(Path, ACheckedStructIsAskedThroughAPathToo) {
    kel::value rack = kel::object({{"1", makeVoices()}, {"2", makeVoices()}});
    rack.at_path("1.level").assign(-5); // which has only its default
    EXPECT_EQ(rack["1"]["level"].get<int>(), -5);
    EXPECT_EQ(rack["2"]["level"].get<int>(), -12);
    const char* refusal = "1.level: -99 is not allowed; allowed is from -60 to 0.";
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack.at_path("1.level").assign(-99); }), refusal);
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack.at_path("1.level") = -99; }), refusal);
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack["1"]["level"].assign(-99); }), refusal);
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack["1"]["level"] = -99; }), refusal);
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack["1"].set("level", -99); }), refusal);
    EXPECT_EQ(thrown<kel::not_allowed>([&] { rack["1"].set("level", kel::value(-99)); }), refusal);
    EXPECT_EQ(rack["1"]["level"].get<int>(), -5);
    rack.at_path("1.voices") = 3;
    EXPECT_EQ(rack["1"]["voices"].get<int>(), 3);
    kel::checked part = makeVoices();
    part.at_path("level").assign(-6);
    const kel::checked& fixed = part;
    EXPECT_EQ(fixed.at_path("level").get<int>(), -6);
}

TEST(Path, ADefaultIsNotChangedThroughAPath) {
    const kel::ref<MetaKelVarDescriptor> rules = kel::adopt(CreateMetaKelVarDescriptor());
    rules->addVar("default", kel::array({1}).raw());
    kel::value rack =
        kel::object({{"part", kel::checked({{"list", kel::variable_description(rules)}})}});
    EXPECT_EQ(rack.at_path("part.list[0]").get<int>(), 1);
    EXPECT_THROW(rack.at_path("part.list[0]") = 9, kel::not_found);
    EXPECT_THROW(rack.at_path("part.list[0]").assign(9), kel::not_found);
    EXPECT_THROW(rack.at_path("part.list").push_back(9), kel::not_found);
    EXPECT_THROW(rack["part"].at_path("list").at_path("[0]") = 9, kel::not_found);
    EXPECT_EQ(rack["part"]["list"][0].get<int>(), 1);
}

TEST(Path, OnlyVariablesAndElementsAreReplaced) {
    const kel::ref<KEL_IndexList> list = kel::adopt(CreateKELIndexList());
    list->addPair(kel::value("red").raw(), kel::value(7).raw());
    kel::value tree = kel::object({{"list", kel::value(list)}});
    tree.at_path("list[0].item").assign(8);
    EXPECT_EQ(tree.at_path("list[0].item").get<int>(), 8);
    EXPECT_EQ(thrown<kel::type_error>([&] { tree.at_path("list[0].item") = 9; }),
              "list[0].item: only a variable or an element can be replaced. Use assign.");
    EXPECT_THROW(tree.at_path("") = 9, kel::type_error);
    EXPECT_TRUE(kel::same(tree.at_path(""), tree));
}

TEST(Path, WhatIsMissingThrowsAtOnceExceptForALastVariable) {
    kel::value room = kel::object({{"a", kel::object({{"b", kel::array({1})}})}});
    EXPECT_EQ(thrown<kel::not_found>([&] { room.at_path("x.y"); }), "x: no such variable.");
    EXPECT_EQ(thrown<kel::not_found>([&] { room.at_path("a.b[1]"); }),
              "a.b[1]: the array has 1 element.");
    EXPECT_EQ(thrown<kel::not_found>([&] { room.at_path("a.c").get<int>(); }),
              "a.c: no such variable.");
    EXPECT_EQ(thrown<kel::not_found>([&] { room.at_path("a.c").assign(1); }),
              "a.c: no such variable.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room.at_path("a.b").get<int>(); }),
              "a.b: wanted an int, found an array.");
    EXPECT_EQ(thrown<kel::not_found>([&] { room["a"].at_path("b[1]"); }),
              "a.b[1]: the array has 1 element.");
}

} // namespace
