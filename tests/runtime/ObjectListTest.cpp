#include "runtime/ObjectList.h"

#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/SearchSteps.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;

/// An object whose identity is drawn when it is first requested, as that of a value is, or given.
class Thing : public JObject {
public:
    Thing() : JObject(IdentityLater()) {}
    explicit Thing(uint32_t identity) : JObject(identity, 0, 0, 0) {}

    JHashCode& getHashCode(JHashCode& out) const override { return out = identity(); }
    bool isLike(const Thing& other) const { return hasIdentityOf(other); }
};

using List = kel::ObjectList<Thing>;

/// A list and the same elements in a plain vector, which every operation changes alike. Searches of
/// the list are compared with a linear search in the vector.
class ListAndReference {
public:
    explicit ListAndReference(uint32_t seed) : random_(seed) {
        for (int32_t i = 0; i < 400; ++i) { // few identities for many objects
            things_.push_back(i % 4 == 0 ? make<Thing>(below(60)) : make<Thing>());
        }
        expected.reserve(30000); // so that it needs no memory later
    }

    uint32_t below(std::size_t limit) { return static_cast<uint32_t>(random_() % limit); }
    Thing* anyThing() { return things_[below(things_.size())].get(); }
    int32_t place(std::size_t more) {
        // Often at the beginning or at the end.
        const std::size_t limit = expected.size() + more;
        const uint32_t kind = below(4);
        return static_cast<int32_t>(kind == 0 ? 0 : kind == 1 ? limit - 1 : below(limit));
    }

    void change() {
        Thing* thing = anyThing();
        const uint32_t action = below(12);
        if (action < 4 || expected.empty()) {
            list.append(thing);
            expected.push_back(thing);
        } else if (action < 6) {
            const int32_t index = place(1);
            list.insert(thing, index);
            expected.insert(expected.begin() + index, thing);
        } else if (action < 9) {
            const int32_t index = place(0);
            list.remove(index);
            expected.erase(expected.begin() + index);
        } else if (action == 9) {
            const int32_t index = place(0);
            list.set(thing, index);
            expected[static_cast<std::size_t>(index)] = thing;
        } else if (action == 10) {
            const int32_t a = place(0);
            const int32_t b = place(0);
            list.swap(a, b);
            std::swap(expected[static_cast<std::size_t>(a)], expected[static_cast<std::size_t>(b)]);
        } else if (below(200) == 0) {
            list.clear();
            expected.clear();
        }
    }

    void search() {
        const Thing* thing = anyThing();
        const auto found = std::find_if(expected.begin(), expected.end(),
                                        [&](const Thing* held) { return held->isLike(*thing); });
        const auto index = static_cast<int32_t>(found - expected.begin());
        const int32_t wanted = found == expected.end() ? -1 : index;
        ASSERT_EQ(list.indexOf(thing), wanted);
        if (below(8) == 0) { // this draws the identity
            JHashCode identity;
            ASSERT_EQ(list.indexOf(thing->getHashCode(identity)), wanted);
        }
    }

    void compare() const {
        ASSERT_EQ(list.size(), static_cast<int32_t>(expected.size()));
        for (int32_t i = 0; i < list.size(); ++i) {
            ASSERT_EQ(list[i], expected[static_cast<std::size_t>(i)]);
        }
    }

    void fill(std::size_t count) {
        while (expected.size() < count) {
            expected.push_back(anyThing());
            list.append(expected.back());
        }
    }

    List list;
    std::vector<Thing*> expected;

private:
    std::mt19937 random_;
    std::vector<Held<Thing>> things_;
};

TEST(ObjectList, DoesWhatAVectorDoes) {
    for (const std::size_t count : {0U, 100U, 3000U}) {
        ListAndReference both(static_cast<uint32_t>(count) + 7);
        both.fill(count);
        for (int32_t step = 0; step < 20000; ++step) {
            both.change();
            for (uint32_t searches = both.below(4); searches > 0; --searches) {
                both.search();
                if (testing::Test::HasFatalFailure()) {
                    return;
                }
            }
            if (step % 100 == 0) {
                both.compare();
            }
        }
        both.compare();
        List other;
        other.swap(both.list);
        EXPECT_EQ(both.list.size(), 0);
        both.list.swap(other);
        both.compare();
    }
}

