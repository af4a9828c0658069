// Reading and writing use no call stack for depth, and their cost is proportional to it.
#include "support/AllocationFailure.h"
#include "support/SmallStack.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/ChildCursor.h"

#include <algorithm>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace kel::test;

namespace {

constexpr const char* entry = "00000000-0000-0000-0000-000000000001=";

std::string repeated(const std::string& text, int times) {
    std::string out;
    out.reserve(text.size() * static_cast<std::size_t>(times));
    while (times-- > 0) {
        out += text;
    }
    return out;
}

/// Returns a text of the given number of levels without indentation, around the value 7.
std::string nested(const std::string& open, int levels, const std::string& close) {
    return repeated(open, levels).append("7").append(repeated(close, levels));
}

/// Returns the number of containers around the innermost value, on the path of the last children.
int depthOf(const KEL_Impl& root) {
    int depth = 0;
    const KEL_Impl* value = &root;
    while (value->isContainer()) {
        const KEL_Impl* last = nullptr;
        for (kel::ChildCursor cursor(*value); cursor.next();) {
            last = cursor.value;
        }
        value = last;
        ++depth;
    }
    return depth;
}

void readDeep(const std::string& text, int depth) {
    runInSmallStack([&] {
        auto value = read(text);
        EXPECT_EQ(depthOf(*value), depth);
        value.clear();
    });
}

TEST(SerialDepth, AMillionArraysAreReadFromText) {
    readDeep(nested("[", million, "]"), million);
}

TEST(SerialDepth, AMillionStructsAreReadFromText) {
    readDeep(nested("{a=", million, "}"), million);
}

TEST(SerialDepth, AMillionManagersAreReadFromText) {
    readDeep(nested(std::string("(") + entry, million, ")"), million);
}

TEST(SerialDepth, IndexListsAndCheckedStructsAreReadFromText) {
    readDeep(nested("<[1][", million / 4, "]>"), million / 2);
    readDeep(nested("{@type=50 a=", million / 4, "}"), million / 4);
}

TEST(SerialDepth, AMillionLevelsWithIdentitiesAreReadFromText) {
    readDeep(nested(std::string(entry) + "[", million / 4, "]"), million / 4);
}

TEST(SerialDepth, AnErrorAtTheBottomIsReportedAndEverythingFreed) {
    runInSmallStack([] {
        EXPECT_EQ(refusalOf(repeated("[", million) + "?"), syntaxErrorAt(1));
        EXPECT_EQ(endingOf(repeated("{a=[", million / 2)), endAt(1));
    });
}

TEST(SerialDepth, ADeepValueIsWrittenAsText) {
    runInSmallStack([] {
        constexpr int levels = 6000; // the indentation alone takes 36 million characters
        const HeldValue value(nestedMixed(levels));
        const std::string text = textOf(value);
        EXPECT_EQ(depthOf(*read(text)), levels);
    });
}

/// Writes a value as records and reads them back.
void throughBinary(KEL_Impl* (*build)(int), int levels) {
    runInSmallStack([&] {
        HeldValue value(build(levels));
        const std::string records = binaryOf(value);
        value.clear();
        const auto back = readBinary(records);
        EXPECT_EQ(depthOf(*back), levels);
        EXPECT_EQ(binaryOf(back), records);
    });
}

TEST(SerialDepth, AMillionArraysAreWrittenAndReadAsRecords) {
    throughBinary(nestedArrays, million);
}

TEST(SerialDepth, AMillionStructsAreWrittenAndReadAsRecords) {
    throughBinary(nestedStructs, million);
}

TEST(SerialDepth, ARefusalAtTheBottomOfAMillionLevelsFreesTheWriter) {
    runInSmallStack([] {
        HeldValue value = guidOf(JHashCode());
        for (int i = 0; i < million; ++i) {
            value = arrayOf(value);
        }
        EXPECT_EQ(thrownMessage<KELIOException>([&] { binaryOf(value); }),
                  "General KEL exception.");
    });
}

TEST(SerialDepth, RecordsThatAreCutAtTheBottomAreFreed) {
    runInSmallStack([] {
        const std::string records = binaryOf(HeldValue(nestedArrays(million / 4)));
        EXPECT_EQ(thrownMessage<JEOFException>(
                      [&] { readBinary(std::string_view(records).substr(0, records.size() - 1)); }),
                  "BinaryDataInput::JRead32(). EOF reached.");
    });
}

// ---- Cost --------------------------------------------------------------------------------------

/// Returns the processor time that an action takes, in ticks. Other programs do not lengthen it,
/// except on Windows, where the clock goes on while they run.
double costOf(const std::function<void()>& action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start);
}

/// Returns how many times longer action takes for ten times as much input. This is the best of
/// several runs, because a busy machine can lengthen any of them.
double growth(const std::function<void(int)>& action, int much = million / 25, int attempts = 2) {
    double best = 1e9;
    for (int i = 0; i < attempts; ++i) {
        const double small = std::max(1.0, costOf([&] { action(much); }));
        best = std::min(best, costOf([&] { action(10 * much); }) / small);
    }
    return best;
}

TEST(SerialDepth, TheCostOfReadingTextIsLinear) {
    EXPECT_LT(growth([](int levels) { read(nested("[", levels, "]")); }), 40.0);
}

TEST(SerialDepth, TheCostOfRecordsIsLinear) {
    EXPECT_LT(growth([](int levels) {
                  const HeldValue value(nestedArrays(levels));
                  readBinary(binaryOf(value));
              }),
              40.0);
}

/// Returns the given number of different entries of a manager.
std::string entriesOf(int count) {
    std::string entries;
    for (int i = 0; i < count; ++i) {
        char code[JHashCode::guidTextLength + 1];
        JHashCode(static_cast<uint32_t>(i), 1, 2, 3).toGuidText(code);
        entries.append(code).append("=1\n");
    }
    return entries;
}

TEST(SerialDepth, TheCostOfManagersIsLinear) {
    // Each entry of the second half replaces one of the first.
    const auto readTwice = [](int entries) {
        const std::string half = entriesOf(entries);
        EXPECT_EQ(asManager(read("(" + half + half + ")")).size(), entries);
    };
    EXPECT_LT(growth(readTwice, 2000, 5), 40.0);
}

TEST(SerialDepth, TheCostOfManagersWithManyEntriesOfTheZeroIdentityIsLinear) {
    const auto readZeros = [](int entries) {
        const std::string zero = "00000000-0000-0000-0000-000000000000=2\n";
        const std::string text = "(" + entriesOf(entries) + repeated(zero, entries) + ")";
        EXPECT_EQ(asManager(read(text)).size(), entries + 1);
    };
    EXPECT_LT(growth(readZeros, 2000, 5), 40.0);
}

TEST(SerialDepth, NestedManagersTakeMemoryInProportionToTheirText) {
    const std::string open = std::string("(") + entry + "1 00000000-0000-0000-0000-000000000002=";
    const std::string text = nested(open, 10000, ")");
    const AllocationBudget budget(64 * text.size());
    EXPECT_EQ(depthOf(*read(text)), 10000);
}

} // namespace
