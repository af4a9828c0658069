// The index under the tables of identities.
#include "serial/IdentityIndex.h"

#include <algorithm>
#include <gtest/gtest.h>

using kel::IdentityIndex;

namespace {

JHashCode numbered(uint32_t number) {
    return JHashCode(number, 0, 0, 7);
}

uint32_t enter(IdentityIndex& index, const JHashCode& identity) {
    return index.link(index.append(identity));
}

TEST(IdentityIndex, FindsWhatWasLinked) {
    IdentityIndex index;
    EXPECT_EQ(index.append(numbered(1)), 0U);
    EXPECT_EQ(index.find(numbered(1)), IdentityIndex::none);
    EXPECT_EQ(index.link(0), 0U);
    EXPECT_EQ(index.find(numbered(1)), 0U);
    EXPECT_EQ(index.find(numbered(2)), IdentityIndex::none);
}

TEST(IdentityIndex, LinkReturnsTheNumberThatTheIdentityLedToBefore) {
    IdentityIndex index;
    enter(index, numbered(1));
    uint32_t& lead = index.link(index.append(numbered(1)));
    EXPECT_EQ(lead, 0U);
    lead = 1;
    EXPECT_EQ(index.find(numbered(1)), 1U);
    index.redirect(numbered(1), 0);
    EXPECT_EQ(index.find(numbered(1)), 0U);
}

TEST(IdentityIndex, EveryWordOfAnIdentityCounts) {
    IdentityIndex index;
    const JHashCode codes[] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}, {}};
    for (const JHashCode& code : codes) {
        enter(index, code);
    }
    for (uint32_t number = 0; number < std::size(codes); ++number) {
        EXPECT_EQ(index.find(codes[number]), number);
    }
}

TEST(IdentityIndex, KeepsThousands) {
    IdentityIndex index;
    for (uint32_t i = 0; i < 20000; ++i) {
        ASSERT_EQ(enter(index, numbered(i)), i);
    }
    for (uint32_t i = 0; i < 20000; ++i) {
        ASSERT_EQ(index.find(numbered(i)), i);
    }
    EXPECT_EQ(index.find(numbered(20000)), IdentityIndex::none);
}

TEST(IdentityIndex, ErasedIdentitiesAreGoneAndOthersStay) {
    IdentityIndex index;
    for (uint32_t i = 0; i < 3000; ++i) {
        enter(index, numbered(i));
    }
    for (uint32_t i = 0; i < 3000; i += 2) {
        index.erase(i);
    }
    for (uint32_t i = 0; i < 3000; ++i) {
        ASSERT_EQ(index.find(numbered(i)), i % 2 == 0 ? IdentityIndex::none : i) << i;
    }
    EXPECT_EQ(enter(index, numbered(0)), 3000U);
}

TEST(IdentityIndex, TruncatingForgetsTheLastIdentities) {
    IdentityIndex index;
    for (uint32_t round = 0; round < 100; ++round) {
        index.truncate(std::min(index.size(), 10U));
        for (uint32_t i = index.size(); i < 1000; ++i) {
            ASSERT_EQ(enter(index, numbered(i + 1000 * round)), i);
        }
        EXPECT_EQ(index.find(numbered(9)), 9U);
        EXPECT_EQ(index.find(numbered(10)), round == 0 ? 10 : IdentityIndex::none);
        EXPECT_EQ(index.find(numbered(999 + 1000 * round)), 999U);
    }
}

} // namespace
