/// \file
/// JDataInput: an input stream that also reads typed data.
#pragma once

#include "runtime/JLong64.h"
#include "streams/JInputStream.h"

#include <kel/JHashCode.h>
#include <kel/JString.h>

/// Typed reads over a stream. The implementation determines the layout of the data (binary in
/// either byte order, or text).
class JDataInput : public virtual JInputStream {
public:
    /// Returns 1 for least significant byte first, any other value for most significant byte first.
    virtual int32_t getByteOrder() const = 0;
    /// Sets the flag that getByteOrder returns.
    virtual void setByteOrder(int32_t order) = 0;
    /// Reads an 8-bit integer.
    virtual int8_t JRead8() = 0;
    /// Reads a 16-bit integer.
    virtual int16_t JRead16() = 0;
    /// Reads a 32-bit integer.
    virtual int32_t JRead32() = 0;
    /// Reads a 64-bit integer.
    virtual JLong64 JRead64() = 0;
    /// Reads a 128-bit integer.
    virtual JHashCode JRead128() = 0;
    /// Reads a string and returns it as a new one; the caller owns its one reference.
    virtual JString* JReadString() = 0;
    /// Reads a double.
    virtual double JReadDouble() = 0;
};
