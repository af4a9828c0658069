#include "words/SimilarWord.h"

#include "path/PathText.h"

#include <algorithm>
#include <vector>

namespace kel::tool {

namespace {

constexpr size_t longestWord = 64;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns the number of characters to insert, remove, replace or swap with their neighbour on the
/// way from one word to the other. Capital and small letters are alike.
size_t distanceBetween(std::string_view a, std::string_view b) {
    std::vector<size_t> beforeLast(b.size() + 1);
    std::vector<size_t> last(b.size() + 1);
    std::vector<size_t> current(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) {
        last[j] = j;
    }
    for (size_t i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
            current[j] =
                std::min({last[j] + 1, current[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            const bool isSwapped = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                                   lower(a[i - 2]) == lower(b[j - 1]);
            if (isSwapped) {
                current[j] = std::min(current[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast.swap(last);
        last.swap(current);
    }
    return last[b.size()];
}

} // namespace

// A third of the characters may differ, and at least one.
SimilarWord::SimilarWord(std::string_view typed)
    : typed_(typed), distance_(std::max<size_t>(typed.size() / 3, 1) + 1) {}

void SimilarWord::offer(std::string_view word) {
    if (word.size() > longestWord || typed_.size() > longestWord || typed_.empty()) {
        return;
    }
    const size_t distance = distanceBetween(typed_, word);
    if (distance < distance_ && distance < word.size()) {
        distance_ = distance;
        best_ = word;
    }
}

std::string SimilarWord::question() const {
    return best_.empty() ? std::string() : " (did you mean \"" + withoutControls(best_) + "\"?)";
}

} // namespace kel::tool
