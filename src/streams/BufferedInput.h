/// \file
/// BufferedInput: a read-ahead window of bytes over an input stream.
#pragma once

#include "streams/JInputStream.h"

#include <cstddef>
#include <exception>
#include <kel/JPointer.h>

namespace kel {

/// Reads the bytes of a stream in large pieces and hands them out through inline functions and
/// direct pointers. The tokenizer and the binary reader are built on it: one virtual call reads up
/// to 64 KiB.
///
/// A stream with positions is read ahead; sync() gives back the bytes that were not consumed. A
/// stream without positions (a pipe) is never read further than requested, so no bytes that its
/// next user needs are taken away and nobody waits for bytes that are not sent yet.
///
/// The bytes from begin() to end() are followed by one readable NUL, so a loop that stops at NUL
/// needs no test for the end of the window. Every pointer into the window is valid until the next
/// call that can read (peek, next, ensure, more, read) or move (seek, sync).
///
/// Failures of the stream pass through (JIOException). The window is then unchanged, and the next
/// read calls the stream again.
class BufferedInput {
public:
    /// The size of the largest piece read from the stream at once.
    static constexpr std::size_t chunkSize = 64 * 1024;

    /// Starts at the stream's position and shares the stream, which is not null.
    /// \throws JOutOfMemoryException "BufferedInput out of memory."
    explicit BufferedInput(const JPointer<JInputStream>& stream);
    ~BufferedInput();
    BufferedInput(const BufferedInput&) = delete;
    BufferedInput& operator=(const BufferedInput&) = delete;

    /// Returns the next byte without consuming it, or -1 at end of input.
    int32_t peek() { return cursor_ != end_ || fill(1) ? *cursor_ : -1; }

    /// Returns the next byte and consumes it, or returns -1 at end of input.
    int32_t next() { return cursor_ != end_ || fill(1) ? *cursor_++ : -1; }

    /// Returns the address of the first unread byte of the window.
    const uint8_t* begin() const { return cursor_; }

    /// Returns the address just after the last byte of the window, where a NUL is.
    const uint8_t* end() const { return end_; }

    /// Returns the number of unread bytes in the window.
    std::size_t available() const { return static_cast<std::size_t>(end_ - cursor_); }

    /// Consumes count bytes of the window; count is at most available().
    void skip(std::size_t count) { cursor_ += count; }

    /// Consumes the bytes before place, which lies between begin() and end().
    void skipTo(const uint8_t* place) { cursor_ = place; }

    /// Reads until the window has count unread bytes or the input ends. The window grows by the
    /// bytes that were really read, so a false count costs no memory.
    /// \return true when the window has count unread bytes
    /// \throws JOutOfMemoryException "BufferedInput out of memory."
    bool ensure(std::size_t count) { return available() >= count || grow(count); }

    /// Adds at least one byte to the window.
    /// \return false at end of input
    bool more() { return fill(1); }

    /// Copies at most count bytes to out and consumes them.
    /// \return the number of bytes. It is less than count at end of input, and where the stream
    ///         failed after some bytes: the next call that has to read then throws that failure.
    std::size_t read(uint8_t* out, std::size_t count);

    /// Remembers the current position. The bytes from there on remain in the window until the next
    /// mark, clearMark, a seek to the outside, or sync. There is no mark at first.
    void mark() { mark_ = cursor_; }

    /// Forgets the mark, so that the window need not grow any more.
    void clearMark() { mark_ = nullptr; }

    /// Moves back to the mark, which exists, at no cost.
    void resetToMark() { cursor_ = mark_; }

    /// Returns the address of the marked byte in the window, null without a mark. The bytes from
    /// there to begin() are those consumed since mark().
    const uint8_t* marked() const { return mark_; }

    /// Returns the position of the next byte. It is counted from 0 where the stream has no
    /// positions.
    int64_t position() const { return start_ + (cursor_ - buffer_); }

    /// Returns the position of the marked byte; there must be a mark.
    int64_t markPosition() const { return start_ + (mark_ - buffer_); }

    /// Moves to a position. Inside the window, which always contains the last kilobyte consumed,
    /// this costs nothing. Outside, the stream seeks and the window is emptied.
    /// \throws JIOException as the stream's JSeek does
    void seek(int64_t position);

    /// Seeks the stream back to position(), so that others can continue from there, and empties the
    /// window. For a stream that cannot seek, the stream and the window are left as they are.
    void sync();

    /// Empties the window at its position, for a stream that was closed.
    void discard() { restart(position()); }

    /// Returns whether the end of the input was reached and there was no seek since.
    bool endWasMet() const { return ended_; }

    /// Returns the stream underneath, borrowed. Its position is that of end(), not position().
    JInputStream& stream() const { return *stream_; }

private:
    bool fill(std::size_t wanted);
    bool grow(std::size_t count);
    void makeRoom(std::size_t wanted);
    void restart(int64_t position);

    const uint8_t* cursor_; // next byte
    const uint8_t* end_;    // just after the last byte read
    const uint8_t* mark_;   // bytes from here on are kept; null: none before cursor_
    uint8_t* buffer_;       // capacity_ bytes and one for the NUL
    std::size_t capacity_;
    std::size_t piece_; // the size of one read where the stream has positions
    int64_t start_;     // position of buffer_[0]
    bool ended_ = false;
    bool seekable_;
    std::exception_ptr failure_; // happened at end_, and not thrown yet
    JPointer<JInputStream> stream_;
};

} // namespace kel
