#include "streams/StringWriter.h"

#include "platform/Memory.h"

#include <algorithm>
#include <cstring>
#include <kel/JException.h>

using namespace kel::platform;

StringWriter::~StringWriter() {
    if (snapshot_ != text_) {
        deallocate(snapshot_);
    }
    deallocate(text_);
}

const char* StringWriter::getString() {
    if (!changed_) {
        return snapshot_;
    }
    if (snapshot_ != text_) {
        deallocate(snapshot_);
        snapshot_ = nullptr;
    }
    if (text_ != nullptr && count_ == size_) {
        text_[size_] = '\0';
        snapshot_ = text_;
    } else {
        // Some characters were written twice, or there are none.
        snapshot_ = static_cast<char*>(allocateZeroed(1, std::size_t{count_} + 1));
        if (snapshot_ == nullptr) {
            throw JOutOfMemoryException("StringWriter out of memory.");
        }
        if (text_ != nullptr) {
            std::memcpy(snapshot_, text_, size_);
        }
    }
    changed_ = false;
    return snapshot_;
}

/// Makes text_ this writer's own, with room for count characters from place_ on. Without memory the
/// writer becomes bad.
void StringWriter::makeRoom(std::size_t count) {
    constexpr std::size_t firstCapacity = 255;
    const std::size_t wanted = place_ + count;
    const bool shown = text_ != nullptr && text_ == snapshot_;
    if (wanted <= capacity_ && !shown) {
        return;
    }
    const std::size_t capacity =
        wanted <= capacity_ ? capacity_ : std::max({wanted, 2 * capacity_, firstCapacity});
    auto* text =
        static_cast<char*>(shown ? allocate(capacity + 1) : reallocate(text_, capacity + 1));
    if (text == nullptr) {
        state_ = State::bad;
        return;
    }
    if (shown) {
        std::memcpy(text, text_, size_);
    }
    text_ = text;
    capacity_ = capacity;
}

/// Writes and counts count bytes, at least one, or changes the state.
void StringWriter::write(const void* bytes, std::size_t count) {
    if (state_ == State::bad) {
        state_ = State::good; // there can be memory again
    }
    // The count and the NUL must stay within 32 bits, or getStringSize would be wrong.
    if (state_ == State::good && count >= UINT32_MAX - count_) {
        state_ = State::failed;
    }
    if (state_ == State::good) {
        makeRoom(count);
    }
    if (state_ == State::good) {
        std::memcpy(text_ + place_, bytes, count);
        place_ += count;
        size_ = std::max(size_, place_);
        count_ += static_cast<uint32_t>(count);
    }
}

void StringWriter::checkState(const char* badMessage, const char* failMessage) const {
    if (state_ == State::bad) {
        throw JIOException(badMessage);
    }
    if (state_ == State::failed) {
        throw JIOException(failMessage);
    }
}

void StringWriter::JWrite(int32_t byte) {
    changed_ = true;
    const auto character = static_cast<uint8_t>(byte);
    write(&character, 1);
    checkState("StringWriter::JWrite(int). Stream returned bad() flag.",
               "StringWriter::JWrite(int). Stream returned fail() flag.");
}

void StringWriter::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("StringWriter::JWrite(uchar*,int,int). Buffer=NULL");
    }
    changed_ = true;
    if (count < 1) {
        return;
    }
    write(buffer + offset, static_cast<std::size_t>(count));
    checkState("StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.",
               "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.");
}

int64_t StringWriter::JTell() {
    return state_ == State::good ? static_cast<int64_t>(place_) : -1;
}

void StringWriter::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("StringWriter::JSeek(). Cannot seek to negative position.");
    }
    if (state_ == State::good) {
        if (static_cast<uint64_t>(position) > size_) {
            state_ = State::failed;
        } else {
            place_ = static_cast<std::size_t>(position);
        }
    }
    checkState("StringWriter::JSeek(). Stream returned bad() flag.",
               "StringWriter::JSeek(). Stream returned fail() flag.");
}
