/// \file
/// JInteger: a 32-bit integer as an object.
#pragma once

#include "runtime/JNumber.h"

/// A signed 32-bit integer. Narrower results are its low bits.
class JInteger : public virtual JNumber {
public:
    explicit JInteger(int32_t value) : value_(value) {}

    KEL_NUMBER_SECOND_FORMS;
    int8_t byteValue() const override { return static_cast<int8_t>(value_); }
    int32_t intValue() const override { return value_; }
    int32_t longValue() const override { return value_; }
    JLong64 int64Value() const override { return JLong64(static_cast<uint32_t>(value_)); }
    JHashCode int128Value() const override { return JHashCode(static_cast<uint32_t>(value_)); }
    int16_t shortValue() const override { return static_cast<int16_t>(value_); }
    double doubleValue() const override { return value_; }
    float floatValue() const override { return static_cast<float>(value_); }

private:
    int32_t value_;
};
