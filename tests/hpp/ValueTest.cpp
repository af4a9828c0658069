// Handles, C++ types, structs and arrays through kel.hpp.
#include <kel/kel.hpp>

#include <gtest/gtest.h>
#include <list>
#include <unordered_set>

namespace {

/// Returns the message of the Failure that the action throws, or what else happened.
template <class Failure, class Action> std::string thrown(const Action& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    } catch (const std::exception& failure) {
        return std::string("(another failure: ") + failure.what() + ")";
    }
    return "(nothing thrown)";
}

std::int32_t references(const kel::value& counted) {
    counted.raw()->addRef();
    return counted.raw()->release();
}

kel::value kitchen() {
    return kel::object({{"name", "Kitchen"},
                        {"degrees", 19.5},
                        {"windows", 2},
                        {"tags", kel::array({1, "two", true})}});
}

// ---- Handles -----------------------------------------------------------------------------------

TEST(Value, IsOnePointer) {
    EXPECT_EQ(sizeof(kel::value), sizeof(void*));
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<kel::value>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<kel::value>);
}

TEST(Value, ACopyOfAHandleSharesTheValue) {
    kel::value first = kel::array({1});
    kel::value second = first;
    EXPECT_EQ(references(first), 2);
    second.push_back(2);
    EXPECT_EQ(first.size(), 2U);
    EXPECT_TRUE(kel::same(first, second));
    kel::value third = std::move(second);
    EXPECT_EQ(references(first), 2);
    EXPECT_FALSE(second); // NOLINT: a handle that was moved from is null
}

TEST(Value, CopyIsAnotherTree) {
    const kel::value room = kitchen();
    const kel::value other = room.copy();
    EXPECT_TRUE(room == other);
    EXPECT_FALSE(kel::same(room, other));
    EXPECT_NE(room.identity(), other.identity());
    EXPECT_FALSE(kel::same(room["tags"], other["tags"]));
}

TEST(Value, CopyKeepsEveryNull) {
    const kel::value source =
        kel::from_text("{ n = NULL inner = { n = NULL } list = [ { n = NULL } ] }");
    const kel::value other = source.copy();
    EXPECT_TRUE(source == other);
    EXPECT_FALSE(other.at_path("list[0]").find("n"));
    EXPECT_TRUE(other.at_path("list[0]").contains("n"));
    EXPECT_FALSE(kel::value().copy());
}

TEST(Value, ComparesContents) {
    EXPECT_TRUE(kel::value(1) == kel::value(1.0));
    EXPECT_TRUE(kel::value("1") != kel::value(1));
    EXPECT_TRUE(kel::value() == kel::value(nullptr));
    EXPECT_TRUE(kel::value() != kel::value(0));
    EXPECT_TRUE(kitchen()["windows"] == 2);
}

TEST(Value, IsHashedByIdentity) {
    std::unordered_set<kel::value> seen;
    const kel::value one(1);
    seen.insert(one);
    seen.insert(one);
    EXPECT_EQ(seen.size(), 1U);
    std::vector<kel::value> sevens(1000, nullptr);
    for (kel::value& each : sevens) {
        each = kel::value(7);
    }
    EXPECT_EQ(std::unordered_set<kel::value>(sevens.begin(), sevens.end()).size(), 1000U);
}

TEST(Value, KnowsItsKind) {
    EXPECT_EQ(kel::value().kind(), kel::kind::null);
    EXPECT_EQ(kel::value(1).kind(), kel::kind::integer);
    EXPECT_EQ(kel::value(1U).kind(), kel::kind::integer);
    EXPECT_EQ(kel::value(true).kind(), kel::kind::boolean);
    EXPECT_EQ(kel::value(1.0F).kind(), kel::kind::real);
    EXPECT_EQ(kel::value("").kind(), kel::kind::string);
    EXPECT_EQ(kel::value(std::string("a")).kind(), kel::kind::string);
    EXPECT_EQ(kel::value(std::string_view("a")).kind(), kel::kind::string);
    EXPECT_EQ(kel::value(kel::guid(7)).kind(), kel::kind::guid);
    EXPECT_EQ(kel::value(kel::bytes(3)).kind(), kel::kind::block);
    EXPECT_EQ(kel::array().kind(), kel::kind::array);
    EXPECT_EQ(kel::object().kind(), kel::kind::structure);
}

TEST(Value, EveryKindOfTheLibraryHasItsName) {
    for (const KELKindFacts& facts : KELKinds) {
        EXPECT_STREQ(kel::words(static_cast<kel::kind>(facts.kind)), facts.words);
    }
    EXPECT_STREQ(kel::words(kel::kind::null), "null");
}

