// The tables of identities behind both binary streams and the text reader.
#include "serial/IdentityTable.h"

#include "serial/ValueTable.h"
#include "support/Trees.h"
#include "support/Values.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>
#include <vector>

using namespace kel::test;
using kel::IdentityTable;
using kel::ValueTable;

namespace {

JHashCode numbered(uint32_t number) {
    return JHashCode(number, 0, 0, 7);
}

/// Values that are only looked at.
KEL_Impl* token(uint32_t number) {
    static std::vector<HeldValue> values;
    while (values.size() <= number) {
        values.push_back(intOf(0));
    }
    return values[number].get();
}

TEST(IdentityTable, FindsWhatWasInserted) {
    IdentityTable table;
    EXPECT_EQ(table.find(numbered(1)), nullptr);
    EXPECT_TRUE(table.insert(numbered(1), token(1)));
    EXPECT_EQ(table.find(numbered(1)), token(1));
    EXPECT_EQ(table.find(numbered(2)), nullptr);
}

TEST(IdentityTable, InsertsAnIdentityOnce) {
    IdentityTable table;
    EXPECT_TRUE(table.insert(numbered(1), token(1)));
    EXPECT_FALSE(table.insert(numbered(1), token(2)));
    EXPECT_EQ(table.find(numbered(1)), token(1));
}

TEST(IdentityTable, PutReplacesAndTellsTheFormerValue) {
    IdentityTable table;
    EXPECT_EQ(table.put(numbered(1), token(1)), nullptr);
    EXPECT_EQ(table.put(numbered(1), token(2)), token(1));
    EXPECT_EQ(table.find(numbered(1)), token(2));
}

TEST(IdentityTable, EveryWordOfAnIdentityCounts) {
    IdentityTable table;
    const JHashCode codes[] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    for (const JHashCode& code : codes) {
        EXPECT_TRUE(table.insert(code, token(code.w0 + 2 * code.w1 + 3 * code.w2)));
    }
    EXPECT_EQ(table.find(codes[2]), token(3));
}

TEST(IdentityTable, KeepsThousands) {
    IdentityTable table;
    for (uint32_t i = 0; i < 20000; ++i) {
        ASSERT_TRUE(table.insert(numbered(i), token(i % 100)));
    }
    for (uint32_t i = 0; i < 20000; ++i) {
        ASSERT_EQ(table.find(numbered(i)), token(i % 100));
    }
    EXPECT_EQ(table.find(numbered(20000)), nullptr);
}

TEST(IdentityTable, AddedIdentitiesAreFoundOnceTheyAreIndexed) {
    IdentityTable table;
    for (uint32_t i = 0; i < 5000; ++i) {
        table.add(numbered(i), token(i % 100));
    }
    table.indexAdded();
    EXPECT_EQ(table.find(numbered(4999)), token(99));
    EXPECT_FALSE(table.insert(numbered(0), token(1)));
}

TEST(IdentityTable, ErasedIdentitiesAreGoneAndOthersStay) {
    IdentityTable table;
    for (uint32_t i = 0; i < 3000; ++i) {
        table.insert(numbered(i), token(i % 100));
    }
    for (uint32_t i = 0; i < 3000; i += 2) {
        table.erase(numbered(i));
    }
    table.erase(numbered(3000));
    for (uint32_t i = 0; i < 3000; ++i) {
        ASSERT_EQ(table.find(numbered(i)), i % 2 == 0 ? nullptr : token(i % 100)) << i;
    }
    EXPECT_TRUE(table.insert(numbered(0), token(5)));
}

TEST(IdentityTable, RollsBackToAMarkTheLastFirst) {
    IdentityTable table;
    table.insert(numbered(1), token(1));
    const std::size_t mark = table.mark();
    table.insert(numbered(2), token(2));
    table.add(numbered(3), token(3));
    std::vector<KEL_Impl*> forgotten;
    table.rollBack(mark, [&](KEL_Impl* value) { forgotten.push_back(value); });
    EXPECT_EQ(forgotten, (std::vector<KEL_Impl*>{token(3), token(2)}));
    EXPECT_EQ(table.find(numbered(2)), nullptr);
    EXPECT_EQ(table.find(numbered(1)), token(1));
    EXPECT_TRUE(table.insert(numbered(2), token(4)));
}

TEST(IdentityTable, VisitsItsValuesInTheOrderOfTheirArrival) {
    IdentityTable table;
    table.insert(numbered(3), token(3));
    table.insert(numbered(1), token(1));
    table.insert(numbered(2), token(2));
    table.erase(numbered(1));
    std::vector<KEL_Impl*> visited;
    table.forEach([&](KEL_Impl* value) { visited.push_back(value); });
    EXPECT_EQ(visited, (std::vector<KEL_Impl*>{token(3), token(2)}));
}

TEST(ValueTable, HoldsAReferenceToEachValue) {
    auto value = intOf(1);
    {
        ValueTable table;
        table.remember(numbered(1), *value);
        EXPECT_EQ(referencesOf(*value), 2);
    }
    EXPECT_EQ(referencesOf(*value), 1);
}

TEST(ValueTable, OfSeveralValuesOfOneIdentityTheLastIsFound) {
    const auto first = intOf(1);
    const auto second = intOf(2);
    ValueTable table;
    table.remember(numbered(1), *first);
    table.remember(numbered(1), *second);
    EXPECT_EQ(table.find(numbered(1)), second.get());
    table.remember(numbered(1), *first);
    EXPECT_EQ(table.find(numbered(1)), first.get());
}

TEST(ValueTable, TheZeroIdentityIsNoIdentity) {
    const auto value = intOf(1);
    ValueTable table;
    table.remember(JHashCode(), *value);
    EXPECT_EQ(table.find(JHashCode()), nullptr);
    EXPECT_EQ(referencesOf(*value), 1);
}

TEST(ValueTable, RollingBackLetsGoOfWhatCameSince) {
    const auto value = intOf(1);
    ValueTable table;
    table.begin();
    table.remember(numbered(1), *value);
    table.rollBack();
    EXPECT_EQ(table.find(numbered(1)), nullptr);
    EXPECT_EQ(referencesOf(*value), 1);
}

TEST(ValueTable, RollingBackRestoresWhatWasReplacedSince) {
    const auto early = intOf(1);
    const auto late = intOf(2);
    ValueTable table;
    table.remember(numbered(1), *early);
    table.begin();
    table.remember(numbered(1), *late);
    table.rollBack();
    EXPECT_EQ(table.find(numbered(1)), early.get());
    EXPECT_EQ(referencesOf(*late), 1);
}

TEST(ValueTable, RollingBackRestoresThroughSeveralRepetitions) {
    const auto early = intOf(1);
    const auto late = intOf(2);
    const auto latest = intOf(3);
    ValueTable table;
    table.remember(numbered(1), *early);
    EXPECT_EQ(table.find(numbered(1)), early.get());
    table.begin();
    table.remember(numbered(1), *late);
    table.remember(numbered(2), *late);
    EXPECT_EQ(table.find(numbered(1)), late.get());
    table.remember(numbered(1), *latest);
    EXPECT_EQ(table.find(numbered(1)), latest.get());
    table.remember(numbered(1), *late); // nobody asks for it
    table.rollBack();
    EXPECT_EQ(table.find(numbered(1)), early.get());
    EXPECT_EQ(table.find(numbered(2)), nullptr);
    EXPECT_EQ(referencesOf(*late), 1);
    EXPECT_EQ(referencesOf(*latest), 1);
}

TEST(ValueTable, RollingBackFreesLoops) {
    auto loop = arrayOf();
    const LifeProbe probe(*loop);
    asArray(loop).addVar(loop.get());
    ValueTable table;
    table.begin();
    table.remember(numbered(1), *loop);
    KEL_Impl* borrowed = loop.get();
    loop.clear();
    table.rollBack();
    EXPECT_FALSE(probe.isAlive());
    if (probe.isAlive()) {
        takeApart(*borrowed); // leave nothing behind
    }
}

} // namespace
