// kel::watch on several threads.
#include "WatchSupport.h"

#include <memory>
#include <thread>

using namespace watch_test;

namespace {

TEST_F(HppWatch, TwoThreadsWatchTwoTrees) {
    const auto work = [] {
        kel::value tree = kel::object({{"n", 0}, {"list", kel::array()}});
        kel::value n = tree["n"];
        int calls = 0;
        int reports = 0;
        for (int i = 0; i < 200; ++i) {
            kel::subscription once;
            once = kel::watch(n, [&](const kel::value&) {
                ++calls;
                once.end();
            });
            const kel::subscription all =
                kel::watch_tree(tree, [&](std::string_view, const kel::value&) { ++reports; });
            n.assign(i);
            tree["list"].push_back(i);
        }
        EXPECT_EQ(calls, 200);
        EXPECT_EQ(reports, 400);
    };
    std::thread other(work);
    work();
    other.join();
}

TEST_F(HppWatch, AThreadCanEndWithASubscriptionThatEndedInside) {
    std::thread([this] {
        const auto own = std::make_shared<kel::subscription>();
        *own = kel::watch(number, [own](const kel::value&) { own->end(); });
        change();
    }).join();
    EXPECT_EQ(references(number.raw()), 1);
}

TEST_F(HppWatch, AValueChangesHandsBetweenThreads) {
    std::thread([this] { a = kel::watch(number, writing('a', [this] { a.end(); })); }).join();
    b = kel::watch(number, writing('b'));
    EXPECT_EQ(change(), "ab");
    std::thread([this] { b.end(); }).join();
    EXPECT_EQ(change(), "");
    EXPECT_EQ(references(number.raw()), 1);
}

kel::subscription outlives_the_thread;
kel::value outlives_too;

TEST_F(HppWatch, ASubscriptionCanOutliveItsThread) {
    outlives_too = number;
    std::thread([&] {
        outlives_the_thread = kel::watch(outlives_too, [](const kel::value&) {});
    }).join();
    EXPECT_TRUE(outlives_the_thread); // it ends after the objects of the main thread
}

} // namespace
