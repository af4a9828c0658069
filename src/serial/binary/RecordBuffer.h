/// \file
/// RecordBuffer: bytes of binary records whose lengths are filled in later.
#pragma once

#include "streams/JOutputStream.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace kel {

/// Collects records in chunks that never move, so that the place of a length remains valid until
/// the length is known. A sink therefore need not be able to seek.
class RecordBuffer {
public:
    /// The largest count that reserve accepts.
    static constexpr std::size_t reserveLimit = 64;

    /// Returns room for count contiguous bytes, at most reserveLimit. Only committed bytes count.
    uint8_t* reserve(std::size_t count) {
        if (chunks_.empty() || chunkSize - chunks_.back().used < count) {
            addChunk();
        }
        return chunks_.back().bytes.get() + chunks_.back().used;
    }
    void commit(std::size_t count) {
        chunks_.back().used += count;
        total_ += count;
    }

    /// Appends count bytes.
    void append(const void* bytes, std::size_t count);

    /// Returns the number of bytes so far.
    uint64_t total() const { return total_; }

    /// Writes all bytes, as they are now, to the sink.
    /// \throws JIOException as the sink
    void writeTo(JOutputStream& sink) const;

private:
    static constexpr std::size_t chunkSize = 256 * 1024;

    struct Chunk {
        std::unique_ptr<uint8_t[]> bytes;
        std::size_t used;
    };

    void addChunk();

    std::vector<Chunk> chunks_;
    uint64_t total_ = 0;
};

} // namespace kel
