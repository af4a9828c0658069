// The set of the values that the binary writer has written.
#include "serial/binary/IdentitySet.h"

#include "support/Guids.h"

#include <gtest/gtest.h>

using kel::IdentityIndex;
using kel::IdentitySet;
using kel::test::numbered;

namespace {

bool isNew(IdentitySet& set, uint32_t number) {
    return set.insert(numbered(number), false) != IdentityIndex::none;
}

TEST(IdentitySet, TakesAnIdentityOnce) {
    IdentitySet set;
    EXPECT_TRUE(isNew(set, 1));
    EXPECT_FALSE(isNew(set, 1));
    EXPECT_TRUE(isNew(set, 2));
    EXPECT_EQ(set.size(), 2U);
}

TEST(IdentitySet, FindsItsNotesOnceItAsksAlways) {
    IdentitySet set;
    for (uint32_t i = 0; i < 5000; ++i) {
        set.insert(numbered(i), i % 3 != 0);
    }
    set.askAlways();
    for (uint32_t i = 0; i < 5000; ++i) {
        ASSERT_EQ(set.insert(numbered(i), true), IdentityIndex::none) << i;
    }
}

TEST(IdentitySet, ErasedIdentitiesAreNew) {
    IdentitySet set;
    const uint32_t searched = set.insert(numbered(1), false);
    const uint32_t noted = set.insert(numbered(2), true);
    set.erase(searched);
    set.erase(noted);
    set.erase(IdentityIndex::none);
    set.askAlways();
    EXPECT_TRUE(isNew(set, 1));
    EXPECT_TRUE(isNew(set, 2));
}

TEST(IdentitySet, RollsBack) {
    IdentitySet set;
    isNew(set, 1);
    const uint32_t before = set.size();
    isNew(set, 2);
    set.insert(numbered(3), true);
    set.rollBack(before);
    set.askAlways();
    EXPECT_FALSE(isNew(set, 1));
    EXPECT_TRUE(isNew(set, 2));
    EXPECT_TRUE(isNew(set, 3));
}

} // namespace
