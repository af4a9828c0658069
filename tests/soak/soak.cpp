// kel_soak SECONDS [values]
//
// Does mixed work with random trees for a time, in one process, on threads that come and go.
// Between the rounds of work no value may be left and the memory may not grow. With "values", as
// under sanitizers, which keep freed memory, only the values are judged. Ends with status 1 if
// something is wrong.
#include "Ledger.h"
#include "MemoryWatch.h"
#include "Threads.h"
#include "Work.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace {

using host::Kinds;
using host::Mailbox;
using host::RandomTrees;
using host::Work;
using Clock = std::chrono::steady_clock;

/// The work of one round, which leaves nothing.
class Round {
public:
    Round(uint64_t number, soak::Ledger& ledger) : number_(number), ledger_(ledger) {}

    /// \return the messages of what went wrong
    std::string run() {
        std::string failures = host::failuresOf(3, [this](int thread) { work(thread); });
        while (auto left = box_.poll()) {
            enter(*left);
        }
        const std::size_t live = ledger_.settle();
        if (live > 0) {
            failures += std::to_string(live) + " values are still alive\n";
        }
        return failures;
    }

private:
    uint64_t seed(int thread) const { return number_ * 16 + static_cast<uint64_t>(thread); }

    void work(int thread) {
        Work everything(seed(thread));
        everything.doEverything();
        RandomTrees& random = everything.trees();
        for (int i = 0; i < 10; ++i) {
            handOn(random.make(Kinds::every, 1 << random.below(11)));
            std::thread([this, thread, i] { // leaves its slabs and a tree
                RandomTrees brief(seed(thread) * 100 + static_cast<uint64_t>(i));
                handOn(brief.make(Kinds::ofText, 100));
                useAnother(brief);
            })
                .join();
            useAnother(random);
        }
        everything.doEverything();
    }

    /// Hands a tree to whichever thread uses another.
    void handOn(kel::value tree) {
        if (seen_++ % 8 == 0) {
            enter(tree);
        }
        box_.send(std::move(tree));
    }

    /// Copies, changes and releases a tree, which another thread has mostly made.
    void useAnother(RandomTrees& random) {
        if (auto tree = box_.poll()) {
            kel::value copy = tree->copy();
            random.change(*tree);
            copy.raw()->assign(tree->raw());
            host::require(copy == *tree, "An assigned value differs.");
        }
    }

    void enter(const kel::value& tree) { ledger_.add(host::valuesOf(tree)); }

    uint64_t number_;
    soak::Ledger& ledger_;
    Mailbox<kel::value> box_;
    std::atomic<unsigned> seen_{0};
};

bool soakFor(double seconds, bool judgesMemory) {
    soak::Ledger ledger;
    soak::MemoryWatch memory;
    uint64_t rounds = 0;
    const Clock::time_point begin = Clock::now();
    int printed = 0;
    for (double part = 0; part < 1;) {
        std::string failures;
        // A thread that ends returns the blocks that malloc keeps for it, so they are not counted.
        std::thread([&] { failures = Round(rounds++, ledger).run(); }).join();
        if (!failures.empty()) {
            std::printf("round %llu:\n%s", static_cast<unsigned long long>(rounds),
                        failures.c_str());
            return false;
        }
        part = std::chrono::duration<double>(Clock::now() - begin).count() / seconds;
        memory.note(part);
        for (; printed < part * 10 && printed < 10; ++printed) {
            std::printf("%6.1f s %8llu rounds, %10llu values counted, resident %7zu KiB, "
                        "in use of malloc %8zu bytes\n",
                        part * seconds, static_cast<unsigned long long>(rounds),
                        static_cast<unsigned long long>(ledger.count()),
                        memory.last.resident / 1024, memory.last.inUse);
            std::fflush(stdout);
        }
    }
    return !judgesMemory || memory.isFlat();
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::strtod(argv[1], nullptr) : 0;
    const bool onlyValues = argc == 3 && std::strcmp(argv[2], "values") == 0;
    if (!(seconds > 0) || (argc != 2 && !onlyValues)) {
        std::fputs("usage: kel_soak SECONDS [values]\n", stderr);
        return 2;
    }
    return soakFor(seconds, !onlyValues) ? 0 : 1;
}
