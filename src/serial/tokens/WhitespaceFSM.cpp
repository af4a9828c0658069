#include "serial/tokens/WhitespaceFSM.h"

#include "serial/tokens/Characters.h"

#include <kel/JException.h>
#include <kel/JString.h>

namespace {

constexpr int32_t inRun = 1;

} // namespace

int32_t WhitespaceFSM::accept(int32_t c) {
    const bool blank = kel::isInClass(c, kel::blankClass);
    switch (state_) {
    case -1:
        throw TokenizerException("FSM has to be reset.");
    case 0:
        if (!blank) {
            return reject();
        }
        state_ = inRun;
        return wantsMore;
    case inRun:
        if (blank) {
            return wantsMore;
        }
        return complete(c == -1 ? completeWith : completeBefore);
    default:
        throw TokenizerException("Internal error in WhitespaceFSM.");
    }
}

JPointer<JObject> WhitespaceFSM::returnValue() const {
    requireComplete();
    return JPointer<JObject>(new JString(" "));
}
