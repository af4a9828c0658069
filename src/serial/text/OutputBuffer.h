/// \file
/// OutputBuffer: collects small pieces of text on their way to a sink.
#pragma once

#include "streams/JOutputStream.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace kel {

/// Writes text to a sink in large pieces. The destructor writes nothing: the user of the buffer
/// calls flush, which reports failures.
class OutputBuffer {
public:
    /// The largest count that reserve accepts.
    static constexpr std::size_t reserveLimit = 1024;

    explicit OutputBuffer(JOutputStream& sink) : sink_(sink) {}
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    void append(char character) {
        *reserve(1) = character;
        used_ += 1;
    }

    void append(std::string_view text) {
        while (text.size() > capacity - used_) {
            const std::size_t part = capacity - used_;
            std::memcpy(bytes_ + used_, text.data(), part);
            used_ += part;
            text.remove_prefix(part);
            flush();
        }
        std::memcpy(bytes_ + used_, text.data(), text.size());
        used_ += text.size();
    }

    /// Appends the same character count times.
    void append(std::size_t count, char character) {
        for (; count > capacity - used_; flush()) {
            count -= capacity - used_;
            std::memset(bytes_ + used_, character, capacity - used_);
            used_ = capacity;
        }
        std::memset(bytes_ + used_, character, count);
        used_ += count;
    }

    /// Returns room for count characters, at most reserveLimit. commit states how many were stored
    /// there.
    char* reserve(std::size_t count) {
        if (count > capacity - used_) {
            flush();
        }
        return bytes_ + used_;
    }
    void commit(std::size_t count) { used_ += count; }

    /// Writes everything that was appended to the sink.
    /// \throws JIOException as the sink; the text that was not written is dropped
    void flush() {
        const auto count = static_cast<int32_t>(used_);
        used_ = 0;
        if (count > 0) {
            sink_.JWrite(reinterpret_cast<const uint8_t*>(bytes_), 0, count);
        }
    }

private:
    static constexpr std::size_t capacity = 32 * 1024;

    JOutputStream& sink_;
    std::size_t used_ = 0;
    char bytes_[capacity];
};

} // namespace kel
