/// \file
/// Finds what is wrong with a record of a binary file.
#pragma once

#include "parts/RecordCursor.h"

#include <optional>
#include <string>

namespace kel::tool {

/// A mistake in a binary file, which ends its reading.
struct RecordFault {
    size_t offset; ///< of the field that is wrong
    std::string reason;
};

/// Returns what is wrong with the element that the cursor has moved to, or nothing. The contents of
/// arrays and structs are not examined, and neither is what a reference refers to.
/// \param content the bytes that the cursor walks over
std::optional<RecordFault> faultOf(const RecordCursor& cursor, RecordCursor::Event event,
                                   std::string_view content);

} // namespace kel::tool
