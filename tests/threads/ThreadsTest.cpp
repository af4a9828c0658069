// What the library promises to hosts with several threads. The thread sanitizer runs these tests
// too.
#include "Threads.h"
#include "Work.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>

namespace {

using host::deepTree;
using host::failuresOf;
using host::Kinds;
using host::Mailbox;
using host::RandomTrees;
using host::require;
using host::valuesOf;
using host::Work;

constexpr int threadCount = 4;

/// Returns a different seed for each thread and round.
uint64_t seedOf(int thread, int round) {
    return static_cast<uint64_t>(thread) * 1000 + static_cast<uint64_t>(round);
}

// In a process of its own this is the first use of everything that the library makes only once.
TEST(FirstUse, CanBeOnManyThreadsAtOnce) {
    EXPECT_EQ(failuresOf(8, [](int thread) { Work(seedOf(thread, 0)).doEverything(); }), "");
}

TEST(Threads, DoEverythingWithTreesOfTheirOwn) {
    EXPECT_EQ(failuresOf(threadCount,
                         [](int thread) {
                             Work work(seedOf(thread, 1));
                             for (int round = 0; round < 10; ++round) {
                                 work.doEverything();
                             }
                         }),
              "");
}

TEST(Threads, NeverDrawAnIdentityTwice) {
    constexpr int values = 2000;
    std::array<std::vector<std::array<uint32_t, 4>>, threadCount> drawn;
    EXPECT_EQ(failuresOf(threadCount,
                         [&](int thread) {
                             auto& mine = drawn[static_cast<std::size_t>(thread)];
                             for (int i = 0; i < values; ++i) {
                                 const kel::value made = i;
                                 JHashCode words;
                                 made.raw()->getHashCode(words);
                                 mine.push_back({words.w0, words.w1, words.w2, words.w3});
                             }
                         }),
              "");
    std::vector<std::array<uint32_t, 4>> all;
    for (const auto& each : drawn) {
        all.insert(all.end(), each.begin(), each.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all.size(), std::size_t{threadCount * values});
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

TEST(Threads, HandATreeOnWithItsObservers) {
    struct Watched {
        kel::value tree;
        kel::subscription all;
        std::shared_ptr<int> calls = std::make_shared<int>(0);
    };
    constexpr int trees = 40;
    Mailbox<Watched> made;
    Mailbox<Watched> changed;
    EXPECT_EQ(failuresOf(
                  3,
                  [&](int thread) {
                      RandomTrees random(seedOf(thread, 2));
                      if (thread == 0) {
                          for (int i = 0; i < trees; ++i) {
                              Watched next;
                              next.tree = random.make(Kinds::ofText, 50);
                              next.all = kel::watch_tree(
                                  next.tree, [calls = next.calls](std::string_view,
                                                                  const kel::value&) { ++*calls; });
                              made.send(std::move(next));
                          }
                          made.close();
                      } else if (thread == 1) {
                          while (auto next = made.receive()) {
                              const int changes = random.change(next->tree);
                              require(*next->calls >= changes, "An observer was not called.");
                              next->tree["who"] = thread;
                              changed.send(std::move(*next));
                          }
                          changed.close();
                      } else {
                          int count = 0;
                          while (auto next = changed.receive()) {
                              const int before = *next->calls;
                              next->tree["who"].assign(thread);
                              require(*next->calls == before + 1, "An observer was not called.");
                              const std::string text = kel::to_text(next->tree);
                              require(kel::to_text(kel::from_text(text)) == text, "Text changed.");
                              ++count;
                          }
                          require(count == trees, "A tree was lost.");
                      }
                  }),
              "");
}

TEST(Threads, HandAStreamOn) {
    struct Open {
        kel::ref<KELStringInputStream> stream;
        int left = 0;
    };
    constexpr int roots = 60;
    std::string text;
    for (int i = 0; i < roots; ++i) {
        text += kel::to_text(RandomTrees(seedOf(9, i)).make(Kinds::ofText, 20)) + "\n";
    }
    Mailbox<Open> boxes[2];
    boxes[0].send(
        {kel::adopt(CreateKELStringInputStream(text.data(), static_cast<int32_t>(text.size()))),
         roots});
    EXPECT_EQ(failuresOf(2,
                         [&](int thread) {
                             while (auto open = boxes[thread].receive()) {
                                 require(static_cast<bool>(kel::adopt(open->stream->read())),
                                         "A root value was lost.");
                                 if (--open->left == 0) {
                                     boxes[0].close();
                                     boxes[1].close();
                                     return;
                                 }
                                 boxes[1 - thread].send(std::move(*open));
                             }
                         }),
              "");
}

// Each thread makes values without a pause and releases those that the others have made.
TEST(Threads, ReleaseValuesThatOthersHaveMade) {
    Mailbox<kel::value> boxes[threadCount];
    EXPECT_EQ(failuresOf(threadCount,
                         [&](int thread) {
                             RandomTrees random(seedOf(thread, 3));
                             for (int i = 0; i < 150; ++i) {
                                 for (Mailbox<kel::value>& box : boxes) {
                                     box.send(random.make(Kinds::every, 30));
                                 }
                                 while (auto tree = boxes[thread].poll()) {
                                     tree->clear();
                                 }
                             }
                         }),
              "");
}

TEST(Threads, ReleaseDeepTreesAtOnce) {
    std::vector<kel::value> trees(threadCount);
    std::generate(trees.begin(), trees.end(), [] { return deepTree(5000); });
    EXPECT_EQ(failuresOf(threadCount,
                         [&](int thread) {
                             trees[static_cast<std::size_t>(thread)] = nullptr; // made elsewhere
                             for (int i = 0; i < 20; ++i) {
                                 deepTree(1000);
                             }
                         }),
              "");
}

// Values live on in a pool, and their slabs pass to threads that go on or begin.
TEST(Threads, EndWhileOthersGoOnWithTheirValues) {
    Mailbox<kel::value> pool;
    std::atomic<bool> isOver{false};
    const auto brief = [&pool](int thread, int round) {
        RandomTrees random(seedOf(thread, round));
        for (int i = 0; i < 10; ++i) {
            pool.send(random.make(Kinds::every, 60));
        }
        if (auto other = pool.poll()) {
            random.change(*other);
            pool.send(std::move(*other));
        }
    };
    EXPECT_EQ(failuresOf(threadCount,
                         [&](int thread) {
                             if (thread < 2) { // begins others, which end at once
                                 for (int round = 0; round < 40; ++round) {
                                     std::thread(brief, thread, round).join();
                                 }
                                 isOver = true;
                                 return;
                             }
                             Work work(seedOf(thread, 4));
                             while (!isOver) { // goes on
                                 work.doEverything();
                                 for (int i = 0; i < 10; ++i) {
                                     pool.poll();
                                 }
                             }
                         }),
              "");
    while (auto left = pool.poll()) {
        require(valuesOf(*left).size() > 1, "A value was lost.");
    }
}

TEST(Threads, EndTogetherAndOthersTakeTheirSlabsOver) {
    std::vector<kel::value> left(8);
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(failuresOf(8,
                             [&](int thread) {
                                 kel::value& mine = left[static_cast<std::size_t>(thread)];
                                 RandomTrees random(seedOf(thread, 100 + round));
                                 if (mine) {
                                     random.change(mine);
                                     require(mine.copy() == mine, "A copy differs.");
                                 }
                                 mine = random.make(Kinds::ofText, 200);
                             }),
                  "");
        std::rotate(left.begin(), left.begin() + 1, left.end());
    }
}

/// Releases its tree, and makes and releases others, when its thread's variables are destroyed.
struct LateUser {
    ~LateUser() {
        tree = nullptr;
        RandomTrees(1).make(Kinds::every, 50);
    }
    kel::value tree;
};
thread_local LateUser lateUser;

TEST(Threads, CanUseValuesWhileTheyEnd) {
    EXPECT_EQ(failuresOf(8,
                         [](int thread) {
                             lateUser.tree = RandomTrees(seedOf(thread, 5)).make(Kinds::every, 100);
                         }),
              "");
}

TEST(Threads, HandAnExceptionOn) {
    Mailbox<std::exception_ptr> box;
    EXPECT_EQ(
        failuresOf(2,
                   [&](int thread) {
                       if (thread == 0) {
                           for (int i = 0; i < 100; ++i) {
                               try {
                                   kel::adopt(CreateKELStringInputStream("{ a = ", 6))->read();
                               } catch (KELException*) {
                                   box.send(std::current_exception());
                               }
                           }
                           box.close();
                           return;
                       }
                       int count = 0;
                       while (auto thrown = box.receive()) {
                           try {
                               std::rethrow_exception(*thrown);
                           } catch (KELException* failure) {
                               count += *failure->getMessage() != '\0';
                               DeleteKELException(failure);
                           }
                       }
                       require(count == 100, "An exception was lost.");
                   }),
        "");
}

} // namespace
