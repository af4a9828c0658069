// The table of the values that a stream has read.
#include "serial/ValueTable.h"

#include "support/Guids.h"
#include "support/Trees.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;
using kel::ValueTable;

namespace {

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
    EXPECT_EQ(table.find(numbered(1)).value, second.get());
    table.remember(numbered(1), *first);
    EXPECT_EQ(table.find(numbered(1)).value, first.get());
}

TEST(ValueTable, TheZeroIdentityIsOneLikeOthers) {
    const auto value = intOf(1);
    ValueTable table;
    table.remember(JHashCode(), *value);
    EXPECT_EQ(table.find(JHashCode()).value, value.get());
}

TEST(ValueTable, NumbersCountUp) {
    const auto value = intOf(1);
    ValueTable table;
    EXPECT_EQ(table.find(numbered(1)).number, kel::IdentityIndex::none);
    EXPECT_EQ(table.remember(numbered(1), *value), 0U);
    EXPECT_EQ(table.remember(numbered(2), *value), 1U);
    EXPECT_EQ(table.size(), 2U);
    EXPECT_EQ(table.find(numbered(2)).number, 1U);
}

TEST(ValueTable, ForgettingReleases) {
    const auto value = intOf(1);
    for (const bool searchedBefore : {false, true}) {
        ValueTable table;
        const uint32_t number = table.remember(numbered(1), *value);
        if (searchedBefore) {
            table.find(numbered(1));
        }
        table.forget(number);
        EXPECT_EQ(table.find(numbered(1)).value, nullptr);
        EXPECT_EQ(table.at(number), nullptr);
        EXPECT_EQ(referencesOf(*value), 1);
        table.remember(numbered(1), *value);
        EXPECT_EQ(table.find(numbered(1)).value, value.get());
    }
}

TEST(ValueTable, ForgettingRestoresWhatWasReplaced) {
    const HeldValue values[] = {intOf(0), intOf(1), intOf(2), intOf(3)};
    for (const bool searches : {false, true}) {
        ValueTable table;
        for (const HeldValue& value : values) {
            table.remember(numbered(1), *value);
            table.remember(numbered(2), *value);
            if (searches) {
                EXPECT_EQ(table.find(numbered(1)).value, value.get());
            }
        }
        table.forget(6);
        EXPECT_EQ(table.find(numbered(1)).value, values[2].get());
        EXPECT_EQ(table.find(numbered(2)).value, values[3].get());
        table.forget(2);
        EXPECT_EQ(table.find(numbered(1)).value, values[2].get());
    }
}

TEST(ValueTable, ForgettingAnIdentityLeavesALaterRepetitionOfAnotherAlone) {
    const HeldValue values[] = {intOf(0), intOf(1), intOf(2)};
    ValueTable table;
    table.remember(numbered(1), *values[0]);
    table.remember(numbered(2), *values[1]);
    table.remember(numbered(2), *values[2]);
    EXPECT_EQ(table.find(numbered(2)).value, values[2].get());
    table.forget(0);
    EXPECT_EQ(table.find(numbered(1)).value, nullptr);
    table.forget(2);
    EXPECT_EQ(table.find(numbered(2)).value, values[1].get());
}

} // namespace
