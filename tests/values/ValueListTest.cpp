#include "values/ValueList.h"

#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "values/KEL_Int_Impl.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using kel::ValueList;
using kel::test::Held;

Held<KEL_Int_Impl> number(int32_t value) {
    return Held<KEL_Int_Impl>(new KEL_Int_Impl(value));
}

std::vector<int32_t> numbersOf(const ValueList& list) {
    std::vector<int32_t> numbers;
    for (int32_t i = 0; i < list.size(); ++i) {
        numbers.push_back(list[i]->toInt());
    }
    return numbers;
}

TEST(ValueList, DoesWhatAVectorDoes) {
    std::mt19937 random(7);
    ValueList list;
    std::vector<int32_t> expected;
    for (int32_t step = 0; step < 20000; ++step) {
        const auto count = static_cast<uint32_t>(expected.size());
        const auto value = number(step);
        const auto index = static_cast<int32_t>(random() % (count + 1));
        const auto place = expected.begin() + index;
        switch (random() % 6) {
        case 0:
            list.append(value.get());
            expected.push_back(step);
            break;
        case 1:
        case 2:
            list.insert(value.get(), index);
            expected.insert(place, step);
            break;
        case 3:
            if (place != expected.end()) {
                list.set(value.get(), index);
                *place = step;
            }
            break;
        case 4:
            if (place != expected.end()) {
                list.remove(index);
                expected.erase(place);
            }
            break;
        default:
            if (place != expected.end()) {
                list.swap(index, 0);
                std::swap(*place, expected.front());
            }
        }
        ASSERT_EQ(list.size(), static_cast<int32_t>(expected.size()));
        if (step % 100 == 0) {
            ASSERT_EQ(numbersOf(list), expected);
        }
    }
    ValueList other;
    other.swap(list);
    EXPECT_EQ(numbersOf(other), expected);
    EXPECT_EQ(list.size(), 0);
    other.clear();
    EXPECT_EQ(other.size(), 0);
}

TEST(ValueList, SharesItsElements) {
    const auto value = number(1);
    {
        ValueList list;
        list.append(value.get());
        list.append(value.get());
        EXPECT_TRUE(value->isShared());
        list.set(value.get(), 0); // the same value again
        EXPECT_EQ(list.indexOf(value.get()), 0);
        list.remove(0);
    }
    EXPECT_FALSE(value->isShared());
}

TEST(ValueList, IsUnchangedWithoutMemory) {
    const auto value = number(1);
    kel::test::failEachAllocation([&] {
        ValueList list;
        for (int32_t i = 0; i < 100; ++i) {
            const int32_t before = list.size();
            try {
                list.append(value.get());
            } catch (const JOutOfMemoryException&) {
                EXPECT_EQ(list.size(), before);
                throw;
            }
        }
    });
    EXPECT_FALSE(value->isShared());
}

TEST(ValueList, AfterMakingRoomNothingCanFail) {
    const auto value = number(1);
    ValueList list;
    list.makeRoom(100);
    const kel::test::FailingAllocation failing(0, true);
    for (int32_t i = 0; i < 100; ++i) {
        list.append(value.get());
    }
    EXPECT_EQ(list.size(), 100);
    EXPECT_THROW(list.makeRoom(INT32_MAX), JOutOfMemoryException);
}

TEST(ValueList, FindsNoNull) {
    const ValueList list;
    EXPECT_EQ(list.indexOf(nullptr), -1);
}

} // namespace
