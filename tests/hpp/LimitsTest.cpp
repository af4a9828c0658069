// What load and reader accept of a file.
#include "IoSupport.h"

using namespace io_test;

namespace {

/// Saves an array of a struct whose inner array contains the struct.
fs::path saved_ring(const Folder& folder) {
    kel::value part = kel::object({{"name", "p"}, {"up", kel::array({1})}});
    part["up"].push_back(part);
    kel::save(kel::object({{"parts", kel::array({0, part})}}), folder / "ring.kelb");
    kel::cut_rings(part);
    return folder / "ring.kelb";
}

TEST(Limits, RefuseAFileWithMoreBytes) {
    const Folder folder;
    const fs::path file = folder / "a.kel";
    put(file, "{ a = 1 }");
    EXPECT_EQ(kel::load(file, kel::limits().bytes(9)), kel::object({{"a", 1}}));
    const auto few = kel::limits().bytes(8);
    const std::string refused = file.string() + ": more than 8 bytes are refused";
    EXPECT_EQ(said([&] { kel::load(file, few); }), refused);
    EXPECT_EQ(said([&] { kel::load_or(file, nullptr, few); }), refused);
    EXPECT_EQ(said([&] { kel::load_struct(file, few); }), refused);
    EXPECT_EQ(said([&] { kel::load_struct_or(file, kel::object(), few); }), refused);
    EXPECT_EQ(said([&] { kel::reader input(file, few); }), refused);
    kel::value settings = kel::object({{"a", 0}});
    EXPECT_EQ(said([&] { (void)kel::load_into(settings, file, few); }), refused);
    EXPECT_EQ(said([&] { (void)kel::load_into_if_exists(settings, file, few); }), refused);
    EXPECT_EQ(settings["a"].get<int>(), 0);
    EXPECT_THROW(kel::load(file, few), kel::malformed);
    EXPECT_EQ(said([&] { kel::reader::from_memory("[ 1 2 3 ]", few); }),
              "more than 8 bytes are refused");
    EXPECT_EQ(kel::load_struct_or(folder / "none", kel::object(), few), kel::object());
}

TEST(Limits, AcceptOneFormat) {
    const Folder folder;
    kel::save(5, folder / "a.kelb");
    EXPECT_EQ(kel::load(folder / "a.kelb", kel::limits(kel::format::binary).bytes(99)).get<int>(),
              5);
    EXPECT_THROW(kel::load(folder / "a.kelb", kel::limits(kel::format::text)), kel::malformed);
}

TEST(Limits, RefuseAValueThatContainsItselfWithItsPath) {
    const Folder folder;
    const fs::path file = saved_ring(folder);
    const auto strict = kel::limits().rings(kel::rings::refuse);
    const std::string refused = file.string() + ": parts[1].up[1]: contains itself";
    EXPECT_EQ(said([&] { kel::load(file, strict); }), refused);
    EXPECT_EQ(said([&] { kel::load_struct(file, strict); }), refused);
    kel::value root;
    kel::reader input(file, strict);
    EXPECT_THROW(input.next(root), kel::malformed);
    EXPECT_FALSE(root);
    EXPECT_EQ(said([&] { input.next(root); }),
              file.string() + ": cannot be read on after a failure");
    kel::value settings = kel::object({{"parts", kel::array()}});
    EXPECT_EQ(said([&] { (void)kel::load_into(settings, file, strict); }), refused);
    EXPECT_EQ(settings, kel::object({{"parts", kel::array()}}));
    const kel::value shared = kel::array({1});
    kel::save(kel::array({shared, shared}), folder / "shared.kelb");
    EXPECT_EQ(kel::load(folder / "shared.kelb", strict).size(), 2U) << "no ring";
}

TEST(Limits, CutAValueThatContainsItself) {
    const Folder folder;
    const fs::path file = saved_ring(folder);
    const kel::value whole = kel::load_struct(file, kel::limits().rings(kel::rings::cut));
    EXPECT_FALSE(kel::has_ring(whole));
    EXPECT_EQ(whole.at_path("parts[1].up").size(), 1U);
    for (const kel::value& each : kel::reader(file, kel::limits().rings(kel::rings::cut))) {
        EXPECT_EQ(each, whole);
    }
    kel::value settings = kel::object({{"parts", kel::array()}});
    EXPECT_TRUE(kel::load_into(settings, file, kel::limits().rings(kel::rings::cut)).empty());
    EXPECT_EQ(settings, whole) << "what is taken over has no rings either";
}

TEST(Limits, AreNoneUnlessTheyAreGiven) {
    const Folder folder;
    const kel::value whole = kel::load(saved_ring(folder));
    EXPECT_EQ(kel::cut_rings(whole), 1U);
    EXPECT_EQ(kel::limits().format(), kel::format::automatic);
    EXPECT_EQ(kel::limits().most_bytes(), UINTMAX_MAX);
    EXPECT_EQ(kel::limits().what_rings(), kel::rings::keep);
    EXPECT_EQ(kel::limits().most_values(), UINTMAX_MAX);
    EXPECT_EQ(kel::limits().most_depth(), UINTMAX_MAX);
    EXPECT_FALSE(kel::limits().only_plain());
}

/// Returns what reading a text within limits says, or nothing if it is accepted.
std::string refused(const std::string& text, const kel::limits& allowed) {
    kel::value root;
    try {
        kel::reader::from_memory(text, allowed).next(root);
    } catch (const kel::malformed& failure) {
        return failure.what();
    }
    return {};
}

/// Returns a text of arrays each of which holds the one before twice.
std::string text_that_shares(int count) {
    const auto identity = [](int i) {
        char digits[40];
        std::snprintf(digits, sizeof digits, "00000000-0000-0000-0000-%012d", i);
        return std::string(digits);
    };
    std::string text = "{ a0 = " + identity(0) + " = [ 1 ]\n";
    for (int i = 1; i <= count; ++i) {
        text += "a" + std::to_string(i) + " = " + identity(i) + " = [ REF " + identity(i - 1) +
                " REF " + identity(i - 1) + " ]\n";
    }
    return text + "}";
}

TEST(Limits, CountValuesOnceForEachPlace) {
    const std::string text = "{ a = 1 b = [ 2 3 ] c = null }"; // five values
    EXPECT_EQ(refused(text, kel::limits().values(5)), "");
    EXPECT_EQ(refused(text, kel::limits().values(4)), "more than 4 values are refused");
    EXPECT_EQ(refused(text, kel::limits().values(2)), "b: more than 2 values are refused");
    EXPECT_EQ(refused("7", kel::limits().values(1)), "");
    EXPECT_EQ(refused("7", kel::limits().values(0)), "more than 0 values are refused");
    EXPECT_EQ(refused("[]", kel::limits().values(0)), "more than 0 values are refused");
    EXPECT_EQ(refused("null", kel::limits::strangers()), "");
    // a0 has 2 values, a1 has 5, and a2 has 11: with the root 19.
    EXPECT_EQ(refused(text_that_shares(2), kel::limits().values(19)), "");
    EXPECT_EQ(refused(text_that_shares(2), kel::limits().values(18)),
              "more than 18 values are refused");
    EXPECT_EQ(refused(text_that_shares(2), kel::limits().values(10)),
              "a2: more than 10 values are refused");
}

TEST(Limits, CountLongTextsAndNamesOnceForEachPlace) {
    const std::string longer(1000, 'x');
    EXPECT_EQ(refused("[ \"" + longer + "\" ]", kel::limits().values(12)), "");
    EXPECT_EQ(refused("[ \"" + longer + "\" ]", kel::limits().values(11)),
              "more than 11 values are refused");
    EXPECT_EQ(refused("{ " + longer + " = 1 }", kel::limits().values(12)), "");
    EXPECT_NE(refused("{ " + longer + " = 1 }", kel::limits().values(11)), "");
    const std::string identity = "00000000-0000-0000-0000-000000000001";
    const std::string shared =
        "[ " + identity + " = \"" + longer + "\" REF " + identity + " REF " + identity + " ]";
    EXPECT_EQ(refused(shared, kel::limits().values(34)), "");
    EXPECT_NE(refused(shared, kel::limits().values(33)), "");
    const Folder folder;
    kel::save(kel::bytes(1000), folder / "block.kelb");
    EXPECT_EQ(kel::load(folder / "block.kelb", kel::limits().values(11)).kind(), kel::kind::block);
    EXPECT_THROW(kel::load(folder / "block.kelb", kel::limits().values(10)), kel::malformed);
}

TEST(Limits, CountContainersInsideEachOther) {
    const auto nested = [](std::size_t n) { return std::string(n, '[') + std::string(n, ']'); };
    EXPECT_EQ(refused("7", kel::limits().depth(0)), "");
    EXPECT_EQ(refused("[]", kel::limits().depth(0)),
              "more than 0 containers inside each other are refused");
    EXPECT_EQ(refused("{ a = [ 1 [ 2 ] ] }", kel::limits().depth(3)), "");
    EXPECT_EQ(refused("{ a = [ 1 [ 2 ] ] }", kel::limits().depth(2)),
              "a[1]: more than 2 containers inside each other are refused");
    EXPECT_EQ(refused(nested(100), kel::limits::strangers()), "");
    EXPECT_NE(refused(nested(101), kel::limits::strangers()), "");
    // The array of the depth two is found again inside another one.
    EXPECT_EQ(refused(text_that_shares(1), kel::limits().depth(3)), "");
    EXPECT_EQ(refused(text_that_shares(2), kel::limits().depth(3)),
              "a2[0]: more than 3 containers inside each other are refused");
    EXPECT_EQ(refused(nested(100'000), kel::limits().depth(100'000)), "") << "without recursion";
}

TEST(Limits, ShowTheReasonAfterALongPath) {
    const std::string nested = std::string(101, '[') + std::string(101, ']');
    std::string path;
    for (int i = 0; i < 100; ++i) {
        path += "[0]";
    }
    EXPECT_EQ(refused(nested, kel::limits::strangers()),
              kel::printable(path, 100) +
                  ": more than 100 containers inside each other are refused");
}

TEST(Limits, FindEveryRingTooLarge) {
    const Folder folder;
    const fs::path file = saved_ring(folder);
    const std::string ring = file.string() + ": parts[1].up[1]: contains itself";
    EXPECT_EQ(said([&] { kel::load(file, kel::limits().values(UINTMAX_MAX - 1)); }), ring);
    EXPECT_EQ(said([&] { kel::load(file, kel::limits().depth(1000)); }), ring);
    EXPECT_EQ(kel::load(file, kel::limits().depth(4).rings(kel::rings::cut)).size(), 1U);
}

TEST(Limits, HaveRoomForSoManyStructsOfRules) {
    const std::string long_name(150, 'n');
    const std::vector<kel::described> rules = {
        {long_name, kel::describe<double>()},
        {"code", kel::describe<std::string>().longest(100)},
        {"mode", kel::describe<std::string>().one_of({"a", std::string(300, 'b')})},
        {"note", kel::describe<std::string>()}};
    const kel::limits none = kel::limits().values(1).bytes(50); // the array around them
    kel::value record = kel::object({{long_name, -2147483640.123456},
                                     {"code", std::string(100, 'x')},
                                     {"mode", std::string(300, 'b')},
                                     {"note", std::string(200, 'x')}});
    kel::value all = kel::array();
    for (int i = 0; i < 50; ++i) {
        for (int j = 0; j < 4; ++j) { // characters of one byte and of four
            std::string wide;
            for (int k = 0; k < 50 * j; ++k) {
                wide += "\xF0\x9F\x8E\xB5";
            }
            record["note"] = wide;
        }
        all.push_back(record.copy());
    }
    const kel::limits allowed = none.room_for(50, rules);
    EXPECT_EQ(kel::from_text(kel::to_text(all, allowed), allowed).size(), 50U);
    EXPECT_EQ(kel::from_binary(kel::to_binary(all, allowed), allowed), all);
    EXPECT_EQ(allowed.most_values(), 1U + 50 * (1 + (1 + 1) + (1 + 4) + (1 + 3 * 4) + (1 + 8)));
    EXPECT_THROW(kel::to_text(all, none.room_for(25, rules)), kel::malformed);
    EXPECT_EQ(kel::limits().room_for(2, rules).most_values(), UINTMAX_MAX);
    EXPECT_EQ(none.room_for(UINTMAX_MAX, rules).most_bytes(), UINTMAX_MAX);
}

TEST(Limits, RefuseCheckedStructs) {
    const kel::checked panel({{"gain", kel::describe<int>().range(0, 9)}});
    const std::string text = kel::to_text(kel::object({{"panel", panel}}));
    EXPECT_EQ(refused(text, kel::limits()), "");
    EXPECT_EQ(refused(text, kel::limits().plain()), "panel: a checked struct is refused");
    EXPECT_EQ(refused(kel::to_text(panel), kel::limits().plain()), "a checked struct is refused");
    EXPECT_EQ(refused(kel::to_text(panel.values()), kel::limits().plain()), "");
}

TEST(Limits, OfStrangersRefuseAShortTextThatUnfolds) {
    const Folder folder;
    const std::string text = text_that_shares(29);
    put(folder / "a.kel", text);
    ASSERT_LT(text.size(), 3'900U);
    EXPECT_EQ(said([&] { kel::load_struct(folder / "a.kel", kel::limits::strangers()); }),
              (folder / "a.kel").string() + ": more than 1000000 values are refused");
    const kel::limits strangers = kel::limits::strangers();
    EXPECT_EQ(strangers.most_bytes(), 16'000'000U);
    EXPECT_EQ(strangers.what_rings(), kel::rings::refuse);
    EXPECT_TRUE(strangers.only_plain());
}

} // namespace
