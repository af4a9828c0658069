#include "serial/text/OutputBuffer.h"

namespace kel {

void OutputBuffer::appendInPieces(std::string_view text) {
    while (text.size() > capacity - used_) {
        const std::size_t part = capacity - used_;
        std::memcpy(bytes_ + used_, text.data(), part);
        used_ += part;
        text.remove_prefix(part);
        flush();
    }
    append(text);
}

void OutputBuffer::append(std::size_t count, char character) {
    for (; count > capacity - used_; flush()) {
        count -= capacity - used_;
        std::memset(bytes_ + used_, character, capacity - used_);
        used_ = capacity;
    }
    std::memset(bytes_ + used_, character, count);
    used_ += count;
}

void OutputBuffer::flush() {
    const auto count = static_cast<int32_t>(used_);
    used_ = 0;
    if (count > 0) {
        sink_.JWrite(reinterpret_cast<const uint8_t*>(bytes_), 0, count);
    }
}

} // namespace kel
