#include "serial/tokens/WordFSM.h"

#include "serial/tokens/Characters.h"

#include <kel/JException.h>

namespace {

constexpr int32_t inWord = 1;

} // namespace

void WordFSM::reset() {
    restart();
    text_.clear();
    quoted_ = false;
}

int32_t WordFSM::accept(int32_t c) {
    switch (state_) {
    case -1:
        throw TokenizerException("FSM has to be reset.");
    case 0:
        return acceptFirst(c);
    case inWord:
        return quoted_ ? acceptQuoted(c) : acceptBare(c);
    default:
        throw TokenizerException("Internal error in WordFSM.");
    }
}

int32_t WordFSM::acceptFirst(int32_t c) {
    if (c == '"') {
        quoted_ = true;
    } else if (kel::isInClass(c, kel::wordStartClass)) {
        text_.append(c);
    } else {
        return reject();
    }
    state_ = inWord;
    return wantsMore;
}

int32_t WordFSM::acceptBare(int32_t c) {
    if (kel::isInClass(c, kel::wordClass)) {
        text_.append(c);
        return wantsMore;
    }
    // Before a dash the word is rejected: a hash code that begins with a letter keeps its first
    // group.
    return c == '"' || c == '-' ? reject() : complete(completeBefore);
}

int32_t WordFSM::acceptQuoted(int32_t c) {
    if (c == '"') {
        return complete(completeWith);
    }
    if (c == -1) {
        throw TokenizerException("Reached end of file with no closing quote.");
    }
    text_.append(c);
    return wantsMore;
}

JPointer<JObject> WordFSM::returnValue() const {
    requireComplete("WordFSM::returnValue(). nothing to return.");
    JString* word = text_.toString();
    word->setQuoted(quoted_);
    return JPointer<JObject>(word);
}
