/// \file
/// JInputStream: a source of bytes.
#pragma once

#include <cstdint>
#include <kel/JObject.h>

/// Reads bytes one after the other from a medium. A stream over a file, a pipe or a string
/// implements the pure operations. Failures are JIOExceptions by value.
class JInputStream : public virtual JObject {
public:
    /// Returns the next byte, 0 to 255, or -1 at end of input.
    /// \throws JIOException with the medium's message
    virtual int32_t JRead() = 0;

    /// Reads at most count bytes to buffer + offset. This implementation reads byte by byte through
    /// JRead(), and the next read after a failure calls the medium again. A count below 1 reads
    /// nothing.
    /// \return the number of bytes. It is less than count at end of input, and where the medium
    ///         failed after some bytes: the next read then throws. It is 0 only at end of input, or
    ///         for a count below 1.
    /// \throws JIOException with the medium's message when it fails before the first byte
    /// \throws JIOException "JInputStream.read : buff=NULL" for a null buffer
    virtual int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count);

    /// Ends the stream; reading it then returns end of input. Closing twice does nothing.
    virtual void JClose() = 0;

    /// Returns the position of the next byte, or -1 when the medium has no positions (a pipe).
    virtual int64_t JTell() = 0;

    /// Moves to an absolute position.
    /// \throws JIOException for a negative position, or when the medium cannot move
    virtual void JSeek(int64_t position) = 0;
};
