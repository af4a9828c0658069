/// \file
/// Token: the result of the tokenizer, as a plain struct.
#pragma once

#include <cstdint>
#include <kel/JHashCode.h>
#include <string_view>

namespace kel {

/// The types of tokens.
enum TokenType : int32_t {
    tokenNone = -1,      ///< no recogniser matched
    tokenEnd = 0,        ///< end of input
    tokenNewline = 1,    ///< LF, FF, or CR LF
    tokenComment = 2,    ///< text without its delimiters
    tokenInteger = 3,    ///< a 32-bit integer
    tokenFloating = 4,   ///< a double
    tokenWhitespace = 5, ///< a run of spaces and tabs; the text is one space
    tokenWord = 6,       ///< text without its quotes
    tokenHashCode = 7    ///< 128 bits in GUID layout
};

/// The last token of a StreamTokenizer. Only the members that belong to the type are set; the
/// others are zero.
struct Token {
    int32_t type = tokenNone;
    int32_t integer = 0;   ///< of an integer
    double floating = 0.0; ///< of a floating number
    /// The text of a comment, whitespace or word, NULs included. It lies in the tokenizer's memory
    /// and is valid until the tokenizer or its input reads again.
    std::string_view text;
    bool quoted = false; ///< whether a word is between double quotes
    JHashCode hashCode;  ///< of a hash code

    /// Resets the token member by member: assigning a whole empty token costs more than scanning a
    /// short one.
    void clear() {
        type = tokenNone;
        integer = 0;
        floating = 0.0;
        text = {};
        quoted = false;
        hashCode.w0 = hashCode.w1 = hashCode.w2 = hashCode.w3 = 0;
    }
};

} // namespace kel
