#include "diff/Alignment.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace kel::tool {

namespace {

using Index = int64_t;

/// After so many differences from both ends, a part is divided where most was found so far.
constexpr Index mostDifferences = 256;

/// A sequence of numbers for equal elements, and where each was in the whole sequence.
struct Reduced {
    std::vector<Index> numbers;
    std::vector<size_t> positions;
};

/// Parts of both sequences: from begin to end of each.
struct Box {
    Index beginA;
    Index endA;
    Index beginB;
    Index endB;
};

/// How far the paths on each diagonal have come. Diagonal k is at x - y = k, from -height to width.
class Reach {
public:
    static constexpr Index unreached = -1;

    void reset(Index width, Index height) {
        width_ = width;
        height_ = height;
        const auto size = static_cast<size_t>(width + height + 3);
        if (x_.size() < size) {
            x_.resize(size);
        }
        at(-height - 1) = unreached;
        at(width + 1) = unreached;
    }

    Index& at(Index diagonal) { return x_[static_cast<size_t>(diagonal + height_ + 1)]; }

    /// Returns the first diagonal of the d-th step.
    Index first(Index d) const { return d <= height_ ? -d : -height_ + ((d - height_) & 1); }
    /// Returns the last diagonal of the d-th step.
    Index last(Index d) const { return d <= width_ ? d : width_ - ((d - width_) & 1); }

    /// Returns whether the d-th step reaches the diagonal.
    bool covers(Index diagonal, Index d) const {
        return diagonal >= std::max(-d, -height_) && diagonal <= std::min(d, width_);
    }

    /// Prepares the d-th step: the diagonals next to those of the step before are not yet reached.
    void begin(Index d) {
        if (d <= width_) {
            at(d) = unreached;
        }
        if (d < width_) {
            at(d + 1) = unreached;
        }
        if (d <= height_) {
            at(-d) = unreached;
        }
        if (d < height_) {
            at(-d - 1) = unreached;
        }
    }

    /// Returns the farthest x on the diagonal after one more difference.
    Index next(Index diagonal, Index d) {
        if (d == 0) {
            return 0;
        }
        const Index left = at(diagonal - 1);
        const Index above = at(diagonal + 1);
        const bool canDelete = left != unreached && left < width_;
        const bool canInsert = above != unreached && above - diagonal <= height_;
        return std::max(canDelete ? left + 1 : unreached, canInsert ? above : unreached);
    }

private:
    Index width_ = 0;
    Index height_ = 0;
    std::vector<Index> x_;
};

/// Aligns two sequences of numbers.
class Aligner {
public:
    Aligner(const std::vector<Index>& a, const std::vector<Index>& b) : a_(a), b_(b) {}

    /// Returns the pairs of positions, in no order.
    Alignment align() {
        std::vector<Box> boxes{
            {0, static_cast<Index>(a_.size()), 0, static_cast<Index>(b_.size())}};
        while (!boxes.empty()) {
            Box box = boxes.back();
            boxes.pop_back();
            strip(box);
            if (box.beginA == box.endA || box.beginB == box.endB) {
                continue;
            }
            const auto [x, y] = divide(box);
            boxes.push_back({box.beginA, box.beginA + x, box.beginB, box.beginB + y});
            boxes.push_back({box.beginA + x, box.endA, box.beginB + y, box.endB});
        }
        return std::move(pairs_);
    }

private:
    bool areEqual(Index a, Index b) const {
        return a_[static_cast<size_t>(a)] == b_[static_cast<size_t>(b)];
    }

    void pair(Index a, Index b) {
        pairs_.emplace_back(static_cast<size_t>(a), static_cast<size_t>(b));
    }

    /// Pairs what is equal at both ends of the box, and removes it from the box.
    void strip(Box& box) {
        while (box.beginA < box.endA && box.beginB < box.endB && areEqual(box.beginA, box.beginB)) {
            pair(box.beginA++, box.beginB++);
        }
        while (box.beginA < box.endA && box.beginB < box.endB &&
               areEqual(box.endA - 1, box.endB - 1)) {
            pair(--box.endA, --box.endB);
        }
    }

