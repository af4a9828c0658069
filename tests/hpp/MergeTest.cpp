// Taking over what fits from a document.
#include <kel/kel.hpp>

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

Lines placesAndMessages(const std::vector<kel::mismatch>& found) {
    Lines lines;
    for (const kel::mismatch& each : found) {
        lines.push_back('[' + each.path + "] " + each.message);
    }
    return lines;
}

kel::checked makeChannel() {
    return kel::checked({{"gain", kel::describe<double>().range(-60, 6).fallback(0)},
                         {"mode", kel::describe<std::string>().one_of({"mono", "stereo"})},
                         {"odd name", kel::describe<int>().fallback(7)}});
}

TEST(Merge, TakesOverWhatFitsInPlace) {
    kel::value settings = kel::object({{"volume", 5},
                                       {"rate", 1.5},
                                       {"later", nullptr},
                                       {"tags", kel::array({1})},
                                       {"window", kel::object({{"width", 640}, {"height", 480}})}});
    const kel::value width = settings["window"]["width"];
    const kel::value saved = kel::object({{"volume", 7.0},
                                          {"rate", 2},
                                          {"later", kel::array({1})},
                                          {"tags", kel::array({"a", "b"})},
                                          {"window", kel::object({{"width", 800}})}});
    EXPECT_EQ(placesAndMessages(settings.merge(saved)), Lines());
    EXPECT_EQ(settings["volume"].kind(), kel::kind::integer);
    EXPECT_EQ(settings["rate"].kind(), kel::kind::real);
    EXPECT_EQ(settings.at_path("later"), kel::array({1}));
    EXPECT_FALSE(kel::same(settings["later"], saved["later"])) << "a copy";
    EXPECT_EQ(settings.at_path("tags"), saved.at_path("tags"));
    EXPECT_FALSE(kel::same(settings["tags"][0], saved["tags"][0])) << "a copy";
    EXPECT_EQ(width.get<int>(), 800) << "the same object";
    EXPECT_EQ(settings["window"]["height"].get<int>(), 480);
}

TEST(Merge, ReturnsWhatDoesNotFit) {
    kel::value settings = kel::object(
        {{"volume", 5}, {"name", "x"}, {"window", kel::object({{"size of", kel::object()}})}});
    const kel::value before = settings.copy();
    const kel::value saved = kel::object(
        {{"volume", 7.5},
         {"name", nullptr},
         {"colour", 1},
         {"window", kel::object({{"size of", kel::object({{"x", 1}})}, {"width", 1}})}});
    EXPECT_EQ(
        placesAndMessages(settings.merge(saved)),
        (Lines{"[colour] colour: no such variable.", "[name] name: wanted a string, found null.",
               "[volume] volume: 7.5 is not a whole number.",
               "[window.width] window.width: no such variable.",
               "[window[\"size of\"].x] window[\"size of\"].x: no such variable."}));
    EXPECT_EQ(settings, before);
    EXPECT_EQ(settings["window"].merge(kel::object({{"a", 1}})).size(), 1U);
}

TEST(Merge, NeedsTwoStructs) {
    kel::checked panel = makeChannel();
    const auto message = [&panel](const kel::value& document) -> std::string {
        try {
            return std::to_string(panel.merge(document, kel::missing::reset).size());
        } catch (const kel::type_error& failure) {
            return failure.what();
        }
    };
    panel.set("gain", 3);
    EXPECT_EQ(message(kel::array()), "the document: wanted a struct, found an array.");
    EXPECT_EQ(message(nullptr), "the document: wanted a struct, found null.");
    EXPECT_EQ(panel.get<double>("gain"), 3.0) << "nothing has changed";
    EXPECT_THROW((void)kel::value(1).merge(panel), kel::type_error);
}

