// Keeping what another version of a program has added.
#include "IoSupport.h"

using namespace io_test;

namespace {

kel::value settings() {
    return kel::object(
        {{"version", 2},
         {"colour", "black"},
         {"size", kel::checked({{"width", kel::describe<int>().range(1, 99).fallback(10)}})}});
}

/// Returns what a program saves that has loaded a text and changed nothing.
std::string saved_again(const std::string& text) {
    kel::value present = settings();
    const std::vector<kel::mismatch> found = present.merge(kel::from_text(text));
    kel::value saved = present.stored_values();
    kel::keep_unknown(saved, found);
    return kel::to_text(saved);
}

TEST(KeepUnknown, AddsEachNameToTheStructInWhichItWas) {
    const kel::value saved = kel::from_text(saved_again(
        "{ version = 2 size = { depth = 3 width = 20 \"odd name\" = { x = 1 } } sound = [ 1 { } ] "
        "none = NULL }"));
    EXPECT_EQ(saved,
              kel::from_text("{ version = 2 colour = \"black\" size = { depth = 3 width = 20 "
                             "\"odd name\" = { x = 1 } } sound = [ 1 { } ] none = NULL }"));
    EXPECT_TRUE(saved.contains("none"));
}

TEST(KeepUnknown, KeepsNothingThatIsKnown) {
    EXPECT_EQ(kel::from_text(saved_again("{ version = 1 colour = 7 size = 5 }")),
              kel::from_text("{ version = 1 colour = \"black\" size = { } }"))
        << "refused values";
    kel::value present = settings();
    const auto found = present.merge(kel::from_text("{ sound = 1 size = { depth = 3 } }"));
    kel::value saved = kel::object({{"sound", 2}, {"size", 7}});
    kel::keep_unknown(saved, found);
    EXPECT_EQ(saved, kel::object({{"sound", 2}, {"size", 7}}));
    kel::value empty = kel::object();
    kel::keep_unknown(empty, found);
    EXPECT_EQ(empty, kel::object({{"sound", 1}})) << "the struct around the other one is missing";
}

TEST(KeepUnknown, KeepsWhatAFileHad) {
    const Folder folder;
    const fs::path file = folder / "a.kelb";
    const kel::value shared = kel::array({1, 0.1, "a \"b\""});
    kel::save(kel::object({{"colour", "red"}, {"one", shared}, {"two", shared}}), file);
    kel::value present = settings();
    const auto found = kel::load_into_if_exists(present, file, kel::limits::strangers());
    kel::value saved = present.stored_values();
    kel::keep_unknown(saved, found);
    kel::save_atomically(saved, file, kel::limits::strangers());
    const kel::value again = kel::load(file);
    EXPECT_EQ(again["one"].get_array(), shared);
    EXPECT_TRUE(kel::same(again["one"], again["two"])) << "binary keeps what is shared";
    EXPECT_EQ(again["colour"].get<std::string>(), "red");
}

TEST(KeepUnknown, ARingInTheDocumentIsCut) {
    const Folder folder;
    kel::value ring = kel::object({{"x", 1}});
    ring["self"] = ring;
    kel::save(kel::object({{"ring", ring}}), folder / "a.kelb");
    kel::cut_rings(ring);
    kel::value present = settings();
    const auto found = kel::load_into(present, folder / "a.kelb");
    kel::value saved = present.stored_values();
    kel::keep_unknown(saved, found);
    EXPECT_FALSE(kel::has_ring(saved));
    EXPECT_EQ(saved.at_path("ring.x").get<int>(), 1);
}

TEST(KeepUnknown, LeavesElementsAlone) {
    const kel::value document = kel::from_text("{ parts = [ 7 { name = \"a\" more = 1 } ] }");
    const std::vector<kel::described> rules = {{"name", kel::describe<std::string>()}};
    const kel::taken parts = kel::take(document, "parts", rules);
    ASSERT_EQ(parts.mismatches.size(), 2U);
    kel::value saved = kel::object({{"parts", parts.elements}});
    const kel::value before = saved.copy();
    kel::keep_unknown(saved, parts.mismatches);
    EXPECT_EQ(saved, before);
    EXPECT_FALSE(parts.mismatches[1].unknown);
}

TEST(KeepUnknown, NeedsAStruct) {
    EXPECT_THROW(kel::keep_unknown(kel::array(), {}), kel::type_error);
}

TEST(KeepUnknown, ACheckedStructKeepsItsOwnNames) {
    kel::value target = kel::object();
    const auto found =
        target.merge(kel::from_text("{ \"a\" = 1 \"@note\" = 2 gain = 100 volume = 3 }"));
    ASSERT_EQ(found.size(), 4U);
    kel::checked saved({{"gain", kel::describe<int>().range(0, 9).fallback(5)}});
    kel::keep_unknown(saved, found);
    EXPECT_EQ(saved.get<int>("gain"), 5);
    EXPECT_TRUE(saved.is_default("gain"));
    EXPECT_EQ(saved.get<int>("a"), 1);
    EXPECT_EQ(saved.get<int>("volume"), 3);
    EXPECT_FALSE(saved.contains("@note"));
}

} // namespace
