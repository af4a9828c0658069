#include "platform/SlabStore.h"

#include "support/AllocationFailure.h"

#include <gtest/gtest.h>

#if !defined(_WIN32)

#include "support/EndChild.h"
#include "support/NewProcess.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <pthread.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace kel::platform;

/// Blocks that are filled with their size, so that one that overlaps another is noticed.
class Blocks {
public:
    Blocks() = default;
    Blocks(Blocks&&) = default;
    Blocks& operator=(Blocks&&) = default;
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;
    ~Blocks() {
        while (!blocks_.empty()) {
            give(blocks_.size() - 1);
        }
    }

    void take(std::size_t size) {
        void* block = takeBlock(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % (size % 16 == 0 ? 16 : 8), 0U);
        std::memset(block, static_cast<int>(size % 251), size);
        blocks_.emplace_back(static_cast<unsigned char*>(block), size);
    }

    void give(std::size_t index) {
        const auto [block, size] = blocks_[index];
        bool intact = true;
        for (std::size_t i = 0; i < size; ++i) {
            intact &= block[i] == size % 251;
        }
        EXPECT_TRUE(intact) << size;
        giveBlock(block);
        blocks_[index] = blocks_.back();
        blocks_.pop_back();
    }

    std::size_t count() const { return blocks_.size(); }

private:
    std::vector<std::pair<unsigned char*, std::size_t>> blocks_;
};

void takeAndGive(Blocks& blocks, unsigned seed, int steps) {
    std::mt19937 random(seed);
    for (int i = 0; i < steps; ++i) {
        if (blocks.count() < 500 || random() % 2 == 0) {
            blocks.take(1 + random() % largestBlock);
        } else {
            blocks.give(random() % blocks.count());
        }
    }
}

TEST(SlabStore, BlocksOfEverySizeAreApart) {
    Blocks blocks;
    for (std::size_t size = 1; size <= largestBlock; ++size) {
        blocks.take(size);
    }
}

TEST(SlabStore, BlocksOfOneSizeLieSideBySide) {
    std::thread([] { // a new thread has only slabs without used blocks
        std::vector<char*> blocks;
        for (int i = 0; i < 100; ++i) {
            blocks.push_back(static_cast<char*>(takeBlock(blockGranule * 3)));
        }
        int neighbours = 0;
        for (std::size_t i = 1; i < blocks.size(); ++i) {
            neighbours += blocks[i] - blocks[i - 1] == static_cast<ptrdiff_t>(blockGranule * 3);
        }
        EXPECT_GE(neighbours, 98);
        for (char* block : blocks) {
            giveBlock(block);
        }
    })
        .join();
}

TEST(SlabStore, RandomUseKeepsBlocksApart) {
    Blocks blocks;
    takeAndGive(blocks, 1, 200000);
}

TEST(SlabStore, AGivenBlockIsTakenAgain) {
    void* block = takeBlock(40);
    giveBlock(block);
    void* again = takeBlock(40);
    EXPECT_EQ(again, block);
    giveBlock(again);
}

/// Takes this many bytes in blocks of one size, and gives them back.
void takeAndGiveBytes(std::size_t bytes, std::size_t size) {
    std::vector<void*> blocks;
    for (std::size_t taken = 0; taken < bytes; taken += size) {
        blocks.push_back(takeBlock(size));
    }
    EXPECT_GE(slabBytesOfThread(), bytes);
    for (void* block : blocks) {
        giveBlock(block);
    }
}

constexpr std::size_t megabyte = 1 << 20;

/// The most that a thread keeps without using it, with two regions for the slabs of the tests.
constexpr std::size_t largestReserve = 68 * megabyte;

TEST(SlabStore, EmptySlabsReturnToTheSystem) {
    std::thread([] {
        takeAndGiveBytes(2 * largestReserve, 112);
        EXPECT_LE(slabBytesOfThread(), largestReserve);
        takeAndGiveBytes(2 * largestReserve, 48);
        EXPECT_LE(slabBytesOfThread(), largestReserve);
    }).join();
}

