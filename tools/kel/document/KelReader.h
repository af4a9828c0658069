/// \file
/// Reads text and binary.
#pragma once

#include "document/Document.h"
#include "document/Format.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// Reads all root values of KEL text or binary.
/// \param inputName the name of the input in messages
/// \param named the format by the input's name, if the content decided on the format
/// \throws Failure malformed, as failureOf describes it; also for content without any value
Document readKel(std::string content, Format format, const std::string& inputName,
                 std::optional<Format> named = std::nullopt);

/// Returns the value of a binary record, or null if the library does not read it.
Value valueOfRecord(std::string_view record);

} // namespace kel::tool
