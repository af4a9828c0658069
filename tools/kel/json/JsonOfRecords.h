/// \file
/// Converts binary to JSON part by part.
#pragma once

#include "document/InputBytes.h"
#include "json/JsonLayout.h"
#include "json/TextBuffer.h"

namespace kel::tool {

/// Converts a binary file to JSON. Only a small part of its values is in memory at a time. This is
/// not possible if the file is damaged, has references, has structs whose names are repeated or not
/// in order, or holds anything that JSON cannot carry. The file must then be converted as a whole,
/// which also finds the reasons.
/// \param passOn gets the JSON piece by piece
/// \return whether the JSON is complete
bool convertToJson(const InputBytes& records, const JsonLayout& layout,
                   const TextBuffer::PassOn& passOn);

} // namespace kel::tool
