/// \file
/// Index lists that run out of memory.
#include "support/AllocationFailure.h"
#include "support/IndexListFixture.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

TEST(KEL_IndexListMemory, ManyPairsAreAddedCompletelyOrNotAtAll) {
    const int32_t all = 100; // more than a new list has room for
    const auto source = make<KEL_IndexList_Impl>();
    for (int32_t i = 0; i < all; ++i) {
        source->addPair(intOf(i).get(), intOf(-i).get());
    }
    auto list = make<KEL_IndexList_Impl>();
    int32_t count = 0;
    failEachAllocation([&] { list->addPairs(source.get()); },
                       [&] {
                           count = list->getCount();
                           EXPECT_TRUE(count == 0 || count == all) << count;
                           list = make<KEL_IndexList_Impl>();
                       });
    EXPECT_EQ(count, all);
}

} // namespace