TEST(Value, OwnsAReferenceOfTheRawInterface) {
    const kel::ref<KEL_Array> raw = kel::adopt(CreateKELArray());
    const kel::value wrapped(raw);
    EXPECT_EQ(references(wrapped), 2);
    EXPECT_EQ(wrapped.as<KEL_Array>(), raw);
    EXPECT_FALSE(wrapped.as<KEL_Struct>());
    EXPECT_EQ(references(wrapped), 2);
    const kel::value shared(kel::share(raw.get()));
    EXPECT_EQ(references(wrapped), 3);
    kel::ref<KEL_Array> given = raw;
    DeleteKEL(given.detach());
    EXPECT_EQ(references(wrapped), 3);
}

// ---- Reading -----------------------------------------------------------------------------------

TEST(Value, IsReadAsTheTypeThatItHolds) {
    EXPECT_EQ(kel::value(-7).get<int>(), -7);
    EXPECT_TRUE(kel::value(true).get<bool>());
    EXPECT_EQ(kel::value(0.1).get<double>(), 0.1);
    EXPECT_EQ(kel::value("text").get<std::string>(), "text");
    EXPECT_EQ(kel::value(kel::guid(1, 2, 3, 4)).get<kel::guid>(), kel::guid(1, 2, 3, 4));
    const kel::bytes block{std::byte{1}, std::byte{0}, std::byte{255}};
    EXPECT_EQ(kel::value(block).get<kel::bytes>(), block);
    EXPECT_TRUE(kel::value(kel::bytes()).get<kel::bytes>().empty());
}

TEST(Value, NumbersConvertOnlyWithoutLoss) {
    EXPECT_EQ(kel::value(3.0).get<int>(), 3);
    EXPECT_EQ(kel::value(3).get<double>(), 3.0);
    EXPECT_EQ(kel::value(255).get<std::uint8_t>(), 255);
    EXPECT_EQ(kel::value(4294967295.0).get<std::uint32_t>(), 4294967295U);
    EXPECT_EQ(kel::value(9007199254740992.0).get<std::int64_t>(), 9007199254740992);
    EXPECT_EQ(kel::value(0.5).get<float>(), 0.5F);
    EXPECT_THROW(kel::value(3.5).get<int>(), kel::range_error);
    EXPECT_THROW(kel::value(256).get<std::uint8_t>(), kel::range_error);
    EXPECT_THROW(kel::value(-1).get<unsigned>(), kel::range_error);
    EXPECT_THROW(kel::value(-129).get<std::int8_t>(), kel::range_error);
    EXPECT_THROW(kel::value(1e10).get<int>(), kel::range_error);
    EXPECT_THROW(kel::value(9223372036854775808.0).get<std::int64_t>(), kel::range_error);
    EXPECT_THROW(kel::value(18446744073709551616.0).get<std::uint64_t>(), kel::range_error);
    EXPECT_EQ(kel::value(0.1).get<float>(), 0.1F) << "a float is rounded";
    EXPECT_THROW(kel::value(1e39).get<float>(), kel::range_error);
    EXPECT_THROW(kel::value(std::nan("")).get<int>(), kel::range_error);
    EXPECT_TRUE(std::isnan(kel::value(std::nan("")).get<float>()));
}

TEST(Value, AnotherKindIsNamed) {
    EXPECT_EQ(thrown<kel::type_error>([] { kel::value("x").get<int>(); }),
              "wanted an int, found a string.");
    EXPECT_EQ(thrown<kel::type_error>([] { kel::value().get<std::string>(); }),
              "wanted a string, found null.");
    EXPECT_EQ(thrown<kel::type_error>([] { kel::value(1).get<bool>(); }),
              "wanted a boolean, found an int.");
    EXPECT_EQ(kel::value("x").try_get<int>(), std::nullopt);
    EXPECT_EQ(kel::value().try_get<int>(), std::nullopt);
    EXPECT_EQ(kel::value(7).try_get<int>(), 7);
}

// ---- Storing -----------------------------------------------------------------------------------

