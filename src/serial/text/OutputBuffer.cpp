#include "serial/text/OutputBuffer.h"

#include <algorithm>
#include <utility>

namespace kel {

/// Moves to storage with room for count more characters.
void OutputBuffer::grow(std::size_t count) {
    // not reached: no memory is so large
    if (count > SIZE_MAX / 2 - used_) {
        throwOutOfMemory();
    }
    const std::size_t capacity = std::max(used_ + count, capacity_ + capacity_ / 2);
    Storage<char> larger(static_cast<char*>(allocateOrThrow(capacity)));
    std::memcpy(larger.get(), bytes_, used_);
    larger_ = std::move(larger);
    bytes_ = larger_.get();
    capacity_ = capacity;
}

void OutputBuffer::flush() {
    // One write carries at most as many bytes as its 32-bit count can express.
    constexpr std::size_t most = INT32_MAX;
    const std::size_t count = std::exchange(used_, 0);
    const auto* bytes = reinterpret_cast<const uint8_t*>(bytes_);
    for (std::size_t done = 0; done < count;) {
        const std::size_t piece = std::min(count - done, most);
        sink_.JWrite(bytes + done, 0, static_cast<int32_t>(piece));
        done += piece;
    }
}

} // namespace kel
