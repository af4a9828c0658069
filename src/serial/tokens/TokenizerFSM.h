/// \file
/// TokenizerFSM: a recogniser of one kind of token.
#pragma once

#include "serial/tokens/Token.h"

#include <cstdint>
#include <kel/JObject.h>
#include <kel/JPointer.h>

/// A machine that is fed the characters of a text one by one and returns whether they are a token.
/// After a result other than wantsMore it takes no more characters until it is reset.
class TokenizerFSM : public virtual JObject {
public:
    /// The results of accept.
    enum Answer : int32_t {
        rejected = 0,      ///< this is not a token of this machine
        wantsMore = 1,     ///< the character is taken, more are needed
        completeWith = 2,  ///< the token is complete and this character is its last
        completeBefore = 3 ///< the token is complete and this character is not part of it
    };

    /// Returns the kel::TokenType of the token.
    virtual int32_t getType() const = 0;

    /// Returns to the start, with nothing taken.
    virtual void reset() = 0;

    /// Takes a character, 0 to 255, or -1 for the end of input. \return an Answer
    /// \throws TokenizerException "FSM has to be reset." after the token was complete or rejected
    virtual int32_t accept(int32_t c) = 0;

    /// Returns the value of the complete token. It can be empty.
    /// \throws TokenizerException "Nothing to return." before the token is complete
    virtual JPointer<JObject> returnValue() const = 0;

protected:
    /// Ends with a rejection.
    int32_t reject();

    /// Ends with a complete token. \return the given result
    int32_t complete(Answer answer);

    /// Returns to state 0.
    void restart();

    /// Requires that the token is complete.
    /// \throws TokenizerException with the message otherwise
    void requireComplete(const char* message = "Nothing to return.") const;

    /// -1: finished or rejected; 0: start; others are the machine's own.
    int32_t state_ = 0;

private:
    bool complete_ = false;
};
