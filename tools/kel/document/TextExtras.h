/// \file
/// TextExtras: the parts of a text that its values do not hold.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

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
std::optional<TextExtra> firstTextExtra(std::string_view text);

} // namespace kel::tool
