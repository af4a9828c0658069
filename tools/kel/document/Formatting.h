/// \file
/// Writes text and JSON in the layout that the tool gives them.
#pragma once

#include "document/Document.h"
#include "document/Input.h"
#include "losses/Losses.h"
#include "json/JsonLayout.h"
#include "json/TextBuffer.h"

#include <cstdint>
#include <string>

namespace kel::tool {

/// What is known about JSON after it has been laid out.
struct LaidOut {
    bool isSame = false; ///< whether the input has the layout already
    Losses losses;       ///< what the output does not hold, repeated names included
    bool hasSeveralRoots = false;
};

/// Lays JSON out as kel convert does, with one root value in memory at a time, or a part of an
/// array at the root.
/// \param limit the greatest number of bytes
/// \param passOn gets the output piece by piece, and can be null
/// \throws Failure malformed; refused beyond the limit
LaidOut layOutJson(const Content& content, const std::string& name, const JsonLayout& layout,
                   uint64_t limit, const TextBuffer::PassOn& passOn);

/// Returns whether the text is the one that kel convert writes for the values that were read from
/// it.
bool isFormattedText(const Document& document, const std::string& text);

} // namespace kel::tool