    /// Returns a point inside the box that an optimal path crosses, or a good one. The first and
    /// the last elements of the box differ, so the point is at neither end of it.
    std::pair<Index, Index> divide(const Box& box) {
        const Index width = box.endA - box.beginA;
        const Index height = box.endB - box.beginB;
        const Index delta = width - height;
        const bool isOdd = (delta & 1) != 0;
        forward_.reset(width, height);
        backward_.reset(width, height);
        for (Index d = 0;; ++d) {
            forward_.begin(d);
            for (Index k = forward_.first(d); k <= forward_.last(d); k += 2) {
                Index x = forward_.next(k, d);
                while (x != Reach::unreached && x < width && x - k < height &&
                       areEqual(box.beginA + x, box.beginB + x - k)) {
                    ++x;
                }
                forward_.at(k) = x;
                if (isOdd && x != Reach::unreached && backward_.covers(delta - k, d - 1) &&
                    meets(x, backward_.at(delta - k), width)) {
                    return {x, x - k};
                }
            }
            backward_.begin(d);
            for (Index k = backward_.first(d); k <= backward_.last(d); k += 2) {
                Index x = backward_.next(k, d);
                while (x != Reach::unreached && x < width && x - k < height &&
                       areEqual(box.endA - 1 - x, box.endB - 1 - (x - k))) {
                    ++x;
                }
                backward_.at(k) = x;
                if (!isOdd && x != Reach::unreached && forward_.covers(delta - k, d) &&
                    meets(x, forward_.at(delta - k), width)) {
                    return {width - x, height - (x - k)};
                }
            }
            if (d >= mostDifferences) {
                return farthest(d);
            }
        }
    }

    static bool meets(Index x, Index other, Index width) {
        return other != Reach::unreached && x + other >= width;
    }

    /// Returns the point of the forward paths after d differences that covers most of both.
    std::pair<Index, Index> farthest(Index d) {
        std::pair<Index, Index> best{0, 0};
        for (Index k = forward_.first(d); k <= forward_.last(d); k += 2) {
            const Index x = forward_.at(k);
            if (x != Reach::unreached && 2 * x - k > best.first + best.second) {
                best = {x, x - k};
            }
        }
        return best;
    }

    const std::vector<Index>& a_;
    const std::vector<Index>& b_;
    Alignment pairs_;
    Reach forward_;
    Reach backward_;
};

/// Returns the numbers of those elements that the other sequence has too. The others need no time.
Reduced reduce(
    const std::vector<KeyedDigest>& sequence, size_t first, size_t end,
    const std::unordered_map<KeyedDigest, std::pair<Index, unsigned>, KeyedDigestHash>& numbers) {
    constexpr unsigned both = 3;
    Reduced reduced;
    for (size_t i = first; i < end; ++i) {
        const auto& [number, sides] = numbers.find(sequence[i])->second;
        if (sides == both) {
            reduced.numbers.push_back(number);
            reduced.positions.push_back(i);
        }
    }
    return reduced;
}

} // namespace

Alignment commonSubsequence(const std::vector<KeyedDigest>& before,
                            const std::vector<KeyedDigest>& after) {
    size_t head = 0;
    while (head < before.size() && head < after.size() && before[head] == after[head]) {
        ++head;
    }
    size_t tail = 0;
    while (tail < before.size() - head && tail < after.size() - head &&
           before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) {
        ++tail;
    }
    const size_t endBefore = before.size() - tail;
    const size_t endAfter = after.size() - tail;
    std::unordered_map<KeyedDigest, std::pair<Index, unsigned>, KeyedDigestHash> numbers;
    const auto number = [&numbers](const KeyedDigest& digest, unsigned side) {
        const auto place = numbers.try_emplace(digest, static_cast<Index>(numbers.size()), 0U);
        place.first->second.second |= side;
    };
    for (size_t i = head; i < endBefore; ++i) {
        number(before[i], 1);
    }
    for (size_t i = head; i < endAfter; ++i) {
        number(after[i], 2);
    }
    const Reduced a = reduce(before, head, endBefore, numbers);
    const Reduced b = reduce(after, head, endAfter, numbers);
    Alignment middle = Aligner(a.numbers, b.numbers).align();
    std::sort(middle.begin(), middle.end());

    Alignment alignment;
    alignment.reserve(head + middle.size() + tail);
    for (size_t i = 0; i < head; ++i) {
        alignment.emplace_back(i, i);
    }
    for (const auto& [x, y] : middle) {
        alignment.emplace_back(a.positions[x], b.positions[y]);
    }
    for (size_t i = 0; i < tail; ++i) {
        alignment.emplace_back(endBefore + i, endAfter + i);
    }
    return alignment;
}

} // namespace kel::tool
