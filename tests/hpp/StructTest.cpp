// Structs through kel.hpp: places, names and variables.
#include "ValueSupport.h"

using namespace value_test;

namespace {

TEST(Struct, APlaceStoresAndReads) {
    kel::value room = kitchen();
    room["windows"] = 3;
    room["door"] = true;
    room["height"] = 2.5;
    room["owner"] = "Ann";
    room["nothing"] = nullptr;
    EXPECT_EQ(room["windows"].get<int>(), 3);
    EXPECT_TRUE(room["door"].get<bool>());
    EXPECT_EQ(room["height"].get<double>(), 2.5);
    EXPECT_EQ(room["owner"].get<std::string>(), "Ann");
    EXPECT_EQ(room["nothing"].kind(), kel::kind::null);
    EXPECT_TRUE(room["nothing"].exists());
    EXPECT_FALSE(room["other"].exists());
}

TEST(Struct, APlaceSharesTheValueOfAnother) {
    kel::value room = kitchen();
    room["labels"] = room["tags"];
    EXPECT_TRUE(kel::same(room["labels"], room["tags"]));
    room["labels"].push_back("three");
    EXPECT_EQ(room["tags"].size(), 4U);
}

TEST(Struct, PlacesNest) {
    kel::value house = kel::object({{"rooms", kel::array({kitchen()})}});
    house["rooms"][0]["windows"] = 5;
    EXPECT_EQ(house["rooms"][0]["windows"].get<int>(), 5);
    house["rooms"][0]["tags"][1] = "second";
    EXPECT_EQ(house["rooms"][0]["tags"][1].get<std::string>(), "second");
    EXPECT_EQ(thrown<kel::not_found>([&] { house["rooms"][0]["walls"].get<int>(); }),
              "rooms[0].walls: no such variable.");
    EXPECT_EQ(thrown<kel::not_found>([&] { house["rooms"][3]["walls"] = 1; }),
              "rooms[3]: the array has 1 element.");
    EXPECT_EQ(thrown<kel::type_error>([&] { house["rooms"]["walls"] = 1; }),
              "rooms: wanted a struct, found an array.");
    EXPECT_EQ(thrown<kel::type_error>([&] { house["rooms"][0]["name"][2].get<int>(); }),
              "rooms[0].name: wanted an array, found a string.");
    EXPECT_EQ(thrown<kel::type_error>([&] { house["rooms"][0]["name"].get<int>(); }),
              "rooms[0].name: wanted an int, found a string.");
    EXPECT_EQ(thrown<kel::range_error>([&] { house["rooms"][0]["degrees"].get<int>(); }),
              "rooms[0].degrees: 19.500000 does not fit the type that was asked for.");
}

TEST(Struct, IsFoundIfItIsOne) {
    const kel::checked panel({{"gain", kel::describe<int>()}});
    const kel::value house = kel::object({{"room", kitchen()}, {"panel", panel}, {"size", 3}});
    EXPECT_TRUE(kel::same(house.find_struct("room"), house["room"]));
    EXPECT_TRUE(kel::same(house.find_struct("panel"), house["panel"].get_struct()));
    for (const char* name : {"size", "none"}) {
        EXPECT_FALSE(house.find_struct(name)) << name;
    }
    EXPECT_FALSE(house["room"]["tags"].get_array().find_struct("room"));
    EXPECT_EQ(thrown<kel::type_error>([&] { house["room"]["tags"].get_struct(); }),
              "room.tags: wanted a struct, found an array.");
}

TEST(Struct, ANameCanBeAView) {
    const std::string_view name = std::string_view("windows and doors").substr(0, 7);
    kel::value house = kel::object({{"room", kitchen()}});
    const kel::value fixed = house;
    house["room"][name] = 5;
    EXPECT_EQ(fixed["room"][name].get<int>(), 5);
    EXPECT_EQ(kel::value(house["room"])[name].get<int>(), 5);
    const std::string_view room = "room";
    house[std::string_view("copy")] = house[room];
    EXPECT_TRUE(kel::same(house["copy"], fixed[room]));
    house[room][name] = house["room"]["degrees"];
    EXPECT_EQ(house[room][name].get<double>(), 19.5);
    EXPECT_EQ(thrown<kel::not_found>([&] { fixed[room][std::string_view("x")].get<int>(); }),
              "room.x: no such variable.");
    EXPECT_THROW(house[std::string_view("a\0b", 3)] = 1, kel::name_error);
    EXPECT_THROW(house[std::string_view()] = 1, kel::name_error);
}

TEST(Struct, OddNamesAreQuotedInPaths) {
    kel::value fields = kel::object({{"odd name", kel::object()}, {"a\\b", kel::object()}});
    EXPECT_EQ(thrown<kel::not_found>([&] { fields["odd name"]["x y"].get<int>(); }),
              "[\"odd name\"][\"x y\"]: no such variable.");
    EXPECT_EQ(thrown<kel::not_found>([&] { fields["a\\b"]["x"].get<int>(); }),
              "[\"a\\\\b\"].x: no such variable.");
}

TEST(Struct, FindAndGetOrDoNotThrow) {
    const kel::value room = kitchen();
    EXPECT_FALSE(room.find("nope"));
    EXPECT_EQ(room.find("nope").try_get<int>(), std::nullopt);
    EXPECT_EQ(room.find("windows").try_get<int>(), 2);
    EXPECT_EQ(room.get_or("windows", 0), 2);
    EXPECT_EQ(room.get_or("nope", 7), 7);
    EXPECT_EQ(room.get_or("name", 7), 7);
    EXPECT_EQ(room.get_or("name", "?"), "Kitchen");
    EXPECT_EQ(room["nope"].get_or("?"), "?");
    EXPECT_EQ(kel::value(1).get_or("nope", 7), 7);
    EXPECT_EQ(kel::value().get_or("nope", 7), 7);
}

TEST(Struct, GetOrFindsNothingInWhatIsNotThere) {
    const kel::value room = kitchen();
    EXPECT_EQ(room["nope"]["x"].get_or(7), 7);
    EXPECT_EQ(room["name"]["x"][3].get_or(7), 7);
    EXPECT_EQ(kel::value(1)["x"].get_or(7), 7);
    EXPECT_EQ(room["tags"][5000000000].try_get<int>(), std::nullopt);
    EXPECT_EQ(room["tags"][-5000000000].try_get<int>(), std::nullopt);
    EXPECT_FALSE(room["nope"]["x"].exists());
    EXPECT_EQ(thrown<kel::not_found>([&] { room["nope"]["x"].get<int>(); }),
              "nope: no such variable.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["name"]["x"]["y"].get<int>(); }),
              "name: wanted a struct, found a string.");
}

TEST(Struct, AnIndexBeyondThirtyTwoBitsIsNoElement) {
    kel::value list = kel::array({5});
    EXPECT_THROW(list[5000000000] = 1, kel::not_found);
    EXPECT_THROW(list.erase_at(static_cast<std::size_t>(-1)), kel::not_found);
    EXPECT_THROW(list.at_path("[4294967296]"), kel::not_found);
}

TEST(Struct, APlaceIsAssignedToAnother) {
    kel::value room = kitchen();
    room["windows"].assign(room["degrees"].get_or(4.0) > 0 ? 5 : 6);
    room["degrees"].assign(room["windows"]);
    EXPECT_EQ(room["degrees"].get<double>(), 5.0);
    room["degrees"].assign(kel::value(6));
    EXPECT_EQ(room["degrees"].get<double>(), 6.0);
    EXPECT_TRUE(kel::same(room["tags"].get<kel::value>(), room["tags"]));
}

TEST(Struct, APlaceHasTheOperationsOfItsValue) {
    kel::value house = kel::object({{"room", kitchen()}});
    house["room"].set("doors", 1);
    EXPECT_TRUE(house["room"].erase("windows"));
    house["room"]["tags"].insert(0, 0);
    house["room"]["tags"].erase_at(1);
    EXPECT_EQ(house["room"].find("doors").get<int>(), 1);
    EXPECT_EQ(house["room"].at_path("tags[0]").get<int>(), 0);
    EXPECT_FALSE(kel::same(house["room"].copy(), house["room"]));
    house["room"].clear();
    EXPECT_EQ(house["room"].size(), 0U);
}

TEST(Struct, NamesThatCannotBeStoredAreRefusedBefore) {
    kel::value room = kitchen();
    const kel::value before = room.copy();
    EXPECT_THROW(room[""] = 1, kel::name_error);
    EXPECT_THROW(room["a\"b"] = 1, kel::name_error);
    EXPECT_THROW(room.set(std::string("a\0b", 3), 1), kel::name_error);
    EXPECT_THROW(room[std::string("a\0b", 3)] = 1, kel::name_error);
    EXPECT_THROW(kel::object({{"a\"b", 1}}), kel::name_error);
    EXPECT_THROW(room.rename("windows", "a\"b"), kel::name_error);
    EXPECT_THROW(room.rename("windows", ""), kel::name_error);
    EXPECT_THROW(room.rename("windows", "name"), kel::name_error);
    EXPECT_THROW(room.rename("nope", "other"), kel::not_found);
    EXPECT_TRUE(room == before);
}

TEST(Struct, VariablesAreErasedAndRenamed) {
    kel::value room = kitchen();
    EXPECT_TRUE(room.erase("windows"));
    EXPECT_FALSE(room.erase("windows"));
    room.rename("name", "title");
    EXPECT_EQ(room["title"].get<std::string>(), "Kitchen");
    EXPECT_EQ(room.size(), 3U);
    room.clear();
    EXPECT_EQ(room.size(), 0U);
}

TEST(Struct, OfTwoFieldsWithOneNameTheLastStays) {
    EXPECT_EQ(kel::object({{"a", 1}, {"a", 2}})["a"].get<int>(), 2);
}

TEST(Struct, AConstantHandleReads) {
    const kel::value room = kitchen();
    EXPECT_EQ(room["tags"][0].get<int>(), 1);
    const kel::value tags = room["tags"];
    EXPECT_EQ(tags.size(), 3U);
}

} // namespace
