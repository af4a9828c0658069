/// \file
/// WhitespaceFSM: recogniser of blanks.
#pragma once

#include "serial/tokens/TokenizerFSM.h"

/// A run of spaces and tabs. The value is one space, whatever the run was.
class WhitespaceFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenWhitespace; }
    void reset() override { restart(); }
    /// \throws TokenizerException "Internal error in WhitespaceFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;
};
