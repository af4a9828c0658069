#include "find/KindWord.h"

#include <algorithm>
#include <string_view>

namespace kel::tool {

std::string wordOf(const KELKindFacts& facts) {
    constexpr std::string_view lead = "KEL_";
    std::string word = facts.name;
    word.erase(0, word.starts_with(lead) ? lead.size() : 0);
    std::transform(word.begin(), word.end(), word.begin(), [](char c) {
        // not reached: the names of kinds have letters alone
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return word;
}

std::vector<std::string> kindWords() {
    std::vector<std::string> words = {"null"};
    for (const KELKindFacts& facts : KELKinds) {
        words.push_back(wordOf(facts));
    }
    return words;
}

int32_t kindOfWord(const std::string& word) {
    for (const KELKindFacts& facts : KELKinds) {
        if (wordOf(facts) == word) {
            return facts.kind;
        }
    }
    return kindOfNull;
}

} // namespace kel::tool
