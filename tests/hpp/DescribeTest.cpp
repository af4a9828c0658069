// Descriptions of variables.
#include "CheckedSupport.h"

#include <cmath>
#include <limits>
#include <map>

using namespace checked_test;

namespace {

TEST(Describe, ADamagedDescriptionIsAFailureAndNoCrash) {
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

TEST(Describe, NumbersOfADescriptionAreNeverTruncated) {
    EXPECT_THROW((void)kel::describe<int>().range(0, 5000000000), std::out_of_range);
    EXPECT_THROW((void)kel::describe<int>().fallback(4.9), std::out_of_range);
    EXPECT_THROW((void)kel::describe<std::uint8_t>().range(0, 256), std::out_of_range);
    EXPECT_THROW((void)kel::describe<unsigned>().fallback(-1), std::out_of_range);
}

TEST(Describe, AnOperationReturnsAChangedCopyOfADescriptionThatHasAName) {
    const auto level = kel::describe<double>().range(0, 1);
    const kel::checked panel({{"left", level.fallback(0.2)},
                              {"right", level.fallback(0.8).unit(" %")},
                              {"none", level}});
    EXPECT_EQ(panel.get<double>("left"), 0.2);
    EXPECT_EQ(panel.get<double>("right"), 0.8);
    EXPECT_FALSE(panel.find("none"));
    EXPECT_EQ(level.unit(), "");
}

TEST(Describe, ADescriptionIsReadBack) {
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
    EXPECT_FALSE(gain.stepped());
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
    const auto own = kel::describe<int>().prefix("no. ").only_steps().step(2).fallback(4);
    EXPECT_EQ(own.prefix(), "no. ");
    EXPECT_TRUE(own.stepped());
    EXPECT_EQ(own.step(), 2.0);
    EXPECT_EQ(own.fallback().get<int>(), 4);
}

TEST(Describe, ItsNamesCanBeMadeAtRunTime) {
    std::vector<kel::described> all;
    for (int i = 1; i <= 3; ++i) {
        all.push_back({"a name that is not short " + std::to_string(i),
                       kel::describe<int>().range(0, 9).fallback(0)});
    }
    EXPECT_EQ(kel::checked(all).names().at(1), "a name that is not short 2");
}

TEST(Describe, WholeNumbersHaveWholeSteps) {
    EXPECT_THROW((void)kel::describe<int>().range(0, 10).step(0.5), kel::error);
    EXPECT_EQ(kel::describe<int>().step(2).step(), 2.0);
}

TEST(Describe, KeepsWhatADescriptionSaidWhenItWasMade) {
    auto gain = kel::describe<double>().range(-60, 6).fallback(0);
    const kel::variable_description before = gain;
    kel::checked panel({{"gain", gain}});
    gain = std::move(gain).range(-1, 1).step(0.5).fallback(1);
    panel.set("gain", -60);
    EXPECT_EQ(before.least(), -60.0);
    EXPECT_EQ(before.step(), std::nullopt);
    EXPECT_EQ(gain.least(), -1.0);
    EXPECT_EQ(gain.fallback().get<double>(), 1.0);
}

TEST(Describe, EveryOperationLeavesTheDescriptionAsItWas) {
    const auto plain = kel::describe<int>();
    EXPECT_EQ(plain.range(1, 2).least(), 1.0);
    EXPECT_EQ(plain.one_of({1, 2}).choices().size(), 2U);
    EXPECT_EQ(plain.one_of(std::vector<int>{3}).choices().size(), 1U);
    EXPECT_EQ(plain.fallback(5).fallback().get<int>(), 5);
    EXPECT_EQ(plain.step(3).step(), 3.0);
    EXPECT_EQ(plain.unit(" m").unit(), " m");
    EXPECT_EQ(plain.prefix("no. ").prefix(), "no. ");
    EXPECT_TRUE(plain.wraps().wrapped());
    EXPECT_TRUE(plain.only_steps().stepped());
    EXPECT_EQ(static_cast<kel::value>(plain), static_cast<kel::value>(kel::describe<int>()));
}

TEST(Describe, AFloatKeepsTheDoublesThatWereGiven) {
    const auto level = kel::describe<float>().range(0.02, 20).fallback(0.1);
    const kel::checked panel({{"level", level}});
    EXPECT_EQ(panel.text("level"), "0.1");
    EXPECT_EQ(panel.allowed_text("level"), "from 0.02 to 20");
    EXPECT_EQ(panel.get<float>("level"), 0.1F);
}

TEST(Describe, IsMadeOfContainersFilledAtRunTime) {
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
    EXPECT_THROW((void)kel::describe<int>().one_of(std::vector<double>{0.5}), std::out_of_range);
}

TEST(Describe, WrongDescriptionsAreRefused) {
    EXPECT_THROW((void)kel::describe<int>().range(2, 1), kel::error);
    EXPECT_THROW((void)kel::describe<double>().range(0, std::nan("")), kel::error);
    EXPECT_THROW((void)kel::describe<double>().step(0), kel::error);
    EXPECT_THROW(kel::checked({{"a", kel::describe<int>().range(1, 2).fallback(3)}}),
                 kel::not_allowed);
    EXPECT_THROW(kel::checked({{"a\"b", kel::describe<int>()}}), kel::name_error);
    EXPECT_THROW(kel::checked({{"@a", kel::describe<int>()}}), kel::name_error);
}

TEST(Describe, OneDescriptionServesManyStructs) {
    const auto gain = kel::describe<double>().range(0, 1).fallback(0.5);
    kel::checked a({{"gain", gain}});
    kel::checked b({{"gain", gain}, {"other", gain}});
    a.set("gain", 1);
    EXPECT_EQ(b.get<double>("gain"), 0.5);
}

TEST(Describe, StatesWhatIsAllowedInTheWordsOfItsRefusals) {
    kel::checked panel = makePanel();
    for (const char* name : {"gain", "mode", "voices"}) {
        const std::string message = refusal(panel, name, kel::array());
        EXPECT_EQ(message.substr(message.find("; allowed is ") + 13),
                  panel.allowed_text(name) + '.');
    }
    EXPECT_EQ(panel.allowed_text("free"), "true or false");
    EXPECT_EQ(kel::describe<int>().allowed_text(), "any whole number");
    EXPECT_EQ(kel::describe<double>().allowed_text(), "any number");
    EXPECT_EQ(kel::describe<double>().step(0.5).only_steps().allowed_text(),
              "any number in steps of 0.5");
    EXPECT_EQ(kel::describe<std::string>().allowed_text(), "any text");
    EXPECT_EQ(kel::describe<std::string>().one_of({}).allowed_text(), "nothing");
    EXPECT_EQ(kel::variable_description(kel::adopt(CreateMetaKelVarDescriptor())).allowed_text(),
              "any value");
    EXPECT_THROW(panel.allowed_text("gian"), kel::not_found);
}

TEST(Describe, ShowsNumbersPlainlyAndWithTheirUnit) {
    const auto rate = kel::describe<double>().range(0.02, 20).unit(" Hz");
    EXPECT_EQ(rate.allowed_text(), "from 0.02 to 20 Hz");
    EXPECT_EQ(rate.step(0.01).only_steps().allowed_text(),
              "from 0.02 to 20 Hz in steps of 0.01 Hz");
    EXPECT_EQ(kel::describe<int>().range(1, 5).prefix("no. ").allowed_text(), "from 1 to 5");
    EXPECT_EQ(kel::describe<double>().range(-1e5, 1e14).allowed_text(),
              "from -100000 to 100000000000000");
    EXPECT_EQ(kel::describe<double>().range(1e-5, 1e15).allowed_text(), "from 0.00001 to 1e+15");
    EXPECT_EQ(kel::describe<double>().range(-0.0, 1e-9).allowed_text(), "from 0 to 1e-09");
}

TEST(Describe, ANumberAtAStepHasTheDecimalsOfTheSteps) {
    kel::checked panel({{"a", kel::describe<double>().range(-1, 1).step(0.05)},
                        {"b", kel::describe<double>().range(0.125, 9).step(1)},
                        {"third", kel::describe<double>().step(1.0 / 3)},
                        {"free", kel::describe<double>()}});
    const auto text = [&](const char* name, double number) {
        panel.set(name, number);
        return panel.text(name);
    };
    EXPECT_EQ(text("a", 0.05000000000000001), "0.05");
    EXPECT_EQ(text("a", -0.0), "0");
    EXPECT_EQ(text("a", -1e-17), "0");
    EXPECT_EQ(text("a", 0.5), "0.5");
    EXPECT_EQ(text("a", 0.07), "0.07") << "between two steps";
    EXPECT_EQ(text("b", 2.1250000000000004), "2.125");
    EXPECT_EQ(text("third", 2.0 / 3), "0.666666666666667");
    EXPECT_EQ(text("free", 0.1 + 0.2), "0.3");
    kel::value damaged = panel.description("a");
    damaged["min"] = nullptr;
    EXPECT_EQ(panel.text("a"), "0.07");
}

TEST(Describe, OnlyStepsRefusesWhatIsBetweenThem) {
    kel::checked panel(
        {{"gain", kel::describe<double>().range(-60, 6.2).step(0.5).fallback(0).only_steps()},
         {"free", kel::describe<double>().step(0.1).only_steps()},
         {"even", kel::describe<int>().range(0, 10).only_steps().step(2)}});
    EXPECT_EQ(refusal(panel, "gain", 0.3),
              "gain: 0.3 is not allowed; allowed is from -60 to 6.2 in steps of 0.5.");
    EXPECT_EQ(refusal(panel, "gain", -59.5), "(stored)");
    EXPECT_EQ(refusal(panel, "gain", 6.2),
              "gain: 6.2 is not allowed; allowed is from -60 to 6.2 in steps of 0.5.");
    EXPECT_THROW(panel["gain"] = 0.3, kel::not_allowed);
    EXPECT_THROW(panel["gain"].assign(0.3), kel::not_allowed);
    EXPECT_EQ(panel.merge(kel::object({{"gain", 0.3}})).size(), 1U);
    EXPECT_FALSE(panel.try_set_text("gain", "0.3"));
    EXPECT_EQ(panel.get<double>("gain"), -59.5);
    panel.set_normalised("gain", 1);
    EXPECT_EQ(panel.get<double>("gain"), 6.0);

    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(refusal(panel, "free", i * 0.1), "(stored)");
        EXPECT_EQ(refusal(panel, "free", kel::from_text(kel::to_text(i * 0.1))), "(stored)");
    }
    EXPECT_FALSE(panel.try_set("free", std::numeric_limits<double>::infinity()));
    EXPECT_EQ(refusal(panel, "even", 3),
              "even: 3 is not allowed; allowed is from 0 to 10 in steps of 2.");
    EXPECT_THROW(
        kel::checked({{"a", kel::describe<int>().range(0, 9).step(2).only_steps().fallback(3)}}),
        kel::not_allowed);
}

TEST(Describe, EndsAndChoicesAreWhatTheyWereBeforeTheyWereSavedAsText) {
    for (int i = -1000; i <= 1000; ++i) {
        const double number = i * 0.01;
        const kel::value saved = kel::from_text(kel::to_text(kel::object({{"a", number}})));
        const kel::value content = saved["a"];
        for (const auto& rules :
             {kel::describe<double>().range(number, 11), kel::describe<double>().range(-11, number),
              kel::describe<double>().one_of({-20, number, 20})}) {
            kel::checked panel({{"a", rules}});
            EXPECT_TRUE(panel.merge(saved).empty());
            EXPECT_EQ(panel.get<double>("a"), number);
            EXPECT_EQ(refusal(panel, "a", content), "(stored)");
            panel["a"] = content;
            EXPECT_EQ(panel.get<double>("a"), number);
            panel["a"].assign(content);
            EXPECT_EQ(panel.get<double>("a"), number);
            panel.set("a", content);
            EXPECT_EQ(panel.get<double>("a"), number);
        }
    }
    kel::checked thirds({{"least", kel::describe<double>().range(1.0 / 3, 1)},
                         {"choice", kel::describe<double>().one_of({1.0 / 3, 2.0 / 3})}});
    thirds.set("least", 0.333333);
    thirds.set("choice", 0.666667);
    EXPECT_EQ(thirds.get<double>("least"), 1.0 / 3);
    EXPECT_EQ(thirds.get<double>("choice"), 2.0 / 3);
}

TEST(Describe, OtherNumbersNearAnEndRemainWhatTheyAre) {
    kel::checked panel({{"a", kel::describe<double>().range(0, 1)},
                        {"near", kel::describe<double>().one_of({0, 1e-7, 2e-7})},
                        {"whole", kel::describe<int>().range(0, 9)},
                        {"steps", kel::describe<double>().range(0, 1).step(0.3).only_steps()}});
    for (const double number : {1e-7, 0.9999999}) {
        panel.set("a", number);
        EXPECT_EQ(panel.get<double>("a"), number);
    }
    EXPECT_EQ(refusal(panel, "a", -1e-6), "a: -0.000001 is not allowed; allowed is from 0 to 1.");
    EXPECT_FALSE(panel.try_set("a", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(panel.try_set("a", std::numeric_limits<double>::infinity()));
    panel.set("near", 1e-7);
    EXPECT_EQ(panel.get<double>("near"), 1e-7);
    EXPECT_FALSE(panel.try_set("whole", 9.0000001));
    EXPECT_FALSE(panel.try_set("steps", 1.0000001));
    kel::value rules = panel.description("a");
    rules["max"] = "odd";
    EXPECT_FALSE(panel.try_set("a", 1.0000001));
}

TEST(Describe, ARangeAndChoicesExcludeEachOther) {
    const auto level = kel::describe<int>().range(0, 5);
    EXPECT_THROW((void)level.one_of({7}), kel::error);
    EXPECT_THROW((void)kel::describe<double>().one_of({7}).range(0, 5), kel::error);
    EXPECT_EQ(level.range(0, 7).allowed_text(), "from 0 to 7") << "another one replaces it";
}

} // namespace
