// What controls are drawn from: places between two ends, texts and switches.
#include <kel/kel.hpp>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Texts = std::vector<std::string>;

kel::checked makeControls() {
    const std::vector<kel::described> variables = {
        {"pan", kel::describe<int>().range(-100, 100).fallback(0).unit(" %")},
        {"level", kel::describe<double>().range(-60, 0).fallback(-12)},
        {"rate", kel::describe<int>().one_of({1, 2, 4}).fallback(2).unit(" kHz")},
        {"mode", kel::describe<std::string>().one_of({"mono", "stereo"}).fallback("mono")},
        {"mute", kel::describe<bool>().fallback(false)},
        {"loop", kel::describe<bool>().fallback(true).wraps()},
        {"name", kel::describe<std::string>().fallback("x")}};
    return kel::checked(variables);
}

/// Returns a panel whose variable holds what no description allows, as a file can have it.
kel::checked holding(const char* name, const kel::value& content) {
    kel::checked panel = makeControls();
    panel.step_by(name, 0); // which stores the default
    kel::value handle = panel[name];
    handle.assign(content);
    return panel;
}

TEST(Panel, APlaceIsBetweenItsEndsWhateverAFileHolds) {
    EXPECT_EQ(holding("pan", -900).normalised("pan"), 0.0);
    EXPECT_EQ(holding("pan", 900).normalised("pan"), 1.0);
    EXPECT_EQ(holding("level", std::nan("")).normalised("level"), 0.0);
    EXPECT_EQ(holding("level", std::numeric_limits<double>::infinity()).normalised("level"), 1.0);
    EXPECT_EQ(holding("rate", 3).normalised("rate"), 0.0);
    kel::checked panel = holding("pan", -900);
    panel.step_by("pan", 1);
    EXPECT_EQ(panel.get<int>("pan"), -100);
}

TEST(Panel, ChoicesHaveTextsAsTheVariableHas) {
    kel::checked panel = makeControls();
    EXPECT_EQ(panel.choice_texts("rate"), (Texts{"1 kHz", "2 kHz", "4 kHz"}));
    EXPECT_EQ(panel.choice_texts("rate")[1], panel.text("rate"));
    EXPECT_EQ(panel.choice_texts("mode"), (Texts{"mono", "stereo"}));
    EXPECT_EQ(panel.choice_texts("mute"), (Texts{"false", "true"}));
    EXPECT_EQ(panel.choice_texts("name"), Texts());
    EXPECT_THROW(panel.choice_texts("nope"), kel::not_found);
}

TEST(Panel, ATruthValueIsAChoiceOfTwo) {
    kel::checked panel = makeControls();
    EXPECT_EQ(panel.normalised("mute"), 0.0);
    EXPECT_EQ(panel.normalised("loop"), 1.0);
    panel.set_normalised("mute", 0.6);
    EXPECT_TRUE(panel.get<bool>("mute"));
    panel.step_by("mute", 1);
    EXPECT_TRUE(panel.get<bool>("mute")) << "it stops at its end";
    panel.step_by("mute", -1);
    EXPECT_FALSE(panel.get<bool>("mute"));
    panel.step_by("loop", 1);
    EXPECT_FALSE(panel.get<bool>("loop")) << "it wraps";
}

TEST(Panel, SaysWhetherAVariableHasAScale) {
    kel::checked panel = makeControls();
    for (const char* name : {"pan", "rate", "mode", "mute"}) {
        EXPECT_TRUE(panel.has_scale(name)) << name;
    }
    EXPECT_FALSE(panel.has_scale("name"));
    EXPECT_FALSE(panel.has_scale("nope"));
    try {
        panel.step_by("name", 1);
        FAIL();
    } catch (const kel::error& failure) {
        EXPECT_STREQ(failure.what(), "name: has neither a range nor choices.");
    }
}

TEST(Panel, IsTakenFromAPlaceAsAValueIs) {
    kel::value rack = kel::object({{"1", makeControls()}, {"n", 2}});
    kel::checked one = rack["1"];
    kel::checked reached = rack.at_path("1");
    one.set("pan", 5);
    EXPECT_EQ(reached.get<int>("pan"), 5);
    try {
        const kel::checked other = rack["n"];
        FAIL();
    } catch (const kel::type_error& failure) {
        EXPECT_STREQ(failure.what(), "n: wanted a checked struct, found an int.");
    }
    EXPECT_THROW(kel::checked{rack["2"]}, kel::not_found);
}

TEST(Panel, ACopyIsAnotherStruct) {
    kel::checked panel = makeControls();
    panel.set("pan", 5);
    kel::checked other = panel.copy();
    other.set("pan", 6);
    EXPECT_EQ(panel.get<int>("pan"), 5);
    EXPECT_EQ(other.get<int>("pan"), 6);
    EXPECT_FALSE(other.try_set("pan", 101));
}

