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

} // namespace
