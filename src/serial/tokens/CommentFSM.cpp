#include "serial/tokens/CommentFSM.h"

#include <kel/JException.h>

namespace {

constexpr int32_t afterSlash = 1;
constexpr int32_t inLine = 10;
constexpr int32_t inBlock = 20;
constexpr int32_t afterStar = 21;

} // namespace

void CommentFSM::reset() {
    restart();
    text_.clear();
}

int32_t CommentFSM::accept(int32_t c) {
    switch (state_) {
    case -1:
        throw TokenizerException("FSM has to be reset.");
    case 0:
        if (c != '/') {
            return reject();
        }
        state_ = afterSlash;
        return wantsMore;
    case afterSlash:
        if (c != '*' && c != '/') {
            return reject();
        }
        state_ = c == '*' ? inBlock : inLine;
        return wantsMore;
    case inLine:
        return acceptInLine(c);
    case inBlock:
        return acceptInBlock(c);
    case afterStar:
        return acceptAfterStar(c);
    default:
        throw TokenizerException("Internal error in CommentFSM.");
    }
}

int32_t CommentFSM::acceptInLine(int32_t c) {
    if (c == -1 || c == '\n' || c == '\f' || c == '\r') {
        return complete(completeBefore);
    }
    text_.append(c);
    return wantsMore;
}

int32_t CommentFSM::acceptInBlock(int32_t c) {
    if (c == '*') {
        state_ = afterStar;
    } else {
        text_.append(c);
    }
    return wantsMore;
}

int32_t CommentFSM::acceptAfterStar(int32_t c) {
    if (c == '/') {
        return complete(completeWith);
    }
    text_.append('*');
    text_.append(c);
    state_ = inBlock;
    return wantsMore;
}

JPointer<JObject> CommentFSM::returnValue() const {
    requireComplete();
    return JPointer<JObject>(text_.toString());
}
