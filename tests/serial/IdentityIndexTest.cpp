// The index under the tables of identities.
#include "serial/IdentityIndex.h"

#include "platform/Guid.h"
#include "support/Guids.h"
#include "support/Thrown.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <kel/JException.h>

using kel::IdentityIndex;
using kel::test::numbered;

namespace {

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

TEST(IdentityIndex, DoesNotFindWhatWasRemoved) {
    IdentityIndex index;
    enter(index, numbered(1));
    index.truncate(0);
    EXPECT_EQ(index.find(numbered(1)), IdentityIndex::none);
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

// ---- Identities that a stranger chose ----------------------------------------------------------

/// Returns an identity all of whose words but one are constants.
JHashCode withWord(std::size_t place, uint32_t word) {
    std::array<uint32_t, 4> words = {0x3F2504E0, 0x11D34F89, 0x03E82C9A, 0x0133C8E8};
    words[place] = word;
    return JHashCode(words[0], words[1], words[2], words[3]);
}

/// Returns how many places a search for one of so many identities passes over on average.
double averageDistance(uint32_t count, const std::function<JHashCode(uint32_t)>& numberedOf) {
    IdentityIndex index;
    for (uint32_t i = 0; i < count; ++i) {
        enter(index, numberedOf(i));
    }
    std::size_t sum = 0;
    for (uint32_t i = 0; i < count; ++i) {
        sum += index.distanceOf(numberedOf(i));
    }
    return static_cast<double>(sum) / count;
}

/// About twice what random places need in a table that is as full as it can be.
constexpr double expectedDistance = 3;
constexpr uint32_t familySize = 1 << 15;

TEST(IdentityIndex, NoFamilyOfIdentitiesMakesSearchesLong) {
    for (std::size_t word = 0; word < 4; ++word) {
        EXPECT_LT(averageDistance(familySize, [&](uint32_t i) { return withWord(word, i); }),
                  expectedDistance)
            << "low bits of word " << word;
        EXPECT_LT(averageDistance(familySize, [&](uint32_t i) { return withWord(word, i << 17); }),
                  expectedDistance)
            << "high bits of word " << word;
        for (const uint32_t step : {3U, 64U, 65537U, 0x10001000U, 0x9E3779B9U}) {
            EXPECT_LT(
                averageDistance(familySize, [&](uint32_t i) { return withWord(word, i * step); }),
                expectedDistance)
                << "steps of " << step << " in word " << word;
        }
    }
    for (int shift = 1; shift < 32; ++shift) {
        EXPECT_LT(
            averageDistance(familySize, [&](uint32_t i) { return JHashCode(i, i << shift, 0, i); }),
            expectedDistance)
            << "several words, shifted by " << shift;
    }
}

TEST(IdentityIndex, HasASecretOfItsOwn) {
    IdentityIndex a;
    IdentityIndex b;
    std::size_t different = 0;
    for (uint32_t i = 0; i < 1000; ++i) {
        enter(a, numbered(i));
        enter(b, numbered(i));
        different += a.distanceOf(numbered(i)) != b.distanceOf(numbered(i)) ? 1 : 0;
    }
    EXPECT_GT(different, 0U);
}

TEST(IdentityIndex, WithoutASourceOfIdentitiesItIsNotMade) {
    // Where a key was drawn before, the source of the platform cannot fail.
    const auto before = kel::platform::exchangeGuidSource([](JHashCode&) { return false; });
    const std::string message = kel::test::thrownMessage<JException>([] { IdentityIndex(); });
    kel::platform::exchangeGuidSource(before);
    EXPECT_EQ(message, "Cannot create hash code.");
}

} // namespace
