/// \file
/// CommentFSM: recogniser of comments.
#pragma once

#include "serial/CollectedText.h"
#include "serial/TokenizerFSM.h"

/// A line comment, from two slashes to before the line end, or a block comment between slash-star
/// and star-slash. The value is the text without these delimiters.
///
/// A star directly behind a star does not close a block comment any more: an odd run of stars
/// before the slash closes it, an even one does not. A block comment that is open at end of input
/// is rejected.
class CommentFSM : public TokenizerFSM {
public:
    int32_t getType() const override { return kel::tokenComment; }
    void reset() override;
    /// \throws TokenizerException "Internal error in CommentFSM." in an unknown state
    int32_t accept(int32_t c) override;
    JPointer<JObject> returnValue() const override;

    /// Number of characters of the text, NULs included.
    uint32_t textLength() const { return text_.count(); }

private:
    int32_t acceptInLine(int32_t c);
    int32_t acceptInBlock(int32_t c);
    int32_t acceptAfterStar(int32_t c);

    kel::CollectedText text_;
};
