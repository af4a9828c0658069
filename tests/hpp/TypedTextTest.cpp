// What a person types for a described variable.
#include <kel/kel.hpp>

#include <clocale>
#include <gtest/gtest.h>

namespace {

kel::checked makePanel() {
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
    kel::checked panel = makePanel();
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

TEST(TypedText, TheDescriptionDecides) {
    EXPECT_EQ(typed("gain", "9"), "gain: 9 is not allowed; allowed is from -60 to 6 dB.");
    EXPECT_EQ(typed("voices", "1.5"),
              "voices: 1.5 is not a whole number of 32 bits; allowed is from 1 to 16.");
    EXPECT_EQ(typed("voices", "5000000000"),
              "voices: 5000000000 is not a whole number of 32 bits; allowed is from 1 to 16.");
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
    for (const char* word : {"true", "on", " yes ", "is on"}) {
        EXPECT_EQ(typed("on", word), "true");
    }
    for (const char* word : {"false", "off", "no", "is no"}) {
        EXPECT_EQ(typed("on", word), "false");
    }
    EXPECT_EQ(typed("on", "On"), "on: \"On\" is neither true nor false.");
    EXPECT_EQ(typed("on", "1"), "on: \"1\" is neither true nor false.");
    EXPECT_EQ(typed("name", " Mr X "), "\" Mr X \"") << "free text is taken as it is";
    EXPECT_EQ(typed("name", std::string_view("a\0b", 3)),
              std::string("name: \"a\0b\" contains a NUL.", 27));
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

} // namespace