TEST(SlabStore, AThreadKeepsTheMemoryThatItUsesAgainAndAgain) {
    std::thread([] {
        takeAndGiveBytes(24 * megabyte, 112);
        EXPECT_GE(slabBytesOfThread(), 24 * megabyte);
    }).join();
}

TEST(SlabStore, AThreadThatUsesLessReturnsMemory) {
    std::thread([] {
        takeAndGiveBytes(2 * largestReserve, 112);
        for (std::size_t bytes = 0; bytes < 512 * megabyte; bytes += 4 * megabyte) {
            takeAndGiveBytes(4 * megabyte, 112);
        }
        EXPECT_LE(slabBytesOfThread(), 16 * megabyte);
    }).join();
}

TEST(SlabStore, BlocksOfASlabAreTakenInOrderHoweverTheyWereFreed) {
    std::thread([] {
        std::vector<char*> blocks;
        for (int i = 0; i < 500; ++i) { // fewer than a slab has
            blocks.push_back(static_cast<char*>(takeBlock(112)));
        }
        std::shuffle(blocks.begin() + 1, blocks.end(), std::mt19937(1));
        const auto kept = blocks.begin() + 10;
        std::for_each(kept, blocks.end(), giveBlock);
        std::generate(kept, blocks.end(), [] { return static_cast<char*>(takeBlock(112)); });
        int descents = 0;
        for (auto block = kept + 1; block != blocks.end(); ++block) {
            descents += block[0] < block[-1];
        }
        EXPECT_LE(descents, 1) << "where the slab begins from its start again";
        std::for_each(blocks.begin(), blocks.end(), giveBlock);
    }).join();
}

TEST(SlabStore, AnotherThreadCanGiveBlocksBack) {
    std::thread([] {
        std::vector<void*> blocks;
        for (int round = 0; round < 20; ++round) {
            for (int i = 0; i < 20000; ++i) {
                blocks.push_back(takeBlock(112));
            }
            std::thread([&blocks] {
                for (void* block : blocks) {
                    giveBlock(block);
                }
            }).join();
            blocks.clear();
        }
        EXPECT_LE(slabBytesOfThread(), std::size_t{32} << 20) << "blocks are used again";
    }).join();
}

TEST(SlabStore, AnotherThreadCanGiveABlockOfASlabWithRoom) {
    std::thread([] {
        std::vector<void*> blocks;
        for (int i = 0; i < 2000; ++i) { // more than a slab has
            blocks.push_back(takeBlock(112));
        }
        giveBlock(blocks[200]);
        std::thread([&blocks] { giveBlock(blocks[100]); }).join();
        std::vector<void*> again;
        while (std::count(again.begin(), again.end(), blocks[200]) == 0 && again.size() < 2000) {
            again.push_back(takeBlock(112));
        }
        EXPECT_EQ(std::count(again.begin(), again.end(), blocks[100]), 1);
        EXPECT_LT(again.size(), 2000U);
        blocks.erase(blocks.begin() + 200);
        blocks.erase(blocks.begin() + 100);
        std::for_each(blocks.begin(), blocks.end(), giveBlock);
        std::for_each(again.begin(), again.end(), giveBlock);
    }).join();
}

TEST(SlabStore, AThreadCanEndWithAFullSlab) {
    Blocks left;
    for (int i = 0; i < 1200; ++i) { // each takes the slab over; one takes its last block
        std::thread([&left] { left.take(112); }).join();
    }
}

bool getsNoBlockWithoutMemory() {
    void* block = nullptr;
    std::thread([&block] {
        const kel::test::FailingAllocation failing(0, true);
        block = takeBlock(112);
    }).join();
    return block == nullptr;
}

TEST(SlabStoreDeathTest, AThreadWithoutMemoryGetsNoBlock) {
    EXPECT_TRUE_IN_NEW_PROCESS(getsNoBlockWithoutMemory());
}

