/// \file
/// NumberFSM: recogniser of integers and decimal fractions.
#pragma once

#include "serial/tokens/TokenizerFSM.h"

/// Recognises decimal integers, hexadecimal ones after "0x", and decimal numbers with a point. A
/// decimal one can have a "-" before it. There is no exponent: a letter a to f directly after a
/// decimal number rejects it, and so does a second point. Integers wrap around at 32 bits. The
/// value is a JInteger or a JDouble.
///
/// A fraction is summed digit by digit, each multiplied by a weight that is a tenth of the one
/// before. The result is the nearest double for few digits only, but it is the same everywhere.
class NumberFSM : public TokenizerFSM {
public:
    /// Returns kel::tokenFloating for a number with a point, otherwise kel::tokenInteger.
    int32_t getType() const override;
    void reset() override;
    /// \throws TokenizerException "Internal error in NumberFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;

private:
    enum Form : int32_t { decimalInteger = 0, hexadecimalInteger = 1, floatingPoint = 2 };

    int32_t acceptFirst(int32_t c);
    int32_t acceptInDecimal(int32_t c);
    int32_t acceptAfterZero(int32_t c);
    int32_t acceptInHexadecimal(int32_t c);
    int32_t continueWith(int32_t state);
    void takeDigit(int32_t c);
    void becomeFloating();

    bool negative_ = false;
    Form form_ = decimalInteger;
    uint32_t integer_ = 0; // wraps; read as signed
    double floating_ = 0.0;
    double weight_ = 0.1;
};
