// Places between two ends, steps, and values as they are shown.
#include "CheckedSupport.h"

#include <clocale>
#include <cmath>

using namespace checked_test;

namespace {

TEST(Scale, NormalisesRanges) {
    kel::checked panel = makePanel();
    panel.set("gain", -27.0);
    EXPECT_EQ(panel.normalised("gain"), 0.5);
    panel.set_normalised("gain", 0);
    EXPECT_EQ(panel.get<double>("gain"), -60.0);
    panel.set_normalised("gain", 1);
    EXPECT_EQ(panel.get<double>("gain"), 6.0);
    panel.set_normalised("gain", 7);
    EXPECT_EQ(panel.get<double>("gain"), 6.0);
    panel.set_normalised("gain", 0.301); // -40.134
    EXPECT_EQ(panel.get<double>("gain"), -40.0) << "to the nearest step";
    EXPECT_THROW(panel.set_normalised("gain", std::nan("")), std::out_of_range);
}

TEST(Scale, NormalisesChoices) {
    kel::checked panel = makePanel();
    EXPECT_EQ(panel.normalised("mode"), 0.5);
    panel.set_normalised("mode", 0.8);
    EXPECT_EQ(panel.get<std::string>("mode"), "surround");
}

TEST(Scale, WrapsAround) {
    kel::checked panel = makePanel();
    panel.set_normalised("angle", 1.25);
    EXPECT_EQ(panel.get<int>("angle"), 90);
    panel.set_normalised("angle", -0.25);
    EXPECT_EQ(panel.get<int>("angle"), 270);
    panel.step_by("angle", 100);
    EXPECT_EQ(panel.get<int>("angle"), 9) << "0 and 360 are different whole numbers";
    kel::checked clock(
        {{"month", kel::describe<int>().range(1, 12).fallback(12).wraps()},
         {"turn", kel::describe<double>().range(0, 360).fallback(350).step(10).wraps()}});
    clock.step_by("month", 1);
    EXPECT_EQ(clock.get<int>("month"), 1);
    clock.step_by("month", -1);
    EXPECT_EQ(clock.get<int>("month"), 12);
    clock.step_by("turn", 3);
    EXPECT_EQ(clock.get<double>("turn"), 20.0) << "both ends are one place";
}

TEST(Scale, StepsUpAndDown) {
    kel::checked panel = makePanel();
    panel.step_by("gain", -3);
    EXPECT_EQ(panel.get<double>("gain"), -1.5);
    panel.step_by("gain", 1000);
    EXPECT_EQ(panel.get<double>("gain"), 6.0);
    panel.step_by("mode", -1);
    EXPECT_EQ(panel.get<std::string>("mode"), "mono");
    panel.step_by("mode", -1);
    EXPECT_EQ(panel.get<std::string>("mode"), "mono");
}

TEST(Scale, ReachesBothEndsAndAddsNoNoise) {
    kel::checked panel({{"a", kel::describe<double>().range(-5, -1.8).fallback(-5)},
                        {"b", kel::describe<double>().range(0, 0.3).fallback(0).step(0.1)},
                        {"c", kel::describe<double>().range(-60, 6).fallback(0).step(0.1)}});
    panel.set_normalised("a", 1.0);
    EXPECT_EQ(panel.get<double>("a"), -1.8);
    panel.set_normalised("b", 1.0);
    EXPECT_EQ(panel.get<double>("b"), 0.3);
    panel.step_by("b", -3);
    panel.step_by("b", 100);
    EXPECT_EQ(panel.get<double>("b"), 0.3);
    panel.step_by("c", 3);
    EXPECT_EQ(panel.text("c"), "0.3");
}

TEST(Scale, NullIsTheDefaultToItsControls) {
    kel::checked panel = makePanel();
    panel["gain"] = nullptr;
    EXPECT_EQ(panel.text("gain"), "0 dB");
    panel.step_by("gain", 1);
    EXPECT_EQ(panel.get<double>("gain"), 0.5);
    EXPECT_THROW(panel.normalised("voices"), kel::not_found) << "without a default";
}

TEST(Scale, WithoutAStepEveryNumberIsReached) {
    kel::checked panel({{"x", kel::describe<double>().range(0, 1).fallback(0)},
                        {"y", kel::describe<double>().range(0, 10).fallback(0).only_steps()}});
    panel.set_normalised("x", 0.123);
    EXPECT_EQ(panel.get<double>("x"), 0.123);
    panel.set_normalised("y", 0.123);
    EXPECT_EQ(panel.get<double>("y"), 1.0);
}

TEST(Scale, ShowsValuesWithTheirUnits) {
    kel::checked panel = makePanel();
    const char* old = std::setlocale(LC_ALL, "de_DE.UTF-8");
    panel.set("gain", -6.5);
    EXPECT_EQ(panel.text("gain"), "-6.5 dB");
    EXPECT_EQ(panel.text("mode"), "stereo");
    EXPECT_EQ(panel.text("angle"), "0");
    if (old != nullptr) {
        std::setlocale(LC_ALL, "C");
    }
}

TEST(Scale, FromBetweenTwoStepsTheNextOneCounts) {
    kel::checked panel({{"hz", kel::describe<double>().range(20, 20000).step(10)},
                        {"odd", kel::describe<int>().range(0, 10).step(3)},
                        {"free", kel::describe<double>().range(0, 10)},
                        {"dial", kel::describe<double>().range(0, 360).step(15).wraps()},
                        {"fine", kel::describe<double>().range(0, 1).step(0.1)}});
    const auto after = [&](const char* name, double from, int steps) {
        panel.set(name, from);
        panel.step_by(name, steps);
        return panel.get<double>(name);
    };
    EXPECT_EQ(after("hz", 445.5, 1), 450.0);
    EXPECT_EQ(after("hz", 445.5, -1), 440.0);
    EXPECT_EQ(after("hz", 445.5, 2), 460.0);
    EXPECT_EQ(after("hz", 449.999999, 1), 460.0) << "text has made this number of 450";
    EXPECT_EQ(after("hz", 449.9, 0), 450.0);
    EXPECT_EQ(after("hz", 25, -3), 20.0);
    EXPECT_EQ(after("odd", 4, 1), 6.0);
    EXPECT_EQ(after("odd", 4, -1), 3.0);
    EXPECT_EQ(after("odd", 9, 1), 9.0);
    EXPECT_EQ(after("odd", 10, 1), 10.0) << "the last step is not up";
    EXPECT_EQ(after("odd", 10, -1), 9.0);
    EXPECT_EQ(after("free", 4.5, 1), 5.5) << "a step is 1, and there are no marks";
    EXPECT_EQ(after("free", 9.5, 1), 10.0);
    EXPECT_EQ(after("dial", 350, 1), 360.0);
    EXPECT_EQ(after("dial", 350, 2), 15.0);
    EXPECT_EQ(after("dial", 5, -2), 345.0);
    EXPECT_EQ(after("fine", 0.3 + 1e-12, -1), 0.2);
    EXPECT_EQ(after("fine", 0.7, 1), 0.8);
    kel::checked strict({{"odd", kel::describe<int>().range(0, 10).step(3).only_steps()}});
    strict.set("odd", 9);
    kel::value(strict["odd"]).assign(10); // as a file can have it
    EXPECT_NO_THROW(strict.step_by("odd", 1));
}

TEST(Scale, BothEndsAreExact) {
    const std::pair<double, double> ends[] = {{1.0 / 3, 2.0 / 3}, {-1e16, 0.1},  {0.1, 0.1 + 0.2},
                                              {-5, -1.8},         {1e-20, 1e20}, {0, 3e-300}};
    for (const auto& [least, greatest] : ends) {
        const auto rule = kel::describe<double>().range(least, greatest);
        kel::checked panel({{"free", rule},
                            {"steps", rule.step((greatest - least) / 3)},
                            {"only", rule.step((greatest - least) / 3).only_steps()}});
        for (const std::string& name : panel.names()) {
            panel.set_normalised(name, 0);
            EXPECT_EQ(panel.get<double>(name), least) << name;
            panel.set_normalised(name, 1);
            EXPECT_EQ(panel.get<double>(name), greatest) << name;
            EXPECT_EQ(panel.normalised(name), 1.0);
            panel.step_by(name, -9);
            panel.step_by(name, 9);
        }
        EXPECT_EQ(panel.get<double>("steps"), greatest);
    }
}

TEST(Scale, AMixOfTwoPresetsIsEitherAtItsEnds) {
    kel::checked panel = makePanel();
    const kel::value first =
        kel::object({{"gain", 0.1}, {"mode", "mono"}, {"voices", 2}, {"angle", 90}});
    const kel::value second =
        kel::object({{"gain", -59.7}, {"voices", 5}, {"free", true}, {"angle", -7}});
    const auto mixed = [&](double where) {
        EXPECT_TRUE(panel.merge(panel.mixed(first, second, where), kel::missing::reset).empty());
        return panel.values();
    };
    const auto alone = [&](const kel::value& preset) {
        static_cast<void>(panel.merge(preset, kel::missing::reset));
        return panel.values();
    };
    EXPECT_EQ(mixed(0), alone(first));
    EXPECT_EQ(mixed(1), alone(second));
    EXPECT_EQ(panel.mixed(first, second, -3), panel.mixed(first, second, 0));
    EXPECT_EQ(panel.mixed(first, second, 3), panel.mixed(first, second, 1));
    const kel::value half = mixed(0.5);
    EXPECT_EQ(half["gain"].get<double>(), -30.0) << "at a step";
    EXPECT_EQ(half["mode"].get<std::string>(), "stereo") << "the default, of the second";
    EXPECT_EQ(half["voices"].get<int>(), 4);
    EXPECT_EQ(half["angle"].get<int>(), 45) << "-7 is not allowed, so it is the default";
    EXPECT_TRUE(half["free"].get<bool>());
    EXPECT_EQ(mixed(0.25)["mode"].get<std::string>(), "mono");
    EXPECT_EQ(panel.mixed(first, first, 0.3)["gain"].get<double>(), 0.1) << "the same in both";
    EXPECT_THROW(static_cast<void>(panel.mixed(first, 1, 0.5)), kel::type_error);
    EXPECT_THROW(static_cast<void>(panel.mixed(first, second, std::nan(""))), std::out_of_range);
}

TEST(Scale, WhatIsRefusedInAPresetIsNotMixed) {
    kel::checked panel = makePanel();
    const kel::value good =
        kel::object({{"gain", -20}, {"mode", "mono"}, {"voices", 4}, {"free", true}});
    for (const kel::value& bad :
         {kel::object({{"gain", 900}, {"mode", "quad"}, {"voices", 99}, {"free", 1}}),
          kel::object({{"gain", "loud"}, {"mode", 3}, {"voices", 2.5}, {"free", "yes"}})}) {
        for (const double where : {0.25, 0.75, 1.0}) {
            const kel::value mix = panel.mixed(good, bad, where);
            EXPECT_EQ(mix, panel.mixed(good, kel::object(), where)) << where;
            EXPECT_TRUE(panel.merge(mix, kel::missing::reset).empty());
        }
        EXPECT_EQ(panel.mixed(good, bad, 0.75)["gain"].get<double>(), -5.0);
        EXPECT_FALSE(panel.mixed(good, bad, 0.75).contains("free")) << "has no default";
    }
    const kel::value read = kel::from_text("{ gain = 0.67 }");
    EXPECT_EQ(panel.mixed(read, read, 0.25)["gain"].get<double>(), 0.67) << "as merge stores it";
}

} // namespace
