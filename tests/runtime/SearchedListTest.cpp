#include "runtime/SearchedList.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Finds texts of which all have the same key.
struct OneKey {
    static bool matches(const char* element, const char* wanted) {
        return std::string_view(element) == wanted;
    }
    static JHashCode keyOf(const char*, const kel::IdentityKey&) { return {1, 2, 3, 4}; }
};

TEST(SearchedList, FindsEveryElementOfOneKey) {
    std::vector<std::string> texts;
    for (int i = 0; i < 300; ++i) {
        texts.push_back(std::to_string(i));
    }
    kel::SearchedList<const char, OneKey> list;
    for (const std::string& text : texts) {
        list.append(text.c_str());
    }
    for (int32_t i = 299; i >= 0; --i) {
        EXPECT_EQ(list.indexOf(texts[static_cast<std::size_t>(i)].c_str()), i);
    }
    EXPECT_EQ(list.indexOf("none"), -1);
    EXPECT_EQ(list.indexOf(texts[5].c_str()), 5);
    list.takeAll([](const char*) {});
    list.freeBlock();
}

} // namespace
