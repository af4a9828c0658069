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
        if (text.size() > capacity - used_) {
            appendInPieces(text);
            return;
        }
        std::memcpy(bytes_ + used_, text.data(), text.size());
        used_ += text.size();
    }

    /// Appends a literal: the compiler knows its length, so no function is called to copy it.
    template <std::size_t size> void append(const char (&literal)[size]) {
        static_assert(size <= reserveLimit);
        std::memcpy(reserve(size - 1), literal, size - 1);
        commit(size - 1);
    }

    /// Appends a text with two literals around it.
    template <std::size_t sizeBefore, std::size_t sizeAfter>
    void appendBetween(const char (&before)[sizeBefore], std::string_view text,
                       const char (&after)[sizeAfter]) {
        constexpr std::size_t lengthBefore = sizeBefore - 1;
        constexpr std::size_t lengthAfter = sizeAfter - 1;
        static_assert(lengthBefore + lengthAfter < reserveLimit);
        if (text.size() > reserveLimit - lengthBefore - lengthAfter) {
            append(before);
            append(text);
            append(after);
            return;
        }
        const std::size_t length = lengthBefore + text.size() + lengthAfter;
        char* room = reserve(length);
        std::memcpy(room, before, lengthBefore);
        std::memcpy(room + lengthBefore, text.data(), text.size());
        std::memcpy(room + lengthBefore + text.size(), after, lengthAfter);
        commit(length);
    }

    /// Appends the same character count times.
    void append(std::size_t count, char character);

    /// Appends count tabs.
    void indent(std::size_t count) {
        constexpr std::string_view few = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
        if (count > few.size()) {
            append(count, '\t');
            return;
        }
        // Copying a fixed number is quicker than counting; those beyond count are not committed.
        std::memcpy(reserve(few.size()), few.data(), few.size());
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
    void flush();

private:
    void appendInPieces(std::string_view text);

    static constexpr std::size_t capacity = 32 * 1024;

    JOutputStream& sink_;
    std::size_t used_ = 0;
    char bytes_[capacity];
};

} // namespace kel
