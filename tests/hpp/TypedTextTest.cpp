// What a person types for a described variable.
#include <kel/kel.hpp>

#include <clocale>
#include <gtest/gtest.h>

namespace {

kel::checked makeUnits() {
    return kel::checked(
        {{"gain", kel::describe<double>().range(-60, 6).unit(" dB")},
         {"free", kel::describe<double>()},
         {"voices", kel::describe<int>().range(1, 16).prefix("x ")},
         {"mode", kel::describe<std::string>().one_of({"mono", "two"}).prefix("in ")},
         {"rate", kel::describe<int>().one_of({44, 48}).unit(" kHz")},
         {"name", kel::describe<std::string>().prefix("Mr ")},
         {"on", kel::describe<bool>().prefix("is ")}});
}

/// Returns what the variable then is, or the refusal.
std::string typed(const char* name, std::string_view text) {
    kel::checked panel = makeUnits();
    const kel::outcome done = panel.try_set_text(name, text);
    return done ? kel::to_text(panel[name]) : done.message();
}

TEST(TypedText, NumbersAreReadAsAWhole) {
    EXPECT_EQ(typed("gain", "-6.5"), "-6.500000");
    EXPECT_EQ(typed("gain", " +5 "), "5.000000");
    EXPECT_EQ(typed("gain", "1e0"), "1.000000");
    EXPECT_EQ(typed("voices", "12"), "12");
    EXPECT_EQ(typed("voices", "12.0"), "12");
    for (const char* wrong : {"", " ", "abc", "12x", "1,5", "1 2", "0x10", "+-1", "--1", "+", "inf",
                              "nan", "1.2.3", "dB"}) {
        EXPECT_EQ(typed("gain", wrong), std::string("gain: \"") + wrong +
                                            "\" is not a number; allowed is from -60 to 6 dB.");
        EXPECT_EQ(typed("free", wrong), std::string("free: \"") + wrong + "\" is not a number.");
    }
    EXPECT_EQ(typed("free", "1e400"), "free: \"1e400\" does not fit a Double.");
}

TEST(TypedText, ARefusalCanBeAFailure) {
    kel::value rack = kel::object({{"a", makeUnits()}});
    rack["a"]["gain"].set_text("-7 dB");
    kel::checked panel = makeUnits();
    panel.set_text("gain", "-7");
    EXPECT_EQ(rack["a"]["gain"].get<double>(), panel.get<double>("gain"));
    for (const auto& store : std::vector<std::function<void()>>{
             [&] { rack["a"]["gain"].set_text("7"); }, [&] { panel.set_text("gain", "7"); }}) {
        EXPECT_THROW(store(), kel::not_allowed);
    }
    EXPECT_EQ(panel.get<double>("gain"), -7);
}

TEST(TypedText, TheDescriptionDecides) {
    EXPECT_EQ(typed("gain", "9"), "gain: 9 is not allowed; allowed is from -60 to 6 dB.");
    EXPECT_EQ(typed("voices", "1.5"),
              "voices: 1.5 is not a whole number; allowed is from 1 to 16.");
    EXPECT_EQ(typed("voices", "5000000000"),
              "voices: 5000000000 is too large; allowed is from 1 to 16.");
    EXPECT_EQ(typed("rate", "45"), "rate: 45 is not allowed; allowed is one of 44, 48 kHz.");
    EXPECT_EQ(typed("pan", "1"), "pan: no such variable.");
}

TEST(TypedText, ChoicesAreTypedAsTheyAreShown) {
    EXPECT_EQ(typed("mode", "two"), "\"two\"");
    EXPECT_EQ(typed("mode", "in two"), "\"two\"");
    EXPECT_EQ(typed("mode", "Two"),
              "mode: \"Two\" is not allowed; allowed is one of \"mono\", \"two\".");
    EXPECT_EQ(typed("rate", "48"), "48");
    EXPECT_EQ(typed("rate", "48 kHz"), "48");
    EXPECT_EQ(typed("rate", "48.0"), "48");
}

TEST(TypedText, BlanksAroundChoicesDoNotCount) {
    EXPECT_EQ(typed("mode", " two\t"), "\"two\"");
    EXPECT_EQ(typed("mode", " in two "), "\"two\"");
    EXPECT_EQ(typed("rate", " 48 kHz "), "48");
    EXPECT_EQ(typed("mode", "t wo"),
              "mode: \"t wo\" is not allowed; allowed is one of \"mono\", \"two\".");
    kel::checked odd({{"x", kel::describe<std::string>().one_of({"a", " a", "  b"})}});
    for (const auto& [text, choice] :
         {std::pair("a", "a"), {" a", " a"}, {"a ", "a"}, {"b", "  b"}}) {
        EXPECT_TRUE(odd.try_set_text("x", text));
        EXPECT_EQ(odd.get<std::string>("x"), choice);
    }
}

TEST(TypedText, WhatIsShownCanBeTyped) {
    EXPECT_EQ(typed("gain", "-6.5 dB"), "-6.500000");
    EXPECT_EQ(typed("gain", "-6.5dB"), "-6.500000");
    EXPECT_EQ(typed("voices", "x 7"), "7");
    EXPECT_EQ(typed("gain", "-6.5 dB dB"),
              "gain: \"-6.5 dB dB\" is not a number; allowed is from -60 to 6 dB.");
}

TEST(TypedText, OtherKinds) {
    EXPECT_EQ(typed("on", " true"), "true");
    EXPECT_EQ(typed("on", "false"), "false");
    for (const char* word : {"true", "on", " yes ", "is on", "TRUE", "On", "yEs", "1", "is 1"}) {
        EXPECT_EQ(typed("on", word), "true");
    }
    for (const char* word : {"false", "off", "no", "is no", "False", "OFF", "No", "0"}) {
        EXPECT_EQ(typed("on", word), "false");
    }
    for (const char* wrong : {"", "2", "01", "onn", "o", "1.0"}) {
        EXPECT_EQ(typed("on", wrong), std::string("on: \"") + wrong +
                                          "\" is not allowed; allowed is true or false, on or off, "
                                          "yes or no, 1 or 0.");
    }
    EXPECT_EQ(typed("name", " Mr X "), "\" Mr X \"") << "free text is taken as it is";
    EXPECT_EQ(typed("name", std::string_view("a\0b", 3)), "name: \"a\\u0000b\" contains a NUL.");
}

TEST(TypedText, NoLocaleChangesIt) {
    const char* old = std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(typed("gain", "-6.5"), "-6.500000");
    EXPECT_EQ(typed("gain", "-6,5"),
              "gain: \"-6,5\" is not a number; allowed is from -60 to 6 dB.");
    if (old != nullptr) {
        std::setlocale(LC_ALL, "C");
    }
}

TEST(TypedText, ANumberBetweenTwoStepsIsTreatedAsBySet) {
    const auto rule = kel::describe<double>().range(0, 10).step(2.5);
    kel::checked panel({{"loose", rule}, {"strict", rule.only_steps()}});
    for (const char* name : {"loose", "strict"}) {
        EXPECT_EQ(panel.try_set_text(name, "3").message(), panel.try_set(name, 3).message());
        EXPECT_EQ(panel.try_set_text(name, "7.5").message(), "") << name;
    }
    EXPECT_EQ(panel.try_set_text("strict", "3").message(),
              "strict: 3 is not allowed; allowed is from 0 to 10 in steps of 2.5.");
    EXPECT_TRUE(panel.try_set_text("loose", "3"));
    EXPECT_EQ(panel.get<double>("loose"), 3.0) << "not moved to a step";
}

TEST(TypedText, AllowedTextOfATruthValueCanBeTyped) {
    kel::checked panel({{"on", kel::describe<bool>()}});
    EXPECT_EQ(panel.allowed_text("on"), "true or false");
    EXPECT_TRUE(panel.try_set_text("on", "true"));
    EXPECT_TRUE(panel.try_set_text("on", "false"));
}

/// Returns what the description makes of a text, or the refusal.
template <class Rules> std::string readBy(const Rules& rules, const char* text) {
    try {
        return kel::shown(rules.read_text(text, "--x"));
    } catch (const kel::not_allowed& failure) {
        EXPECT_EQ(failure.blames(), kel::blame::argument);
        return failure.what();
    }
}

TEST(TypedText, ADescriptionReadsItWithoutAStruct) {
    const auto percent = kel::describe<int>().range(0, 100).unit(" %");
    const int twenty = percent.read_text(" 20 %");
    EXPECT_EQ(twenty, 20);
    EXPECT_EQ(readBy(percent, "200"), "--x: 200 is not allowed; allowed is from 0 to 100 %.");
    EXPECT_EQ(readBy(percent, "12x"), "--x: \"12x\" is not a number; allowed is from 0 to 100 %.");
    EXPECT_EQ(readBy(kel::describe<bool>(), "Yes"), "true");
    EXPECT_EQ(readBy(kel::describe<bool>(), "?"),
              "--x: \"?\" is not allowed; allowed is true or false, on or off, yes or no, 1 or 0.");
    EXPECT_EQ(readBy(kel::describe<std::string>().longest(2), "abc"),
              "--x: a text of 3 characters is not allowed; allowed is any text of at most 2 "
              "characters.");
    EXPECT_EQ(readBy(kel::describe<std::uint8_t>(), "300"),
              "--x: 300 does not fit the described type.");
    EXPECT_EQ(kel::describe<std::uint8_t>().read_text("255"), 255);
    const kel::variable_description rate = kel::describe<double>().one_of({44.1, 48.0});
    const kel::value chosen = rate.read_text("48");
    EXPECT_EQ(chosen, 48.0);
    EXPECT_FALSE(kel::same(chosen, rate.read_text("48"))) << "a new value, as for try_set_text";
    try {
        percent.read_text("-1");
        ADD_FAILURE();
    } catch (const kel::not_allowed& failure) {
        EXPECT_STREQ(failure.what(), "-1 is not allowed; allowed is from 0 to 100 %.");
    }
}

TEST(TypedText, ADescriptionSaysWhyNot) {
    const auto percent = kel::describe<int>().range(0, 100);
    EXPECT_EQ(percent.why_not(50), "");
    EXPECT_EQ(percent.why_not(150, "p"), "p: 150 is not allowed; allowed is from 0 to 100.");
    EXPECT_EQ(percent.why_not(5'000'000'000, "p"),
              "p: 5000000000 is too large; allowed is from 0 to 100.");
    EXPECT_EQ(percent.why_not("a"), "wanted an int, found a string; allowed is from 0 to 100.");
    EXPECT_EQ(percent.why_not(nullptr, "p"),
              "p: wanted an int, found null; allowed is from 0 to 100.");
    EXPECT_EQ(kel::describe<double>().why_not("\x1b", "\x1b"),
              "\\u001b: wanted a number, found a string.");
    EXPECT_EQ(kel::describe<double>().range(0, 1).why_not(1.0000000000000002), "");
}

TEST(TypedText, AnOutcomeCanBePutUnderAPath) {
    kel::checked panel = makeUnits();
    const kel::outcome wrong = panel.try_set("gain", 9);
    EXPECT_EQ(wrong.under("parts[3]").message(),
              "parts[3].gain: 9 is not allowed; allowed is from -60 to 6 dB.");
    EXPECT_EQ(wrong.under("").message(), wrong.message());
    EXPECT_EQ(panel.try_set("odd name", 1).under("parts[3]").message(),
              "parts[3][\"odd name\"]: no such variable.");
    EXPECT_TRUE(panel.try_set("gain", 1).under("parts[3]"));
    EXPECT_NO_THROW(panel.try_set("gain", 1).or_throw());
    for (const kel::blame whose : {kel::blame::argument, kel::blame::content}) {
        try {
            wrong.under("a").or_throw(whose);
            ADD_FAILURE();
        } catch (const kel::not_allowed& failure) {
            EXPECT_EQ(failure.message_in("f.kel"),
                      (whose == kel::blame::content ? "f.kel: a." : "a.") + wrong.message());
        }
    }
}

TEST(TypedText, TypingWhatIsShownChangesNothing) {
    kel::checked panel({{"x", kel::describe<double>().fallback(1.0 / 3).unit(" s")},
                        {"y", kel::describe<double>().range(0, 1).step(0.05)}});
    for (const double number : {0.1 + 0.2, 1.0 / 3, 2.0 / 3, 1e300 / 3, 1e-300 / 3, -1e17 / 3,
                                1.7976931348623157e308, 5e-324, 123456.7891234567}) {
        panel.set("x", number);
        panel.set_text("x", panel.text("x"));
        EXPECT_EQ(panel.get<double>("x"), number) << panel.text("x");
    }
    panel.set("y", 0.15000000000000002);
    EXPECT_EQ(panel.text("y"), "0.15");
    panel.set_text("y", "0.15");
    EXPECT_EQ(panel.get<double>("y"), 0.15000000000000002);
    panel.set("x", 0.1 + 0.2);
    EXPECT_EQ(panel.text("x"), "0.3 s");
    panel.set_text("x", "0.30");
    EXPECT_EQ(panel.get<double>("x"), 0.1 + 0.2);
    panel.set_text("x", "0.4");
    panel.set_text("x", "0.3");
    EXPECT_EQ(panel.get<double>("x"), 0.3) << "a number that was not shown";
    panel.reset("x");
    EXPECT_EQ(panel.text("x"), "0.333333333333333 s");
    panel.set_text("x", panel.text("x"));
    EXPECT_EQ(panel.get<double>("x"), 1.0 / 3) << "the default";
}

} // namespace