TEST(ObjectList, FindsTheSameWithLittleMemory) {
    ListAndReference both(1);
    both.fill(300);
    for (int32_t step = 0; step < 3000; ++step) {
        both.list.makeRoom(1);
        const kel::test::FailingAllocation failing(both.below(3), both.below(2) == 0);
        both.change();
        for (int32_t searches = 0; searches < 5; ++searches) {
            both.search();
        }
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
    both.compare();
}

TEST(ObjectList, SharesItsElements) {
    const auto thing = make<Thing>();
    {
        List list;
        list.append(thing.get());
        list.append(thing.get());
        EXPECT_EQ(referencesOf(*thing), 3);
        list.set(thing.get(), 0); // the same object again
        EXPECT_EQ(list.indexOf(thing.get()), 0);
        list.remove(0);
        EXPECT_EQ(referencesOf(*thing), 2);
    }
    EXPECT_EQ(referencesOf(*thing), 1);
}

TEST(ObjectList, IsUnchangedWithoutMemory) {
    const auto thing = make<Thing>();
    kel::test::failEachAllocation([&] {
        List list;
        for (int32_t i = 0; i < 200; ++i) {
            const int32_t before = list.size();
            try {
                list.append(thing.get());
            } catch (const JOutOfMemoryException&) {
                EXPECT_EQ(list.size(), before);
                throw;
            }
        }
    });
    EXPECT_EQ(referencesOf(*thing), 1);
}

TEST(ObjectList, AfterMakingRoomNothingCanFail) {
    const auto thing = make<Thing>();
    List list;
    list.makeRoom(100);
    const kel::test::FailingAllocation failing(0, true);
    for (int32_t i = 0; i < 100; ++i) {
        list.append(thing.get());
    }
    EXPECT_EQ(list.size(), 100);
    EXPECT_THROW(list.makeRoom(INT32_MAX), JOutOfMemoryException);
}

TEST(ObjectList, FindsNoNull) {
    const List list;
    EXPECT_EQ(list.indexOf(nullptr), -1);
}

TEST(ObjectList, AQueueKeepsItsRoom) {
    std::vector<Held<Thing>> things(1000);
    List list;
    for (auto& thing : things) {
        thing = make<Thing>();
        list.append(thing.get());
    }
    list.makeRoom(100);
    const kel::test::FailingAllocation failing(0, true);
    for (std::size_t i = 0; i < 100000; ++i) {
        list.append(things[i % things.size()].get());
        list.remove(0);
        ASSERT_EQ(list[0], things[(i + 1) % things.size()].get());
    }
}

/// Lists of this many objects, in one of which each object is once and in the other twice.
struct ManyThings {
    explicit ManyThings(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            things.push_back(i % 2 == 0 ? make<Thing>() : make<Thing>(static_cast<uint32_t>(i)));
            list.append(things.back().get());
            doubled.append(things.back().get());
        }
        for (auto thing = things.rbegin(); thing != things.rend(); ++thing) {
            doubled.append(thing->get());
        }
    }

    std::vector<Held<Thing>> things;
    List list;
    List doubled;
};

/// Expects that work, called with a list of 1,000 objects and one of 10,000, makes searches look at
/// no more than this many elements for each object.
template <class Work> void expectSteps(uint64_t each, const Work& work) {
    for (const std::size_t count : {1000U, 10000U}) {
        ManyThings many(count);
        kel::test::SearchSteps steps;
        work(many);
        const uint64_t taken = steps.take();
        EXPECT_LE(taken, each * count);
        EXPECT_GE(taken, count); // the counter works
    }
}

TEST(ObjectList, FindingEachElementTakesFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        for (std::size_t i = 0; i < many.things.size(); ++i) {
            ASSERT_EQ(many.list.indexOf(many.things[i].get()), static_cast<int32_t>(i));
        }
    });
}

TEST(ObjectList, FindingEachElementOfTwoEqualOnesTakesFewSteps) {
    expectSteps(25, [](ManyThings& many) {
        for (std::size_t i = 0; i < many.things.size(); ++i) {
            ASSERT_EQ(many.doubled.indexOf(many.things[i].get()), static_cast<int32_t>(i));
        }
    });
}

