/// \file
/// BufferedInput: a read-ahead window of bytes over an input stream.
#pragma once

#include "streams/JInputStream.h"

#include <cstddef>
#include <exception>
#include <kel/JPointer.h>

namespace kel {

/// Bytes of a stream, read in large pieces and used through inline functions and direct pointers.
/// The tokenizer and the binary reader stand on it: one virtual call serves 64 KiB.
///
/// A stream with positions is read ahead; sync() gives back what was not used. A stream without
/// (a pipe) is never read further than asked for, so nothing that its next user needs is taken
/// away and nobody waits for bytes that are not sent yet.
///
/// The bytes from begin() to end() are followed by one readable NUL, so a loop that stops at NUL
/// needs no test for the end of the window. Every pointer into the window lives until the next
/// call that may read (peek, next, ensure, read) or move (seek, sync).
///
/// Failures of the stream pass through (JIOException); the window then holds what it held, and
/// reading on asks the stream again.
class BufferedInput {
public:
    /// Greatest piece read from the stream at once.
    static constexpr std::size_t chunkSize = 64 * 1024;

    /// Starts at the stream's position and shares the stream, which is not null.
    /// \throws JOutOfMemoryException "BufferedInput out of memory."
    explicit BufferedInput(const JPointer<JInputStream>& stream);
    ~BufferedInput();
    BufferedInput(const BufferedInput&) = delete;
    BufferedInput& operator=(const BufferedInput&) = delete;

    /// The next byte without using it, or -1 at end of input.
    int32_t peek() { return cursor_ != end_ || fill(1) ? *cursor_ : -1; }

    /// The next byte, used, or -1 at end of input.
    int32_t next() { return cursor_ != end_ || fill(1) ? *cursor_++ : -1; }

    /// First unread byte of the window.
    const uint8_t* begin() const { return cursor_; }

    /// Behind the last byte of the window. A NUL stands there.
    const uint8_t* end() const { return end_; }

    /// Number of unread bytes in the window.
    std::size_t available() const { return static_cast<std::size_t>(end_ - cursor_); }

    /// Uses count bytes of the window; count is at most available().
    void skip(std::size_t count) { cursor_ += count; }

    /// Uses the bytes before place, which lies between begin() and end().
    void skipTo(const uint8_t* place) { cursor_ = place; }

    /// Reads until the window has count unread bytes or the input ends. The window grows by what
    /// was really read, so a false count costs no memory.
    /// \return true when count bytes are there
    /// \throws JOutOfMemoryException "BufferedInput out of memory."
    bool ensure(std::size_t count) { return available() >= count || grow(count); }

    /// Adds at least one byte to the window.
    /// \return false at end of input
    bool more() { return fill(1); }

    /// Copies at most count bytes to out and uses them.
    /// \return how many; less at end of input, and where the stream failed after some bytes: the
    ///         next call that has to read then throws that failure
    std::size_t read(uint8_t* out, std::size_t count);

    /// Remembers the current position: the bytes from here on stay in the window until the next
    /// mark, clearMark, a seek to the outside, or sync. At first nothing is marked.
    void mark() { mark_ = cursor_; }

    /// Forgets the mark, so that the window need not grow any more.
    void clearMark() { mark_ = nullptr; }

    /// Goes back to the mark, which exists. Free.
    void resetToMark() { cursor_ = mark_; }

    /// The marked byte in the window: from here to begin() are the bytes used since mark(). Null
    /// without a mark.
    const uint8_t* marked() const { return mark_; }

    /// Position of the next byte: the stream's own, or counted from 0 where it has none.
    int64_t position() const { return start_ + (cursor_ - buffer_); }

    /// Position of the marked byte; there is a mark.
    int64_t markPosition() const { return start_ + (mark_ - buffer_); }

    /// Moves to a position. Inside the window this is free (the last kilobyte used is always
    /// there); outside, the stream seeks and the window starts anew.
    /// \throws JIOException as the stream's JSeek
    void seek(int64_t position);

    /// Seeks the stream back to position(), so that others may go on from there, and empties the
    /// window. A stream that cannot seek is left as it is, and the window too.
    void sync();

    /// Empties the window where it is, for a stream that was closed.
    void discard() { restart(position()); }

    /// True if the end of the input was reached and nothing was sought since.
    bool endWasMet() const { return ended_; }

    /// The stream underneath, borrowed. Its position is end(), not position().
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
    std::size_t piece_; // read at once where the stream has positions
    int64_t start_;     // position of buffer_[0]
    bool ended_ = false;
    bool seekable_;
    std::exception_ptr failure_; // happened at end_, and not thrown yet
    JPointer<JInputStream> stream_;
};

} // namespace kel
