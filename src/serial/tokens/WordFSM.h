/// \file
/// WordFSM: recogniser of bare and quoted words.
#pragma once

#include "serial/tokens/CollectedText.h"
#include "serial/tokens/TokenizerFSM.h"

/// Recognises words. A bare word begins with a letter, "@" or "_" and continues with letters,
/// digits and "_". Directly before a double quote or "-" it is rejected. A quoted word is
/// everything between two double quotes, without any escape. The value is a JString without the
/// quotes; JString::isQuoted distinguishes the two.
class WordFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenWord; }
    void reset() override;
    /// \throws TokenizerException "Reached end of file with no closing quote."
    /// \throws TokenizerException "Internal error in WordFSM." in an unknown state
    int32_t accept(int32_t c) override;
    /// \throws TokenizerException "WordFSM::returnValue(). nothing to return." before the word is
    ///         complete
    JPointer<JObject> returnValue() const override;

    /// Returns the number of characters of the text, NULs included.
    uint32_t textLength() const { return text_.count(); }

private:
    int32_t acceptFirst(int32_t c);
    int32_t acceptBare(int32_t c);
    int32_t acceptQuoted(int32_t c);

    kel::CollectedText text_;
    bool quoted_ = false;
};