TEST(Merge, AMismatchIsAnUnknownNameOrARefusedValue) {
    const kel::value document = kel::object({{"gain", 99}, {"note", "x"}, {"version", 2}});
    const auto unknown = [&document](kel::value target) {
        Lines names;
        for (const kel::mismatch& each : target.merge(document)) {
            names.push_back(each.path + (each.is_unknown ? " unknown" : " refused"));
        }
        return names;
    };
    kel::checked panel = makeChannel();
    panel["note"] = "not described";
    EXPECT_EQ(unknown(panel), (Lines{"gain refused", "note unknown", "version unknown"}));
    EXPECT_EQ(unknown(kel::object({{"gain", "x"}, {"note", 1}})),
              (Lines{"gain refused", "note refused", "version unknown"}));
}

TEST(Merge, ACheckedStructAsksItsDescriptions) {
    kel::checked panel = makeChannel();
    EXPECT_EQ(
        placesAndMessages(panel.merge(
            kel::object({{"gain", -7}, {"mode", "quad"}, {"odd name", "x"}, {"pan", 1}}))),
        (Lines{"[mode] mode: \"quad\" is not allowed; allowed is one of \"mono\", \"stereo\".",
               "[[\"odd name\"]] [\"odd name\"]: wanted an int, found a string.",
               "[pan] pan: no such variable."}));
    EXPECT_EQ(panel.get<double>("gain"), -7.0);

    kel::value mixer = kel::object({{"left", panel}, {"right", makeChannel()}});
    EXPECT_EQ(placesAndMessages(mixer.merge(kel::object(
                  {{"left", kel::object({{"gain", 9}})}, {"right", kel::object({{"gain", 5}})}}))),
              (Lines{"[left.gain] left.gain: 9 is not allowed; allowed is from -60 to 6."}));
    EXPECT_EQ(mixer["right"]["gain"].get<double>(), 5.0);
}

TEST(Merge, TakesOverAnotherCheckedStruct) {
    kel::checked panel = makeChannel();
    panel.set("gain", 3);
    kel::checked other = makeChannel();
    EXPECT_EQ(placesAndMessages(other.merge(panel)), Lines());
    EXPECT_EQ(other.get<double>("gain"), 3.0);
    kel::value plain = kel::object({{"gain", 0}});
    EXPECT_EQ(placesAndMessages(plain.merge(panel)),
              Lines{"[[\"odd name\"]] [\"odd name\"]: no such variable."})
        << "its default counts";
    EXPECT_EQ(plain["gain"].get<int>(), 3);

    other.set("odd name", 8);
    panel["gain"] = nullptr;
    EXPECT_EQ(placesAndMessages(other.merge(panel)), Lines());
    EXPECT_EQ(other.values(), kel::object({{"gain", 0.0}, {"odd name", 7}}))
        << "the defaults of panel";
}

TEST(Merge, WhatAPresetLacksGetsItsDefaultInOneStep) {
    kel::checked panel = makeChannel();
    panel.set("gain", 3);
    panel.set("odd name", 8);
    panel.set("mode", "mono");
    std::vector<double> gains;
    std::vector<int> odds;
    const kel::subscription gain = kel::watch(
        panel["gain"], [&](const kel::value& now) { gains.push_back(now.get<double>()); });
    const kel::subscription odd = kel::watch(
        panel["odd name"], [&](const kel::value& now) { odds.push_back(now.get<int>()); });
    EXPECT_EQ(placesAndMessages(panel.merge(kel::object({{"gain", 4}}), kel::missing::reset)),
              Lines());
    EXPECT_EQ(gains, std::vector<double>{4}) << "not the default before";
    EXPECT_EQ(odds, std::vector<int>{7});
    EXPECT_FALSE(kel::value(panel).contains("mode")) << "it has no default";
    EXPECT_EQ(panel.merge(kel::object({{"gain", 99}}), kel::missing::reset).size(), 1U);
    EXPECT_EQ(panel.get<double>("gain"), 0.0) << "what is refused counts as missing";
    EXPECT_EQ(odds.size(), 1U) << "nothing to change";
}

