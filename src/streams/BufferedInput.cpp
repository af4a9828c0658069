#include "streams/BufferedInput.h"

#include "platform/Memory.h"

#include <algorithm>
#include <cstring>
#include <kel/JException.h>
#include <utility>

namespace kel {

namespace {

// The number of consumed bytes that are kept before the mark, so that short steps back never need
// the stream.
constexpr std::size_t historySize = 1024;

// The first size of the window and of the pieces, which double when needed. Many inputs are short,
// and a small first size makes them cheap.
constexpr std::size_t firstSize = 256;

uint8_t* allocateWindow(std::size_t capacity) {
    void* storage = platform::allocate(capacity + 1);
    if (storage == nullptr) {
        throw JOutOfMemoryException("BufferedInput out of memory.");
    }
    return static_cast<uint8_t*>(storage);
}

} // namespace

BufferedInput::BufferedInput(const JPointer<JInputStream>& stream) : stream_(stream) {
    const int64_t position = stream_->JTell();
    seekable_ = position >= 0;
    capacity_ = piece_ = firstSize;
    buffer_ = allocateWindow(capacity_);
    restart(seekable_ ? position : 0);
}

BufferedInput::~BufferedInput() {
    platform::deallocate(buffer_);
}

void BufferedInput::restart(int64_t position) {
    cursor_ = end_ = buffer_;
    mark_ = nullptr;
    *buffer_ = 0;
    start_ = position;
    ended_ = false;
    failure_ = nullptr;
}

bool BufferedInput::grow(std::size_t count) {
    while (available() < count) {
        if (!fill(count - available())) {
            return false;
        }
    }
    return true;
}

// Reads once from the stream: a whole piece, or only the bytes wanted where the stream must not be
// read ahead.
bool BufferedInput::fill(std::size_t wanted) {
    if (failure_ != nullptr) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    if (ended_) {
        return false;
    }
    makeRoom(seekable_ ? piece_ / 2 : 1);
    uint8_t* free = buffer_ + (end_ - buffer_);
    const std::size_t room = capacity_ - static_cast<std::size_t>(end_ - buffer_);
    const std::size_t request = std::min(room, seekable_ ? piece_ : std::min(wanted, chunkSize));
    int32_t got = 0;
    try {
        got = stream_->JRead(free, 0, static_cast<int32_t>(request));
    } catch (...) {
        *free = 0; // the failed read may have overwritten the NUL after the window
        throw;
    }
    if (got <= 0) {
        *free = 0;
        ended_ = true;
        return false;
    }
    if (static_cast<std::size_t>(got) == request) {
        piece_ = std::min(2 * piece_, chunkSize);
    }
    end_ = free + got;
    free[got] = 0;
    return true;
}

// Frees space after end_. Bytes are moved only if half of the window can be dropped. Otherwise the
// window doubles, so the cost per byte remains constant even for one very long token.
void BufferedInput::makeRoom(std::size_t wanted) {
    const std::size_t used = static_cast<std::size_t>(end_ - buffer_);
    if (capacity_ - used >= wanted) {
        return;
    }
    const uint8_t* needed = mark_ == nullptr ? cursor_ : std::min(mark_, cursor_);
    const std::size_t keep = static_cast<std::size_t>(needed - buffer_);
    const std::size_t drop = keep - std::min(keep, historySize);
    const std::size_t kept = used - drop;
    uint8_t* target = buffer_;
    if (drop < capacity_ / 2 || capacity_ - kept < wanted) {
        const std::size_t capacity = std::max(2 * capacity_, kept + wanted);
        target = allocateWindow(capacity);
        capacity_ = capacity;
    }
    std::memmove(target, buffer_ + drop, kept);
    target[kept] = 0;
    const uint8_t* dropped = buffer_ + drop;
    cursor_ = target + (cursor_ - dropped);
    mark_ = mark_ == nullptr ? nullptr : target + (mark_ - dropped);
    end_ = target + kept;
    start_ += static_cast<int64_t>(drop);
    if (target != buffer_) {
        platform::deallocate(buffer_);
        buffer_ = target;
    }
}

std::size_t BufferedInput::read(uint8_t* out, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        try {
            if (cursor_ == end_ && !fill(count - done)) {
                break;
            }
        } catch (...) {
            if (done == 0) {
                throw;
            }
            failure_ = std::current_exception();
            break;
        }
        const std::size_t piece = std::min(count - done, available());
        std::memcpy(out + done, cursor_, piece);
        cursor_ += piece;
        done += piece;
    }
    return done;
}

void BufferedInput::seek(int64_t position) {
    if (position >= start_ && position - start_ <= end_ - buffer_) {
        cursor_ = buffer_ + (position - start_);
        ended_ = false;
        return;
    }
    stream_->JSeek(position);
    restart(position);
}

void BufferedInput::sync() {
    if (!seekable_ || cursor_ == end_) {
        return;
    }
    try {
        const int64_t here = position();
        stream_->JSeek(here);
        restart(here);
    } catch (const JIOException&) {
        // The stream has a position but cannot seek back: the bytes read ahead remain in the
        // window.
    }
}

} // namespace kel
