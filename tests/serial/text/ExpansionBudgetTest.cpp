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
    EXPECT_TRUE(budget.spendUse(nearlyAll - ExpansionBudget::valueCost));
    EXPECT_TRUE(budget.spendValue());
    EXPECT_FALSE(budget.spendValue());
}

TEST(ExpansionBudget, GrowsWithTheBytesThatAreRead) {
    ExpansionBudget budget(1000);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    budget.advanceTo(1010);
    EXPECT_FALSE(budget.spendUse(allOf(10) + 1));
    EXPECT_TRUE(budget.spendUse(allOf(10)));
    budget.advanceTo(1010);
    EXPECT_FALSE(budget.spendValue());
}

TEST(ExpansionBudget, IsThereAgainAfterAStepBack) {
    ExpansionBudget budget(0);
    budget.advanceTo(10);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    budget.advanceTo(0);
    EXPECT_TRUE(budget.spendUse(nearlyAll));
    EXPECT_FALSE(budget.spendValue());
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

constexpr std::size_t memoryOfAll = std::size_t{64} << 20;

TEST(TextExpansion, AFewLinesNeverFillTheMemory) {
    for (const char* piece : {"<[][]>", "-", "\"\"", "[[]]", "()", "{a={}}", "{@type=50}"}) {
        const AllocationBudget memory(memoryOfAll);
        EXPECT_EQ(refusalOf(explosionOf(piece) + "C"), syntaxErrorAt(4)) << piece;
    }
}

TEST(TextExpansion, SeveralRootsSpendOneBudget) {
    TextInput input(explosionOf("<[][]>") + repeated("C ", 100));
    const AllocationBudget memory(memoryOfAll);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(4));
    }
}

constexpr int size = 100;
const std::string tile = "#define W { a = 1 b = 2 c = 3 d = 4 e = 5 f = 6 g = 7 h = 8 i = 9 }\n";

TEST(TextExpansion, AMapOfManySmallStructsIsRead) {
    const auto map = read(tile + "[" + repeated("[" + repeated("W ", size) + "]\n", size) + "]");
    EXPECT_EQ(asArray(map).getCount(), size);
    EXPECT_EQ(asArray(at(map, size - 1)).getCount(), size);
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
