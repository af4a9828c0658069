// The memory of operations on documents that share or nest much.
#include "MemorySupport.h"

#include <kel/kel.hpp>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

/// Returns the most memory that this process had until now, in MB. Returns 0 where that cannot be
/// measured.
long most_memory() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return memory_test::is_measured ? used.ru_maxrss / 1024 : 0; // in KB on Linux
}

kel::value nested(int depth, int content) {
    kel::value outer = kel::array({content});
    for (int i = 1; i < depth; ++i) {
        outer = kel::array({outer});
    }
    return outer;
}

/// Returns a struct with a long name for so many arrays, the last of which has a content.
kel::value long_name(int count, int content) {
    kel::value list = kel::array();
    for (int i = 0; i < count; ++i) {
        list.push_back(kel::array());
    }
    list[static_cast<std::size_t>(count) - 1].push_back(content);
    return kel::object({{std::string(1'000'000, 'x'), list}});
}

TEST(Memory, OfShowingIsThatOfTheText) {
    kel::value shared = kel::array({1});
    for (int i = 0; i < 7; ++i) {
        shared = kel::array(std::vector<kel::value>(8, shared));
    }
    const kel::value document = kel::object({{"a", shared}, {"control", "\x1b"}});
    const long before = most_memory();
    const std::size_t size = kel::shown(document).size();
    EXPECT_GT(size, 20'000'000U);
    EXPECT_LT(most_memory() - before, 400);
}

TEST(Memory, OfDifferencesIsThatOfTheDocuments) {
    const long before = most_memory();
    const std::vector<kel::difference> deep =
        kel::differences(nested(30'000, 1), nested(30'000, 2));
    ASSERT_EQ(deep.size(), 1U);
    EXPECT_EQ(deep[0].path.size(), 3U * 30'000U);
    const std::vector<kel::difference> wide =
        kel::differences(long_name(1000, 1), long_name(1000, 2));
    ASSERT_EQ(wide.size(), 1U);
    EXPECT_EQ(wide[0].path.size(), 1'000'000U + std::string_view("[999][0]").size());
    EXPECT_LT(most_memory() - before, 500);
}

} // namespace
