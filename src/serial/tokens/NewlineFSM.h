/// \file
/// NewlineFSM: recogniser of line ends.
#pragma once

#include "serial/tokens/TokenizerFSM.h"

/// Recognises LF, FF, or CR directly followed by LF. A CR alone is not a line end. The value is
/// empty.
class NewlineFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenNewline; }
    void reset() override { restart(); }
    /// \throws TokenizerException "FSM needs to be reset." after the end, instead of the usual text
    /// \throws TokenizerException "Internal error in NewlineFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;
};
