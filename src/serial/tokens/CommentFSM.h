/// \file
/// CommentFSM: recogniser of comments.
#pragma once

#include "serial/tokens/CollectedText.h"
#include "serial/tokens/TokenizerFSM.h"

/// Recognises a line comment, from two slashes to just before the line end, or a block comment
/// between slash-star and star-slash. The value is the text without these delimiters.
///
/// A star directly after a star does not close a block comment: an odd run of stars before the
/// slash closes it, an even run does not. An open block comment takes every character as text, even
/// the end of input: only the tokenizer knows that nothing follows.
class CommentFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenComment; }
    void reset() override;
    /// \throws TokenizerException "Internal error in CommentFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;

    /// Returns the number of characters of the text, NULs included.
    uint32_t textLength() const { return text_.count(); }

private:
    int32_t acceptInLine(int32_t c);
    int32_t acceptInBlock(int32_t c);
    int32_t acceptAfterStar(int32_t c);

    kel::CollectedText text_;
};
