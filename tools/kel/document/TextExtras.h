/// \file
/// TextExtras: the parts of a text that its values do not hold.
#pragma once

#include "document/InputBytes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kel::tool {

/// A part of a text that is lost when its values are written again.
struct TextExtra {
    uint64_t line;     ///< the line on which it begins, from 1
    const char* words; ///< what it is, as a literal, such as "a comment"
};

/// Returns the first part of the text that its values do not hold: a comment, a "#define", an
/// identity that the writer does not write, or a "REF". Returns nothing if the writer can write
/// everything again. The comments that the writer itself puts into index lists do not count.
/// The text must be valid.
std::optional<TextExtra> firstTextExtra(const InputBytes& text);

/// The comments and definitions of a text, which no value holds in any format.
struct Annotations {
    uint64_t comments = 0;
    uint64_t definitions = 0;
    uint64_t line = 0; ///< the line on which the first one begins, from 1; 0 if the text has none
};

/// Returns the comments and definitions of the text, which must be valid. A comment inside the text
/// of a definition belongs to the definition. The comments that the writer itself puts into index
/// lists do not count.
Annotations annotationsIn(const InputBytes& text);

/// Returns the loss of the annotations in words: what is lost, how many, and where the first one
/// is. \param isCertain whether they are lost, and not only would be
std::string lossOf(const Annotations& annotations, bool isCertain);

} // namespace kel::tool
