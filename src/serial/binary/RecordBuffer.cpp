#include "serial/binary/RecordBuffer.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr std::size_t firstSize = 64 * 1024;
constexpr std::size_t lastSize = 256 * 1024;

} // namespace

/// Begins a chunk as large as all before it together, within limits: short records are many, and
/// cheap this way.
void RecordBuffer::addChunk() {
    const std::size_t size = std::clamp(total(), firstSize, lastSize);
    const std::size_t before = total();
    const std::size_t usedBefore = chunks_.empty() ? 0 : usedInLast();
    // Not initialized: every byte is written before it counts.
    chunks_.push_back({Storage<uint8_t>(static_cast<uint8_t*>(allocateOrThrow(size))), 0});
    if (chunks_.size() > 1) {
        chunks_[chunks_.size() - 2].used = usedBefore;
    }
    total_ = before;
    cursor_ = chunks_.back().bytes.get();
    end_ = cursor_ + size;
}

void RecordBuffer::appendInPieces(const uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        uint8_t* to = reserve(1);
        const std::size_t part = std::min(count, room());
        std::memcpy(to, bytes, part);
        commit(part);
        bytes += part;
        count -= part;
    }
}

void RecordBuffer::writeTo(JOutputStream& sink) const {
    for (const Chunk& chunk : chunks_) {
        const std::size_t used = &chunk == &chunks_.back() ? usedInLast() : chunk.used;
        sink.JWrite(chunk.bytes.get(), 0, static_cast<int32_t>(used));
    }
}

} // namespace kel
