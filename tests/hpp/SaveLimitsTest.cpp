// Saving within limits refuses what loading within them would refuse.
#include "IoSupport.h"

#include <functional>

using namespace io_test;

namespace {

/// Returns an array of so many arrays inside each other, with itself.
kel::value nested(int depth) {
    kel::value outer = kel::array();
    for (int i = 1; i < depth; ++i) {
        outer = kel::array({outer});
    }
    return outer;
}

TEST(SaveLimits, RefuseWhatLoadingWouldRefuseAndLeaveTheFile) {
    const Folder folder;
    const kel::value numbers = kel::object({{"list", kel::array({1, 2, 3})}});
    const auto strict = [](kel::rings what) { return kel::limits().rings(what); };
    const Loop loop;
    const kel::checked panel({{"gain", kel::describe<int>()}});
    struct {
        kel::value content;
        kel::limits allowed;
        const char* name;
    } const cases[] = {
        {numbers, kel::limits().bytes(20), "a.kel"},
        {numbers, kel::limits().bytes(20), "a.kelb"},
        {numbers, kel::limits().values(4), "a.kel"},
        {numbers, kel::limits().values(4), "a.kelb"},
        {nested(101), kel::limits::strangers(), "a.kel"},
        {nested(101), kel::limits::strangers(), "a.kelb"},
        {loop.array, strict(kel::rings::refuse), "a.kelb"},
        {kel::object({{"panel", panel}}), kel::limits().plain(), "a.kel"},
    };
    for (const auto& each : cases) {
        const fs::path file = folder / each.name;
        kel::save(each.content, file);
        const std::string refused = said([&] { kel::load(file, each.allowed); });
        EXPECT_NE(refused, "(nothing thrown)");
        put(file, "old");
        EXPECT_EQ(said([&] { kel::save(each.content, file, each.allowed); }), refused);
        EXPECT_EQ(said([&] { kel::save_atomically(each.content, file, each.allowed); }), refused);
        EXPECT_THROW(kel::save(each.content, file, each.allowed), kel::malformed);
        EXPECT_EQ(content(file), "old");
        EXPECT_EQ(folder.count(), 1);
        fs::remove(file);
    }
    EXPECT_EQ(numbers.at_path("list").size(), 3U);
    EXPECT_EQ(loop.array.size(), 2U) << "only a document that is read is freed";
}

TEST(SaveLimits, AcceptWhatLoadingAccepts) {
    const Folder folder;
    const kel::value document = kel::object({{"a", kel::array({1, 2.5, "x"})}});
    for (const char* name : {"a.kel", "a.kelb"}) {
        kel::save(document, folder / name, kel::limits::strangers());
        EXPECT_EQ(kel::load(folder / name, kel::limits::strangers()), document);
        kel::save_atomically(nested(100), folder / name, kel::limits::strangers());
        EXPECT_EQ(kel::load(folder / name, kel::limits::strangers()), nested(100));
    }
    const std::uintmax_t size = fs::file_size(folder / "a.kel");
    kel::save(nested(100), folder / "a.kel", kel::limits().bytes(size));
    EXPECT_THROW(kel::save(nested(100), folder / "a.kel", kel::limits().bytes(size - 1)),
                 kel::malformed);
}

TEST(SaveLimits, TakeTheFormatOfTheLimits) {
    const Folder folder;
    kel::save(7, folder / "a.kelb", kel::limits::strangers(kel::format::text));
    EXPECT_EQ(content(folder / "a.kelb"), "7\n");
    const kel::value seven = 7; // binary has its identity
    kel::save_atomically(seven, folder / "a.kel", kel::limits::strangers(kel::format::binary));
    EXPECT_EQ(content(folder / "a.kel"), kel::to_binary(seven));
}

TEST(SaveLimits, HoldForTextsAndBytesInMemory) {
    const kel::value document = kel::array({1, 2, 3});
    const auto few = kel::limits().values(3);
    const std::string refused = "more than 3 values are refused";
    EXPECT_EQ(said([&] { kel::to_text(document, few); }), refused);
    EXPECT_EQ(said([&] { kel::to_binary(document, few); }), refused);
    EXPECT_EQ(said([&] { kel::from_text(kel::to_text(document), few); }), refused);
    EXPECT_EQ(said([&] { kel::from_binary(kel::to_binary(document), few); }), refused);
    const std::string text = kel::to_text(document);
    EXPECT_EQ(kel::to_text(document, kel::limits().bytes(text.size())), text);
    EXPECT_EQ(said([&] { kel::to_text(document, kel::limits().bytes(text.size() - 1)); }),
              said([&] { kel::from_text(text, kel::limits().bytes(text.size() - 1)); }));
    EXPECT_EQ(kel::from_text(text, kel::limits(kel::format::binary)), document)
        << "the name of the function decides";
}

TEST(SaveLimits, ADoubleThatIsRoundedBeyondTextIsLost) {
    EXPECT_EQ(kel::from_text(kel::to_text(2147483647.999999)).get<double>(), 2147483647.999999);
    for (const double sign : {1.0, -1.0}) {
        EXPECT_EQ(kel::lost_in_text(sign * 2147483647.9999995).size(), 1U);
    }
}

} // namespace
