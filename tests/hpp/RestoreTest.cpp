// Going back to a state that copy gave.
#include "CheckedSupport.h"

#include <cmath>

using namespace checked_test;

namespace {

using Lines = std::vector<std::string>;

TEST(Restore, MakesEverythingAsItWasInPlace) {
    kel::value lamp = kel::object({{"brightness", 70},
                                   {"colour", kel::object({{"hue", 40}})},
                                   {"tags", kel::array({1, "two"})},
                                   {"later", nullptr}});
    const kel::value hue = lamp["colour"]["hue"];
    const kel::value tags = lamp["tags"];
    const kel::value state = lamp.copy();
    lamp["colour"]["hue"].assign(200);
    lamp["brightness"] = "bright";
    lamp["later"] = 5;
    lamp["added"] = true;
    lamp["tags"].push_back(3);
    lamp["tags"][0].assign(9);
    lamp.restore(state);
    EXPECT_EQ(lamp, state);
    EXPECT_EQ(hue.get<int>(), 40) << "the same object";
    EXPECT_TRUE(kel::same(lamp["tags"], tags));
    lamp["colour"]["hue"].assign(1);
    EXPECT_EQ(state.at_path("colour.hue").get<int>(), 40) << "a copy";

    lamp["tags"].clear();
    lamp.erase("colour");
    lamp.restore(state);
    EXPECT_EQ(lamp, state);
    EXPECT_FALSE(kel::same(lamp["colour"], state["colour"]));
    lamp["tags"].restore(kel::array({4}));
    EXPECT_EQ(tags, kel::array({4}));
}

TEST(Restore, DefaultsAreDefaultsAgain) {
    kel::checked panel = makePanel();
    panel.set("mode", "mono");
    const kel::checked state = panel.copy();
    panel.set("gain", -6);
    panel.set("mode", "stereo");
    panel.set("voices", 3);
    panel["note"] = "not described";
    std::vector<double> gains;
    Lines values;
    const kel::subscription one =
        kel::watch(panel["gain"], [&](const kel::value& v) { gains.push_back(v.get<double>()); });
    const kel::subscription all = kel::watch_values(
        panel, [&](std::string_view path, const kel::value&) { values.emplace_back(path); });
    panel.restore(state);
    EXPECT_TRUE(panel.is_default("gain"));
    EXPECT_FALSE(panel.is_default("mode"));
    EXPECT_FALSE(panel.contains("voices"));
    EXPECT_FALSE(panel.contains("note"));
    EXPECT_EQ(static_cast<kel::value>(panel), static_cast<kel::value>(state));
    EXPECT_EQ(gains, std::vector<double>{0});
    EXPECT_EQ(values, (Lines{"gain", "mode"})) << "once each";
    panel.restore(state);
    EXPECT_EQ(values.size(), 2U) << "nothing has changed";
}

TEST(Restore, ChecksOfATreeRemain) {
    kel::value rack = kel::object({{"1", makePanel()}, {"list", kel::array({makePanel()})}});
    kel::checked first = rack["1"];
    const kel::value state = rack.copy();
    first.set("gain", 3);
    rack.at_path("list[0].gain") = 4;
    rack.restore(state);
    EXPECT_TRUE(first.is_default("gain"));
    EXPECT_TRUE(rack.at_path("list[0].gain").is_default());
    first.set("gain", 3);
    rack["1"].restore(state["1"]);
    EXPECT_TRUE(first.is_default("gain"));
    EXPECT_THROW(rack["1"]["gain"].restore(99), kel::not_allowed);
    rack["1"]["gain"].restore(-3.0);
    EXPECT_EQ(first.get<double>("gain"), -3.0);
}

TEST(Restore, AValueInTwoPlacesIsSeparatedIfTheStateHasTwo) {
    const kel::value x = kel::object({{"n", 1}});
    kel::value list = kel::array({x, kel::object({{"n", 2}}), 7});
    const kel::value state = list.copy();
    list[1] = x;
    list.restore(state);
    EXPECT_EQ(list, state);
    kel::value shared = kel::array({x, x});
    const kel::value before = shared.copy();
    x.as<KEL_Struct>()->putInt("n", 5);
    shared.restore(before);
    EXPECT_EQ(shared, before);
    EXPECT_TRUE(kel::same(shared[0], shared[1]));
}

TEST(Restore, KeepsKindsAndBits) {
    kel::value list = kel::array({1, 2.0, std::nan(""), -0.0});
    const kel::value state = list.copy();
    list[0] = 1.0;
    list[1] = 2;
    list[2].assign(1);
    list[3].assign(0);
    list.restore(state);
    EXPECT_EQ(list[0].kind(), kel::kind::integer);
    EXPECT_EQ(list[1].kind(), kel::kind::real);
    EXPECT_TRUE(std::isnan(list[2].get<double>()));
    EXPECT_TRUE(std::signbit(list[3].get<double>()));
}

TEST(Restore, EndsInRings) {
    kel::value ring = kel::object({{"n", 1}});
    ring["self"] = ring;
    kel::value state = ring.copy();
    ring["n"].assign(2);
    ring.restore(state);
    EXPECT_EQ(ring["n"].get<int>(), 1);
    EXPECT_TRUE(kel::same(ring["self"], ring));
    ring.clear();
    state.clear();
}

TEST(Restore, NeedsAStateOfTheSameKind) {
    kel::value lamp = kel::object({{"n", 1}});
    EXPECT_THROW(lamp.restore(kel::array()), kel::type_error);
    EXPECT_THROW(lamp.restore(nullptr), kel::type_error);
    EXPECT_THROW(kel::value().restore(lamp), kel::type_error);
    EXPECT_THROW(makePanel().restore(makePanel().values()), kel::type_error);
    kel::value number = 3;
    number.restore(4);
    EXPECT_EQ(number.get<int>(), 4);
}

TEST(Restore, ADeepTreeNeedsNoCallStack) {
    kel::value deep = kel::array({1});
    for (int i = 0; i < 100'000; ++i) {
        deep = kel::array({deep});
    }
    const kel::value state = deep.copy();
    deep.restore(state);
    EXPECT_EQ(deep.size(), 1U);
}

} // namespace
