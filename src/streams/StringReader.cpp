#include "streams/StringReader.h"

#include <algorithm>
#include <cstring>
#include <kel/JException.h>

namespace {

std::string copyOf(const char* text, int64_t length) {
    return text == nullptr || length < 0 ? std::string()
                                         : std::string(text, static_cast<size_t>(length));
}

} // namespace

StringReader::StringReader(const char* text, int64_t length) : text_(copyOf(text, length)) {}

int32_t StringReader::JRead() {
    return closed_ || place_ == text_.size() ? -1 : static_cast<uint8_t>(text_[place_++]);
}

int32_t StringReader::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("JInputStream.read : buff=NULL");
    }
    if (closed_ || count < 1) {
        return 0;
    }
    const std::size_t piece = std::min(static_cast<std::size_t>(count), text_.size() - place_);
    std::memcpy(buffer + offset, text_.data() + place_, piece);
    place_ += piece;
    return static_cast<int32_t>(piece);
}

int64_t StringReader::JTell() {
    return static_cast<int64_t>(place_);
}

void StringReader::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("StringReader::JSeek(). Cannot seek to negative position.");
    }
    if (closed_ || static_cast<uint64_t>(position) > text_.size()) {
        throw JIOException("StringReader::JSeek(). Stream returned fail() flag.");
    }
    place_ = static_cast<std::size_t>(position);
}
