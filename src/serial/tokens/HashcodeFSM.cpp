#include "serial/tokens/HashcodeFSM.h"

#include "runtime/JInt128.h"
#include "serial/tokens/Characters.h"

#include <kel/JException.h>

namespace kel {

JHashCode hashCodeOfDigits(const uint8_t* digits) {
    const auto field = [&](int32_t first, int32_t count) {
        uint32_t value = 0;
        for (int32_t i = first; i < first + count; ++i) {
            value = value << 4 | hexDigitValue(digits[i]);
        }
        return value;
    };
    KELGuid guid = {
        field(0, 8), static_cast<uint16_t>(field(8, 4)), static_cast<uint16_t>(field(12, 4)), {}};
    for (int32_t i = 0; i < 8; ++i) {
        guid.data4[i] = static_cast<uint8_t>(field(16 + 2 * i, 2));
    }
    return JHashCode(guid);
}

} // namespace kel

void HashcodeFSM::reset() {
    restart();
    count_ = 0;
    dashed_ = false;
}

int32_t HashcodeFSM::accept(int32_t c) {
    if (state_ == -1) {
        throw TokenizerException("FSM has to be reset.");
    }
    if (state_ != 0) {
        throw TokenizerException("Internal error in HashcodeFSM.");
    }
    if (c == '-') {
        dashed_ = true;
        return wantsMore;
    }
    if (!kel::isInClass(c, kel::hexDigitClass)) {
        return reject();
    }
    digits_[count_++] = static_cast<uint8_t>(c);
    if (count_ < kel::hashCodeDigits) {
        return wantsMore;
    }
    return dashed_ ? complete(completeWith) : reject();
}

JPointer<JObject> HashcodeFSM::returnValue() const {
    requireComplete();
    return JPointer<JObject>(new JInt128(kel::hashCodeOfDigits(digits_)));
}
