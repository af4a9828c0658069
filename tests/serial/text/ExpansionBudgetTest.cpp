// The budget for the expansion of definitions, and the reader that spends it.
#include "serial/text/ExpansionBudget.h"

#include "support/AllocationFailure.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;
using kel::ExpansionBudget;

namespace {

constexpr auto nearlyAll =
    static_cast<std::size_t>(ExpansionBudget::initial - ExpansionBudget::useCost);

/// Returns the size of a text that spends the whole budget that a number of bytes adds.
std::size_t allOf(int64_t bytes) {
    return static_cast<std::size_t>(bytes * ExpansionBudget::perByte - ExpansionBudget::useCost);
}

TEST(ExpansionBudget, EndsWithTheCostOfUsesAndValues) {
    ExpansionBudget budget(0);
    EXPECT_FALSE(budget.spendUse(nearlyAll + 1));
    EXPECT_TRUE(budget.spendUse(nearlyAll - 1000));
    EXPECT_FALSE(budget.spendValue(1001));
    EXPECT_TRUE(budget.spendValue(1000));
    EXPECT_FALSE(budget.spendValue(1));
}

TEST(ExpansionBudget, GrowsWithTheBytesThatAreRead) {
    ExpansionBudget budget(1000);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    budget.advanceTo(1010);
    EXPECT_FALSE(budget.spendUse(allOf(10) + 1));
    EXPECT_TRUE(budget.spendUse(allOf(10)));
    budget.advanceTo(1010);
    EXPECT_FALSE(budget.spendValue(1));
}

TEST(ExpansionBudget, IsThereAgainAfterAStepBack) {
    ExpansionBudget budget(0);
    budget.advanceTo(10);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    budget.advanceTo(0);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    EXPECT_FALSE(budget.spendValue(1));
    budget.advanceTo(10);
    EXPECT_TRUE(budget.spendUse(allOf(10)));
}

// ---- The reader --------------------------------------------------------------------------------

std::string repeated(const std::string& piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

/// Returns about two kilobytes that expand to more than half a million values.
std::string explosionOf(const std::string& piece) {
    return "#define A [" + repeated(piece, 300) + "]\n#define B [" + repeated("A ", 64) +
           "]\n#define C [" + repeated("B ", 32) + "]\n";
}

/// Returns the bytes that reading a text of this size can allocate, freed or not, if it has
/// definitions (docs/hosting.md).
constexpr std::size_t memoryFor(std::size_t textSize) {
    return static_cast<std::size_t>(ExpansionBudget::initial) +
           (1024 + static_cast<std::size_t>(ExpansionBudget::perByte)) * textSize;
}

const char* const smallPieces[] = {
    "<[][]>",
    "-",
    "-. ",
    "\"\"",
    "\"123456789012345678901234\"", // its characters take a block of their own
    "[[]]",
    "()",
    "{a={}}",
    "{a=-}",
    "{a1234567890123456=-}", // so does its name
    "{a=NULL}",
    "{@type=50}",
    "{@type=51}",
    "{@type=52}",
    "3F2504E0-4F89-11D3-9A0C-0305E82C3301=-", // remembered for references
};

TEST(TextExpansion, AFewLinesNeverFillTheMemory) {
    for (const char* piece : smallPieces) {
        const std::string text = explosionOf(piece) + "C";
        const AllocationBudget memory(memoryFor(text.size()));
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(4)) << piece;
    }
}

TEST(TextExpansion, ALongTextUsesMoreButInProportion) {
    for (const char* piece : smallPieces) {
        const std::string text = explosionOf(piece) + "[" + repeated("A ", 20000) + "]";
        const AllocationBudget memory(memoryFor(text.size()));
        const std::string message = refusalOf(text);
        EXPECT_TRUE(message == syntaxErrorAt(4) || message == "(nothing thrown)")
            << message << " for " << piece;
    }
}

TEST(TextExpansion, SeveralRootsSpendOneBudget) {
    TextInput input(explosionOf("<[][]>") + repeated("C ", 100));
    const AllocationBudget memory(memoryFor(explosionOf("<[][]>").size() + 200));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(4));
    }
}

constexpr int mapSize = 100;
const std::string tile = "#define W { a = 1 b = 2 c = 3 d = 4 e = 5 f = 6 g = 7 h = 8 i = 9 }\n";

TEST(TextExpansion, AMapOfManySmallStructsIsRead) {
    const auto map =
        read(tile + "[" + repeated("[" + repeated("W ", mapSize) + "]\n", mapSize) + "]");
    EXPECT_EQ(asArray(map).getCount(), mapSize);
    EXPECT_EQ(asArray(at(map, mapSize - 1)).getCount(), mapSize);
}

TEST(TextExpansion, AStreamUsesADefinitionAsLongAsItRuns) {
    constexpr int count = 20000;
    TextInput input(tile + repeated("{ number = 12345 what = W }\n", count));
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(input.read()->getType(), KELKind_Struct);
    }
}

TEST(TextExpansion, AHostMayReadATextAgainAndAgain) {
    TextInput input(tile + repeated("W ", 1000));
    for (int again = 0; again < 20; ++again) {
        input->JSeek(0);
        for (int i = 0; i < 1000; ++i) {
            EXPECT_EQ(input.read()->getType(), KELKind_Struct);
        }
    }
}

} // namespace
