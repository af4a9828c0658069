// Handles and C++ types through kel.hpp.
#include "ValueSupport.h"

#include <unordered_set>

using namespace value_test;

namespace {

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

TEST(Value, OperationsOfAPlaceOfAnotherKindSayWhereItIs) {
    kel::value room = kel::object({{"a", kel::object({{"n", 1}, {"l", kel::array()}})}});
    const auto said = [&room](auto action) {
        return thrown<kel::type_error>([&] { action(room["a"]["n"]); });
    };
    const std::string no_struct = "a.n: wanted a struct, found an int.";
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).items(); }), no_struct);
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).contains("x"); }), no_struct);
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).find("x"); }), no_struct);
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).erase("x"); }), no_struct);
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).merge(kel::object()); }), no_struct);
    const std::string no_array = "a.n: wanted an array, found an int.";
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).elements(); }), no_array);
    EXPECT_EQ(said([](auto&& at) { std::move(at).push_back(1); }), no_array);
    EXPECT_EQ(said([](auto&& at) { std::move(at).insert(0, 1); }), no_array);
    EXPECT_EQ(said([](auto&& at) { std::move(at).erase_at(0); }), no_array);
    const std::string no_container = "a.n: wanted a container, found an int.";
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).size(); }), no_container);
    EXPECT_EQ(said([](auto&& at) { std::move(at).clear(); }), no_container);
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).pairs(); }),
              "a.n: wanted an index list, found an int.");
    EXPECT_EQ(said([](auto&& at) { (void)std::move(at).names(); }),
              "a.n: wanted a checked struct, found an int.");
    EXPECT_EQ(thrown<kel::type_error>([&] { (void)room.at_path("a.l").items(); }),
              "a.l: wanted a struct, found an array.");
    EXPECT_EQ(room["a"]["l"].size(), 0U);
    EXPECT_EQ(room["a"].size(), 2U);
}

} // namespace
