#include "serial/binary/RecordBuffer.h"

#include <algorithm>
#include <cstring>

namespace kel {

void RecordBuffer::addChunk() {
    // The bytes are not initialised: each one is written before it counts.
    chunks_.push_back({std::unique_ptr<uint8_t[]>(new uint8_t[chunkSize]), 0});
}

void RecordBuffer::append(const void* bytes, std::size_t count) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    while (count > 0) {
        uint8_t* to = reserve(1);
        const std::size_t part = std::min(count, chunkSize - chunks_.back().used);
        std::memcpy(to, from, part);
        commit(part);
        from += part;
        count -= part;
    }
}

void RecordBuffer::writeTo(JOutputStream& sink) const {
    for (const Chunk& chunk : chunks_) {
        sink.JWrite(chunk.bytes.get(), 0, static_cast<int32_t>(chunk.used));
    }
}

} // namespace kel
