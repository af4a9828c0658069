#include "serial/tokens/StreamTokenizer.h"

#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"
#include "serial/tokens/Characters.h"
#include "serial/tokens/CommentFSM.h"
#include "serial/tokens/HashcodeFSM.h"
#include "serial/tokens/NewlineFSM.h"
#include "serial/tokens/NumberFSM.h"
#include "serial/tokens/StandardScanner.h"
#include "serial/tokens/WhitespaceFSM.h"
#include "serial/tokens/WordFSM.h"

#include <kel/JException.h>
#include <typeinfo>

using namespace kel;

namespace {

// Returns whether the list is that of the machines that the scanner can replace.
bool areStandard(const JVector<TokenizerFSM>& recognisers) {
    const std::type_info* const standard[] = {&typeid(CommentFSM), &typeid(NewlineFSM),
                                              &typeid(NumberFSM),  &typeid(WhitespaceFSM),
                                              &typeid(WordFSM),    &typeid(HashcodeFSM)};
    if (recognisers.size() != static_cast<int32_t>(std::size(standard))) {
        return false;
    }
    for (int32_t i = 0; i < recognisers.size(); ++i) {
        const TokenizerFSM& fsm = *recognisers.elementAtRef(i);
        if (typeid(fsm) != *standard[i]) {
            return false;
        }
    }
    return true;
}

JString* newString(std::string_view text, bool quoted) {
    // not reached: so long a token takes 4 GB
    if (text.size() > UINT32_MAX) {
        throw JOutOfMemoryException("MemoryPool out of memory.");
    }
    auto* string = new JString(text.data(), 0, static_cast<uint32_t>(text.size()));
    string->setQuoted(quoted);
    return string;
}

// Makes the value of a scanned token. Returns null for a token without one.
JObject* newValue(const Token& token) {
    switch (token.type) {
    case tokenComment:
    case tokenWhitespace:
    case tokenWord:
        return newString(token.text, token.quoted);
    case tokenInteger:
        return new JInteger(token.integer);
    case tokenFloating:
        return new JDouble(token.floating);
    case tokenHashCode:
        return new JInt128(token.hashCode);
    default:
        return nullptr;
    }
}

} // namespace

StreamTokenizer::StreamTokenizer(const JPointer<JInputStream>& input)
    : input_(input), recognisers_(10, 0), tokenStart_(input_.position()) {}

void StreamTokenizer::addFSM(const JPointer<TokenizerFSM>& fsm) {
    recognisers_.addElement(fsm.get());
    chooseScannerOrRecognisers();
}

void StreamTokenizer::removeFSM(const JPointer<TokenizerFSM>& fsm) {
    recognisers_.removeElement(fsm.get());
    chooseScannerOrRecognisers();
}

void StreamTokenizer::addStandardRecognisers() {
    addFSM(JPointer<TokenizerFSM>(new CommentFSM));
    addFSM(JPointer<TokenizerFSM>(new NewlineFSM));
    addFSM(JPointer<TokenizerFSM>(new NumberFSM));
    addFSM(JPointer<TokenizerFSM>(new WhitespaceFSM));
    addFSM(JPointer<TokenizerFSM>(new WordFSM));
    addFSM(JPointer<TokenizerFSM>(new HashcodeFSM));
}

void StreamTokenizer::shareRecognisers(const StreamTokenizer& other) {
    for (int32_t i = 0; i < other.recognisers_.size(); ++i) {
        recognisers_.addElement(other.recognisers_.elementAtRef(i));
    }
    chooseScannerOrRecognisers();
}

void StreamTokenizer::askRecognisersOnly(bool recognisersOnly) {
    recognisersOnly_ = recognisersOnly;
    chooseScannerOrRecognisers();
}

void StreamTokenizer::chooseScannerOrRecognisers() {
    usesScanner_ = !recognisersOnly_ && areStandard(recognisers_);
}

int32_t StreamTokenizer::nextToken() {
    value_.clear();
    tokenStart_ = input_.position();
    try {
        return usesScanner_ ? StandardScanner(input_, token_).scan() : nextRecognisedToken();
    } catch (const JIOException&) {
        input_.resetToMark(); // half a token is not lost: the next read begins with it again
        throw;
    }
}

