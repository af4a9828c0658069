/// \file
/// Reads text and binary.
#pragma once

#include "Document.h"
#include "Format.h"

#include <string>

namespace kel::tool {

/// Reads all root values of KEL text or binary.
/// \param inputName the name of the input in messages
/// \throws Failure malformed: "INPUT:LINE: what is wrong" for text, "INPUT: offset N: what is
///         wrong" for binary; also for content without any value
Document readKel(std::string content, Format format, const std::string& inputName);

} // namespace kel::tool
