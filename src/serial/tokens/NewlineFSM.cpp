#include "serial/tokens/NewlineFSM.h"

#include <kel/JException.h>

namespace {

constexpr int32_t afterReturn = 1;

} // namespace

int32_t NewlineFSM::accept(int32_t c) {
    switch (state_) {
    case -1:
        throw TokenizerException("FSM needs to be reset.");
    case 0:
        if (c == '\n' || c == '\f') {
            return complete(completeWith);
        }
        if (c != '\r') {
            return reject();
        }
        state_ = afterReturn;
        return wantsMore;
    case afterReturn:
        return c == '\n' ? complete(completeWith) : reject();
    default:
        throw TokenizerException("Internal error in NewlineFSM.");
    }
}

JPointer<JObject> NewlineFSM::returnValue() const {
    requireComplete();
    return {};
}
