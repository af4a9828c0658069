#include "diff/Similarity.h"

#include "diff/RecordKey.h"
#include "document/TreeCursor.h"

#include <algorithm>

namespace kel::tool {

namespace {

/// The greatest number of comparisons of each with each.
constexpr size_t mostComparisons = 4096;
/// How many values of a container are looked at.
constexpr size_t mostFeatures = 32;
/// Containers belong together if at least one of so many values is in both.
constexpr size_t leastShare = 4;

/// Some values of a container, as sorted hashes that include their names.
using Features = std::vector<uint64_t>;

Features featuresOf(const ContentDigests& digests, KEL* value) {
    Features features;
    if (value == nullptr || !kindOf(*value).isContainer) {
        return features;
    }
    TreeCursor cursor(value);
    cursor.next(); // enters the container
    for (auto event = cursor.next();
         event != TreeCursor::Event::leave && features.size() < mostFeatures;
         event = cursor.next()) {
        uint64_t feature = digests.of(cursor.value()).low;
        for (const char* name = cursor.name(); name != nullptr && *name != '\0'; ++name) {
            feature = feature * 31 + static_cast<unsigned char>(*name);
        }
        features.push_back(feature);
        if (event == TreeCursor::Event::enter) {
            cursor.skip();
        }
    }
    std::sort(features.begin(), features.end());
    return features;
}

/// Returns how many features two containers have in common, in thousandths, or 0 if they are few.
size_t similarityOf(const Features& a, const Features& b) {
    size_t common = 0;
    for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
        if (*i == *j) {
            ++common;
            ++i;
            ++j;
        } else {
            ++(*i < *j ? i : j);
        }
    }
    const size_t most = std::max(a.size(), b.size());
    return common > 0 && common * leastShare >= most ? 1000 * common / most : 0;
}

/// Returns the pairs, ascending on both sides, with the greatest sum of similarities.
Alignment mostSimilar(const ContentDigests& digests, const std::vector<KEL*>& before,
                      const std::vector<KEL*>& after) {
    const auto allFeatures = [&digests](const std::vector<KEL*>& values) {
        std::vector<Features> all;
        all.reserve(values.size());
        for (KEL* value : values) {
            all.push_back(featuresOf(digests, value));
        }
        return all;
    };
    const std::vector<Features> a = allFeatures(before);
    const std::vector<Features> b = allFeatures(after);
    const size_t width = b.size() + 1;
    std::vector<size_t> similarities(a.size() * b.size());
    std::vector<size_t> sums((a.size() + 1) * width); // of the rest from each pair of places on
    for (size_t i = a.size(); i-- > 0;) {
        for (size_t j = b.size(); j-- > 0;) {
            const bool areAlike = before[i] != nullptr && after[j] != nullptr &&
                                  before[i]->getType() == after[j]->getType();
            const size_t similarity = areAlike ? similarityOf(a[i], b[j]) : 0;
            similarities[i * b.size() + j] = similarity;
            const size_t paired = similarity > 0 ? similarity + sums[(i + 1) * width + j + 1] : 0;
            sums[i * width + j] =
                std::max({paired, sums[(i + 1) * width + j], sums[i * width + j + 1]});
        }
    }
    Alignment pairs;
    for (size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        const size_t similarity = similarities[i * b.size() + j];
        const size_t sum = sums[i * width + j];
        if (similarity > 0 && sum == similarity + sums[(i + 1) * width + j + 1]) {
            pairs.emplace_back(i++, j++);
        } else if (sum == sums[(i + 1) * width + j]) {
            ++i;
        } else {
            ++j;
        }
    }
    return pairs;
}

/// Adds pairs from the positions i and j on, up to x and y.
void addOneByOne(Alignment& pairs, size_t i, size_t x, size_t j, size_t y) {
    while (i < x && j < y) {
        pairs.emplace_back(i++, j++);
    }
}

/// Pairs what is similar, and what is equally long between similar elements.
Alignment pairShort(const ContentDigests& digests, const std::vector<KEL*>& before,
                    const std::vector<KEL*>& after) {
    Alignment pairs;
    Alignment similar = mostSimilar(digests, before, after);
    similar.emplace_back(before.size(), after.size());
    size_t i = 0;
    size_t j = 0;
    for (const auto& [x, y] : similar) {
        if (x - i == y - j) {
            addOneByOne(pairs, i, x, j, y);
        }
        if (x < before.size()) {
            pairs.emplace_back(x, y);
        }
        i = x + 1;
        j = y + 1;
    }
    return pairs;
}

} // namespace

Alignment pairSimilar(const ContentDigests& digests, const std::vector<KEL*>& before,
                      const std::vector<KEL*>& after) {
    if (std::max(before.size(), after.size()) <= mostComparisons &&
        before.size() * after.size() <= mostComparisons) {
        return pairShort(digests, before, after);
    }
    Alignment pairs = alignByKey(digests, before, after);
    if (pairs.empty()) { // otherwise those without a partner have other keys
        addOneByOne(pairs, 0, before.size(), 0, after.size());
    }
    return pairs;
}

} // namespace kel::tool