TEST(ObjectList, LookingForOtherObjectsTakesFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        for (std::size_t i = 0; i < many.things.size(); ++i) {
            ASSERT_EQ(many.list.indexOf(make<Thing>().get()), -1);
        }
    });
}

TEST(ObjectList, AddingWhatIsMissingTakesFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        List added;
        for (const auto& thing : many.things) {
            ASSERT_EQ(added.indexOf(thing.get()), -1);
            added.append(thing.get());
            ASSERT_EQ(added.indexOf(thing.get()), added.size() - 1);
        }
    });
}

TEST(ObjectList, RemovingFromTheFrontByIdentityTakesFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        for (const auto& thing : many.things) {
            const int32_t index = many.list.indexOf(thing.get());
            ASSERT_EQ(index, 0);
            many.list.remove(index);
        }
    });
}

TEST(ObjectList, RemovingFromTheEndByIdentityTakesFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        while (many.list.size() > 0) {
            const int32_t last = many.list.size() - 1;
            ASSERT_EQ(many.list.indexOf(many.things[static_cast<std::size_t>(last)].get()), last);
            many.list.remove(last);
        }
    });
}

TEST(ObjectList, InsertingAtTheFrontKeepsSearchesShort) {
    expectSteps(12, [](ManyThings& many) {
        List list;
        for (const auto& thing : many.things) {
            list.insert(thing.get(), 0);
            ASSERT_EQ(list.indexOf(many.things[0].get()), list.size() - 1);
        }
    });
}

TEST(ObjectList, SearchesBetweenChangesAnywhereGrowWithTheSquareRoot) {
    for (const auto& [count, each] : {std::pair(1000U, 60U), std::pair(10000U, 190U)}) {
        ManyThings many(count);
        std::mt19937 random(3);
        std::shuffle(many.things.begin(), many.things.end(), random);
        kel::test::SearchSteps steps;
        for (const auto& thing : many.things) {
            many.list.remove(many.list.indexOf(thing.get()));
        }
        EXPECT_LE(steps.take(), each * count);
    }
}

TEST(ObjectList, AReplacedOrExchangedElementIsFoundInFewSteps) {
    expectSteps(30, [](ManyThings& many) {
        for (std::size_t i = 0; i < many.things.size(); ++i) {
            const auto index = static_cast<int32_t>(i);
            const auto other = make<Thing>();
            many.list.set(other.get(), index);
            ASSERT_EQ(many.list.indexOf(many.things[i].get()), -1);
            ASSERT_EQ(many.list.indexOf(other.get()), index);
            many.list.swap(0, index);
            ASSERT_EQ(many.list.indexOf(other.get()), 0);
            many.list.swap(index, 0);
            ASSERT_EQ(many.list.indexOf(other.get()), index);
        }
    });
}

TEST(ObjectList, AnElementThatIsExchangedWithTheLastIsFoundInFewSteps) {
    expectSteps(12, [](ManyThings& many) {
        const int32_t last = many.list.size() - 1;
        for (std::size_t i = 0; i < many.things.size(); ++i) {
            const Thing* first = many.list[0];
            many.list.swap(0, last);
            ASSERT_EQ(many.list.indexOf(first), last);
            many.list.swap(last, 1);
            ASSERT_EQ(many.list.indexOf(first), 1);
        }
    });
}

TEST(ObjectList, ATableThatFindsNoMemoryIsGivenUp) {
    for (const bool inserts : {true, false}) {
        ManyThings many(1000);
        std::vector<Held<Thing>> others(3000);
        std::generate(others.begin(), others.end(), [] { return make<Thing>(); });
        many.list.makeRoom(3000);
        for (const auto& thing : many.things) { // makes a table
            many.list.indexOf(thing.get());
        }
        const kel::test::FailingAllocation failing(0, true);
        for (std::size_t i = 0; i < others.size(); ++i) {
            if (inserts) {
                many.list.insert(others[i].get(), 1);
            } else {
                many.list.append(others[i].get());
                many.list.swap(0, many.list.size() - 1);
            }
        }
        EXPECT_EQ(many.list.indexOf(others.back().get()), inserts ? 1 : 0);
        EXPECT_EQ(many.list.indexOf(others.front().get()), inserts ? 3000 : 1001);
    }
}

