// The steps of operations that search and that remove many values. Each test does the work for
// 1,000 values and for 10,000 and counts the elements that searches look at, or that removals move.
// The count for each value must not grow.
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "support/SearchSteps.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/StringEnumeration_Impl.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::SearchSteps;
using kel::test::Watcher;

using Ints = std::vector<Held<KEL_Int_Impl>>;

Ints makeInts(int32_t count) {
    Ints ints;
    for (int32_t i = 0; i < count; ++i) {
        ints.push_back(make<KEL_Int_Impl>(i));
    }
    return ints;
}

Held<KEL_Array_Impl> arrayOfInts(const Ints& ints) {
    Held<KEL_Array_Impl> array = make<KEL_Array_Impl>();
    for (const auto& value : ints) {
        array->addVar(value.get());
    }
    return array;
}

/// Returns a list whose keys and items are these.
Held<KEL_IndexList_Impl> listOfInts(const Ints& keys, const Ints& items) {
    Held<KEL_IndexList_Impl> list = make<KEL_IndexList_Impl>();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        list->addPair(keys[i].get(), items[i].get());
    }
    return list;
}

/// Calls work with both counts. Expects that it takes at most this many steps for each value.
template <class Work> void expectSteps(uint64_t each, const Work& work) {
    for (const int32_t count : {1000, 10000}) {
        SearchSteps steps;
        work(count);
        const uint64_t taken = steps.take();
        EXPECT_LE(taken, each * static_cast<uint64_t>(count));
        EXPECT_GE(taken, static_cast<uint64_t>(count) / 2); // the counter works
    }
}

TEST(CostOfSearches, AddingTheValuesOfAnotherArray) {
    expectSteps(5, [](int32_t count) {
        const auto array = make<KEL_Array_Impl>();
        array->addVars(arrayOfInts(makeInts(count)).get());
        EXPECT_EQ(array->getCount(), count);
    });
}

TEST(CostOfSearches, AddingThePairsOfAnotherList) {
    expectSteps(10, [](int32_t count) {
        const Ints values = makeInts(count);
        const auto list = make<KEL_IndexList_Impl>();
        list->addPairs(listOfInts(values, values).get());
        EXPECT_EQ(list->getCount(), count);
    });
}

TEST(CostOfSearches, LookingUpKeysAndItems) {
    expectSteps(30, [](int32_t count) {
        const Ints keys = makeInts(count);
        const Ints items = makeInts(count);
        const auto list = listOfInts(keys, items);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            ASSERT_EQ(list->getItem(keys[i].get()), items[i].get());
            ASSERT_EQ(list->getKey(items[i].get()), keys[i].get());
        }
    });
}

TEST(CostOfSearches, RemovingKeysInOrder) {
    expectSteps(12, [](int32_t count) {
        const Ints values = makeInts(count);
        const auto list = listOfInts(values, values);
        for (const auto& key : values) {
            list->removeKey(key.get());
        }
        EXPECT_EQ(list->getCount(), 0);
    });
}

TEST(CostOfSearches, RemovingManyPairsWithOneKeyValue) {
    for (const int32_t count : {1000, 10000}) {
        const auto odd = make<KEL_Int_Impl>(1);
        const auto list = make<KEL_IndexList_Impl>();
        for (int32_t i = 0; i < count; ++i) {
            list->addPair(make<KEL_Int_Impl>(i % 2).get(), make<KEL_Int_Impl>(i).get());
        }
        SearchSteps steps;
        list->removeKeyValue(odd.get());
        const uint64_t moves = steps.takeMoves();
        EXPECT_LE(moves, 2 * static_cast<uint64_t>(count)); // of both arrays
        EXPECT_GE(moves, static_cast<uint64_t>(count) / 2); // the counter works
        ASSERT_EQ(list->getCount(), count / 2);
        for (int32_t i = 0; i < list->getCount(); ++i) {
            ASSERT_EQ(list->getItemAt(i)->toInt(), 2 * i);
        }
    }
}

TEST(CostOfSearches, AddingFindingAndRemovingElementsOfAManager) {
    expectSteps(6, [](int32_t count) {
        const Ints values = makeInts(count);
        const auto manager = make<KEL_Manager_Impl>();
        for (const auto& value : values) {
            manager->addKel(value.get());
        }
        JHashCode identity;
        for (const auto& value : values) {
            ASSERT_EQ(manager->getKel(value->getHashCode(identity)), value.get());
        }
        for (const auto& value : values) {
            manager->removeKel(value->getHashCode(identity));
            ASSERT_FALSE(manager->containsKel(value->getHashCode(identity)));
        }
        EXPECT_EQ(manager->size(), 0);
    });
}

TEST(CostOfSearches, SelectingKeys) {
    expectSteps(45, [](int32_t count) {
        const Ints keys = makeInts(count);
        const auto list = listOfInts(keys, keys);
        const auto selector = make<KEL_MultiSelector_Impl>(list.get());
        for (const auto& key : keys) {
            ASSERT_TRUE(selector->selectKey(key.get()));
            ASSERT_TRUE(selector->isKeySelected(key.get()));
            ASSERT_TRUE(selector->isItemSelected(key.get()));
        }
        EXPECT_EQ(Held<KEL_Array>(selector->getSelectedItems())->getCount(), count);
        for (const auto& key : keys) {
            ASSERT_TRUE(selector->deselectKey(key.get()));
        }
    });
}

TEST(CostOfSearches, AddingFindingAndRemovingNames) {
    expectSteps(16, [](int32_t count) {
        const auto names = make<StringEnumeration_Impl>();
        std::vector<std::string> texts;
        for (int32_t i = 0; i < count; ++i) {
            texts.push_back("name " + std::to_string(i));
            names->add(texts.back().c_str());
        }
        const auto all = make<StringEnumeration_Impl>();
        all->addAll(names.get());
        all->addAll(names.get());
        EXPECT_EQ(all->getCount(), count);
        for (const std::string& text : texts) {
            ASSERT_TRUE(names->contains(text.c_str()));
            names->remove(text.c_str());
            ASSERT_FALSE(names->contains(text.c_str()));
        }
    });
}

TEST(CostOfSearches, AddingAndRemovingObservers) {
    expectSteps(5, [](int32_t count) {
        std::vector<Watcher> watchers(static_cast<std::size_t>(count));
        const auto value = make<KEL_Int_Impl>(1);
        for (Watcher& watcher : watchers) {
            value->addObserver(&watcher);
            value->addObserver(&watcher);
        }
        EXPECT_EQ(value->countObservers(), count);
        for (Watcher& watcher : watchers) {
            value->removeObserver(&watcher);
        }
        EXPECT_EQ(value->countObservers(), 0);
    });
}

} // namespace