TEST(Merge, WhatACheckedSourceHasAsDefaultIsDefaultAgain) {
    kel::checked panel = makeChannel();
    const kel::checked state = panel.copy();
    panel.set("gain", 3);
    EXPECT_EQ(placesAndMessages(panel.merge(state, kel::missing::reset)), Lines());
    EXPECT_TRUE(panel.is_default("gain"));
    EXPECT_TRUE(panel.is_default("odd name"));
    const kel::checked other({{"gain", kel::describe<double>().fallback(-6)}});
    EXPECT_EQ(placesAndMessages(panel.merge(other, kel::missing::reset)), Lines());
    EXPECT_EQ(panel.get<double>("gain"), -6.0) << "another default";
}

TEST(Merge, SectionsThatAPresetLacksGetTheirDefaults) {
    kel::checked left = makeChannel();
    kel::checked right = makeChannel();
    left.set("gain", 3);
    right.set("gain", 4);
    kel::value mixer = kel::object({{"left", left},
                                    {"more", kel::object({{"right", right}, {"note", "kept"}})},
                                    {"same", left}});
    mixer["self"] = mixer;
    const kel::value preset = kel::object({{"left", kel::object({{"gain", 5}})}});
    EXPECT_EQ(placesAndMessages(mixer.merge(preset, kel::missing::reset)), Lines());
    EXPECT_EQ(left.get<double>("gain"), 5.0) << "the document has it under another name";
    EXPECT_EQ(right.get<double>("gain"), 0.0);
    EXPECT_EQ(mixer.at_path("more.note"), "kept");
    EXPECT_EQ(placesAndMessages(mixer.merge(kel::object({{"left", 7}}), kel::missing::reset)),
              Lines{"[left] left: wanted a struct, found an int."});
    EXPECT_EQ(left.get<double>("gain"), 0.0);
    mixer.clear();
}

TEST(Merge, ValuesAreAPreset) {
    kel::checked panel = makeChannel();
    panel.set("gain", 3);
    const kel::value preset = panel.values();
    EXPECT_EQ(preset, kel::object({{"gain", 3.0}, {"odd name", 7}})) << "the default too";
    EXPECT_EQ(preset.kind(), kel::kind::structure);
    panel.set("gain", 4);
    panel.set("odd name", 8);
    EXPECT_EQ(preset["gain"].get<double>(), 3.0) << "copies";
    EXPECT_EQ(placesAndMessages(panel.merge(kel::from_text(kel::to_text(preset)))), Lines());
    EXPECT_EQ(panel.values(), preset);
    panel["gain"] = nullptr;
    EXPECT_EQ(panel.values()["gain"].get<double>(), 0.0);
}

TEST(Merge, ValuesOfATreeArePlain) {
    kel::checked panel = makeChannel();
    panel.set("gain", 3);
    panel["note"] = "not described";
    const kel::value list = kel::array({panel, 1});
    const kel::value tree =
        kel::object({{"list", list}, {"again", list}, {"later", nullptr}, {"name", "x"}});
    const kel::value plain = tree.values();
    EXPECT_EQ(plain.at_path("list[0]"), kel::object({{"gain", 3.0}, {"odd name", 7}}));
    EXPECT_EQ(plain["list"][1].get<int>(), 1);
    EXPECT_EQ(plain["name"].get<std::string>(), "x");
    EXPECT_TRUE(plain.contains("later"));
    EXPECT_TRUE(kel::same(plain["list"], plain["again"])) << "sharing remains";
    panel.set("gain", 4);
    EXPECT_EQ(plain.at_path("list[0].gain").get<double>(), 3.0) << "a copy";
    EXPECT_EQ(tree["list"].values(), tree["list"].values());
    EXPECT_EQ(kel::value(7).values(), 7);
    EXPECT_FALSE(kel::value().values());
}

