/// \file
/// Reads text and binary.
#pragma once

#include "document/Document.h"
#include "document/Format.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Reads all root values of KEL text or binary.
/// \param inputName the name of the input in messages
/// \param named the format by the input's name, if the content decided on the format
/// \throws Failure malformed, as failureOf describes it; also for content without any value
Document readKel(std::string_view content, Format format, const std::string& inputName,
                 std::optional<Format> named = std::nullopt);

/// Returns the root values of a text that should have this many. Returns fewer if the library does
/// not read them, and none if more than layout follows them.
std::vector<Value> rootsOfText(std::string_view text, size_t count);

/// Returns the value of a binary record, or null if the library does not read it.
Value valueOfRecord(std::string_view record);

} // namespace kel::tool
