// Forks while threads work, which only POSIX systems have. A child has only the thread that forked.
#include "Threads.h"
#include "Work.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using host::failuresOf;
using host::Kinds;
using host::Mailbox;
using host::RandomTrees;
using host::require;
using host::Work;

/// Runs the action in a child process. \return whether it ended without an exception
template <class Action> bool succeedsInChild(const Action& action) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60); // a child that waits for a lock of a thread that it does not have
        try {
            action();
            _exit(0);
        } catch (...) {
            _exit(1);
        }
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

/// Works on threads of its own until the end of the scope.
class OthersAtWork {
public:
    OthersAtWork() {
        for (uint64_t seed = 50; seed < 52; ++seed) {
            threads_.emplace_back([this, seed] {
                RandomTrees random(seed);
                while (!isOver_) {
                    kel::value tree = random.make(Kinds::ofText, 40);
                    box_.send(kel::from_text(kel::to_text(tree)));
                    random.change(tree);
                    if (auto other = box_.poll()) { // perhaps one of the other thread
                        random.change(*other);
                    }
                }
            });
        }
    }
    OthersAtWork(const OthersAtWork&) = delete;
    OthersAtWork& operator=(const OthersAtWork&) = delete;
    ~OthersAtWork() {
        isOver_ = true;
        for (std::thread& thread : threads_) {
            thread.join();
        }
    }

private:
    std::atomic<bool> isOver_{false};
    Mailbox<kel::value> box_;
    std::vector<std::thread> threads_;
};

// Each child begins as a process that has not used the library yet, if this is the first test.
TEST(FirstUse, CanBeWhileAnotherThreadForks) {
    for (unsigned i = 0; i < 60; ++i) {
        EXPECT_TRUE(succeedsInChild([i] {
            std::thread other([] { Work(1).build(); });
            usleep(i * 20);
            const bool isSuccess = succeedsInChild([] { Work(2).build(); });
            other.join();
            require(isSuccess, "The grandchild failed.");
        })) << i;
    }
}

TEST(Forks, LeaveAChildThatCanDoEverything) {
    const OthersAtWork others;
    for (uint64_t seed = 0; seed < 15; ++seed) {
        EXPECT_TRUE(succeedsInChild([seed] { Work(seed).doEverything(); })) << seed;
    }
}

TEST(Forks, LeaveAChildThatUsesAndReleasesValuesOfTheParentsThreads) {
    const OthersAtWork others;
    for (uint64_t seed = 0; seed < 15; ++seed) {
        std::vector<kel::value> theirs;
        std::thread([&] { // its slabs pass to the next thread that makes or frees values
            for (int i = 0; i < 20; ++i) {
                theirs.push_back(RandomTrees(seed).make(Kinds::ofText, 60));
            }
        })
            .join();
        const std::string text = kel::to_text(theirs.front());
        EXPECT_TRUE(succeedsInChild([&] {
            require(kel::to_text(theirs.front()) == text, "A value differs in the child.");
            theirs.clear();
            Work(seed).doEverything();
        })) << seed;
        EXPECT_EQ(kel::to_text(theirs.front()), text);
    }
}

TEST(Forks, CanComeFromSeveralThreads) {
    EXPECT_EQ(failuresOf(3,
                         [](int thread) {
                             RandomTrees random(static_cast<uint64_t>(thread));
                             kel::value mine = random.make(Kinds::ofText, 60);
                             for (int i = 0; i < 8; ++i) {
                                 require(succeedsInChild([&] {
                                             random.change(mine);
                                             require(mine.copy() == mine, "A copy differs.");
                                             mine = nullptr;
                                         }),
                                         "A child failed.");
                                 random.change(mine);
                             }
                         }),
              "");
}

} // namespace
