// Identities across fork, which only POSIX systems have.
#include "platform/RandomStream.h"
#include "support/EndChild.h"
#include "support/Guids.h"
#include "values/KEL_Int_Impl.h"

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
        kel::test::endChild(written ? 0 : 1);
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

TEST(Guid, StreamsWithOneKeyDifferByTheirNumbers) {
    const auto firstWords = [](uint32_t number, uint32_t subNumber) {
        kel::platform::RandomStream stream;
        stream.keyWith(kel::platform::RandomStream::Key(), number, subNumber);
        const uint32_t* words = stream.nextFourWords();
        return Words{words[0], words[1], words[2], words[3]};
    };
    EXPECT_EQ(firstWords(5, 6), firstWords(5, 6));
    EXPECT_TRUE(areDistinct({firstWords(0, 0), firstWords(1, 0), firstWords(0, 1)}));
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

TEST(Guid, ValuesAskedAfterAForkDifferFromTheParents) {
    std::vector<JPointer<KEL_Int_Impl>> values;
    for (int32_t i = 0; i < 100; ++i) {
        values.emplace_back(new KEL_Int_Impl(i));
    }
    const auto identities = [&values] {
        std::vector<Words> words;
        for (const JPointer<KEL_Int_Impl>& value : values) {
            const JHashCode& identity = value->identity();
            words.push_back({identity.w0, identity.w1, identity.w2, identity.w3});
        }
        return words;
    };
    std::vector<Words> all = inChild(identities);
    const std::vector<Words> ours = identities();
    all.insert(all.end(), ours.begin(), ours.end());
    EXPECT_EQ(all.size(), 200U);
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
