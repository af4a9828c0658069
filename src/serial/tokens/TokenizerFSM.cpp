#include "serial/tokens/TokenizerFSM.h"

#include <kel/JException.h>

int32_t TokenizerFSM::reject() {
    state_ = -1;
    return rejected;
}

int32_t TokenizerFSM::complete(Answer answer) {
    state_ = -1;
    complete_ = true;
    return answer;
}

void TokenizerFSM::restart() {
    state_ = 0;
    complete_ = false;
}

void TokenizerFSM::requireComplete(const char* message) const {
    if (!complete_) {
        throw TokenizerException(message);
    }
}
