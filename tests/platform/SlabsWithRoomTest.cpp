// Blocks that come back to slabs which the store has set aside.
#include "platform/SlabStore.h"

#include <gtest/gtest.h>

#if !defined(_WIN32)

#include "support/AllocationFailure.h"
#include "support/NewProcess.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <thread>
#include <vector>

namespace {

using namespace kel::platform;

constexpr std::size_t slabSize = 64 * 1024;

std::size_t slabOf(const void* block) {
    return reinterpret_cast<uintptr_t>(block) / slabSize;
}

TEST(SlabsWithRoom, GiveTheFirstFreeBlockFirst) {
    std::thread([] {
        std::vector<void*> blocks;
        std::generate_n(std::back_inserter(blocks), 2000, [] { return takeBlock(112); });
        std::vector<void*> full;
        std::copy_if(blocks.begin(), blocks.end(), std::back_inserter(full),
                     [&](void* block) { return slabOf(block) == slabOf(blocks[700]); });
        ASSERT_NE(slabOf(blocks.back()), slabOf(full.back()));
        const auto [first, last] = std::minmax_element(full.begin(), full.end());
        giveBlock(*last);
        giveBlock(*first);
        std::vector<void*> again;
        do { // takes the rest of the last slab first
            again.push_back(takeBlock(112));
        } while (slabOf(again.back()) != slabOf(*first) && again.size() < 2000);
        EXPECT_EQ(again.back(), *first);
        again.push_back(takeBlock(112));
        EXPECT_EQ(again.back(), *last);
        for (void* block : blocks) {
            if (block != *first && block != *last) {
                giveBlock(block);
            }
        }
        std::for_each(again.begin(), again.end(), giveBlock);
    }).join();
}

bool takesBlocksOfSeveralSlabsAgain() {
    constexpr std::size_t sizes[] = {48, 80, 112};
    void* given[std::size(sizes)] = {};
    void* again[std::size(sizes)] = {};
    std::thread([&] {
        for (std::size_t i = 0; i < std::size(sizes); ++i) {
            takeBlock(sizes[i]); // stays in use, so that the slab does not begin with a free block
            given[i] = takeBlock(sizes[i]);
        }
    }).join();
    std::thread([&] { // has no slabs, and so cannot take over those of the ended thread
        const kel::test::FailingAllocation failing(0, true);
        std::for_each(std::begin(given), std::end(given), giveBlock);
    }).join();
    std::thread([&] { // takes the slabs over
        std::transform(std::begin(sizes), std::end(sizes), again, takeBlock);
    }).join();
    return std::equal(std::begin(given), std::end(given), again);
}

TEST(SlabsWithRoomDeathTest, GiveAllBlocksThatAThreadWithoutMemoryGaveBack) {
    EXPECT_TRUE_IN_NEW_PROCESS(takesBlocksOfSeveralSlabsAgain());
}

} // namespace

#endif
