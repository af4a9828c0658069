/// \file
/// Findings as lines for people and as JSON for editors.
#pragma once

#include "failures/Failure.h"
#include "findings/Finding.h"

#include <string>

namespace kel::tool {

/// Returns "FILE:LINE:COLUMN: PATH: message; hint", without the parts that are unknown, and the
/// excerpt. Without a line, the place is "FILE: offset N".
std::string lineFor(const Finding& finding, const std::string& file);

/// Returns a JSON object on one line: {"file": ..., "line": ..., "column": ..., "offset": ...,
/// "path": ..., "severity": "error" or "warning", "message": ..., "hint": ...}, without the members
/// that are unknown. What is not UTF-8 becomes U+FFFD.
std::string jsonFor(const Finding& finding, const std::string& file);

/// Returns the finding that a failure to read a file is. If the failure has no place, its message
/// without the name of the file is the finding, and of several lines only the first one.
Finding findingOf(const Failure& failure, const std::string& file);

} // namespace kel::tool
