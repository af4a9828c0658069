/// \file
/// JDataInput: an input stream that also reads typed data.
#pragma once

#include "runtime/JLong64.h"
#include "streams/JInputStream.h"

#include <kel/JHashCode.h>
#include <kel/JString.h>

/// Typed reads over a stream. How the data is laid out (binary in either byte order, text) is the
/// implementation's.
class JDataInput : public virtual JInputStream {
public:
    /// 1: least significant byte first. Anything else: most significant byte first.
    virtual int32_t getByteOrder() const = 0;
    /// Sets the flag that getByteOrder returns.
    virtual void setByteOrder(int32_t order) = 0;
    /// The next 8-bit integer.
    virtual int8_t JRead8() = 0;
    /// The next 16-bit integer.
    virtual int16_t JRead16() = 0;
    /// The next 32-bit integer.
    virtual int32_t JRead32() = 0;
    /// The next 64-bit integer.
    virtual JLong64 JRead64() = 0;
    /// The next 128-bit integer.
    virtual JHashCode JRead128() = 0;
    /// The next string, new; the caller owns its one reference.
    virtual JString* JReadString() = 0;
    /// The next double.
    virtual double JReadDouble() = 0;
};
