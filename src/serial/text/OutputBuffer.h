/// \file
/// OutputBuffer: collects small pieces of text on their way to a sink.
#pragma once

#include "runtime/Storage.h"
#include "streams/JOutputStream.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace kel {

/// Collects text for a sink. Only flush calls the sink, which can be a host's function, so the user
/// of the buffer decides when that can happen: as often as isFull returns true. A piece that does
/// not fit makes the buffer larger. The destructor writes nothing: the user calls flush, which
/// reports failures.
class OutputBuffer {
public:
    /// The largest count that reserve accepts.
    static constexpr std::size_t reserveLimit = 1024;

    /// The number of characters from which the buffer is full.
    static constexpr std::size_t fullSize = 32 * 1024;

    explicit OutputBuffer(JOutputStream& sink) : sink_(sink) {}
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    void append(char character) {
        *reserve(1) = character;
        used_ += 1;
    }

    /// \throws JOutOfMemoryException "Out of memory!" for a text that does not fit
    void append(std::string_view text) {
        std::memcpy(roomFor(text.size()), text.data(), text.size());
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
        const std::size_t length = lengthBefore + text.size() + lengthAfter;
        char* room = roomFor(length);
        std::memcpy(room, before, lengthBefore);
        std::memcpy(room + lengthBefore, text.data(), text.size());
        std::memcpy(room + lengthBefore + text.size(), after, lengthAfter);
        commit(length);
    }

    /// Appends the same character count times.
    void append(std::size_t count, char character) {
        std::memset(roomFor(count), character, count);
        used_ += count;
    }

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
    char* reserve(std::size_t count) { return roomFor(count); }
    void commit(std::size_t count) { used_ += count; }

    /// Returns whether it is time to call flush.
    bool isFull() const { return used_ >= fullSize; }

    /// Forgets everything that was appended since the last flush.
    void drop() { used_ = 0; }

    /// Writes everything that was appended to the sink.
    /// \throws JIOException as the sink; the text that was not written is dropped
    void flush();

private:
    /// Returns room for any number of characters.
    char* roomFor(std::size_t count) {
        if (count > capacity_ - used_) {
            grow(count);
        }
        return bytes_ + used_;
    }
    void grow(std::size_t count);

    // Room for what one line usually has beyond a full buffer.
    static constexpr std::size_t ownSize = fullSize + 2 * reserveLimit;

    JOutputStream& sink_;
    std::size_t used_ = 0;
    std::size_t capacity_ = ownSize;
    char* bytes_ = own_;   ///< own_ or larger_
    Storage<char> larger_; ///< null until something does not fit
    char own_[ownSize];
};

} // namespace kel
