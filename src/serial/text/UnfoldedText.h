/// \file
/// UnfoldedText: how long a text becomes, found without writing it.
#pragma once

#include "values/KEL_Impl.h"

#include <cstdint>

namespace kel {

/// The limit on the text of a root value. A text repeats a shared value in each of its places, and
/// indents each line by its depth. So a few kilobytes of values can stand for a text of any length.
class UnfoldedText {
public:
    /// Every value can become a text of about this many bytes.
    static constexpr uint64_t allowance = uint64_t{256} << 20;
    /// More than that, it can become this many times the text that has each of its containers once
    /// and no indentation.
    static constexpr uint64_t perByte = 64;

    /// Measures the text of a value at an indentation of so many tabs. With showsBlocks, a comment
    /// shows the bytes of each memory block. The time is linear in the
    /// number of distinct values and references. A value inside itself is not counted again.
    /// \throws JOutOfMemoryException "Out of memory!"
    UnfoldedText(const KEL_Impl& root, std::size_t tabs, bool showsBlocks);

    /// Returns whether the text is longer than the limit.
    bool isTooLong() const {
        return whole_ > allowance && whole_ / perByte > folded_ + allowance / perByte;
    }

    /// Returns the estimated length of the text in bytes; at least 2^62 for anything beyond.
    uint64_t whole() const { return whole_; }

    /// Returns the estimated length with each container once and without indentation.
    uint64_t folded() const { return folded_; }

private:
    uint64_t whole_ = 0;
    uint64_t folded_ = 0;
};

} // namespace kel
