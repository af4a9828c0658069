/// \file
/// JDouble: a double as an object, and the rule by which doubles become integers.
#pragma once

#include "runtime/JNumber.h"

namespace kel {

/// Returns the low 32 bits of value truncated toward zero to a 64-bit integer. Infinities, NaN and
/// values out of the 64-bit range give 0. Every double in the library becomes an integer by this
/// rule.
inline int32_t truncateToInt32(double value) {
    constexpr double limit = 9223372036854775808.0; // 2 to the 63rd
    if (!(value >= -limit && value < limit)) {
        return 0;
    }
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<int64_t>(value)));
}

} // namespace kel

/// A double. Integer results are the low bits of truncateToInt32.
class JDouble : public virtual JNumber {
public:
    explicit JDouble(double value) : value_(value) {}

    KEL_NUMBER_SECOND_FORMS;
    int8_t byteValue() const override { return static_cast<int8_t>(truncated()); }
    int32_t intValue() const override { return truncated(); }
    int32_t longValue() const override { return truncated(); }
    JLong64 int64Value() const override { return JLong64(static_cast<uint32_t>(truncated())); }
    JHashCode int128Value() const override { return JHashCode(static_cast<uint32_t>(truncated())); }
    int16_t shortValue() const override { return static_cast<int16_t>(truncated()); }
    double doubleValue() const override { return value_; }
    float floatValue() const override { return static_cast<float>(value_); }

private:
    int32_t truncated() const { return kel::truncateToInt32(value_); }

    double value_;
};
