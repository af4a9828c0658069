// Described values that were saved as text and loaded again.
#include <kel/kel.hpp>

#include <gtest/gtest.h>

namespace {

kel::value reread(const kel::value& saved) {
    return kel::from_text(kel::to_text(saved));
}

TEST(SavedAsText, ThePresentValuesAreTheSame) {
    const auto level = kel::describe<double>().range(-1000, 1000).fallback(1.0 / 3);
    kel::checked panel(
        {{"level", level}, {"step", level.step(0.01)}, {"free", kel::describe<double>()}});
    std::string reported;
    const kel::subscription watching = kel::watch_values(
        panel, [&](std::string_view path, const kel::value&) { reported += path; });
    for (const double number : {0.1 + 0.2, 2.0 / 3, 1e-7, -1e-7, 0.67, 999.9999999, -123.4567891}) {
        for (const char* name : {"level", "step", "free"}) {
            panel.set(name, number);
        }
        reported.clear();
        EXPECT_TRUE(panel.merge(reread(panel.values())).empty());
        EXPECT_EQ(reported, "") << number;
        EXPECT_EQ(panel.get<double>("free"), number);
    }
}

TEST(SavedAsText, WithResetTheDocumentAloneDecides) {
    const auto level = kel::describe<double>().range(-1000, 1000).fallback(1.0 / 3);
    const kel::checked made({{"level", level}, {"step", level.step(0.01)}});
    for (const double number : {0.67, 0.1 + 0.2, 2.0 / 3, 1.0 / 3, 1e-7, -123.4567891}) {
        const kel::value saved = kel::object({{"level", number}, {"step", number}});
        for (const kel::value& document : {reread(saved), saved}) {
            kel::checked first = made.copy();
            kel::checked second = made.copy();
            for (const char* name : {"level", "step"}) {
                second.set(name, number + 1e-12);
            }
            EXPECT_TRUE(first.merge(document, kel::missing::reset).empty());
            EXPECT_TRUE(second.merge(document, kel::missing::reset).empty());
            EXPECT_EQ(first.values(), second.values()) << number;
        }
    }
}

TEST(SavedAsText, ANumberOfSixDecimalsIsThatNumberAgain) {
    kel::checked panel({{"x", kel::describe<double>()}});
    for (int i = 0; i < 1'000'000; i += 4999) {
        const double number = (i % 3 - 1) * (i % 7 * 1000 + i / 1e6);
        kel::value document = reread(kel::object({{"x", number}}));
        EXPECT_TRUE(panel.merge(document, kel::missing::reset).empty());
        EXPECT_EQ(panel.get<double>("x"), number);
        document["x"] = panel.get<double>("x");
        EXPECT_TRUE(panel.merge(document).empty());
        EXPECT_EQ(panel.get<double>("x"), number) << "is what it is";
    }
    for (const auto& [written, number] : {std::pair("0.1234567", 0.1234567),
                                          {"-12.00000012", -12.00000012},
                                          {"2147483646.1", 2147483646.1},
                                          {"0.000001003", 0.000001003}}) {
        const kel::value read = kel::from_text(std::string("{ x = ") + written + " }");
        EXPECT_TRUE(panel.merge(read).empty());
        EXPECT_EQ(panel.get<double>("x"), number) << written;
    }
}

TEST(SavedAsText, WhatReadingDoesNotMakeRemains) {
    kel::checked panel({{"x", kel::describe<double>()}});
    for (const double number :
         {0.67 + 1e-15, 1e300 / 3, 1e-300, 4e15 / 3, 0.0, -0.0, 2147483648.1, 1.0000000000000002}) {
        EXPECT_TRUE(panel.merge(kel::object({{"x", number}}), kel::missing::reset).empty());
        EXPECT_EQ(panel.get<double>("x"), number);
        EXPECT_EQ(std::signbit(panel.get<double>("x")), std::signbit(number)) << number;
    }
    panel.set("x", kel::from_text("0.67").get<double>());
    EXPECT_NE(panel.get<double>("x"), 0.67) << "what the program stores is not a document";
    EXPECT_EQ(panel.text("x"), "0.67");
}

TEST(SavedAsText, AStateThatCopyGaveIsRestoredExactly) {
    kel::value rack = kel::object({{"1", kel::checked({{"x", kel::describe<double>()}})}});
    const double noisy = kel::from_text("0.67").get<double>();
    rack.at_path("1.x") = noisy;
    const kel::value state = rack.copy();
    rack.at_path("1.x") = 1;
    rack.restore(state);
    EXPECT_EQ(rack.at_path("1.x").get<double>(), noisy);
    kel::checked(rack["1"]).reset();
    rack.restore(state);
    EXPECT_EQ(rack.at_path("1.x").get<double>(), noisy) << "a variable that was removed";
    rack.at_path("1.x") = 1;
    rack.at_path("1.x").restore(state.at_path("1.x"));
    EXPECT_EQ(rack.at_path("1.x").get<double>(), noisy);

    kel::history changes(rack);
    rack.at_path("1.x") = 0.69;
    EXPECT_TRUE(changes.remember());
    EXPECT_TRUE(changes.undo() && changes.redo() && changes.undo());
    EXPECT_EQ(rack.at_path("1.x").get<double>(), noisy);
    EXPECT_FALSE(changes.remember());
}

TEST(SavedAsText, AStateThatWasSavedIsMerged) {
    kel::value rack = kel::object({{"1", kel::checked({{"x", kel::describe<double>()}})}});
    rack.at_path("1.x") = 0.67;
    const kel::value state = reread(rack);
    rack.at_path("1.x") = 1;
    EXPECT_TRUE(rack.merge(state, kel::missing::reset).empty());
    EXPECT_EQ(rack.at_path("1.x").get<double>(), 0.67);
}

TEST(SavedAsText, ADefaultAndAStepAreWhatTheyWere) {
    const auto level = kel::describe<double>().range(-10, 10);
    const kel::checked third({{"level", level.fallback(1.0 / 3)}});
    const kel::checked steps({{"level", level.step(0.01).fallback(5)}});
    kel::checked other = third.copy();
    EXPECT_TRUE(other.merge(reread(third.values())).empty());
    EXPECT_EQ(other.get<double>("level"), 1.0 / 3);
    for (int i = -1000; i <= 1000; ++i) {
        kel::checked saved = steps.copy();
        saved.set_normalised("level", (i + 1000) / 2000.0);
        kel::checked loaded = steps.copy();
        EXPECT_TRUE(loaded.merge(reread(saved.values())).empty());
        EXPECT_EQ(loaded.get<double>("level"), saved.get<double>("level"));
    }
}

TEST(SavedAsText, OnlyStepsAreExactWhereverTheyComeFrom) {
    kel::checked panel({{"gain", kel::describe<double>().range(-60, 6).step(0.1).only_steps()}});
    panel.set("gain", 0.1 + 0.2);
    EXPECT_EQ(panel.get<double>("gain"), 0.3);
    panel["gain"] = -59.900001;
    EXPECT_EQ(panel.get<double>("gain"), -59.9);
    EXPECT_TRUE(panel.merge(kel::object({{"gain", 0.7000000000000001}})).empty());
    EXPECT_EQ(panel.get<double>("gain"), 0.7);
    EXPECT_FALSE(panel.try_set("gain", 0.75));
}

TEST(SavedAsText, OtherNumbersRemainWhatTheyAre) {
    kel::checked panel(
        {{"level", kel::describe<double>().range(-10, 10).step(0.5).fallback(1.0 / 3)}});
    for (const double number :
         {1.0 / 3, 0.333334, 0.3333334, 0.3333332, 0.5000001, 0.500001, 0.25}) {
        EXPECT_TRUE(panel.merge(kel::object({{"level", number}})).empty());
        EXPECT_EQ(panel.get<double>("level"), number);
    }
    panel.set("level", 2.0 / 3);
    panel.set("level", 0.666667);
    EXPECT_EQ(panel.get<double>("level"), 0.666667) << "what the program stores is not a document";
}

TEST(SavedAsText, AnElementIsNotThatBeforeIt) {
    const kel::checked rules({{"level", kel::describe<double>()}});
    const kel::value document = kel::from_text("{ list = [ { level = 0.333333 } ] }");
    kel::value list = kel::array({kel::object({{"level", 1.0 / 3}}), document["list"][0]});
    const kel::taken taken = kel::take(kel::object({{"list", list}}), "list", rules);
    EXPECT_EQ(taken.elements[1]["level"].get<double>(), 0.333333);
    const kel::value levels = kel::from_text("{ list = [ 0.67 ] }");
    EXPECT_EQ(kel::take(levels, "list", kel::describe<double>()).elements[0].get<double>(), 0.67);
}

TEST(SavedAsText, TheDefaultCanBeStored) {
    kel::checked panel(
        {{"level", kel::describe<double>().fallback(1.0 / 3)}, {"none", kel::describe<int>()}});
    EXPECT_TRUE(panel.has_default_value("level"));
    EXPECT_TRUE(panel.has_default_value("none"));
    panel.set("level", 2);
    panel.set("none", 0);
    EXPECT_FALSE(panel.has_default_value("level"));
    EXPECT_FALSE(panel["none"].has_default_value());
    EXPECT_TRUE(panel.merge(kel::from_text("{ level = 0.333333 }")).empty());
    EXPECT_FALSE(panel.is_default("level"));
    EXPECT_TRUE(panel["level"].has_default_value());
    EXPECT_THROW(panel.has_default_value("other"), kel::not_found);
}

/// Leaves digits where the next calls have their variables.
void leave_digits() {
    volatile char digits[8000];
    for (volatile char& each : digits) {
        each = '0';
    }
}

TEST(SavedAsText, NoNumberIsTooLargeToBeCompared) {
    kel::checked panel(
        {{"x", kel::describe<double>().range(0, 1).step(0.1).only_steps()},
         {"steps", kel::describe<double>().step(0.1).only_steps()},
         {"fallback", kel::describe<double>().range(-1e300, 1e300).step(1e-3).fallback(1e300)}});
    panel.set("x", 0.3);
    for (const double number : {1e15, 1e17, 12345678901234567.0, 1e48, 1e49, 1e60, 1e300,
                                std::numeric_limits<double>::max()}) {
        for (const double each : {number, -number}) {
            leave_digits();
            EXPECT_FALSE(panel.try_set("x", each)) << each;
            leave_digits();
            EXPECT_NE(panel.why_not("x", each), "");
            EXPECT_EQ(panel.merge(kel::object({{"x", each}})).size(), 1U) << each;
            EXPECT_EQ(panel.get<double>("x"), 0.3);
        }
    }
    for (const double number : {1e17, 1e49, 1e300}) {
        leave_digits();
        panel.set("steps", number);
        EXPECT_EQ(panel.get<double>("steps"), number);
        EXPECT_TRUE(panel.merge(kel::object({{"fallback", number}})).empty());
        EXPECT_EQ(panel.get<double>("fallback"), number);
    }
}

} // namespace
