// Texts that anybody can have written, in messages.
#include <kel/kel.hpp>

#include <gtest/gtest.h>
#include <sstream>

namespace {

TEST(Printable, EscapesWhatControlsATerminal) {
    EXPECT_EQ(kel::printable("plain \\ text"), "plain \\ text");
    EXPECT_EQ(kel::printable("\x1b[31m\r\n\t\x7f"), "\\u001b[31m\\u000d\\u000a\\u0009\\u007f");
    EXPECT_EQ(kel::printable(std::string_view("a\0b", 3)), "a\\u0000b");
    EXPECT_EQ(kel::printable("\xc2\x9b"), "\\u009b") << "a control of one byte in Latin-1";
    EXPECT_EQ(kel::printable("\xe2\x80\xae"), "\\u202e") << "writes from right to left";
    EXPECT_EQ(kel::printable("\xd8\x9c"), "\\u061c") << "marks an Arabic letter";
    EXPECT_EQ(kel::printable("\xef\xbb\xbf"), "\\ufeff");
}

TEST(Printable, KeepsCharactersAndEscapesOtherBytes) {
    const std::string good = "\xc3\xa4 \xe2\x82\xac \xf0\x9f\x8e\xb5 \xed\x9f\xbf \xf4\x8f\xbf\xbf";
    EXPECT_EQ(kel::printable(good), good);
    EXPECT_EQ(kel::printable("\xff \xc3"), "\\xff \\xc3");
    EXPECT_EQ(kel::printable("\xc0\x80"), "\\xc0\\x80") << "overlong";
    EXPECT_EQ(kel::printable("\xe0\x9f\xbf"), "\\xe0\\x9f\\xbf") << "overlong";
    EXPECT_EQ(kel::printable("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "half of a pair";
    EXPECT_EQ(kel::printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "too large";
}

TEST(Printable, ShowingKeepsSharing) {
    const kel::value plain = kel::array({1, 2});
    kel::value shared = kel::array({plain, "\x1b"});
    const kel::value root = kel::object({{"a", shared}, {"b", shared}, {"c", plain}});
    const kel::value copy = kel::detail::printable_copy(root);
    EXPECT_TRUE(kel::same(copy["a"], copy["b"])) << "one copy for all places";
    EXPECT_TRUE(kel::same(copy["a"][0], plain)) << "none of what is printable";
    EXPECT_TRUE(kel::same(copy["c"], plain));
    EXPECT_EQ(copy["b"][1].get<std::string>(), "\\u001b");
    EXPECT_EQ(root["a"][1].get<std::string>(), "\x1b");
}

TEST(Printable, ContainersOfEveryKindAreShownAsTheyAre) {
    const kel::ref<KEL_IndexList> pairs = kel::adopt(CreateKELIndexList());
    pairs->addPair(kel::value("key\r").raw(), kel::array({1, 2.5}).raw());
    pairs->addPair(kel::value("other").raw(), kel::value("\x1b").raw());
    const kel::ref<KEL_Manager> manager = kel::adopt(CreateKELManager());
    manager->addKel(kel::object({{"deep", "\x1b"}}).raw());
    manager->addKel(kel::value("\r").raw());
    kel::checked panel({{"unset", kel::describe<int>()}, {"mode", kel::describe<std::string>()}});
    panel.set("mode", "\x1b");
    panel.set("unset", 1);
    panel.raw()->clearVar("unset");
    const kel::value root = kel::object(
        {{"pairs", kel::value(pairs)}, {"manager", kel::value(manager)}, {"panel", panel}});
    std::string expected = kel::detail::text_without_end(root);
    for (const auto& [control, escape] : {std::pair("\x1b", "\\u001b"), {"\r", "\\u000d"}}) {
        for (std::size_t at = 0; (at = expected.find(control)) != std::string::npos;) {
            expected.replace(at, 1, escape);
        }
    }
    EXPECT_EQ(kel::shown(root), expected);
    EXPECT_NE(expected.find("unset = NULL"), std::string::npos) << expected;
}

TEST(Printable, CutsLongTextsInTheMiddle) {
    EXPECT_EQ(kel::printable("0123456789", 10), "0123456789");
    EXPECT_EQ(kel::printable("0123456789", 8), "0123...6789");
    EXPECT_EQ(kel::printable("\xe2\x82\xac\xe2\x82\xac\xe2\x82\xac", 8),
              "\xe2\x82\xac...\xe2\x82\xac\xe2\x82\xac")
        << "no character is split";
    EXPECT_EQ(kel::printable("ab", 0), "...");
    EXPECT_EQ(kel::printable(std::string(3000, 'x')).size(), 1003U);
}

TEST(Printable, EveryMessageAboutADocumentIs) {
    kel::checked panel({{"mode", kel::describe<std::string>().one_of({"mono", "stereo"})}});
    const kel::value document = kel::object({{"mode", "\x1b[2J"}, {"\x1b]0;x\a", 1}});
    std::string all;
    std::vector<kel::mismatch> found = panel.merge(document);
    for (const kel::mismatch& each : found) {
        all += each.message + '\n';
    }
    EXPECT_EQ(all,
              "[\"\\u001b]0;x\\u0007\"]: no such variable.\n"
              "mode: \"\\u001b[2J\" is not allowed; allowed is one of \"mono\", \"stereo\".\n");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].path, "[\"\x1b]0;x\a\"]") << "a path leads to the value";
    EXPECT_EQ(panel.try_set_text("mode", "\r").message(),
              "mode: \"\\u000d\" is not allowed; allowed is one of \"mono\", \"stereo\".");
    try {
        document["\x1b]0;x\a"].get<std::string>();
        ADD_FAILURE();
    } catch (const kel::error& failure) {
        EXPECT_STREQ(failure.what(), "[\"\\u001b]0;x\\u0007\"]: wanted a string, found an int.");
        EXPECT_EQ(failure.message_in("\n"),
                  "\\u000a: [\"\\u001b]0;x\\u0007\"]: wanted a string, found an int.");
    }
    EXPECT_EQ(kel::lost_in_text(kel::object({{"\x1b", "\""}})).at(0),
              "[\"\\u001b\"]: text cannot hold a String with a double quote");
    EXPECT_FALSE(panel.try_set("mode", std::string(10'000, 'x')));
    EXPECT_LT(panel.try_set("mode", std::string(10'000, 'x')).message().size(), 300U);
}

TEST(Printable, AShownValueIsOneThatNobodyHasForged) {
    const kel::value document = kel::object({{"a", "x\ny = 1"},
                                             {"b\nc", "\x1b[2J"},
                                             {"null\r", nullptr},
                                             {"tab\t", kel::array({"\t"})}});
    std::ostringstream out;
    out << document;
    EXPECT_EQ(out.str(), "{\n"
                         "\ta = \"x\\u000ay = 1\"\n"
                         "\t\"b\\u000ac\" = \"\\u001b[2J\"\n"
                         "\t\"null\\u000d\" = NULL\n"
                         "\t\"tab\\u0009\" = [\n"
                         "\t\t\"\\u0009\"\n"
                         "\t]\n"
                         "}");
    EXPECT_EQ(document["a"].get<std::string>(), "x\ny = 1") << "the value remains";
    EXPECT_EQ(kel::from_text(kel::to_text(document)), document) << "what is stored is exact";
    EXPECT_EQ(kel::shown("\xff"), "\"\\xff\"");
    EXPECT_EQ(kel::shown("a\"b \xc3\xa4"), "\"a\"b \xc3\xa4\"");
}

TEST(Printable, NamesThatWouldBecomeEqualRemainTwo) {
    const kel::value document = kel::object({{"\x1b", 1}, {"\\u001b", 2}});
    EXPECT_EQ(kel::shown(document), "{\n\t\"\\u001b\" = 2\n\t\"\\u001b?\" = 1\n}");
    const kel::value more = kel::object({{"\r\r", 1}, {"\\u000d\r", 2}, {"\r\\u000d", 3}});
    EXPECT_EQ(kel::shown(more), "{\n"
                                "\t\"\\u000d\\u000d\" = 1\n"
                                "\t\"\\u000d\\u000d?\" = 3\n"
                                "\t\"\\u000d\\u000d?2\" = 2\n"
                                "}");
}

TEST(Printable, TheDescriptionOfACheckedStructIsShownSafelyToo) {
    kel::checked panel({{"a\x1b", kel::describe<double>().unit("\x1b[2J").fallback(1)}});
    panel.set("a\x1b", 2);
    const std::string shown = kel::shown(panel);
    EXPECT_EQ(shown.find('\x1b'), std::string::npos);
    EXPECT_NE(shown.find("a\\u001b\" = 2.0"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\\u001b[2J"), std::string::npos) << shown;
    EXPECT_EQ(panel.get<double>("a\x1b"), 2.0);
}

TEST(Printable, WhatADescriptionOrANameGivesIsToo) {
    const kel::checked panel({{"x", kel::describe<int>().range(0, 1).unit("\x1b[2J")}});
    EXPECT_EQ(panel.why_not("x", 5), "x: 5 is not allowed; allowed is from 0 to 1\\u001b[2J.");
    EXPECT_EQ(panel.why_not("x", std::int64_t{5'000'000'000}),
              "x: 5000000000 is too large; allowed is from 0 to 1\\u001b[2J.");
    EXPECT_EQ(panel.why_not("a\x1b", 1), "[\"a\\u001b\"]: no such variable.");
    EXPECT_EQ(panel.allowed_text("x"), "from 0 to 1\\u001b[2J");
    EXPECT_EQ(panel["x"].allowed_text(), "from 0 to 1\\u001b[2J");
    kel::checked odd({{"\x1b", kel::describe<int>().range(0, 1)}});
    try {
        odd.set_normalised("\x1b", std::nan(""));
        ADD_FAILURE();
    } catch (const std::out_of_range& failure) {
        EXPECT_STREQ(failure.what(), "[\"\\u001b\"]: a place between two ends is a number.");
    }
}

} // namespace
