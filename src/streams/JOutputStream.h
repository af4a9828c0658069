/// \file
/// JOutputStream: a sink of bytes.
#pragma once

#include <cstdint>
#include <kel/JObject.h>

/// Writes bytes one after the other to a medium. Failures are JIOExceptions by value. Bytes that a
/// medium keeps in a buffer can fail as late as in JFlush or JClose, but never silently.
class JOutputStream : public virtual JObject {
public:
    /// Writes one byte, the low eight bits of byte.
    /// \throws JIOException with the medium's message
    virtual void JWrite(int32_t byte) = 0;

    /// Writes count bytes from buffer + offset. This implementation writes byte by byte through
    /// JWrite(int32_t). A count below 1 writes nothing.
    /// \throws JIOException "JOutputStream.JWrite : buff=NULL" for a null buffer
    virtual void JWrite(const uint8_t* buffer, int32_t offset, int32_t count);

    /// Hands everything to the medium's system.
    /// \throws JIOException with the medium's message
    virtual void JFlush() = 0;

    /// Flushes and ends the stream, which is closed afterwards even if this throws. Closing twice
    /// does nothing.
    /// \throws JIOException with the medium's message
    virtual void JClose() = 0;

    /// Returns the position of the next byte, or -1 when the medium has no positions (a pipe).
    virtual int64_t JTell() = 0;

    /// Moves to an absolute position.
    /// \throws JIOException for a negative position, or when the medium cannot move
    virtual void JSeek(int64_t position) = 0;
};