TEST(Panel, AllVariablesAreResetAtOnce) {
    kel::checked panel = makeControls();
    const kel::value defaults = panel.values();
    panel.set("pan", 5);
    panel.set("mode", "stereo");
    panel["note"] = 1;
    panel.reset();
    EXPECT_EQ(panel.values(), defaults);
    EXPECT_TRUE(kel::value(panel).contains("note")) << "it is not described";
    EXPECT_EQ(panel.try_set("note", 2).message(), "note: is not described.");
    EXPECT_EQ(panel.try_set("odd name", 2).message(), "[\"odd name\"]: no such variable.");
}

/// Returns what the type_error of the action says.
template <class Action> std::string refused(const Action& action) {
    try {
        action();
    } catch (const kel::type_error& failure) {
        return failure.what();
    }
    return "(nothing thrown)";
}

TEST(Panel, APlaceHasTheControlsOfItsVariable) {
    kel::value rack = kel::object({{"1", makeControls()}});
    rack.at_path("1.pan").set_normalised(1);
    EXPECT_EQ(rack["1"]["pan"].text(), "100 %");
    rack["1"]["pan"].step_by(-1);
    EXPECT_EQ(rack.at_path("1.pan").normalised(), 0.995);
    EXPECT_TRUE(rack["1"]["pan"].try_set_text("7 %"));
    EXPECT_TRUE(rack["1"]["level"].is_default());
    EXPECT_TRUE(rack["1"]["level"].try_set(-3));
    EXPECT_TRUE(rack["1"]["level"].try_set(std::int64_t{-4}));
    EXPECT_FALSE(rack["1"]["level"].is_default());
    rack["1"]["level"].reset();
    EXPECT_TRUE(rack["1"]["level"].is_default());
    const kel::value fixed = rack;
    EXPECT_EQ(fixed["1"]["pan"].text(), "7 %");
    EXPECT_EQ(fixed["1"]["rate"].choice_texts(), (Texts{"1 kHz", "2 kHz", "4 kHz"}));
    EXPECT_EQ(fixed["1"].names(), makeControls().names());
    EXPECT_EQ(fixed.find("1").names(), makeControls().names());
    EXPECT_THROW(fixed.names(), kel::type_error);
    EXPECT_TRUE(fixed["1"]["rate"].is_described());
    EXPECT_FALSE(fixed["1"]["none"].is_described());
    EXPECT_FALSE(fixed["1"]["rate"]["x"].is_described());
    EXPECT_FALSE(fixed["none"]["rate"].is_described());
    EXPECT_FALSE(fixed["1"].is_described());
    EXPECT_EQ(fixed["1"]["rate"].allowed_text(), "one of 1, 2, 4 kHz");
    EXPECT_EQ(fixed["1"]["rate"].description().unit(), " kHz");
    EXPECT_TRUE(fixed["1"]["rate"].has_scale());
    EXPECT_FALSE(fixed["1"]["name"].has_scale());
}

TEST(Panel, ARefusalOfAPlaceBeginsWithItsWholePath) {
    kel::value rack = kel::object({{"1", makeControls()}, {"list", kel::array({makeControls()})}});
    EXPECT_EQ(rack["1"]["pan"].try_set(101).message(),
              "1.pan: 101 is not allowed; allowed is from -100 to 100 %.");
    EXPECT_EQ(rack.at_path("1.level").try_set(5'000'000'000).message(),
              "1.level: 5000000000 is not allowed; allowed is from -60 to 0.");
    EXPECT_EQ(rack["list"][0]["pan"].try_set_text("x").message(),
              "list[0].pan: \"x\" is not a number; allowed is from -100 to 100 %.");
    EXPECT_EQ(rack["1"]["nope"].try_set(1).message(), "1.nope: no such variable.");
    EXPECT_THROW(rack["1"]["nope"].reset(), kel::not_found);
    EXPECT_THROW(rack["2"]["pan"].step_by(1), kel::not_found);
    const auto missing = [](const auto& action) -> std::string {
        try {
            action();
        } catch (const kel::not_found& failure) {
            return failure.what();
        }
        return "(stored)";
    };
    EXPECT_EQ(missing([&] { (void)rack["nope"].try_set_text("1"); }), "nope: no such variable.");
    EXPECT_EQ(missing([&] { rack["list"][7].step_by(1); }), "list[7]: the array has 1 element.");
    EXPECT_EQ(refused([&] { rack["1"].step_by(1); }), "1: is not described.");
    EXPECT_EQ(refused([&] { (void)rack["list"][0].text(); }), "list[0]: is not described.");
    EXPECT_EQ(refused([&] { rack.at_path("").step_by(1); }), "The document is not described.");
}

} // namespace