bool givesBlocksWithoutMemory() {
    void* kept = nullptr;
    void* given = nullptr;
    void* again = nullptr;
    std::thread([&] {
        kept = takeBlock(112);
        given = takeBlock(112);
    }).join();
    std::thread([&] {
        const kel::test::FailingAllocation failing(0, true);
        giveBlock(given);
    }).join();
    std::thread([&] { // takes the slabs over
        giveBlock(kept);
        again = takeBlock(112);
    })
        .join();
    return again == std::min(kept, given);
}

TEST(SlabStoreDeathTest, AThreadWithoutMemoryCanGiveTheBlocksOfAnEndedOne) {
    EXPECT_TRUE_IN_NEW_PROCESS(givesBlocksWithoutMemory());
}

bool failsWithoutAddressSpace() {
    rlimit before = {};
    getrlimit(RLIMIT_AS, &before);
    giveBlock(takeBlock(112));
    const rlimit none = {0, before.rlim_max};
    setrlimit(RLIMIT_AS, &none);
    int left = 1 << 20;
    while (left > 0 && takeBlock(largestBlock) != nullptr) {
        --left;
    }
    setrlimit(RLIMIT_AS, &before);
    return left > 0 && takeBlock(largestBlock) != nullptr;
}

TEST(SlabStoreDeathTest, WithoutAddressSpaceForARegionThereIsNoBlockUntilThereIsAgain) {
    EXPECT_TRUE_IN_NEW_PROCESS(failsWithoutAddressSpace());
}

void (*duringFork)() = nullptr;

/// Registers a handler of forks before the store does, which is therefore called after the store's.
struct EarlyHandler {
    EarlyHandler() {
        pthread_atfork(
            [] {
                if (duringFork != nullptr) {
                    duringFork();
                }
            },
            nullptr, nullptr);
    }
};
[[gnu::init_priority(101)]] EarlyHandler earlyHandler;

TEST(SlabStore, AnEarlierHandlerOfForksCanUseIt) {
    std::thread([] { // needs a heap, and the lock for it
        duringFork = [] { giveBlock(takeBlock(64)); };
        const pid_t child = fork();
        if (child == 0) {
            kel::test::endChild(0);
        }
        duringFork = nullptr;
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    })
        .join();
}

TEST(SlabStore, BlocksOutliveTheirThread) {
    std::vector<Blocks> left(4);
    for (unsigned round = 0; round < 5; ++round) {
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < left.size(); ++i) {
            // Each thread continues with the blocks that another thread has left.
            threads.emplace_back([&blocks = left[(i + round) % left.size()], seed = round * 4 + i] {
                takeAndGive(blocks, seed, 20000);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

TEST(SlabStore, AThreadThatGivesBlocksOfAnEndedOneTakesItsSlabsOver) {
    std::thread([] {
        const std::size_t before = slabBytesOfThread();
        std::vector<void*> blocks;
        std::thread([&blocks] {
            for (std::size_t bytes = 0; bytes < 2 * largestReserve; bytes += 112) {
                blocks.push_back(takeBlock(112));
            }
        }).join();
        giveBlock(blocks.front());
        EXPECT_GE(slabBytesOfThread(), before + 2 * largestReserve);
        for (std::size_t i = 1; i < blocks.size(); ++i) {
            giveBlock(blocks[i]);
        }
        EXPECT_LE(slabBytesOfThread(), before + largestReserve);
    }).join();
}

/// Takes and gives blocks when its thread's variables are destroyed.
struct LateUser {
    ~LateUser() { giveBlock(takeBlock(64)); }
    void touch() {}
};
thread_local LateUser lateUser;

TEST(SlabStore, AThreadCanUseItWhileItEnds) {
    for (int i = 0; i < 100; ++i) {
        std::thread([] {
            lateUser.touch();
            giveBlock(takeBlock(64));
        }).join();
    }
}

} // namespace

#endif
