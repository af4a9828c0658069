// Descriptions and checked structs.
#include <kel/kel.hpp>

#include <clocale>
#include <gtest/gtest.h>
#include <map>

namespace {

kel::checked makePanel() {
    return kel::checked(
        {{"gain", kel::describe<double>().range(-60, 6).fallback(0).step(0.5).unit(" dB")},
         {"mode",
          kel::describe<std::string>().one_of({"mono", "stereo", "surround"}).fallback("stereo")},
         {"voices", kel::describe<int>().range(1, 16)},
         {"angle", kel::describe<int>().range(0, 360).fallback(0).wraps()},
         {"free", kel::describe<bool>()}});
}

std::string refusal(kel::checked& panel, const char* name, const kel::value& content) {
    const kel::outcome done = panel.try_set(name, content);
    return done ? "(stored)" : done.message();
}

TEST(Checked, StoresWhatIsAllowed) {
    kel::checked panel = makePanel();
    EXPECT_TRUE(panel.try_set("gain", -6.5));
    EXPECT_EQ(panel.get<double>("gain"), -6.5);
    panel.set("mode", "mono");
    EXPECT_EQ(panel.get<std::string>("mode"), "mono");
    panel.set("free", true);
    EXPECT_TRUE(panel.get<bool>("free"));
}

TEST(Checked, SaysWhatIsAllowed) {
    kel::checked panel = makePanel();
    EXPECT_EQ(refusal(panel, "gain", 9.0), "gain: 9 is not allowed; allowed is from -60 to 6.");
    EXPECT_EQ(
        refusal(panel, "mode", "quad"),
        "mode: \"quad\" is not allowed; allowed is one of \"mono\", \"stereo\", \"surround\".");
    EXPECT_EQ(refusal(panel, "voices", "7"), "voices: wanted an int, found a string.");
    EXPECT_EQ(refusal(panel, "voices", 7.5), "voices: 7.5 is not a whole number of 32 bits.");
    EXPECT_EQ(refusal(panel, "voices", nullptr), "voices: wanted an int, found null.");
    EXPECT_EQ(refusal(panel, "gain", std::nan("")),
              "gain: nan is not allowed; allowed is from -60 to 6.");
    EXPECT_EQ(refusal(panel, "voices", 3e9), "voices: 3e+09 is not a whole number of 32 bits.");
    EXPECT_EQ(refusal(panel, "volume", 1), "volume: no such variable.");
    EXPECT_THROW(panel.set("gain", 9.0), kel::not_allowed);
    EXPECT_EQ(kel::value(panel).size(), 1U) << "only the description";
}

TEST(Checked, TheHandleOfAValueIsCheckedToo) {
    kel::value panel = makePanel();
    EXPECT_THROW(panel["gain"] = 9.0, kel::not_allowed);
    EXPECT_THROW(panel.set("mode", "quad"), kel::not_allowed);
    panel["gain"] = 5;
    EXPECT_THROW(panel["gain"].assign(9.0), kel::not_allowed);
    EXPECT_EQ(panel["gain"].get<double>(), 5.0);
    panel["gain"].assign(4);
    EXPECT_EQ(panel["gain"].get<double>(), 4.0);
    panel["note"] = "not described, so anything goes";
    EXPECT_THROW(panel["@desc"] = 1, kel::name_error);
    panel["gain"] = nullptr;
    EXPECT_EQ(panel["gain"].kind(), kel::kind::null);
    panel["pan"] = nullptr;
    EXPECT_FALSE(panel.contains("pan"));
}

TEST(Checked, KeepsTheDescribedKind) {
    kel::checked panel = makePanel();
    panel.set("gain", 3);
    panel.set("voices", 4.0);
    EXPECT_EQ(kel::value(panel).find("gain").kind(), kel::kind::real);
    EXPECT_EQ(kel::value(panel).find("voices").kind(), kel::kind::integer);
}

TEST(Checked, AnIntegerOfMoreThan32BitsIsADouble) {
    kel::checked panel({{"size", kel::describe<double>()}, {"count", kel::describe<int>()}});
    panel.set("size", 5'000'000'000);
    EXPECT_EQ(panel.get<double>("size"), 5e9);
    panel["size"] = std::uint64_t{6'000'000'000};
    EXPECT_EQ(panel.get<double>("size"), 6e9);
    EXPECT_EQ(refusal(panel, "size", 7), "(stored)");
    EXPECT_EQ(panel.try_set("count", 5'000'000'000).message(),
              "count: 5e+09 is not a whole number of 32 bits.");
    EXPECT_THROW(panel["count"] = 5'000'000'000, kel::not_allowed);
    EXPECT_THROW(panel["note"] = 5'000'000'000, std::out_of_range) << "not described";
    EXPECT_THROW(panel.set("size", INT64_MAX), std::out_of_range);
}

TEST(Checked, NeverStoresOrLendsAnObjectOfTheDescription) {
    kel::checked panel = makePanel();
    const kel::value description(panel.description("mode"));
    kel::value allowed = description["enum"][0];
    panel.set("mode", allowed);
    panel["note"] = allowed; // not described
    panel["note"].assign("changed");
    EXPECT_EQ(allowed.get<std::string>(), "mono");
    kel::value stored = panel["mode"];
    EXPECT_FALSE(kel::same(stored, allowed));
    stored.assign("changed");
    EXPECT_EQ(allowed.get<std::string>(), "mono");

    kel::value lent = kel::value(panel)["gain"]; // the default
    lent.assign(-20);
    EXPECT_EQ(panel.get<double>("gain"), 0.0);
    kel::value found = kel::value(panel).find("gain");
    found.assign(-20);
    kel::value reached = kel::value(panel).at_path("gain");
    reached.assign(-20);
    EXPECT_EQ(panel.get<double>("gain"), 0.0);
}

TEST(Checked, AssigningToADefaultMakesAVariable) {
    kel::checked panel = makePanel();
    kel::value handle = panel;
    handle["gain"].assign(-20);
    EXPECT_TRUE(handle.contains("gain"));
    EXPECT_EQ(panel.get<double>("gain"), -20.0);
    panel.reset("gain");
    EXPECT_EQ(panel.get<double>("gain"), 0.0);
}

TEST(Checked, WithoutDefaultAVariableIsMissing) {
    const kel::checked panel = makePanel();
    EXPECT_THROW(panel.get<int>("voices"), kel::not_found);
    EXPECT_EQ(kel::value(panel).get_or("voices", 3), 3);
    EXPECT_EQ(kel::value(panel).get_or("angle", 3), 0);
}

TEST(Checked, NormalisesRanges) {
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

TEST(Checked, NormalisesChoices) {
    kel::checked panel = makePanel();
    EXPECT_EQ(panel.normalised("mode"), 0.5);
    panel.set_normalised("mode", 0.8);
    EXPECT_EQ(panel.get<std::string>("mode"), "surround");
}

TEST(Checked, WrapsAround) {
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

TEST(Checked, StepsUpAndDown) {
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

TEST(Checked, ReachesBothEndsAndAddsNoNoise) {
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

TEST(Checked, NullIsTheDefaultToItsControls) {
    kel::checked panel = makePanel();
    panel["gain"] = nullptr;
    EXPECT_EQ(panel.text("gain"), "0 dB");
    panel.step_by("gain", 1);
    EXPECT_EQ(panel.get<double>("gain"), 0.5);
    EXPECT_THROW(panel.normalised("voices"), kel::not_found) << "without a default";
}

TEST(Checked, ADamagedDescriptionIsAFailureAndNoCrash) {
    kel::checked panel = makePanel();
    kel::value gain = panel.description("gain");
    gain["min"] = nullptr;
    EXPECT_THROW(panel.normalised("gain"), kel::error);
    EXPECT_FALSE(panel.try_set("gain", 99));
    kel::value mode = panel.description("mode");
    mode["enum"] = nullptr;
    EXPECT_THROW(panel.step_by("mode", 1), kel::error);
    EXPECT_THROW(kel::variable_description(nullptr), kel::type_error);
    const kel::checked moved = std::move(panel);
    EXPECT_THROW((void)panel.try_set("gain", 1), kel::type_error); // NOLINT: moved from
}

TEST(Checked, NumbersOfADescriptionAreNeverTruncated) {
    EXPECT_THROW(kel::describe<int>().range(0, 5000000000), std::out_of_range);
    EXPECT_THROW(kel::describe<int>().fallback(4.9), std::out_of_range);
    EXPECT_THROW(kel::describe<std::uint8_t>().range(0, 256), std::out_of_range);
    EXPECT_THROW(kel::describe<unsigned>().fallback(-1), std::out_of_range);
}

TEST(Checked, ACopiedDescriptionIsChangedOnItsOwn) {
    const auto level = kel::describe<double>().range(0, 1);
    auto left = level;
    auto right = level;
    left.fallback(0.2);
    right.fallback(0.8);
    const kel::checked panel({{"left", left}, {"right", right}});
    EXPECT_EQ(panel.get<double>("left"), 0.2);
    EXPECT_EQ(panel.get<double>("right"), 0.8);
}

TEST(Checked, ADescriptionIsReadBack) {
    const kel::checked panel = makePanel();
    const kel::variable_description gain = panel.description("gain");
    EXPECT_EQ(gain.kind(), kel::kind::real);
    EXPECT_EQ(gain.least(), -60.0);
    EXPECT_EQ(gain.greatest(), 6.0);
    EXPECT_EQ(gain.step(), 0.5);
    EXPECT_EQ(gain.fallback().get<double>(), 0.0);
    EXPECT_EQ(gain.unit(), " dB");
    EXPECT_EQ(gain.prefix(), "");
    EXPECT_FALSE(gain.wrapped());
    EXPECT_TRUE(gain.interpolated());
    EXPECT_TRUE(gain.choices().empty());

    const kel::variable_description mode = panel.description("mode");
    EXPECT_EQ(mode.kind(), kel::kind::string);
    EXPECT_EQ(mode.least(), std::nullopt);
    EXPECT_EQ(mode.greatest(), std::nullopt);
    EXPECT_EQ(mode.step(), std::nullopt);
    EXPECT_EQ(mode.choices(), (std::vector<kel::value>{"mono", "stereo", "surround"}));
    mode.choices()[0].assign("changed");
    mode.fallback().assign("changed");
    EXPECT_EQ(mode.choices()[0].get<std::string>(), "mono") << "copies";
    EXPECT_EQ(panel.get<std::string>("mode"), "stereo");

    EXPECT_FALSE(panel.description("voices").fallback());
    EXPECT_TRUE(panel.description("angle").wrapped());
    const auto own = kel::describe<int>().prefix("no. ").interpolated(false).step(2).fallback(4);
    EXPECT_EQ(own.prefix(), "no. ");
    EXPECT_FALSE(own.interpolated());
    EXPECT_EQ(own.step(), 2.0);
    EXPECT_EQ(own.fallback().get<int>(), 4);
}

TEST(Checked, ItsNamesCanBeMadeAtRunTime) {
    std::vector<kel::described> all;
    for (int i = 1; i <= 3; ++i) {
        all.push_back({"a name that is not short " + std::to_string(i),
                       kel::describe<int>().range(0, 9).fallback(0)});
    }
    EXPECT_EQ(kel::checked(all).names().at(1), "a name that is not short 2");
}

TEST(Checked, KnowsWhichVariablesHaveTheirDefaults) {
    kel::checked panel({{"gain", kel::describe<int>().fallback(0)}});
    EXPECT_TRUE(panel.is_default("gain"));
    panel.set("gain", 0);
    EXPECT_FALSE(panel.is_default("gain"));
    panel.reset("gain");
    EXPECT_TRUE(panel.is_default("gain"));
    EXPECT_THROW(panel.reset("gian"), kel::not_found);
    EXPECT_THROW(panel.is_default("gian"), kel::not_found);
}

TEST(Checked, WholeNumbersHaveWholeSteps) {
    EXPECT_THROW(kel::describe<int>().range(0, 10).step(0.5), kel::error);
    EXPECT_EQ(kel::describe<int>().step(2).step(), 2.0);
}

TEST(Checked, KeepsWhatADescriptionSaidWhenItWasMade) {
    auto gain = kel::describe<double>().range(-60, 6).fallback(0);
    const kel::variable_description before = gain;
    const auto other = gain;
    kel::checked panel({{"gain", gain}});
    gain.range(-1, 1).step(0.5).fallback(1);
    panel.set("gain", -60);
    EXPECT_EQ(before.least(), -60.0);
    EXPECT_EQ(other.least(), -60.0);
    EXPECT_EQ(other.step(), std::nullopt);
    EXPECT_EQ(gain.least(), -1.0);
    EXPECT_EQ(gain.fallback().get<double>(), 1.0);
}

TEST(Checked, IsMadeOfContainersFilledAtRunTime) {
    const std::vector<std::string> modes{"mono", "stereo"};
    std::map<std::string, kel::variable_description> rules;
    rules.emplace("mode", kel::describe<std::string>().one_of(modes).fallback(modes[1]));
    rules.emplace("rate", kel::describe<int>().one_of(std::vector<short>{44, 48}).fallback(48));
    kel::checked panel(rules);
    EXPECT_EQ(panel.names(), (std::vector<std::string>{"mode", "rate"}));
    EXPECT_EQ(refusal(panel, "mode", "quad"),
              "mode: \"quad\" is not allowed; allowed is one of \"mono\", \"stereo\".");
    EXPECT_EQ(refusal(panel, "rate", 44), "(stored)");

    const std::vector<std::pair<const char*, kel::typed_description<bool>>> switches{
        {"a", kel::describe<bool>()}, {"b", kel::describe<bool>()}};
    EXPECT_EQ(kel::checked(switches, kel::guid(1)).names().size(), 2U);
    EXPECT_THROW(kel::describe<int>().one_of(std::vector<double>{0.5}), std::out_of_range);
}

TEST(Checked, AVariableIsChangedInPlaceSoThatItCanBeWatched) {
    kel::checked panel = makePanel();
    panel.set("gain", 1);
    int calls = 0;
    const kel::subscription watching =
        kel::watch(panel["gain"], [&](const kel::value&) { ++calls; });
    panel.set("gain", 2);
    panel.step_by("gain", 1);
    panel["gain"] = 3;
    EXPECT_EQ(calls, 3);
}

TEST(Checked, ItsNamesCanBeStrings) {
    kel::checked panel = makePanel();
    const kel::checked& fixed = panel;
    panel[std::string("gain")] = 1;
    EXPECT_EQ(fixed[std::string_view("gain")].get<int>(), 1);
}

TEST(Checked, ADefaultThatIsWatchedGetsAValueOfItsOwn) {
    kel::checked panel = makePanel();
    std::vector<double> seen;
    const kel::subscription watching = kel::watch(
        panel["gain"], [&](const kel::value& gain) { seen.push_back(gain.get<double>()); });
    EXPECT_TRUE(kel::value(panel).contains("gain"));
    EXPECT_EQ(panel.get<double>("gain"), 0.0);
    panel.set("gain", 2);
    EXPECT_EQ(seen, std::vector<double>{2});
    const kel::checked fixed = panel;
    EXPECT_THROW((void)kel::watch(fixed["angle"], [](kel::value) {}), kel::not_found);
    EXPECT_TRUE(kel::watch(fixed["gain"], [](kel::value) {}));
    EXPECT_TRUE(kel::watch_tree(panel["mode"], [](std::string_view, kel::value) {}));
    EXPECT_THROW((void)kel::watch(panel["voices"], [](kel::value) {}), kel::not_found);
}

TEST(Checked, ItsDescriptionCannotBeRemovedByAccident) {
    kel::value panel = makePanel();
    EXPECT_THROW(panel.erase("@desc"), kel::name_error);
    EXPECT_THROW(panel.rename("@desc", "x"), kel::name_error);
    panel["spare"] = "text";
    EXPECT_THROW(panel.rename("spare", "gain"), kel::not_allowed);
    panel.clear();
    EXPECT_FALSE(panel.contains("spare"));
    EXPECT_EQ(panel["gain"].get<int>(), 0);
}

TEST(Checked, AContainerThatIsOnlyADefaultIsNotChanged) {
    kel::ref<MetaKelVarDescriptor> rules = kel::adopt(CreateMetaKelVarDescriptor());
    rules->addVar("default", kel::array({1}).raw());
    kel::value panel = kel::checked({{"list", kel::variable_description(rules)}});
    EXPECT_EQ(panel["list"][0].get<int>(), 1);
    EXPECT_THROW(panel["list"].push_back(2), kel::not_found);
    EXPECT_THROW(panel["list"][0] = 9, kel::not_found);
    EXPECT_THROW(panel["list"][0].assign(9), kel::not_found);
    EXPECT_EQ(panel["list"].size(), 1U);
}

TEST(Checked, WithoutAStepEveryNumberIsReached) {
    kel::checked panel(
        {{"x", kel::describe<double>().range(0, 1).fallback(0)},
         {"y", kel::describe<double>().range(0, 10).fallback(0).interpolated(false)}});
    panel.set_normalised("x", 0.123);
    EXPECT_EQ(panel.get<double>("x"), 0.123);
    panel.set_normalised("y", 0.123);
    EXPECT_EQ(panel.get<double>("y"), 1.0);
}

TEST(Checked, ShowsValuesWithTheirUnits) {
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

TEST(Checked, ListsItsNames) {
    EXPECT_EQ(makePanel().names(),
              (std::vector<std::string>{"angle", "free", "gain", "mode", "voices"}));
}

TEST(Checked, WrongDescriptionsAreRefused) {
    EXPECT_THROW(kel::describe<int>().range(2, 1), kel::error);
    EXPECT_THROW(kel::describe<double>().range(0, std::nan("")), kel::error);
    EXPECT_THROW(kel::describe<double>().step(0), kel::error);
    EXPECT_THROW(kel::checked({{"a", kel::describe<int>().range(1, 2).fallback(3)}}),
                 kel::not_allowed);
    EXPECT_THROW(kel::checked({{"a\"b", kel::describe<int>()}}), kel::name_error);
    EXPECT_THROW(kel::checked({{"@a", kel::describe<int>()}}), kel::name_error);
}

TEST(Checked, OneDescriptionServesManyStructs) {
    const auto gain = kel::describe<double>().range(0, 1).fallback(0.5);
    kel::checked a({{"gain", gain}});
    kel::checked b({{"gain", gain}, {"other", gain}});
    a.set("gain", 1);
    EXPECT_EQ(b.get<double>("gain"), 0.5);
}

TEST(Checked, IsMadeOfAValueThatExists) {
    const kel::value panel = makePanel();
    kel::checked again(panel);
    again.set("gain", 1);
    EXPECT_EQ(panel["gain"].get<double>(), 1.0);
    EXPECT_THROW(kel::checked(kel::object()), kel::type_error);
    EXPECT_THROW(kel::checked(kel::value()), kel::type_error);
}

} // namespace
