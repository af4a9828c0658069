/// \file
/// JNumber: an object that is a number.
#pragma once

#include "runtime/JLong64.h"

#include <cstdint>
#include <kel/JHashCode.h>
#include <kel/JObject.h>

/// A number with conversions to eight types. Each conversion has two forms. The constant form
/// converts. The other one returns the result of the constant form, even where a subclass redefines
/// that.
///
/// The 64-bit and 128-bit results extend a 32-bit result with zeros, never with the sign.
class JNumber : public virtual JObject {
public:
    virtual int8_t byteValue() const = 0;
    virtual int8_t byteValue() { return constant().byteValue(); }
    virtual int32_t intValue() const = 0;
    virtual int32_t intValue() { return constant().intValue(); }
    virtual int32_t longValue() const = 0;
    virtual int32_t longValue() { return constant().longValue(); }
    virtual JLong64 int64Value() const = 0;
    virtual JLong64 int64Value() { return constant().int64Value(); }
    virtual JHashCode int128Value() const = 0;
    virtual JHashCode int128Value() { return constant().int128Value(); }
    virtual int16_t shortValue() const = 0;
    virtual int16_t shortValue() { return constant().shortValue(); }
    virtual double doubleValue() const = 0;
    virtual double doubleValue() { return constant().doubleValue(); }
    virtual float floatValue() const = 0;
    virtual float floatValue() { return constant().floatValue(); }

private:
    const JNumber& constant() const { return *this; }
};

/// Keeps the second forms of JNumber visible in a class that redefines the constant ones.
#define KEL_NUMBER_SECOND_FORMS                                                                    \
    using JNumber::byteValue;                                                                      \
    using JNumber::intValue;                                                                       \
    using JNumber::longValue;                                                                      \
    using JNumber::int64Value;                                                                     \
    using JNumber::int128Value;                                                                    \
    using JNumber::shortValue;                                                                     \
    using JNumber::doubleValue;                                                                    \
    using JNumber::floatValue
