/// \file
/// JDataOutput: an output stream that also writes typed data.
#pragma once

#include "runtime/JLong64.h"
#include "streams/JOutputStream.h"

#include <kel/JHashCode.h>

/// Typed writes over a stream. The implementation determines the layout of the data (binary in
/// either byte order, or text). Failures are those of the stream.
class JDataOutput : public virtual JOutputStream {
public:
    /// Returns 1 for least significant byte first, any other value for most significant byte first.
    virtual int32_t getByteOrder() const = 0;
    /// Sets the flag that getByteOrder returns.
    virtual void setByteOrder(int32_t order) = 0;
    /// Writes an 8-bit integer.
    virtual void JWrite8(int8_t value) = 0;
    /// Writes a 16-bit integer.
    virtual void JWrite16(int16_t value) = 0;
    /// Writes a 32-bit integer.
    virtual void JWrite32(int32_t value) = 0;
    /// Writes a 64-bit integer.
    virtual void JWrite64(JLong64 value) = 0;
    /// Writes a 128-bit integer.
    virtual void JWrite128(const JHashCode& value) = 0;
    /// Writes a string; null writes nothing.
    virtual void JWriteString(const char* text) = 0;
    /// Writes a double.
    virtual void JWriteDouble(double value) = 0;
};
