#include "serial/tokens/NumberFSM.h"

#include "runtime/JDouble.h"
#include "runtime/JInteger.h"
#include "serial/tokens/Characters.h"
#include "serial/tokens/Fraction.h"

#include <kel/JException.h>

using namespace kel;

namespace {

constexpr int32_t inDecimal = 1;
constexpr int32_t afterZero = 2;
constexpr int32_t inHexadecimal = 3;

} // namespace

int32_t NumberFSM::getType() const {
    return form_ == floatingPoint ? tokenFloating : tokenInteger;
}

void NumberFSM::reset() {
    restart();
    negative_ = false;
    form_ = decimalInteger;
    integer_ = 0;
    floating_ = 0.0;
    weight_ = firstFractionWeight;
}

int32_t NumberFSM::accept(int32_t c) {
    switch (state_) {
    case -1:
        throw TokenizerException("FSM has to be reset.");
    case 0:
        return acceptFirst(c);
    case inDecimal:
        return acceptInDecimal(c);
    case afterZero:
        return acceptAfterZero(c);
    case inHexadecimal:
        return acceptInHexadecimal(c);
    default:
        throw TokenizerException("Internal error in NumberFSM.");
    }
}

int32_t NumberFSM::continueWith(int32_t state) {
    state_ = state;
    return wantsMore;
}

int32_t NumberFSM::acceptFirst(int32_t c) {
    if (c == '-') {
        negative_ = true;
        return continueWith(inDecimal);
    }
    if (c == '.') {
        form_ = floatingPoint;
        return continueWith(inDecimal);
    }
    if (c == '0') {
        return continueWith(afterZero);
    }
    if (isInClass(c, digitClass)) {
        takeDigit(c);
        return continueWith(inDecimal);
    }
    return reject();
}

void NumberFSM::takeDigit(int32_t c) {
    const uint32_t digit = hexDigitValue(static_cast<uint8_t>(c));
    if (form_ == floatingPoint) {
        floating_ = addFractionDigit(floating_, digit, weight_);
        weight_ = nextFractionWeight(weight_);
    } else {
        integer_ = integer_ * (form_ == hexadecimalInteger ? 16 : 10) + digit;
    }
}

void NumberFSM::becomeFloating() {
    form_ = floatingPoint;
    floating_ = static_cast<int32_t>(integer_);
    weight_ = firstFractionWeight;
}

int32_t NumberFSM::acceptInDecimal(int32_t c) {
    if (isInClass(c, digitClass)) {
        takeDigit(c);
        return wantsMore;
    }
    if (c == '.') {
        if (form_ == floatingPoint) {
            return reject();
        }
        becomeFloating();
        return wantsMore;
    }
    return isInClass(c, hexLetterClass) ? reject() : complete(completeBefore);
}

int32_t NumberFSM::acceptAfterZero(int32_t c) {
    if (c == '.') {
        becomeFloating();
        return continueWith(inDecimal);
    }
    if (c == 'x') {
        form_ = hexadecimalInteger;
        return continueWith(inHexadecimal);
    }
    if (isInClass(c, digitClass)) {
        takeDigit(c); // the accumulator is still 0: leading zeros do not mean octal
        return continueWith(inDecimal);
    }
    return isInClass(c, hexLetterClass) ? reject() : complete(completeBefore);
}

int32_t NumberFSM::acceptInHexadecimal(int32_t c) {
    if (isInClass(c, hexDigitClass)) {
        takeDigit(c);
        return wantsMore;
    }
    return complete(completeBefore);
}

JPointer<JObject> NumberFSM::returnValue() const {
    requireComplete();
    if (form_ == floatingPoint) {
        return JPointer<JObject>(new JDouble(negative_ ? -floating_ : floating_));
    }
    const uint32_t value = negative_ ? 0 - integer_ : integer_;
    return JPointer<JObject>(new JInteger(static_cast<int32_t>(value)));
}
