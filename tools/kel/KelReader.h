/// \file
/// Reads text and binary.
#pragma once

#include "Document.h"
#include "Format.h"

#include <string>
#include <string_view>

namespace kel::tool {

/// Reads all root values of KEL text or binary.
/// \param inputName the name of the input in messages
/// \throws Failure malformed: "INPUT:LINE: what is wrong" for text, "INPUT: offset N: what is
///         wrong" for binary; also for content without any value
Document readKel(std::string content, Format format, const std::string& inputName);

/// Returns the value of a binary record, or null if the library does not read it.
Value valueOfRecord(std::string_view record);

} // namespace kel::tool