TEST(Value, IntegersAreNeverTruncated) {
    kel::value room = kitchen();
    EXPECT_THROW(room.set("big", 5'000'000'000), std::out_of_range);
    EXPECT_THROW(room["big"] = 4294967295U, std::out_of_range);
    EXPECT_THROW(room["big"] = -2147483649LL, std::out_of_range);
    EXPECT_FALSE(room.contains("big"));
    room["big"] = 2147483647ULL;
    room["small"] = -2147483648LL;
    EXPECT_EQ(room["big"].get<int>(), 2147483647);
    EXPECT_EQ(room["small"].get<std::int64_t>(), -2147483648LL);
}

TEST(Value, ANumberThatDoesNotFitNamesItsPlace) {
    kel::value house = kel::object({{"rooms", kel::array({kitchen(), 1})}});
    const auto message = [](const auto& action) { return thrown<std::out_of_range>(action); };
    EXPECT_EQ(message([&] { house["big"] = 5'000'000'000; }),
              "big: 5000000000 does not fit an Int, which has 32 bits.");
    EXPECT_EQ(message([&] { house.set("big", 5'000'000'000); }),
              "big: 5000000000 does not fit an Int, which has 32 bits.");
    EXPECT_EQ(message([&] { house["rooms"][0].set("big", 5'000'000'000); }),
              "rooms[0].big: 5000000000 does not fit an Int, which has 32 bits.");
    EXPECT_EQ(message([&] { house["rooms"][1] = 5'000'000'000; }),
              "rooms[1]: 5000000000 does not fit an Int, which has 32 bits.");
    EXPECT_EQ(message([&] { house["rooms"][0]["windows"].assign(1.5); }),
              "rooms[0].windows: 1.5 does not fit an Int.");
    EXPECT_EQ(message([&] { house["rooms"][0]["degrees"].assign(INT64_MAX); }),
              "rooms[0].degrees: 9223372036854775807 does not fit a Double exactly.");
    EXPECT_EQ(message([] { kel::value(5'000'000'000); }),
              "5000000000 does not fit an Int, which has 32 bits.");
    EXPECT_THROW(house["none"].set("a", 1), kel::not_found);
    EXPECT_THROW(kel::value(1).set("a", 1), kel::type_error);
}

TEST(Value, AnIntegerIsADoubleWhereADoubleIs) {
    kel::value room = kitchen();
    room["degrees"].assign(20);
    EXPECT_EQ(room["degrees"].kind(), kel::kind::real);
    EXPECT_EQ(room["degrees"].get<int>(), 20);
    EXPECT_THROW(room["degrees"].assign(9007199254740993), std::out_of_range);
    EXPECT_THROW(room["degrees"].assign(UINT64_MAX), std::out_of_range);
    EXPECT_THROW(room["windows"].assign(1.5), std::out_of_range);
    room["windows"].assign(4.0);
    EXPECT_EQ(room["windows"].get<int>(), 4);
    EXPECT_EQ(room["windows"].kind(), kel::kind::integer);
}

TEST(Value, TextsWithANulAreRefused) {
    EXPECT_THROW(kel::value(std::string("a\0b", 3)), kel::name_error);
    EXPECT_THROW(kel::value(std::string_view("a\0b", 3)), kel::name_error);
}

TEST(Value, AssignKeepsTheObject) {
    kel::value room = kitchen();
    const kel::value degrees = room["degrees"];
    room["degrees"].assign(21);
    EXPECT_TRUE(kel::same(degrees, room["degrees"]));
    EXPECT_EQ(degrees.get<double>(), 21.0);
    room["degrees"] = 22;
    EXPECT_FALSE(kel::same(degrees, room["degrees"]));
    EXPECT_EQ(degrees.get<double>(), 21.0);
}

TEST(Value, AssignRefusesAnotherKind) {
    kel::value room = kitchen();
    EXPECT_EQ(thrown<kel::type_error>([&] { room["name"].assign(3); }),
              "name: cannot assign a number to a string.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["tags"].assign(kel::object()); }),
              "tags: cannot assign a struct to an array.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["windows"].assign(true); }),
              "windows: cannot assign a boolean to an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { room["windows"].assign("3"); }),
              "windows: cannot assign a string to an int.");
    EXPECT_TRUE(room == kitchen());
    room["tags"].assign(kel::array({7}));
    EXPECT_EQ(room["tags"][0].get<int>(), 7);
}

TEST(Value, AssignConvertedConvertsAsTheLibraryDoes) {
    kel::value number(1);
    number.assign_converted("12 apples");
    EXPECT_EQ(number.get<int>(), 12);
    number.assign_converted(2.9);
    EXPECT_EQ(number.get<int>(), 2);
    number.assign_converted(kel::array());
    EXPECT_EQ(number.get<int>(), 2);
    EXPECT_THROW(kel::value().assign_converted(1), kel::type_error);
}

// ---- Structs -----------------------------------------------------------------------------------

TEST(Value, APlaceStoresAndReads) {
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

TEST(Value, APlaceSharesTheValueOfAnother) {
    kel::value room = kitchen();
    room["labels"] = room["tags"];
    EXPECT_TRUE(kel::same(room["labels"], room["tags"]));
    room["labels"].push_back("three");
    EXPECT_EQ(room["tags"].size(), 4U);
}

TEST(Value, PlacesNest) {
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

TEST(Value, ANameCanBeAView) {
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

TEST(Value, OddNamesAreQuotedInPaths) {
    kel::value fields = kel::object({{"odd name", kel::object()}, {"a\\b", kel::object()}});
    EXPECT_EQ(thrown<kel::not_found>([&] { fields["odd name"]["x y"].get<int>(); }),
              "[\"odd name\"][\"x y\"]: no such variable.");
    EXPECT_EQ(thrown<kel::not_found>([&] { fields["a\\b"]["x"].get<int>(); }),
              "[\"a\\\\b\"].x: no such variable.");
}

TEST(Value, FindAndGetOrDoNotThrow) {
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

TEST(Value, GetOrFindsNothingInWhatIsNotThere) {
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

TEST(Value, AnIndexBeyondThirtyTwoBitsIsNoElement) {
    kel::value list = kel::array({5});
    EXPECT_THROW(list[5000000000] = 1, kel::not_found);
    EXPECT_THROW(list.erase_at(static_cast<std::size_t>(-1)), kel::not_found);
    EXPECT_THROW(list.at_path("[4294967296]"), kel::not_found);
}

TEST(Value, APlaceIsAssignedToAnother) {
    kel::value room = kitchen();
    room["windows"].assign(room["degrees"].get_or(4.0) > 0 ? 5 : 6);
    room["degrees"].assign(room["windows"]);
    EXPECT_EQ(room["degrees"].get<double>(), 5.0);
    room["degrees"].assign(kel::value(6));
    EXPECT_EQ(room["degrees"].get<double>(), 6.0);
    EXPECT_TRUE(kel::same(room["tags"].get<kel::value>(), room["tags"]));
}

TEST(Value, APlaceHasTheOperationsOfItsValue) {
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

TEST(Value, NamesThatCannotBeStoredAreRefusedBefore) {
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

TEST(Value, VariablesAreErasedAndRenamed) {
    kel::value room = kitchen();
    EXPECT_TRUE(room.erase("windows"));
    EXPECT_FALSE(room.erase("windows"));
    room.rename("name", "title");
    EXPECT_EQ(room["title"].get<std::string>(), "Kitchen");
    EXPECT_EQ(room.size(), 3U);
    room.clear();
    EXPECT_EQ(room.size(), 0U);
}

TEST(Value, OfTwoFieldsWithOneNameTheLastStays) {
    EXPECT_EQ(kel::object({{"a", 1}, {"a", 2}})["a"].get<int>(), 2);
}

TEST(Value, AConstantHandleReads) {
    const kel::value room = kitchen();
    EXPECT_EQ(room["tags"][0].get<int>(), 1);
    const kel::value tags = room["tags"];
    EXPECT_EQ(tags.size(), 3U);
}

// ---- Arrays ------------------------------------------------------------------------------------

TEST(Value, ElementsAreAddedReplacedAndErased) {
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

TEST(Value, AnArrayIsMadeOfAContainer) {
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

TEST(Value, AnArrayIsReadAsAVector) {
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

TEST(Value, OperationsOfAnotherKindSayWhatTheyWanted) {
    kel::value number(1);
    EXPECT_EQ(thrown<kel::type_error>([&] { number.push_back(1); }),
              "wanted an array, found an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { number.set("a", 1); }),
              "wanted a struct, found an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { number["a"] = 1; }), "wanted a struct, found an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { number.size(); }), "wanted a container, found an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { kel::value().items(); }),
              "wanted a struct, found null.");
    EXPECT_EQ(thrown<kel::type_error>([&] { kel::value()["a"].get<int>(); }),
              "wanted a struct, found null.");
}

// ---- Paths -------------------------------------------------------------------------------------

TEST(Value, APathLeadsToAValue) {
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

TEST(Value, APathThatCannotBeReadSaysWhere) {
    const kel::value tree = kitchen();
    for (const char* path : {".", "tags.", "tags..b", "[", "[]", "[x]", "[1", "[\"a", "[\"a\"",
                             "tags[0]x", "[\"", "tags["}) {
        const std::string message = thrown<kel::not_found>([&] { tree.at_path(path); });
        EXPECT_NE(message.find(path), std::string::npos) << message;
    }
}

TEST(Value, APathGoesThroughPairsAndManagers) {
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

} // namespace
