/// \file
/// ExpansionBudget: the limit on what the definitions of a stream can make.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kel {

/// The remaining budget for uses of definitions, in bytes of memory. A few lines of definitions can
/// stand for any number of values, so both the values and the text that they make are counted. The
/// budget belongs to the stream, because a bound for each root value would be multiplied by the
/// number of roots. It grows with the input, so that a long text or an endless stream can use
/// definitions as freely as a short text.
class ExpansionBudget {
public:
    /// The budget of every stream.
    static constexpr int64_t initial = int64_t{16} * 1024 * 1024;
    /// The addition for each byte of the stream that is read.
    static constexpr int64_t perByte = 256;
    /// The cost of a use, beside the bytes of its text. A use keeps no memory, but takes time.
    static constexpr int64_t useCost = 64;
    /// The costs of the values that a definition's text makes: at least the memory of the value and
    /// of its place in its container (docs/storage.md), without the characters, which are in the
    /// text.
    static constexpr int64_t scalarCost = 192;
    static constexpr int64_t containerCost = 256;      ///< an Array, a Struct or an IndexList
    static constexpr int64_t largeContainerCost = 512; ///< a Manager, or a value built on a struct

    /// Starts at a position of the stream.
    explicit ExpansionBudget(int64_t position) : position_(position) {}

    /// Adds the allowance for the bytes from the last position to this one. A step back means that
    /// the host reads again, so the budget is then at least the initial one.
    void advanceTo(int64_t position) {
        if (position > position_) {
            left_ += (position - position_) * perByte;
        } else if (position < position_) {
            left_ = std::max(left_, initial);
        }
        position_ = position;
    }

    /// Spends the cost of one use of a text. \return false, unchanged, if too little is left
    bool spendUse(std::size_t textSize) { return spend(useCost + static_cast<int64_t>(textSize)); }

    /// Spends one of the costs of a value. \return false, unchanged, if too little is left
    bool spendValue(int64_t cost) { return spend(cost); }

private:
    bool spend(int64_t cost) {
        const bool enough = cost <= left_;
        left_ -= enough ? cost : 0;
        return enough;
    }

    int64_t position_;
    int64_t left_ = initial;
};

} // namespace kel