void StreamTokenizer::countLines(int32_t& line, int32_t more) {
    line = more > INT32_MAX - line ? INT32_MAX : line + more;
}

int32_t StreamTokenizer::nextSolidToken(int32_t& line) {
    for (;;) {
        if (usesScanner_) {
            countLines(line, StandardScanner::skipLayout(input_));
        }
        const int32_t type = nextToken();
        if (type == tokenNewline) {
            countLines(line, 1);
        } else if (type != tokenWhitespace && type != tokenComment) {
            return type;
        }
    }
}

int32_t StreamTokenizer::nextRecognisedToken() {
    token_.clear();
    asked_.assign(recognisers_.data(), recognisers_.data() + recognisers_.size());
    for (TokenizerFSM* fsm : asked_) {
        fsm->reset();
    }
    input_.mark();
    bool atStart = true;
    do {
        const int32_t c = input_.next();
        const int32_t answer = askAll(c);
        if (answer == TokenizerFSM::completeBefore && c != -1) {
            input_.seek(input_.position() - 1);
        }
        if (answer == TokenizerFSM::completeWith || answer == TokenizerFSM::completeBefore) {
            take(*asked_.front());
            return token_.type;
        }
        if (c == -1) {
            // Nothing follows the end, so a machine that still waits is out too.
            asked_.clear();
            token_.type = atStart ? tokenEnd : tokenNone;
        }
        atStart = false;
    } while (!asked_.empty());
    input_.resetToMark();
    return token_.type;
}

// Feeds c to the machines that are still in and drops those that reject it. A winner is moved to
// the front of the list. \return its result, or wantsMore if there is no winner yet
int32_t StreamTokenizer::askAll(int32_t c) {
    size_t stillIn = 0;
    for (TokenizerFSM* fsm : asked_) {
        const int32_t answer = fsm->accept(c);
        if (answer == TokenizerFSM::wantsMore) {
            asked_[stillIn++] = fsm;
        } else if (answer != TokenizerFSM::rejected) {
            asked_.front() = fsm;
            return answer;
        }
    }
    asked_.resize(stillIn);
    return TokenizerFSM::wantsMore;
}

void StreamTokenizer::take(const TokenizerFSM& winner) {
    value_ = winner.returnValue();
    token_.type = winner.getType();
    const JObject* value = value_.get();
    if (const auto* text = dynamic_cast<const JString*>(value)) {
        takeText(winner, *text);
    } else if (const auto* hashCode = dynamic_cast<const JInt128*>(value)) {
        token_.hashCode = hashCode->int128();
    } else if (const auto* number = dynamic_cast<const JNumber*>(value)) {
        (token_.type == tokenFloating ? token_.floating = number->doubleValue()
                                      : token_.integer = number->intValue());
    }
}

void StreamTokenizer::takeText(const TokenizerFSM& winner, const JString& text) {
    size_t length = text.length();
    if (const auto* word = dynamic_cast<const WordFSM*>(&winner)) {
        length = word->textLength(); // the characters can include a NUL
    } else if (const auto* comment = dynamic_cast<const CommentFSM*>(&winner)) {
        length = comment->textLength();
    }
    token_.text = {text.chars(), length};
    token_.quoted = text.isQuoted();
}

JPointer<JObject> StreamTokenizer::getValue() {
    if (value_.isNull()) {
        JObject* value = newValue(token_);
        if (value == nullptr) {
            throw TokenizerException("Error reading tokens");
        }
        value_ = value;
    }
    return value_;
}

bool StreamTokenizer::readHashCode(JHashCode& hashCode) {
    return StandardScanner::scanHashCode(input_, hashCode);
}

std::string_view StreamTokenizer::readKeyRun() {
    input_.mark();
    do {
        const uint8_t* p = input_.begin();
        while (isInClass(*p, keyClass)) {
            ++p;
        }
        input_.skipTo(p);
    } while (input_.available() == 0 && input_.more());
    const uint8_t* from = input_.marked();
    return {reinterpret_cast<const char*>(from), static_cast<size_t>(input_.begin() - from)};
}