TEST(ObjectList, AnElementThatMovesInWithoutMemoryForItsRecordIsFound) {
    for (const bool swaps : {true, false}) {
        const auto same = make<Thing>();
        std::vector<Held<Thing>> others(3000);
        std::generate(others.begin(), others.end(), [] { return make<Thing>(); });
        List list;
        for (int i = 0; i < 1000; ++i) {
            list.append(same.get());
        }
        for (int i = 0; i < 100; ++i) { // makes a table for so many elements
            list.indexOf(others.front().get());
        }
        for (int i = 0; i < 3000; ++i) { // of one identity, which take no room in the table
            list.insert(same.get(), 1);
        }
        for (const auto& other : others) { // which the table lacks
            list.append(other.get());
        }
        const kel::test::FailingAllocation failing(0, true);
        for (int32_t i = 0; i < 3000; ++i) {
            if (swaps) {
                list.swap(i, 4000 + i);
            } else {
                list.set(others[static_cast<std::size_t>(i)].get(), i);
            }
        }
        EXPECT_EQ(list.indexOf(others.back().get()), 2999);
        EXPECT_EQ(list.indexOf(same.get()), 3000);
    }
}

TEST(ObjectList, AnElementThatIsAppendedAfterSearchesCanBeExchanged) {
    ManyThings many(1000);
    for (const auto& thing : many.things) { // makes a table
        many.list.indexOf(thing.get());
    }
    const auto last = make<Thing>();
    many.list.append(last.get());
    many.list.swap(0, 1000);
    EXPECT_EQ(many.list.indexOf(last.get()), 0);
    EXPECT_EQ(many.list.indexOf(many.things[0].get()), 1000);
}

TEST(ObjectList, FindsEveryElementAfterSomeWereRemovedAtOnce) {
    ManyThings many(1000);
    for (const auto& thing : many.things) { // makes the table
        ASSERT_GE(many.list.indexOf(thing.get()), 0);
    }
    const int32_t places[] = {1, 3, 998};
    many.list.removeEach(places, 0);
    ASSERT_EQ(many.list.size(), 1000);
    many.list.removeEach(places, 3);
    ASSERT_EQ(many.list.size(), 997);
    EXPECT_EQ(many.list.indexOf(many.things[0].get()), 0);
    EXPECT_EQ(many.list.indexOf(many.things[1].get()), -1);
    EXPECT_EQ(many.list.indexOf(many.things[2].get()), 1);
    EXPECT_EQ(many.list.indexOf(many.things[998].get()), -1);
    EXPECT_EQ(many.list.indexOf(many.things[999].get()), 996);
}

TEST(ObjectList, KeepsItsElementsWhenTheRoomOfManyRemovedOnesIsTooSmall) {
    ManyThings many(1000);
    for (int i = 0; i < 800; ++i) {
        many.list.remove(0);
    }
    many.list.makeRoom(10000);
    ASSERT_EQ(many.list.size(), 200);
    for (int32_t i = 0; i < 200; ++i) {
        EXPECT_EQ(many.list[i], many.things[static_cast<std::size_t>(i) + 800].get());
    }
}

TEST(ObjectList, TheShortestLongListKeepsItsElementsWhenTheFirstIsRemoved) {
    std::vector<Held<Thing>> things(65);
    List list;
    list.makeRoom(65); // one more than a short list has
    for (auto& thing : things) {
        thing = make<Thing>();
        list.append(thing.get());
    }
    list.remove(0);
    ASSERT_EQ(list.size(), 64);
    for (int32_t i = 0; i < 64; ++i) {
        EXPECT_EQ(list[i], things[static_cast<std::size_t>(i) + 1].get());
    }
}

TEST(ObjectList, AFewSearchesNeedNoMemory) {
    ManyThings many(1000);
    const kel::test::AllocationBudget budget(1 << 20);
    for (int32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(many.list.indexOf(many.things[999].get()), 999);
    }
    EXPECT_EQ(budget.left(), std::size_t{1} << 20);
}

} // namespace
