// Checked structs.
#include "CheckedSupport.h"

#include <list>
#include <map>

using namespace checked_test;

namespace {

template <class T> constexpr bool is_taken = std::is_convertible_v<T, kel::checked>;
static_assert(is_taken<std::vector<kel::described>>);
static_assert(is_taken<std::map<std::string, kel::variable_description>>);
static_assert(is_taken<std::vector<std::pair<const char*, decltype(kel::describe<int>())>>>);
static_assert(!is_taken<std::string> && !is_taken<std::string_view>);
static_assert(!is_taken<const char (&)[4]> && !is_taken<std::vector<int>>);
static_assert(!is_taken<std::vector<std::string>> && !is_taken<std::map<std::string, int>>);

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
    EXPECT_EQ(refusal(panel, "gain", 9.0), "gain: 9 is not allowed; allowed is from -60 to 6 dB.");
    EXPECT_EQ(
        refusal(panel, "mode", "quad"),
        "mode: \"quad\" is not allowed; allowed is one of \"mono\", \"stereo\", \"surround\".");
    EXPECT_EQ(refusal(panel, "voices", "7"),
              "voices: wanted an int, found a string; allowed is from 1 to 16.");
    EXPECT_EQ(refusal(panel, "voices", 7.5),
              "voices: 7.5 is not a whole number; allowed is from 1 to 16.");
    EXPECT_EQ(refusal(panel, "voices", nullptr),
              "voices: wanted an int, found null; allowed is from 1 to 16.");
    EXPECT_EQ(refusal(panel, "gain", std::nan("")),
              "gain: nan is not allowed; allowed is from -60 to 6 dB.");
    EXPECT_EQ(refusal(panel, "voices", 3e9),
              "voices: 3000000000 is too large; allowed is from 1 to 16.");
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
    EXPECT_EQ(panel.try_set("count", 5'000'000'000).message(), "count: 5000000000 is too large.");
    EXPECT_THROW(panel["count"] = 5'000'000'000, kel::not_allowed);
    EXPECT_THROW(panel["note"] = 5'000'000'000, std::out_of_range) << "not described";
    EXPECT_THROW(panel.set("size", INT64_MAX), std::out_of_range);
}

TEST(Checked, CanBeAskedWithoutStoring) {
    const kel::checked panel({{"size", kel::describe<int>().range(0, 9).fallback(1)},
                              {"gain", kel::describe<double>().range(0, 0.06)}});
    EXPECT_EQ(panel.why_not("size", 5), "");
    EXPECT_EQ(panel.why_not("size", 10), "size: 10 is not allowed; allowed is from 0 to 9.");
    EXPECT_EQ(panel.why_not("size", 5'000'000'000),
              "size: 5000000000 is too large; allowed is from 0 to 9.");
    EXPECT_EQ(panel.why_not("size", "5"),
              "size: wanted an int, found a string; allowed is from 0 to 9.");
    EXPECT_EQ(panel.why_not("colour", 5), "colour: no such variable.");
    EXPECT_EQ(panel.why_not("gain", 0.0600000001), "") << "the end is stored instead";
    EXPECT_TRUE(panel.is_default("size"));
    EXPECT_FALSE(panel.find("gain"));
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

TEST(Checked, ListsItsNames) {
    EXPECT_EQ(makePanel().names(),
              (std::vector<std::string>{"angle", "free", "gain", "mode", "voices"}));
}

TEST(Checked, IsMadeOfAValueThatExists) {
    const kel::value panel = makePanel();
    kel::checked again(panel);
    again.set("gain", 1);
    EXPECT_EQ(panel["gain"].get<double>(), 1.0);
    EXPECT_THROW((void)kel::checked(kel::object()), kel::type_error);
    EXPECT_THROW((void)kel::checked(kel::value()), kel::type_error);
}

TEST(Checked, HasTheLookupsOfAValue) {
    kel::checked panel = makePanel();
    panel.set("voices", 3);
    EXPECT_TRUE(panel.contains("voices"));
    EXPECT_FALSE(panel.contains("gain")) << "a default is not stored";
    EXPECT_EQ(panel.find("gain"), 0.0);
    EXPECT_FALSE(panel.find("gian"));
    EXPECT_TRUE(panel.describes("gain"));
    EXPECT_FALSE(panel.describes("gian"));
    std::string names;
    for (const auto& [name, content] : panel.items()) {
        names += name + ' ';
    }
    EXPECT_EQ(names, "@desc voices ");
}

TEST(Checked, IsMadeFromAnyTableWithNamesAndRules) {
    struct control {
        const char* name;
        kel::variable_description rules;
        int column;
    };
    const control table[] = {{"volume", kel::describe<int>().fallback(7), 1},
                             {"mute", kel::describe<bool>().fallback(false), 2}};
    struct typed {
        std::string_view name;
        int row;
        kel::typed_description<int> rules;
    };
    const kel::checked from_array(table);
    EXPECT_EQ(from_array.names(), (std::vector<std::string>{"mute", "volume"}));
    EXPECT_EQ(from_array.get<int>("volume"), 7);
    const std::list<typed> list = {{"x", 1, kel::describe<int>().fallback(3)}};
    EXPECT_EQ(kel::checked(list).get<int>("x"), 3);
    const std::vector<std::pair<std::string, kel::variable_description>> pairs = {
        {"y", kel::describe<int>().fallback(4)}};
    EXPECT_EQ(kel::checked(pairs).get<int>("y"), 4);
    const std::vector<typed> twice = {list.front(), list.front()};
    EXPECT_EQ(kel::checked(twice).names().size(), 1U) << "the last of two names";
    const std::vector<typed> unnamed = {{"", 1, kel::describe<int>()}};
    EXPECT_THROW(kel::checked{unnamed}, kel::name_error);
}

} // namespace
