/// \file
/// WhitespaceFSM: recogniser of blanks.
#pragma once

#include "serial/tokens/TokenizerFSM.h"

/// Recognises a run of spaces and tabs. The value is always one space.
class WhitespaceFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenWhitespace; }
    void reset() override { restart(); }
    /// \throws TokenizerException "Internal error in WhitespaceFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;
};
