// Arrays through kel.hpp: elements, containers and vectors.
#include "ValueSupport.h"

#include <list>

using namespace value_test;

namespace {

TEST(Array, ElementsAreAddedReplacedAndErased) {
    kel::value list = kel::array();
    list.push_back(2);
    list.insert(0, 1);
    list.insert(2, "three");
    EXPECT_TRUE(list == kel::array({1, 2, "three"}));
    list[1] = 2.5;
    list.erase_at(0);
    EXPECT_TRUE(list == kel::array({2.5, "three"}));
    EXPECT_THROW(list.erase_at(2), kel::not_found);
    EXPECT_THROW(list.insert(3, 1), kel::not_found);
    EXPECT_THROW(list[2] = 1, kel::not_found);
    EXPECT_THROW(list[-1].get<int>(), kel::not_found);
    EXPECT_THROW(list.push_back(nullptr), kel::type_error);
    EXPECT_THROW(list[0] = nullptr, kel::type_error);
    EXPECT_EQ(list.size(), 2U);
}

TEST(Array, AnArrayIsMadeOfAContainer) {
    EXPECT_EQ(kel::array(std::vector<int>{1, 2}), kel::array({1, 2}));
    EXPECT_EQ(kel::array(std::list<std::string>{"a", "b"}), kel::array({"a", "b"}));
    EXPECT_EQ(kel::array(std::vector<bool>{true, false}), kel::array({true, false}));
    EXPECT_EQ(kel::array(std::vector<std::vector<double>>{{0.5}, {}}),
              kel::array({kel::array({0.5}), kel::array()}));
    const char* const names[] = {"a", "b"};
    EXPECT_EQ(kel::array(names), kel::array({"a", "b"}));
    const std::vector<kel::value> values{kel::array(), 2};
    const kel::value shared = kel::array(values);
    EXPECT_TRUE(kel::same(shared[0], values[0]));
    EXPECT_EQ(kel::array(shared.elements()), shared);
    EXPECT_THROW(kel::array(std::vector<std::int64_t>{1, 5'000'000'000}), std::out_of_range);
    EXPECT_THROW(kel::array(std::vector<kel::value>(1)), kel::type_error) << "holds null";
}

TEST(Array, AnArrayIsReadAsAVector) {
    using Ints = std::vector<int>;
    kel::value room = kitchen();
    room["sizes"] = kel::array({1, 2.0, 3});
    EXPECT_EQ(room["sizes"].get<Ints>(), (Ints{1, 2, 3}));
    EXPECT_EQ(kel::value(room["sizes"]).get<std::vector<double>>(), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(kel::array({true}).get<std::vector<bool>>(), std::vector<bool>{true});
    EXPECT_EQ(kel::array({"a"}).get<std::vector<std::string>>(), std::vector<std::string>{"a"});
    EXPECT_EQ(room["tags"].get<std::vector<kel::value>>().size(), 3U);
    EXPECT_EQ(room["tags"].try_get<Ints>(), std::nullopt);
    EXPECT_EQ(room.get_or("sizes", Ints()), (Ints{1, 2, 3}));
    EXPECT_EQ(room.get_or("none", Ints{7}), Ints{7});
    EXPECT_EQ(thrown<kel::type_error>([&] { room["tags"].get<Ints>(); }),
              "tags[1]: wanted an int, found a string.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["name"].get<Ints>(); }),
              "name: wanted an array, found a string.");
    room["grid"] = kel::array({kel::array({1}), kel::array({2, 2.5})});
    EXPECT_EQ(thrown<kel::range_error>([&] { room["grid"].get<std::vector<Ints>>(); }),
              "grid[1][1]: 2.500000 does not fit the type that was asked for.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["grid"].get<std::vector<std::string>>(); }),
              "grid[0]: wanted a string, found an array.");
}

TEST(Array, WhatIsNoVectorIsNothing) {
    using Lines = std::vector<std::string>;
    const kel::value room = kel::object({{"name", "x"}, {"tags", kel::array({"a", 2})}});
    for (const char* name : {"name", "tags", "none"}) {
        EXPECT_EQ(room[name].try_get<Lines>(), std::nullopt) << name;
        EXPECT_EQ(room[name].get_or(Lines{"b"}), Lines{"b"}) << name;
        EXPECT_EQ(room.get_or(name, Lines{"b"}), Lines{"b"}) << name;
    }
    EXPECT_EQ(room["none"]["deeper"].try_get<Lines>(), std::nullopt);
    EXPECT_EQ(room["name"]["deeper"].get_or(Lines{"b"}), Lines{"b"});
    EXPECT_EQ(kel::value().try_get<Lines>(), std::nullopt);
}

TEST(Array, IsFoundIfItIsOne) {
    kel::value room = kel::object({{"name", "x"}, {"tags", kel::array({"a"})}, {"later", nullptr}});
    EXPECT_TRUE(kel::same(room.find_array("tags"), room["tags"]));
    for (const char* name : {"name", "later", "none"}) {
        EXPECT_FALSE(room.find_array(name)) << name;
    }
    EXPECT_FALSE(kel::value(3).find_array("tags"));
    EXPECT_FALSE(kel::value().find_array("tags"));
    EXPECT_TRUE(kel::same(room["tags"].get_array(), room["tags"]));
    kel::value house = kel::object({{"room", room}});
    EXPECT_EQ(thrown<kel::type_error>([&] { house["room"]["name"].get_array(); }),
              "room.name: wanted an array, found a string.");
    EXPECT_EQ(thrown<kel::type_error>([&] { house.at_path("room.later").get_array(); }),
              "room.later: wanted an array, found null.");
    EXPECT_EQ(thrown<kel::not_found>([&] { house["room"]["none"].get_array(); }),
              "room.none: no such variable.");
}

TEST(Array, IsAssignedTheElementsOfAContainer) {
    kel::value room = kel::object({{"sizes", kel::array({1})}, {"name", "x"}});
    const kel::value sizes = room["sizes"];
    room["sizes"].assign(std::vector<int>{3, 4});
    EXPECT_EQ(sizes, kel::array({3, 4})) << "in place";
    kel::value same = sizes;
    same.assign(std::vector<std::vector<std::string>>{{"a"}, {}});
    EXPECT_EQ(sizes, kel::array({kel::array({"a"}), kel::array()}));
    EXPECT_THROW(room["name"].assign(std::vector<int>{3}), kel::type_error);
}

} // namespace
