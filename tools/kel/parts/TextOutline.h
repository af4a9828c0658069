/// \file
/// TextOutline: where the parts of a text begin and end.
#pragma once

#include "document/InputBytes.h"
#include "parts/PartLimits.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace kel::tool {

/// A part of a text: some root values, or some elements of an array at the root.
struct TextPart {
    size_t begin; ///< the offset of the first value
    size_t end;   ///< that of the next part, of the array's closing bracket, or of the end
    size_t roots; ///< the number of root values, or 0 for elements of an array
    bool isFirst; ///< whether the array begins with this part
    bool isLast;  ///< whether it ends with this part
};

/// The parts of a text in their order.
struct TextOutline {
    size_t definitions = 0; ///< the length of the beginning of the text that each part needs
    size_t roots = 0;       ///< the number of root values
    std::vector<TextPart> parts;
};

/// Scans a text without making values. Returns nothing for a text that cannot be read in parts: one
/// with a mistake, and one with anything that can have to do with a value in another part. These
/// are
///
/// - identities, references, managers, and headers of structs
/// - definitions after the first value, of anything but a short scalar, or of more than 4 KiB
/// - index lists, whose mistakes are found by counting
///
/// A part of such a text is read as it is in the whole text. Definitions of short scalars can never
/// exceed the reader's budget, so that each part can have a budget of its own.
/// \param size the number of bytes after which a part ends with the current value
std::optional<TextOutline> outlineText(const InputBytes& content, size_t size = textPartSize);

} // namespace kel::tool
