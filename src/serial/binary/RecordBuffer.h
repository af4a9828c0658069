/// \file
/// RecordBuffer: bytes of binary records whose lengths are filled in later.
#pragma once

#include "runtime/Storage.h"
#include "streams/JOutputStream.h"

#include <cstddef>
#include <cstring>

namespace kel {

/// Collects records in chunks that never move, so that the place of a length remains valid until
/// the length is known. A sink therefore need not be able to seek.
class RecordBuffer {
public:
    /// The largest count that reserve accepts.
    static constexpr std::size_t reserveLimit = 64;

    /// Returns room for count contiguous bytes, at most reserveLimit. Only committed bytes count.
    uint8_t* reserve(std::size_t count) {
        if (room() < count) {
            addChunk();
        }
        return cursor_;
    }
    void commit(std::size_t count) { cursor_ += count; }

    /// Appends count bytes.
    void append(const void* bytes, std::size_t count) {
        if (count > room()) {
            appendInPieces(static_cast<const uint8_t*>(bytes), count);
        } else if (count > 0) {
            std::memcpy(cursor_, bytes, count);
            cursor_ += count;
        }
    }

    /// Returns the number of bytes so far.
    std::size_t total() const { return total_ + (chunks_.empty() ? 0 : usedInLast()); }

    /// Writes all bytes, as they are now, to the sink.
    /// \throws JIOException as the sink
    void writeTo(JOutputStream& sink) const;

private:
    struct Chunk {
        Storage<uint8_t> bytes;
        std::size_t used; ///< not up to date in the last chunk
    };

    std::size_t room() const { return static_cast<std::size_t>(end_ - cursor_); }
    std::size_t usedInLast() const {
        return static_cast<std::size_t>(cursor_ - chunks_.back().bytes.get());
    }
    void addChunk();
    void appendInPieces(const uint8_t* bytes, std::size_t count);

    Vector<Chunk> chunks_;
    uint8_t* cursor_ = nullptr; ///< in the last chunk
    uint8_t* end_ = nullptr;    ///< of the last chunk
    std::size_t total_ = 0;     ///< in the chunks before the last one
};

} // namespace kel