TEST(Merge, EndsInStructsThatContainThemselves) {
    kel::value a = kel::object({{"n", 1}});
    kel::value b = kel::object({{"n", 2}});
    a["self"] = a;
    b["self"] = b;
    EXPECT_EQ(placesAndMessages(a.merge(b)), Lines());
    EXPECT_EQ(a["n"].get<int>(), 2);
    a.clear();
    b.clear();
}

TEST(Merge, NotifiesWhoWatches) {
    kel::value settings = kel::object({{"volume", 5}});
    Lines seen;
    const kel::subscription watching = kel::watch_tree(
        settings, [&](std::string_view path, const kel::value&) { seen.emplace_back(path); });
    EXPECT_TRUE(settings.merge(kel::object({{"volume", 7}})).empty());
    EXPECT_EQ(seen, Lines{"volume"});
}

TEST(Merge, StoredValuesAreWhatWasChosen) {
    kel::checked panel = makeChannel();
    kel::value tree = kel::object({{"panel", panel}, {"list", kel::array({panel})}, {"n", 1}});
    panel.set("gain", 0); // equals the default
    panel["note"] = "not described";
    const kel::value chosen = tree.stored_values();
    EXPECT_EQ(chosen["panel"].get_struct(), kel::object({{"gain", 0.0}}));
    EXPECT_TRUE(kel::same(chosen["panel"], chosen["list"][0])) << "sharing is kept";
    EXPECT_EQ(chosen["n"].get<int>(), 1);
    EXPECT_EQ(panel.stored_values(), tree["panel"].stored_values());
    panel["gain"] = nullptr;
    EXPECT_EQ(panel.stored_values(), kel::object());

    kel::checked later({{"gain", kel::describe<double>().range(-60, 6).fallback(-3)},
                        {"odd name", kel::describe<int>().fallback(8)}});
    panel.set("gain", 1);
    EXPECT_EQ(placesAndMessages(later.merge(panel.stored_values())), Lines());
    EXPECT_EQ(later.get<int>("odd name"), 8) << "the default of the later version";
}

TEST(Merge, WhatIsLentIsNeverTheDefaultOfADescription) {
    kel::checked source(
        kel::from_text("{ @type = 50\n@desc = { @type = 51\n x = { @type = 52\n default = 5 } "
                       "part = { @type = 52\n default = { y = 1 } } } }"));
    kel::value target = kel::object({{"part", kel::object()}});
    const std::vector<kel::mismatch> found = target.merge(source);
    ASSERT_EQ(found.size(), 2U);
    kel::value saved = kel::object({{"part", kel::object()}});
    kel::keep_unknown(saved, found);
    saved["x"].assign(7);
    saved["part"]["y"].assign(7);
    EXPECT_EQ(source.get<int>("x"), 5);
    EXPECT_EQ(source.at_path("part.y").get<int>(), 1);
}

TEST(Merge, WhatIsNotADescriptionDescribesNothing) {
    kel::checked odd(kel::from_text("{ @type = 50\n@desc = { @type = 51\n level = 5 } }"));
    EXPECT_EQ(odd.names(), std::vector<std::string>());
    EXPECT_FALSE(odd.describes("level"));
    EXPECT_TRUE(odd.merge(kel::object()).empty());
    EXPECT_TRUE(odd.merge(kel::object(), kel::missing::reset).empty());
    EXPECT_EQ(odd.merge(kel::object({{"level", 1}})).size(), 1U);
    EXPECT_EQ(odd.mixed(kel::object({{"level", 1}}), kel::object(), 0.5), kel::object());
    EXPECT_EQ(odd.values(), kel::object());
    EXPECT_TRUE(kel::value(kel::object()).merge(odd).empty());
    EXPECT_FALSE(odd.try_set("level", 1));
    EXPECT_EQ(kel::differences(odd, kel::object()).size(), 0U);
    odd.reset();
    EXPECT_EQ(kel::value(odd).size(), 1U);
}

} // namespace
