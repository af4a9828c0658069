/// \file
/// Writes text and JSON in the layout that the tool gives them.
#pragma once

#include "document/Document.h"
#include "document/Input.h"
#include "losses/Losses.h"
#include "json/JsonLayout.h"
#include "json/TextBuffer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// What a text is examined for, to be laid out part by part.
struct TextExamination {
    bool compares = false;   ///< with its layout
    bool willBeLaid = false; ///< whether layOutText may follow
};

/// Examines a text part by part, as layOutText writes it.
/// \param limit the greatest number of bytes of the layout
/// \return whether it has the layout already, if that was compared. Nothing for a text that must be
///         read as a whole: its parts cannot be read alone, values do not hold all of them, or the
///         layout would be large. The whole has the reasons.
std::optional<bool> examineText(const InputBytes& content, TextExamination wanted, uint64_t limit);

/// Lays out a text that was examined, with a small part of its values in memory at a time.
/// \param name the name of the input in messages
/// \param passOn gets the output piece by piece
/// \throws Failure unreadable if the file changed meanwhile
void layOutText(const InputBytes& content, const std::string& name,
                const TextBuffer::PassOn& passOn);

/// Returns whether the text is the one that kel convert writes for the values that were read from
/// it.
bool isFormattedText(const Document& document, std::string_view text);

} // namespace kel::tool
