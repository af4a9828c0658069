/// \file
/// ExpansionBudget: the limit on what the definitions of a stream can make.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kel {

/// The remaining budget for uses of definitions. A few lines of definitions can stand for any
/// number of values, so both the values and the text that they make are counted. The budget belongs
/// to the stream, because a bound for each root value would be multiplied by the number of roots.
/// It grows with the input, so that a long text or an endless stream can use definitions as freely
/// as a short text.
class ExpansionBudget {
public:
    /// The budget of every stream.
    static constexpr int64_t initial = int64_t{4} * 1024 * 1024;
    /// The addition for each byte of the stream that is read.
    static constexpr int64_t perByte = 256;
    /// The cost of a use, beside the bytes of its text.
    static constexpr int64_t useCost = 64;
    /// The cost of each value that a definition's text makes.
    static constexpr int64_t valueCost = 64;

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

    /// Spends the cost of one value. \return false, unchanged, if too little is left
    bool spendValue() { return spend(valueCost); }

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
