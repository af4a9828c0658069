/// \file
/// Progress: how much of an input has been read.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

namespace kel::tool {

/// The part of the input in memory that the library or a parser has taken. The thread that reads
/// counts, and the one that draws the progress line asks.
class Progress {
public:
    /// Begins an input of this many bytes.
    void begin(uint64_t total) {
        done_ = 0;
        total_ = total;
    }

    /// Records that the bytes before this offset were taken.
    void reach(uint64_t offset) { done_.store(offset, std::memory_order_relaxed); }

    /// Ends the input: nothing is known about the work that follows.
    void end() { total_ = 0; }

    /// Returns the percentage that was taken, from 0 to 100, or nothing outside of an input.
    std::optional<unsigned> percentage() const {
        constexpr uint64_t whole = 100;
        const uint64_t total = total_;
        const uint64_t done = done_;
        // not reached: nothing is read beyond its end
        if (total == 0 || done > total) {
            return std::nullopt;
        }
        // not reached: no input has so many bytes
        return static_cast<unsigned>(total > UINT64_MAX / whole ? done / (total / whole)
                                                                : done * whole / total);
    }

private:
    std::atomic<uint64_t> done_{0};
    std::atomic<uint64_t> total_{0};
};

/// The progress of this process, which reads one input at a time.
inline Progress readingProgress;

} // namespace kel::tool
