/// \file
/// HashcodeFSM: recogniser of 128-bit hash codes.
#pragma once

#include "serial/tokens/TokenizerFSM.h"

namespace kel {

/// Number of digits of a hash code.
inline constexpr int32_t hashCodeDigits = 32;

/// Returns the hash code of 32 hexadecimal digits in the order of the GUID text layout.
JHashCode hashCodeOfDigits(const uint8_t* digits);

} // namespace kel

/// Recognises thirty-two hexadecimal digits of either case with at least one "-" before the last of
/// them, at any position. The value is a JInt128.
class HashcodeFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenHashCode; }
    void reset() override;
    /// \throws TokenizerException "Internal error in HashcodeFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;

private:
    uint8_t digits_[kel::hashCodeDigits] = {};
    int32_t count_ = 0;
    bool dashed_ = false;
};
