// Identities across fork, which only POSIX systems have.
#include "support/Guids.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using kel::test::areDistinct;
using kel::test::draw;
using kel::test::Words;

/// Runs draw in a child process, which starts as a copy of this one. Returns the identities drawn.
template <class Draw> std::vector<Words> inChild(const Draw& drawInChild) {
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const std::vector<Words> drawn = drawInChild();
        const auto size = drawn.size() * sizeof(Words);
        const bool written = write(ends[1], drawn.data(), size) == static_cast<ssize_t>(size);
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    std::vector<Words> drawn;
    Words words = {};
    while (read(ends[0], words.data(), sizeof words) == sizeof words) {
        drawn.push_back(words);
    }
    close(ends[0]);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return drawn;
}

TEST(Guid, AForkedChildNeverRepeatsItsParent) {
    draw(); // the parent's generator now has a key and is in the middle of a block
    std::vector<Words> all = inChild([] { return draw(200); });
    const std::vector<Words> ours = draw(200);
    EXPECT_EQ(all.size(), 200U);
    all.insert(all.end(), ours.begin(), ours.end());
    EXPECT_TRUE(areDistinct(std::move(all)));
}

TEST(Guid, SiblingsAndGrandchildrenNeverRepeatEachOther) {
    draw();
    std::vector<Words> all = inChild([] {
        std::vector<Words> family = inChild([] { return draw(100); });
        const std::vector<Words> own = draw(100);
        family.insert(family.end(), own.begin(), own.end());
        return family;
    });
    const std::vector<Words> sibling = inChild([] { return draw(100); });
    all.insert(all.end(), sibling.begin(), sibling.end());
    EXPECT_EQ(all.size(), 300U);
    EXPECT_TRUE(areDistinct(std::move(all)));
}

TEST(Guid, AThreadOfAForkedChildDoesNotRepeatTheParentEither) {
    draw();
    std::vector<Words> all = inChild([] {
        std::vector<Words> drawn;
        std::thread([&drawn] { drawn = draw(100); }).join();
        return drawn;
    });
    const std::vector<Words> ours = draw(100);
    all.insert(all.end(), ours.begin(), ours.end());
    EXPECT_EQ(all.size(), 200U);
    EXPECT_TRUE(areDistinct(std::move(all)));
}

} // namespace
