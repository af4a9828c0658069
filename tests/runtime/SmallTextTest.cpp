#include "runtime/SmallText.h"

#include "support/AllocationFailure.h"
#include "support/Thrown.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

using kel::SmallText;

/// Returns a text of this length.
std::string textOf(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        text += static_cast<char>('a' + i % 26);
    }
    return text;
}

TEST(SmallText, HoldsEveryLength) {
    for (std::size_t length = 0; length < 1000; ++length) {
        const std::string text = textOf(length);
        const SmallText small{std::string_view(text)};
        ASSERT_EQ(small.view(), text);
        ASSERT_EQ(small.size(), length);
        ASSERT_EQ(std::strlen(small.chars()), length) << "null-terminated";
    }
}

TEST(SmallText, IsEmptyAtFirst) {
    EXPECT_STREQ(SmallText().chars(), "");
    EXPECT_STREQ(SmallText(std::string_view()).chars(), "");
}

TEST(SmallText, UpTo23CharactersNeedNoAllocation) {
    const auto allocations = [](std::size_t length) {
        const std::string text = textOf(length);
        return kel::test::failEachAllocation(
            [&] { const SmallText small{std::string_view(text)}; });
    };
    EXPECT_EQ(allocations(23), 0U);
    EXPECT_EQ(allocations(24), 1U);
}

TEST(SmallText, TheMissingMemoryIsTheTexts) {
    const std::string text = textOf(24);
    const kel::test::FailingAllocation failing(0);
    EXPECT_EQ(kel::test::thrownMessage<JOutOfMemoryException>(
                  [&] { const SmallText small{std::string_view(text)}; }),
              "Cannot allocate memory in JString constructor.");
}

TEST(SmallText, ExchangesShortAndLongTexts) {
    for (const std::size_t first : {0U, 5U, 23U, 24U, 600U}) {
        for (const std::size_t second : {0U, 7U, 23U, 40U, 700U}) {
            SmallText a{std::string_view(textOf(first))};
            SmallText b{std::string_view(textOf(second))};
            a.swap(b);
            EXPECT_EQ(a.view(), textOf(second));
            EXPECT_EQ(b.view(), textOf(first));
            a.swap(a);
            EXPECT_EQ(a.view(), textOf(second));
        }
    }
}

} // namespace
