/// \file
/// JInt128: a 128-bit integer as an object.
#pragma once

#include "runtime/JNumber.h"

#include <bit>

/// A 128-bit integer. Its 32-bit value saturates, see JHashCode::intValue. The narrower values are
/// its low bits. The floating values are not converted: they are the low bits read as a floating
/// number.
class JInt128 : public virtual JNumber {
public:
    explicit JInt128(const JHashCode& value) : value_(value) {}

    KEL_NUMBER_SECOND_FORMS;
    int8_t byteValue() const override { return static_cast<int8_t>(value_.w0); }
    int32_t intValue() const override { return value_.intValue(); }
    int32_t longValue() const override { return value_.intValue(); }
    JLong64 int64Value() const override {
        return JLong64(static_cast<uint32_t>(value_.intValue()));
    }
    JHashCode int128Value() const override { return value_; }
    int16_t shortValue() const override { return static_cast<int16_t>(value_.w0); }
    /// Returns the double whose bits are w1 and w0.
    double doubleValue() const override {
        return std::bit_cast<double>(JLong64(value_.w0, value_.w1).value());
    }
    /// Returns the float whose bits are w0.
    float floatValue() const override { return std::bit_cast<float>(value_.w0); }

    /// Returns the 128 bits.
    virtual JHashCode int128() const { return value_; }
    /// Returns the result of the constant form.
    virtual JHashCode int128() { return static_cast<const JInt128*>(this)->int128(); }

private:
    JHashCode value_;
};
