#include "runtime/IdentityTable.h"

#include "platform/Guid.h"
#include "support/AllocationFailure.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using kel::IdentityKey;
using kel::IdentityTable;

using Table = std::unique_ptr<IdentityTable>;

Table makeTable() {
    return Table(IdentityTable::make());
}

JHashCode identity(uint32_t number) {
    return {number, 0, 0, 0};
}

/// Compares the table with the elements that it has recorded.
void compare(IdentityTable& table, const std::vector<uint32_t>& elements, uint32_t identities) {
    ASSERT_EQ(table.size(), static_cast<int32_t>(elements.size()));
    for (uint32_t number = 0; number < identities; ++number) {
        const auto* entry = table.find(identity(number));
        const auto count = std::count(elements.begin(), elements.end(), number);
        ASSERT_EQ(entry != nullptr, count > 0);
        if (entry != nullptr) {
            const auto first = std::find(elements.begin(), elements.end(), number);
            EXPECT_EQ(entry->count, count);
            EXPECT_LE(table.leastIndexOf(*entry), first - elements.begin());
        }
    }
}

TEST(IdentityTable, KnowsHowOftenAndFromWhichIndex) {
    constexpr uint32_t identities = 300;
    std::mt19937 random(1);
    const Table table = makeTable();
    std::vector<uint32_t> elements;
    for (int32_t step = 0; step < 20000; ++step) {
        const auto number = static_cast<uint32_t>(random() % identities);
        const auto index = static_cast<std::size_t>(random() % (elements.size() + 1));
        const auto at = static_cast<int32_t>(index);
        const auto place = elements.begin() + at;
        const auto action = static_cast<uint32_t>(random() % (elements.size() < 500 ? 5 : 8));
        if (action == 0) {
            ASSERT_TRUE(table->append(identity(number)));
            elements.push_back(number);
        } else if (action < 4) {
            ASSERT_TRUE(table->insert(identity(number), at));
            elements.insert(place, number);
        } else if (place != elements.end() && action == 4) {
            ASSERT_TRUE(table->replace(identity(*place), identity(number), at));
            *place = number;
        } else if (place != elements.end()) {
            table->remove(identity(*place), at);
            elements.erase(place);
        }
        if (step % 1000 == 0) {
            compare(*table, elements, identities);
        }
    }
    compare(*table, elements, identities);
    table->clear();
    compare(*table, {}, identities);
}

TEST(IdentityTable, KnowsTheIndexWhileElementsLeaveAtTheFrontAndArriveAtTheEnd) {
    const Table table = makeTable();
    for (uint32_t i = 0; i < 1000; ++i) {
        ASSERT_TRUE(table->append(identity(i)));
        if (i >= 100) {
            table->remove(identity(i - 100), 0);
            const auto* entry = table->find(identity(i - 50));
            ASSERT_NE(entry, nullptr);
            ASSERT_EQ(table->leastIndexOf(*entry), 49);
        }
    }
}

TEST(IdentityTable, RecordsNothingAfterMillionsOfMoves) {
    const Table table = makeTable();
    ASSERT_TRUE(table->append(identity(0)));
    ASSERT_TRUE(table->append(identity(1)));
    uint32_t moves = 0;
    for (; table->size() == 2; ++moves) {
        table->remove(identity(moves % 2), 0);
        if (table->size() == 1) {
            ASSERT_TRUE(table->append(identity(moves % 2)));
        }
    }
    EXPECT_GT(moves, 4000000U);
    compare(*table, {}, 2);
}

TEST(IdentityTable, ACorrectedIndexIsKept) {
    const Table table = makeTable();
    ASSERT_TRUE(table->append(identity(1)));
    ASSERT_TRUE(table->append(identity(2)));
    ASSERT_TRUE(table->insert(identity(3), 1));
    auto* entry = table->find(identity(2));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(table->leastIndexOf(*entry), 1);
    table->setLeastIndex(*entry, 2);
    EXPECT_EQ(table->leastIndexOf(*entry), 2);
    table->remove(identity(1), 0); // which can move the entry
    entry = table->find(identity(2));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(table->leastIndexOf(*entry), 1);
}

TEST(IdentityTable, ReportsThatItFoundNoMemory) {
    {
        const kel::test::FailingAllocation failing(0);
        EXPECT_EQ(makeTable(), nullptr);
    }
    const Table table = makeTable();
    {
        const kel::test::FailingAllocation failing(0, true);
        EXPECT_FALSE(table->reserve(1000));
        EXPECT_FALSE(table->append(identity(1)));
    }
    table->clear();
    EXPECT_TRUE(table->append(identity(1)));
    EXPECT_NE(table->find(identity(1)), nullptr);
}

/// While alive, identities come from this source.
class Source {
public:
    explicit Source(kel::platform::GuidSource source)
        : before_(kel::platform::exchangeGuidSource(source)) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() { kel::platform::exchangeGuidSource(before_); }

private:
    kel::platform::GuidSource before_;
};

TEST(IdentityTable, IsNotMadeWithoutAKey) {
    const Source none([](JHashCode&) { return false; });
    EXPECT_EQ(makeTable(), nullptr);
}

TEST(IdentityKey, ComesFromASourceThatCanFail) {
    const Source counting([](JHashCode& out) {
        static uint32_t drawn = 0;
        ++drawn;
        out = JHashCode(drawn, 0, 0, drawn);
        return true;
    });
    EXPECT_NE(IdentityKey().identityOf("text"), IdentityKey().identityOf("text"));
}

TEST(IdentityTable, AfterReservingNothingCanFail) {
    const Table table = makeTable();
    ASSERT_TRUE(table->reserve(1000));
    const kel::test::FailingAllocation failing(0, true);
    for (uint32_t i = 0; i < 1000; ++i) {
        ASSERT_TRUE(table->append(identity(i)));
    }
    EXPECT_TRUE(table->reserve(1000));
}

TEST(IdentityKey, EqualTextsHaveEqualIdentities) {
    const IdentityKey key;
    const std::string text(100, 'a');
    EXPECT_EQ(key.identityOf(text), key.identityOf(text.substr(0, 100)));
    std::vector<std::string> texts = {
        "", std::string(1, '\0'), std::string(2, '\0'), "a", "b", "ab", "ba", "\xFF", "aa", text};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (std::size_t other = 0; other < i; ++other) {
            EXPECT_NE(key.identityOf(texts[i]), key.identityOf(texts[other])) << i << " " << other;
        }
    }
}

TEST(IdentityKey, EachKeyHasItsOwnNumbers) {
    const IdentityKey a;
    const IdentityKey b;
    EXPECT_NE(a.tagOf(identity(1)), b.tagOf(identity(1)));
    EXPECT_NE(a.identityOf("text"), b.identityOf("text"));
}

} // namespace
